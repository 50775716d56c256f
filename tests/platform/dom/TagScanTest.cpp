#include "platform/dom/TagScan.h"

#include <gmock/gmock.h>

#include "platform/dom/Document.h"
#include "platform/dom/Escape.h"
#include "support/CpuTimer.h"

namespace pw::dom {
namespace {

std::string HrefsIn(std::string_view page, TagsFrom where) {
    std::string found;
    TagScan scan(page, where);
    while (const auto tag = scan.next()) {
        if (!tag->is("a")) continue;
        found += tag->attribute("href").value_or("-") + " ";
        EXPECT_EQ(page.substr(tag->begin(), tag->text().size()), tag->text());
        EXPECT_TRUE(tag->text().ends_with('>') || tag->end() == page.size());
    }
    return found;
}

TEST(TagScan, FindsWhatAParserFindsAndAnywhereMore) {
    const struct {
        const char* page;
        const char* markup;
        const char* anywhere;
    } rows[] = {
        {"<a href=1><A HREF = '2' x>< a href=3></a href=4><ab href=5>", "1 2 ", "1 2 "},
        {"<a\nhref\n=\n\"1 2\"/><a/href=3>", "1 2 3 ", "1 2 3 "},
        {"<a title='>' href=1 href=2>", "1 ", "1 "},
        {"<!-- <a href=1> --><!--><a href=2><?x <a href=3>", "2 ", "1 2 3 "},
        {"<img alt='<a href=1>'><a href=2>", "2 ", "1 2 "},
        {"<script>'<a href=1>'</scripts></script ><a href=2>", "2 ", "1 2 "},
        {"<textarea><a href=1></TEXTAREA><a href=2>", "2 ", "1 2 "},
        {"<noframes><a href=1></noframes>", "1 ", "1 "},
        {"<style><a href=1>", "", "1 "},
        {"<a href", " ", " "},
        {"<a href='1", "1 ", "1 "},
        {"<a href=\"?a=1&amp;b=2&copy=3&#38;&lt\">", "?a=1&b=2&copy=3&< ", "?a=1&b=2&copy=3&< "},
        {"<a", "- ", "- "},
        {"<", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(HrefsIn(row.page, TagsFrom::Markup), row.markup) << row.page;
        EXPECT_EQ(HrefsIn(row.page, TagsFrom::Anywhere), row.anywhere) << row.page;
    }
}

TEST(TagScan, TakesTimeInProportionWhateverThePageIs) {
    for (const char* piece :
         {"<a ", "<a y=\">\" ", "<a href='", "<a b<", "<!-- <a ", "<title><a "}) {
        std::string page;
        while (page.size() < 400'000)
            page += piece;
        page += "><a href=1>";
        for (const TagsFrom where : {TagsFrom::Markup, TagsFrom::Anywhere}) {
            const test::CpuTimer timer;
            TagScan scan(page, where);
            while (const auto tag = scan.next()) {
                EXPECT_FALSE(tag->attribute("nosuch"));
                (void)tag->attributes();
            }
            EXPECT_LT(timer.Seconds(), 1) << piece;
        }
    }
    TagScan deep("<a <a <a <a <a <a <a <a <a <a <a <a <a <a <a <a <a ", TagsFrom::Anywhere);
    int found = 0;
    while (deep.next())
        ++found;
    EXPECT_EQ(found, 16);
    EXPECT_FALSE(deep.isComplete());
}

TEST(TagScan, ReadsValuesAsTheParserDoes) {
    for (const char* value : {"plain", "&amp;", "&amp", "&ampx", "&amp=", "&copy;&copy&copya",
                              "&#65;&#x42&#67x", "&nosuch;&nosuch", "&notit;", "&", "&;", "&&amp;",
                              "a&b=c&d", "&fjlig;", "&semi;", "x\r\ny\rz", "\xC3\xA9&eacute;"}) {
        const auto document = Document::parseText("<a href=\"" + std::string(value) + "\">");
        EXPECT_EQ(decodeAttribute(value), document->links().at(0)->getAttribute("href")) << value;
    }
}

}  // namespace
}  // namespace pw::dom
