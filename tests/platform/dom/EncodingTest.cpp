#include "platform/dom/Encoding.h"

#include "platform/dom/Document.h"

namespace pw::dom {
namespace {

using namespace std::string_literals;

TEST(Encoding, IsFoundAndKept) {
    struct Row {
        const char* name;
        std::string bytes;
        std::string encoding;
        std::string text;
    };
    for (const Row& row : {
             Row{"plain", "abc", "utf-8", "abc"},
             Row{"utf-8 mark", "\xEF\xBB\xBF\xC3\xA4", "utf-8", "\xC3\xA4"},
             Row{"utf-16le mark", "\xFF\xFE\xE4\0<\0"s, "utf-16le", "\xC3\xA4<"},
             Row{"utf-16be mark", "\xFE\xFF\0\xE4"s, "utf-16be", "\xC3\xA4"},
             Row{"meta charset", "<meta charset=koi8-r>\xC1", "koi8-r",
                 "<meta charset=koi8-r>\xD0\xB0"},
             Row{"http-equiv", "<META content='text/html; charset=Shift_JIS' http-equiv=x>\x83\x41",
                 "cp932", "<META content='text/html; charset=Shift_JIS' http-equiv=x>\xE3\x82\xA2"},
             Row{"latin 1 is windows-1252", "<meta charset=iso-8859-1>\x93", "windows-1252",
                 "<meta charset=iso-8859-1>\xE2\x80\x9C"},
             Row{"meta in a comment", "<!--<meta charset=koi8-r>-->\xC3\xA4", "utf-8",
                 "<!--<meta charset=koi8-r>-->\xC3\xA4"},
             Row{"unknown charset", "<meta charset=klingon>\xE4", "windows-1252",
                 "<meta charset=klingon>\xC3\xA4"},
             Row{"utf-16 cannot be declared in ASCII", "<meta charset=utf-16>\xC3\xA4", "utf-8",
                 "<meta charset=utf-16>\xC3\xA4"},
             Row{"xml declaration", "<?xml version='1.0' encoding='euc-kr'?>\xB0\xA1", "cp949",
                 "<?xml version='1.0' encoding='euc-kr'?>\xEA\xB0\x80"},
             Row{"no utf-8", "\xE4", "windows-1252", "\xC3\xA4"},
             Row{"empty", "", "utf-8", ""},
         }) {
        SCOPED_TRACE(row.name);
        const Decoded decoded = decode(row.bytes);
        EXPECT_EQ(decoded.encoding.name, row.encoding);
        EXPECT_EQ(decoded.text, row.text);
        EXPECT_TRUE(decoded.undecodable.empty());
        EXPECT_EQ(encode(decoded.text, decoded.encoding), row.bytes);
    }
}

TEST(Encoding, BytesThatCannotBeDecodedStay) {
    struct Row {
        const char* name;
        std::string bytes;
        std::size_t strays;
    };
    for (const Row& row : {
             Row{"utf-8", "<meta charset=utf-8>a\xFF z\xC3", 2},
             Row{"utf-8, a surrogate", "<meta charset=utf-8>\xED\xA0\x80", 3},
             Row{"the private character itself", "<meta charset=utf-8>\xF4\x8F\xB9\x81", 4},
             Row{"windows-1252", "\x81\x8D\x93", 2},
             Row{"utf-16, half a pair and half a unit",
                 "\xFF\xFE\x00\xD8"
                 "a\0z"s,
                 3},
             Row{"shift_jis", "<meta charset=shift_jis>\xFF\x83", 2},
         }) {
        SCOPED_TRACE(row.name);
        const Decoded decoded = decode(row.bytes);
        EXPECT_EQ(decoded.undecodable.size(), row.strays);
        EXPECT_EQ(encode(decoded.text, decoded.encoding), row.bytes);
        const auto page = Document::parse(row.bytes);
        Node* text = page->createText("new");
        page->insertNode(*page->body(), *text, nullptr);
        const std::string edited = page->bytes();
        for (const Decoded::Stray& stray : decoded.undecodable) {
            EXPECT_NE(edited.find(stray.byte), std::string::npos) << "lost by an edit beside it";
        }
    }
}

TEST(Encoding, CharactersThatItLacksBecomeReferences) {
    EXPECT_EQ(encode("a\xE2\x98\xBA\xC3\xA4\xF0\x9F\x98\x80", {"windows-1252", false}),
              "a&#9786;\xE4&#128512;");
    EXPECT_EQ(encode("\xE2\x98\xBA", {"utf-8", true}), "\xEF\xBB\xBF\xE2\x98\xBA");
}

TEST(Encoding, WhatEncodesDifferentlyIsKeptWhileUnchanged) {
    // Two escapes where one would do.
    const std::string bytes = "<meta charset=iso-2022-jp>\x1B$B\x24\x22\x1B(B\x1B$B\x24\x24\x1B(B";
    const auto page = Document::parse(bytes);
    EXPECT_EQ(page->encoding().name, "iso-2022-jp");
    EXPECT_EQ(page->bytes(), bytes);
}

}  // namespace
}  // namespace pw::dom
