#include "frame/Branding.h"

#include <cstdint>

#include "platform/Text.h"

namespace pw {

namespace {

constexpr std::size_t kTextWidth = 128;

/** The texts are 8-bit; those that are no UTF-8 are of the Western European set. */
std::string Decode(std::string_view bytes) {
    if (IsValidUtf8(bytes)) return std::string(bytes);
    std::string text;
    for (const unsigned char c : bytes) {
        if (c < 0x80) {
            text += char(c);
        } else {
            text += char(0xC0 | (c >> 6));
            text += char(0x80 | (c & 0x3F));
        }
    }
    return text;
}

}  // namespace

void CBrand::SetBrandFile(const std::string& path) {
    isValid_ = false;
    companyName_.clear();
    secondText_.clear();
    brandFile_ = path;
    std::string bytes;
    if (files_.Read(path, bytes) != FileError::None) return;

    // Where the reading goes on when the file is too short for its last number, or names none.
    std::size_t at = bytes.size();
    if (bytes.size() >= 4) {
        std::uint32_t position = 0;
        for (std::size_t i = 1; i <= 4; ++i)
            position = (position << 8) | std::uint8_t(bytes[bytes.size() - i]);
        if (position > 0) at = position - 1;
    }
    const auto block = [&bytes](std::size_t from) {
        return from < bytes.size() ? bytes.substr(from, kTextWidth) : std::string();
    };
    companyName_ = Trim(Decode(ReplaceAll(block(at), std::string_view("\0", 1), "")));
    secondText_ = Trim(Decode(block(at + kTextWidth)));
    isValid_ = true;
}

std::string CBrand::FormCaption() const {
    if (companyName_.empty()) return applicationTitle_;
    return applicationTitle_ + " provided by " + companyName_;
}

}  // namespace pw
