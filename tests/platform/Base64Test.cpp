#include "platform/Base64.h"

#include <gtest/gtest.h>

namespace pw {
namespace {

TEST(Base64Test, Decodes) {
    struct Row {
        const char* text;
        std::optional<std::string> bytes;
    };
    const Row rows[] = {
        {"", ""},
        {"TQ==", "M"},
        {"TWE=", "Ma"},
        {"TWFu", "Man"},
        {"TWE", "Ma"},
        {" TW\r\nFu ", "Man"},
        {"-_8", "\xFB\xFF"},
        {"+/8=", "\xFB\xFF"},
        {"T", std::nullopt},
        {"TW!u", std::nullopt},
        {"T=Fu", std::nullopt},
    };
    for (const Row& row : rows)
        EXPECT_EQ(DecodeBase64(row.text), row.bytes) << row.text;
}

}  // namespace
}  // namespace pw
