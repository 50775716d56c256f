#include "platform/Base64.h"

#include <array>
#include <cstdint>

namespace pw {

namespace {

constexpr std::int8_t kNoDigit = -1;
constexpr std::int8_t kPassed = -2;

constexpr std::array<std::int8_t, 256> MakeDigits() {
    std::array<std::int8_t, 256> digits{};
    digits.fill(kNoDigit);
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < alphabet.size(); ++i)
        digits[static_cast<unsigned char>(alphabet[i])] = std::int8_t(i);
    digits['-'] = digits['+'];
    digits['_'] = digits['/'];
    for (const char passed : {' ', '\t', '\r', '\n'})
        digits[static_cast<unsigned char>(passed)] = kPassed;
    return digits;
}
constexpr std::array<std::int8_t, 256> kDigits = MakeDigits();

}  // namespace

std::optional<std::string> DecodeBase64(std::string_view text) {
    while (!text.empty() && (text.back() == '=' || kDigits[std::uint8_t(text.back())] == kPassed))
        text.remove_suffix(1);
    std::string bytes;
    bytes.reserve(text.size() * 3 / 4);
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : text) {
        const std::int8_t digit = kDigits[static_cast<unsigned char>(c)];
        if (digit == kPassed) continue;
        if (digit == kNoDigit) return std::nullopt;
        bits = bits << 6 | std::uint32_t(digit);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes += char(bits >> count & 0xFF);
    }
    // Six bits alone are no byte.
    return count == 6 ? std::nullopt : std::optional(bytes);
}

}  // namespace pw
