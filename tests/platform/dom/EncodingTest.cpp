#include "platform/dom/Encoding.h"

#include "platform/Text.h"
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

/** Each page has text that its encoding would write otherwise; one link of it is changed. */
TEST(Encoding, WhatEncodesDifferentlyIsKeptAroundAChange) {
    struct Row {
        const char* name;
        std::string bytes;
        std::string changed = {};  ///< where it is more than the name
    };
    const std::string link = "<a href=old.htm>";
    for (const Row& row : {
             Row{"iso-2022-jp, two escapes where one would do",
                 "<meta charset=iso-2022-jp>\x1B$B\x24\x22\x1B(B\x1B$B\x24\x24\x1B(B" + link +
                     "\x1B$@\x24\x22\x1B(J\x1B(B<p>\x1B$B\x24\x24"},
             Row{"iso-2022-jp, a tag in another set",
                 "<meta charset=iso-2022-jp>\x1B(J" + link + "\x1B$B\x24\x22\x1B(Jx</a>",
                 "<meta charset=iso-2022-jp>\x1B(J<a href=\x1B(Bnew\x1B(J.htm>\x1B$B\x24\x22\x1B("
                 "Jx</a>"},
             Row{"iso-2022-kr without a character of it",
                 "<meta charset=iso-2022-kr><p>" + link + "x</a>"},
             Row{"iso-2022-kr, shifted twice",
                 "<meta charset=iso-2022-kr>\n\x1B$)C\n\x0E\x30\x21\x0F\x0E\x30\x22\x0F" + link +
                     "\x0E\x30\x21\x0F"},
             Row{"shift_jis, a character in two places of its table",
                 "<meta charset=shift_jis>\x81\xE6 \x87\x9A \xED\x40 \xFA\x5C" + link +
                     "\x87\x9A \x81\xE6</a>"},
             Row{"big5, a character in two places",
                 "<meta charset=big5>\xA1\x5A\xA1\xC3 \xA2\xCC \xA4\x51 \xF9\xF9" + link +
                     "\xA2\xCC</a> \xF9\xFE"},
             Row{"one tag after the other", "<meta charset=shift_jis>\x87\x9A<b>\xED\x40</b>" +
                                                link + "<b>\xED\x40</b>" + link + "\x87\x9A"},
         }) {
        SCOPED_TRACE(row.name);
        const auto page = Document::parse(row.bytes);
        EXPECT_EQ(page->bytes(), row.bytes);
        ASSERT_FALSE(page->links().empty());
        for (Node* a : page->links())
            page->setAttribute(*a, "href", "new.htm");
        EXPECT_EQ(page->bytes(),
                  row.changed.empty() ? ReplaceAll(row.bytes, "old.htm", "new.htm") : row.changed);
        page->insertAdjacentHTML(*page->links().front(), "beforeBegin", "\xE3\x81\x82");
        const auto again = Document::parse(page->bytes());
        EXPECT_EQ(again->innerText(*again->body()), page->innerText(*page->body()));
        while (page->undo()) {
        }
        EXPECT_EQ(page->bytes(), row.bytes);
    }
}

}  // namespace
}  // namespace pw::dom
