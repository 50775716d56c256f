#include "project/omProj/Digest.h"

#include <bit>
#include <cstring>

namespace pw {
namespace {

constexpr std::uint64_t kPrime1 = 0x9E3779B185EBCA87;
constexpr std::uint64_t kPrime2 = 0xC2B2AE3D27D4EB4F;
constexpr std::uint64_t kPrime3 = 0x165667B19E3779F9;
constexpr std::uint64_t kPrime4 = 0x85EBCA77C2B2AE63;
constexpr std::uint64_t kPrime5 = 0x27D4EB2F165667C5;

static_assert(std::endian::native == std::endian::little, "the checksum reads words as they lie");

template <class Word>
std::uint64_t Load(const char* at) {
    Word word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

std::uint64_t Round(std::uint64_t lane, std::uint64_t input) {
    return std::rotl(lane + input * kPrime2, 31) * kPrime1;
}

std::uint64_t Merge(std::uint64_t sum, std::uint64_t lane) {
    return (sum ^ Round(0, lane)) * kPrime1 + kPrime4;
}

}  // namespace

std::uint64_t Digest(std::string_view bytes, std::uint64_t seed) {
    const char* at = bytes.data();
    std::size_t left = bytes.size();
    std::uint64_t sum = seed + kPrime5;
    // 1. Four lanes of eight bytes each.
    if (left >= 32) {
        std::uint64_t lanes[4] = {seed + kPrime1 + kPrime2, seed + kPrime2, seed, seed - kPrime1};
        for (; left >= 32; at += 32, left -= 32)
            for (int lane = 0; lane < 4; ++lane)
                lanes[lane] = Round(lanes[lane], Load<std::uint64_t>(at + 8 * lane));
        sum = std::rotl(lanes[0], 1) + std::rotl(lanes[1], 7) + std::rotl(lanes[2], 12) +
              std::rotl(lanes[3], 18);
        for (const std::uint64_t lane : lanes)
            sum = Merge(sum, lane);
    }
    sum += bytes.size();
    // 2. What is left, in ever smaller words.
    for (; left >= 8; at += 8, left -= 8)
        sum = std::rotl(sum ^ Round(0, Load<std::uint64_t>(at)), 27) * kPrime1 + kPrime4;
    if (left >= 4) {
        sum = std::rotl(sum ^ (Load<std::uint32_t>(at) * kPrime1), 23) * kPrime2 + kPrime3;
        at += 4, left -= 4;
    }
    for (; left > 0; ++at, --left)
        sum = std::rotl(sum ^ (static_cast<unsigned char>(*at) * kPrime5), 11) * kPrime1;
    // 3. Every bit of the input reaches every bit of the sum.
    sum = (sum ^ (sum >> 33)) * kPrime2;
    sum = (sum ^ (sum >> 29)) * kPrime3;
    return sum ^ (sum >> 32);
}

}  // namespace pw
