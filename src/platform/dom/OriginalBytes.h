#pragma once
// The bytes of a file whose encoding can write one text in several ways: what is not changed in the
// text is written with the bytes that it had.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Encoding.h"

namespace pw::dom {

class OriginalBytes {
  public:
    /** None where nothing is known of how the bytes stand for the text, which `decode` has read
     * from them. */
    static std::shared_ptr<const OriginalBytes> of(std::string_view bytes, const Decoded& decoded);

    /** The text in the encoding of the file. Each stretch of it that stood in the file, in the same
     *  order, keeps its bytes; in between the encoding's shifts are set as each of them needs it.
     */
    std::string encode(std::string_view text) const;

  private:
    /** A place in the text, where its bytes begin, and the shift that holds there. */
    struct Cut {
        std::size_t text = 0;
        std::size_t byte = 0;
        std::uint32_t shift = 0;  ///< in shifts_; 0 is that of a file's beginning
    };
    struct Shift {
        std::string escape;  ///< the last that was seen; "" for none
        bool out = false;    ///< behind a shift out
        bool operator==(const Shift&) const = default;
    };
    class Reader;

    OriginalBytes() = default;
    std::uint32_t numberOf(const Shift& shift);
    void leave(std::uint32_t shift, std::string& out) const;
    void encodeNew(std::string_view text, std::string& out) const;

    std::string text_;
    std::string bytes_;
    Encoding encoding_;
    std::vector<Cut> cuts_;  ///< in order
    std::vector<Shift> shifts_;
};

}  // namespace pw::dom
