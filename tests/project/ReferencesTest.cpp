#include "project/References.h"

#include "project/StyleText.h"

namespace pw {
namespace {

TEST(References, TellsLocalValuesFromOthers) {
    const struct {
        const char* value;
        bool isLocal;
    } cases[] = {
        {"a.gif", true},
        {"../a b.gif", true},
        {"/a.gif", true},
        {"file:///home/ann/a.gif", true},
        {"\\home\\ann\\a.gif", true},
        {"C:\\a.gif", true},
        {"a.gif?x=http://b", true},
        {"", false},
        {"  ", false},
        {"#top", false},
        {"?page=2", false},
        {"http://example.org/a.gif", false},
        {" HTTPS://example.org", false},
        {"//example.org/a.gif", false},
        {"data:image/gif;base64,R0", false},
        {"mailto:ann@example.org", false},
        {"javascript:go()", false},
        {"about:blank", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(IsLocalReference(c.value), c.isLocal) << c.value;
}

TEST(References, JoinsThemToTheFolderOfThePage) {
    const struct {
        const char* folder;
        const char* value;
        const char* path;
    } cases[] = {
        {"\\s\\a", "b.gif", "\\s\\a\\b.gif"},
        {"\\s\\a\\", "./c/../b.gif", "\\s\\a\\b.gif"},
        {"\\s\\a", "../../../b.gif", "\\b.gif"},
        {"\\s\\a", "/x/b.gif", "\\x\\b.gif"},
        {"\\s\\a", "file:///x/b.gif", "\\x\\b.gif"},
        {"\\s\\a", "file:/x/b.gif", "\\x\\b.gif"},
        {"file:///s/a%20b/", "b.gif", "\\s\\a b\\b.gif"},
        {"/s/a", " b//c.gif ", "\\s\\a\\b\\c.gif"},
        {"\\s\\a", "C:\\x\\b.gif", "C:\\x\\b.gif"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(JoinReference(c.folder, c.value), c.path) << c.folder << " " << c.value;
}

TEST(References, OffersTheLiteralNameFirst) {
    std::vector<std::string> paths;
    for (const auto& candidate : ReferenceCandidates("\\s", "a%20b.html?x#y"))
        paths.push_back(candidate.path + "|" + candidate.suffix);
    EXPECT_THAT(paths, testing::ElementsAre("\\s\\a%20b.html?x#y|", "\\s\\a b.html?x#y|",
                                            "\\s\\a%20b.html|?x#y", "\\s\\a b.html|?x#y"));
    EXPECT_TRUE(ReferenceCandidates("\\s", "http://example.org/").empty());
}

TEST(References, WritesTheShortestEscapedLink) {
    const struct {
        const char* folder;
        const char* file;
        const char* link;
    } cases[] = {
        {"\\s", "\\s\\a.htm", "a.htm"},
        {"\\s\\x", "\\s\\a.htm", "../a.htm"},
        {"\\s\\x\\y", "\\s\\x\\z\\a.htm", "../z/a.htm"},
        {"\\s", "\\s\\x\\what is new? 100%.htm", "x/what%20is%20new%3F%20100%25.htm"},
        {"\\s", "\\s\\grün#1.htm", "grün%231.htm"},
        {"\\s", "\\s\\mailto:x", "./mailto:x"},
        {"\\s\\a.htm", "\\s\\a.htm", "../a.htm"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RelativeLink(c.folder, c.file), c.link) << c.folder << " " << c.file;
}

TEST(StyleText, RewritesReferencesAndNothingElse) {
    const struct {
        const char* css;
        const char* rewritten;
    } cases[] = {
        {"a{background:url(x.gif)}", "a{background:url(<x.gif>)}"},
        {"a{background:URL( 'x y.gif' )}", "a{background:URL( '<x y.gif>' )}"},
        {"@import \"b.css\" screen;", "@import \"<b.css>\" screen;"},
        {"@import url(b.css);a{content:\"url(c)\"}", "@import url(<b.css>);a{content:\"url(c)\"}"},
        {"/* url(x.gif) @import 'y' */p{}", "/* url(x.gif) @import 'y' */p{}"},
        {"a{x:myurl(x.gif)}", "a{x:myurl(x.gif)}"},
        {"a{background:url(x.gif", "a{background:url(x.gif"},
        {"a{background:url(x\\29.gif)}", "a{background:url(x\\29.gif)}"},
        {"a{content:'it\\'s'; b:url(\"c\")}", "a{content:'it\\'s'; b:url(\"<c>\")}"},
        {"a{content:'open", "a{content:'open"},
        {"@import", "@import"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RewriteStyleReferences(c.css, [](const auto& r) { return "<" + r + ">"; }),
                  c.rewritten);
}

}  // namespace
}  // namespace pw
