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

TEST(References, MeanWhatAServerWouldShow) {
    const PlaceInSite place{"\\s", "\\s\\a"};
    const struct {
        const char* value;
        const char* paths;
    } rows[] = {
        {"/b.htm", "\\s\\b.htm "},
        {"/../b.htm", "\\b.htm "},
        {"//b.htm", ""},
        {"b.htm", "\\s\\a\\b.htm "},
        {"p.php?u=x/../b.htm", "\\s\\a\\p.php "},
        {"p.php?u=x%2F..%2Fb.htm", "\\s\\a\\p.php "},
        {"b.htm#:~:text=a", "\\s\\a\\b.htm#:~:text=a \\s\\a\\b.htm "},
    };
    for (const auto& row : rows) {
        std::string paths;
        for (const auto& candidate : ReferenceCandidates(place, row.value))
            paths += candidate.path + " ";
        EXPECT_EQ(paths, row.paths) << row.value;
    }
    EXPECT_EQ(BookmarkOf("b.htm?x#a%20b"), "a b");
    EXPECT_EQ(BookmarkOf("b.htm#a:~:text=b"), "a");
    EXPECT_EQ(BookmarkOf("b.htm#:~:text=b"), "");
    EXPECT_EQ(BookmarkOf("b.htm"), "");
}

TEST(References, FollowWhatWasMoved) {
    const Move folder{"\\s\\old", "\\s\\new one"};
    const Move page{"\\s\\a b.htm", "\\s\\x\\c.htm"};
    const Move signs{"\\s\\a#1.htm", "\\s\\2?.htm"};
    const struct {
        const Move& move;
        const char* folder;  ///< of the page that it stands in, afterwards
        const char* value;
        const char* after;  ///< "" when it may stay
    } rows[] = {
        {folder, "\\s", "old/a%20b.htm?x=1#y", "new%20one/a%20b.htm?x=1#y"},
        {folder, "\\s", "./x/../OLD/a.htm", "./x/../new%20one/a.htm"},
        {folder, "\\s", "old/", "new%20one/"},
        {folder, "\\s", "old", "new%20one"},
        {folder, "\\s", "old/x/..", "new%20one/x/.."},
        {folder, "\\s", "o%6cd\\a.htm", "new%20one\\a.htm"},
        {folder, "\\s", "/old/a.htm#y", "/new%20one/a.htm#y"},
        {folder, "\\s", "file:///s/old/a%20b.htm", "new%20one/a%20b.htm"},
        {folder, "\\s", "older/a.htm", ""},
        {folder, "\\s", "x/old/a.htm", ""},
        {folder, "\\s", "//old/a.htm", ""},
        {folder, "\\s", "http://s/old/a.htm", ""},
        {folder, "\\s", "p.php?u=old/a.htm", ""},
        {folder, "\\s", "p.php?u=x/../old/a.htm", ""},
        {folder, "\\s", "#old/a.htm", ""},
        {folder, "\\s\\x", "../old/a.htm", "../new%20one/a.htm"},
        {folder, "\\s\\x", "old/a.htm", ""},
        {folder, "\\s\\new one", "a.htm#y", ""},
        {folder, "\\s\\new one", "../b.htm", ""},
        {folder, "\\s\\new one", "../old/a.htm", "../new%20one/a.htm"},
        {folder, "\\s\\new one\\x", "../../old/media/a.gif", "../../new%20one/media/a.gif"},
        {page, "\\s", "a%20b.htm#y", "x/c.htm#y"},
        {page, "\\s", "a b.htm", "x/c.htm"},
        {page, "\\s\\x", "../a b.htm?q", "c.htm?q"},
        {page, "\\s\\x", "/a b.htm?q", "/x/c.htm?q"},
        {page, "\\s", "a b.html", ""},
        {signs, "\\s", "a#1.htm", "2%3F.htm"},
        {signs, "\\s", "a%231.htm#y", "2%3F.htm#y"},
    };
    for (const auto& row : rows) {
        const PlaceInSite before{"\\s", FolderBefore(row.move, row.folder)};
        EXPECT_EQ(FollowMove(row.move, before, {"\\s", row.folder}, row.value).value_or(""),
                  row.after)
            << row.folder << " " << row.value;
    }
    // The page alone has moved.
    const Move none{"\\s\\a", "\\s\\a"};
    const auto moved = [&](const char* value) {
        return FollowMove(none, {"\\s", "\\s\\a"}, {"\\s", "\\s\\b\\c"}, value).value_or("");
    };
    EXPECT_EQ(moved("x%20y.htm#z"), "../../a/x%20y.htm#z");
    EXPECT_EQ(moved("../b/c/x.htm"), "x.htm");
    EXPECT_EQ(moved("../../beyond.htm"), "");
    EXPECT_EQ(moved("/x.htm"), "");
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
