#pragma once
// Character encodings of page files.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pw::dom {

class OriginalBytes;

/** How the bytes of a file stand for its text. */
struct Encoding {
    std::string name = "utf-8";  ///< as iconv knows it
    bool byteOrderMark = false;
    /** Of the file, when encoding its text again gives other bytes than it had; `encode` then keeps
     *  those of what is still the same. */
    std::shared_ptr<const OriginalBytes> original = nullptr;
};

/** Text of a file, and what is needed to write its bytes back unchanged. */
struct Decoded {
    std::string text;  ///< UTF-8
    Encoding encoding;
    /** Bytes that could not be decoded, the first 1,000 of them. Each stands in `text` as one
     * private character, U+10FE00 plus the byte, at this offset, and `encode` writes it as the byte
     * that it was: so such bytes survive whatever is edited around them. */
    struct Stray {
        std::size_t offset;
        std::string byte;
    };
    std::vector<Stray> undecodable;
};

/** Byte order mark, then a meta element in the first 1,024 bytes (or an XML declaration), then
 *  UTF-8 if the bytes are valid, else windows-1252. */
Decoded decode(std::string_view bytes);

/** Characters that the encoding lacks become numeric character references. */
std::string encode(std::string_view text, const Encoding& encoding);

}  // namespace pw::dom
