#include "platform/editor/CleanMarkup.h"

#include <gtest/gtest.h>

namespace pw {
namespace {

TEST(CleanMarkupTest, NothingThatRunsGetsThrough) {
    struct Row {
        const char* name;
        const char* html;
        const char* clean;
    };
    const Row rows[] = {
        {"script", "a<script>run()</script>b", "ab"},
        {"handlers", "<p onclick=run() ONLOAD='x' align=center>a</p>", "<p align=\"center\">a</p>"},
        {"script address", "<a href='javascript:run()'>a</a>", "a"},
        {"blanks in the scheme", "<a href=' java\nscript:run()'>a</a>", "a"},
        {"page as data", "<a href='data:text/html,x'>a</a>", "a"},
        {"picture that may run", "a<img src='data:image/svg+xml,x'>", "a"},
        {"picture as data", "<img src='data:image/png;base64,AA'>",
         "<img src=\"data:image/png;base64,AA\">"},
        {"frame with a page of its own", "<iframe srcdoc='<script>x</script>'></iframe>",
         "<iframe></iframe>"},
        {"form", "<form action='javascript:run()'><input name=a onfocus=run()></form>",
         "<form><input name=\"a\"></form>"},
        {"head elements", "<meta charset=x><style>p{}</style><link href=y><base href=z>a", "a"},
        {"svg", "<svg><script>x</script><animate attributeName=href></animate></svg>",
         "<svg></svg>"},
        {"the copied part",
         "<html><body>before<!--StartFragment--><i>x</i><!--EndFragment-->behind</body></html>",
         "<i>x</i>"},
        {"comments", "a<!-- note -->b", "ab"},
        {"nothing left", "<script>x</script>", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(CleanMarkup(row.html), row.clean);
        // What claims to be of this program is looked at too.
        const std::string own = CleanMarkup(MarkupForClipboard(row.html, ""));
        for (const char* running : {"run(", "script:", "<script", "svg+xml", "srcdoc"})
            EXPECT_EQ(own.find(running), std::string::npos) << own;
    }
}

TEST(CleanMarkupTest, OwnMarkupComesBackAsItIs) {
    const std::string html =
        "<P CLASS=x STYLE='position:absolute'>a<IMG SRC=media/a.gif>"
        "<a href=b.htm#c>b</a><a href='http://x/'>c</a></P>";
    AddressAdopter adopter;
    adopter.picture = [](const std::string& address) { return "picture:" + address; };
    adopter.link = [](const std::string& address) { return "link:" + address; };
    const std::string base = "file:///run/news/";
    const std::string copied = MarkupForClipboard(html, base);
    EXPECT_EQ(CleanMarkup(copied, adopter, base), html);
    EXPECT_EQ(CleanMarkup(copied, adopter, "file:///run/"),
              "<P CLASS=x STYLE='position:absolute'>a<IMG "
              "SRC=picture:file:///run/news/media/a.gif>"
              "<a href=link:file:///run/news/b.htm#c>b</a><a href='http://x/'>c</a></P>")
        << "in a page of another folder";
}

TEST(CleanMarkupTest, APictureAlone) {
    struct Row {
        const char* html;
        bool isLone;
    };
    for (const Row& row :
         {Row{"<meta charset=x><img src=a alt=b>", true},
          {"<!--StartFragment--><a href=x><img src=a></a><!--EndFragment-->", true},
          {"a<img src=a>", false},
          {"<img src=a><img src=b>", false},
          {"<p>a</p>", false}})
        EXPECT_EQ(IsLonePicture(row.html), row.isLone) << row.html;
}

TEST(CleanMarkupTest, PlainText) {
    struct Row {
        const char* text;
        const char* markup;
    };
    const Row rows[] = {
        {"a < b & c", "a &lt; b &amp; c"},
        {"one\r\ntwo", "one<br>two"},
        {"one\n\ntwo\nthree\n\n\nfour\n", "<p>one</p><p>two<br>three</p><p>four</p>"},
        {"", ""},
        {"\n\n", ""}};
    for (const Row& row : rows)
        EXPECT_EQ(MarkupOfText(row.text), row.markup);
}

}  // namespace
}  // namespace pw
