#include "platform/editor/ForeignMarkup.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "platform/Text.h"
#include "platform/editor/CleanMarkup.h"
#include "support/CpuTimer.h"
#include "support/TestPlaces.h"

namespace pw {
namespace {

std::string Sample(const std::string& name) {
    std::ifstream in(std::string(PAGEWICK_TEST_DATA) + "/clipboard/" + name, std::ios::binary);
    EXPECT_TRUE(in) << name;
    return {std::istreambuf_iterator<char>(in), {}};
}

struct Row {
    const char* name;
    std::string before;
    const char* after;
};

void Expect(const Row& row, const AddressAdopter& adopter = {}) {
    EXPECT_EQ(CleanMarkup(row.before, adopter), row.after) << row.name;
}

/** One line a block, to be read by people. */
std::string Lines(const std::string& markup) {
    std::string lines = markup;
    for (const char* tag : {"<p", "<h", "<ul", "<ol", "<li", "<table", "<tr", "<td", "</ul", "</ol",
                            "</table", "<blockquote", "</blockquote"})
        lines = ReplaceAll(lines, tag, "\n" + std::string(tag));
    return lines;
}

TEST(ForeignMarkupTest, WhatOfficeProgramsCopy) {
    const Row rows[] = {
        {"a word processor", "word-processor.html", R"(
<h1>Our club</h1>
<h2><font color="#2f5496">What we do</font></h2>
<p>We meet on <b>Mondays</b> and <i>sometimes</i> on <u>Fridays</u>; see <a href="https://example.org/plan?a=1&amp;b=2">the plan</a>.</p>
<ul>
<li>Walks
<ul>
<li>in the hills</li>
</ul></li>
<li>Talks</li>
</ul>
<ol start="3">
<li>Third of a numbered list</li>
</ol>
<p align="center"><font color="red">Come along!</font></p>
<table border="1" cellspacing="0" cellpadding="4" width="100%"><tbody>
<tr>
<td width="50%" valign="top" bgcolor="#d9e2f3"><b>Day</b></td>
<td width="50%" valign="top" align="right">Hour</td></tr>
<tr>
<td width="100%" colspan="2" valign="top">Monday, 19:30</td></tr></tbody>
</table>
<p>A map</p>)"},
        {"a free word processor", "writer.html", R"(
<h1>Report</h1>
<p>First line of <strong>text</strong>, H<sub>2</sub>O.</p>
<ol>
<li>one
<ol type="a">
<li>inner</li>
</ol></li>
<li>two</li>
</ol>
<table width="100%" cellpadding="4" cellspacing="0" border="1"><colgroup><col width="33%"><col width="67%"></colgroup><tbody>
<tr valign="top">
<td width="33%">a</td>
<td width="67%"></td></tr></tbody>
</table>)"},
        {"a document in the web", "online-document.html", R"(
<h2>Plan</h2>
<p>Plain, <b>bold<i> and more</i></b><a href="https://example.org/">link</a><span style="background-color: #ffff00">marked</span></p>
<ul>
<li>one
<ul>
<li>inner</li>
</ul></li>
<li>two</li>
</ul>
<table border="1" cellpadding="4" cellspacing="0"><colgroup><col width="300"><col width="100"></colgroup><tbody>
<tr>
<td>x</td>
<td align="center">y</td></tr></tbody>
</table>)"},
        {"a mail", "mail.html", R"(
<p>Dear Ann,</p>
<p>thank you for the pictures. Here is&nbsp;ours:</p>
<p>Our house</p>
<blockquote>
<p>You wrote</p>
</blockquote>
<p>Bye</p>)"},
        {"a spreadsheet", "spreadsheet.html", R"(
<table><colgroup><col width="64" span="2"></colgroup><tbody>
<tr>
<td width="64">Apples</td>
<td align="right" width="64">12.5</td></tr>
<tr>
<td colspan="2">Pears &lt; plums</td></tr></tbody>
</table>)"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Lines(CleanMarkup(Sample(row.before))), row.after) << row.name;
}

TEST(ForeignMarkupTest, TextAndParagraphs) {
    const Row rows[] = {
        {"plain", "<b>a</b> &amp; c", "<b>a</b> &amp; c"},
        {"one paragraph joins the one at the caret", "<p class=x>a <i>b</i></p>", "a <i>b</i>"},
        {"unless it is aligned", "<p align=right>a</p>", "<p align=\"right\">a</p>"},
        {"spans that say nothing", "<span lang=de>a<span> b</span></span>", "a b"},
        {"weights", "<span style='font-weight:600'>a</span><b style='font-weight:400'>b</b>",
         "<b>a</b>b"},
        {"bold in bold", "<b>a<span style='font-weight:bold'>b</span></b>", "<b>ab</b>"},
        {"bold in a heading", "<h1><b>a</b></h1>", "<h1>a</h1>"},
        {"lines", "<span style='text-decoration:underline line-through'>a</span>",
         "<u><s>a</s></u>"},
        {"a bold stretch of paragraphs", "<b><p>a</p><p>b</p></b>",
         "<p><b>a</b></p><p><b>b</b></p>"},
        {"colours", "<font color=#333333>a</font><span style='color:rgb(200, 0, 0)'>b</span>",
         "a<font color=\"#c80000\">b</font>"},
        {"white text on a dark cell",
         "<table><tr><td style='background:#003366'><font color=#ffffff>a</font></table>",
         "<table><tbody><tr><td bgcolor=\"#003366\"><font color=\"#ffffff\">a</font></td></tr>"
         "</tbody></table>"},
        {"text beside paragraphs", "a<p>b</p>c<br>d", "<p>a</p><p>b</p><p>c<br>d</p>"},
        {"boxes", "<div>a</div><div></div><div><div>b</div><section>c</section></div>",
         "<p>a</p><p>b</p><p>c</p>"},
        {"breaks between paragraphs", "<p>a</p><br><br><p>b<br></p>", "<p>a</p><p>b</p>"},
        {"a link round boxes", "<a href=x><div>a</div><div>b</div></a>",
         "<p><a href=\"x\">a</a></p><p><a href=\"x\">b</a></p>"},
        {"a title by its level", "<p style='mso-outline-level:2'>a</p><p>b</p>",
         "<h2>a</h2><p>b</p>"},
        {"program text", "<pre>a\n  b</pre>", "<pre>a\n  b</pre>"},
        {"made-up elements", "<x-card><o:p>a</o:p></x-card>", "a"},
    };
    for (const Row& row : rows)
        Expect(row);
}

TEST(ForeignMarkupTest, Lists) {
    const auto item = [](int level, const char* mark, const char* text) {
        return "<p style='mso-list:l0 level" + std::to_string(level) +
               " lfo1'><span style='mso-list:Ignore'>" + mark + "<span>&nbsp; </span></span>" +
               text + "</p>\n";
    };
    const Row rows[] = {
        {"letters and romans", item(1, "a)", "x") + item(2, "i.", "y") + item(1, "b)", "z"),
         "<ol type=\"a\"><li>x<ol type=\"i\"><li>y</li></ol></li><li>z</li></ol>"},
        {"several levels at once", item(1, "o", "x") + item(3, "-", "y") + item(2, "2.1.", "z"),
         "<ul><li>x<ul><li>y</li></ul><ol><li>z</li></ol></li></ul>"},
        {"a list that begins deep", item(2, "(4)", "x") + item(1, "*", "y"),
         "<ol start=\"4\"><li>x</li></ol><ul><li>y</li></ul>"},
        {"in a cell",
         "<table><tr><td>" + item(1, "*", "x") + item(1, "*", "y") + "</td></tr></table>",
         "<table><tbody><tr><td><ul><li>x</li><li>y</li></ul></td></tr></tbody></table>"},
        {"an item that holds a list alone", "<ul><li>a</li><li><ul><li>b</li></ul></li></ul>",
         "<ul><li>a<ul><li>b</li></ul></li></ul>"},
        {"items without their list", "<li>a</li><li>b</li>", "<ul><li>a</li><li>b</li></ul>"},
    };
    for (const Row& row : rows)
        Expect(row);
}

TEST(ForeignMarkupTest, PicturesAndLinks) {
    AddressAdopter adopter;
    adopter.picture = [](const std::string& address) -> std::optional<std::string> {
        if (address.find("there") == std::string::npos) return std::nullopt;
        return "media/a.png";
    };
    adopter.link = [](const std::string&) -> std::optional<std::string> { return std::nullopt; };
    const Row rows[] = {
        {"on this machine", "<img src='file:///tmp/there.png' style='width:30pt' class=x>",
         "<img src=\"media/a.png\" width=\"40\">"},
        {"no longer there", "a<img src='file:///tmp/gone.png' alt=' map'>", "a map"},
        {"in the web", "<img src='https://example.org/a.png' alt='' onload=run()>",
         "<img src=\"https://example.org/a.png\" alt=\"\">"},
        {"in the markup", "<img src='data:image/png;base64,there'>", "<img src=\"media/a.png\">"},
        {"a link to a file", "<a href='file:///etc/passwd'>a</a>", "a"},
        {"bookmarks", "<a name=x>a</a><a name=_y>b</a><a href='#x'>c</a>",
         "<a name=\"x\">a</a>b<a href=\"#x\">c</a>"},
    };
    for (const Row& row : rows)
        Expect(row, adopter);
}

TEST(ForeignMarkupTest, HostileAndHugeMarkupIsSoonDone) {
    std::string deep;
    for (int i = 0; i < 900; ++i)
        deep += i % 2 ? "<div>" : "<span style='color:red'>";
    EXPECT_NE(CleanMarkup(deep + "text<script>run()</script>").find("text"), std::string::npos);
    EXPECT_EQ(CleanMarkup(deep + "<script>run()</script>"), "");

    const std::string sample = Sample("word-processor.html");
    const std::string part = sample.substr(sample.find("<p class=MsoTitle"));
    std::string huge;
    while (huge.size() < 1'000'000)
        huge += part;
    const test::CpuTimer timer;
    EXPECT_GT(CleanMarkup(huge).size(), 100'000u);
    RecordProperty("milliseconds", int(timer.Milliseconds()));
    EXPECT_LT(timer.Seconds(), 3);
}

}  // namespace
}  // namespace pw
