#pragma once
// Character encodings of page files.
#include <string>
#include <string_view>
#include <vector>

namespace pw::dom {

/** How the bytes of a file stand for its text. */
struct Encoding {
    std::string name = "utf-8";  ///< as iconv knows it
    bool byteOrderMark = false;
};

/** Text of a file, and what is needed to write its bytes back unchanged. */
struct Decoded {
    std::string text;  ///< UTF-8
    Encoding encoding;
    /** True when encoding `text` again gives the very bytes; false when bytes could not be
     *  decoded. Each such byte stands in `text` as U+FFFD and its offset in `text`, ascending,
     *  with the byte itself, in `undecodable`. */
    struct Stray {
        std::size_t offset;
        std::string byte;
    };
    std::vector<Stray> undecodable;
};

/** Byte order mark, then a meta element in the first 1,024 bytes, then UTF-8 if the bytes are
 *  valid, else windows-1252. */
Decoded decode(std::string_view bytes);

/** Characters that the encoding lacks become numeric character references. */
std::string encode(std::string_view text, const Encoding& encoding);

}  // namespace pw::dom
