#include "project/LinkList.h"

#include "project/Folders.h"
#include "project/FramesetMask.h"
#include "support/TestProject.h"

namespace pw {
namespace {

struct LinkListTest : testing::Test, test::TestProject {
    Page* home = Insert("home");
    Folder* news = AddFolder(context, {}, {"news"});
    Page* inside = Insert("in side", "<p>text</p>", Container(*news));

    void Write(const Page* page, const std::string& html) {
        ASSERT_EQ(files->Write(page->Filename, html), FileError::None);
    }
    /** The targets and states of a page's links. */
    std::vector<std::string> LinksOf(const Page* page) {
        static constexpr const char* kStates[] = {"stands", "missing", "elsewhere"};
        std::vector<std::string> lines;
        for (const LinkRecord& link : ListLinks(context))
            if (link.page == page) lines.push_back(link.target + " " + kStates[int(link.state)]);
        return lines;
    }
};

TEST_F(LinkListTest, TellsWhetherLinksStand) {
    Write(home, "<p id=here><a name='old style'></a>");
    folder.Put("outside.htm", "");
    const std::string outside = "file://" + folder.Native("outside.htm");
    const struct {
        const char* target;
        const char* state;
    } rows[] = {
        {"../index.htm", "stands"},
        {"../INDEX.htm", "missing"},
        {"/index.htm", "stands"},
        {"/in side.htm", "missing"},
        {"../index.htm#:~:text=word", "stands"},
        {"gone.php?u=x/../in side.htm", "missing"},
        {"//index.htm", "elsewhere"},
        {"in%20side.htm", "stands"},
        {"in side.htm?x=1", "stands"},
        {"./../news/in side.htm", "stands"},
        {"index.htm", "missing"},
        {"../index.htm#here", "stands"},
        {"../index.htm#old%20style", "stands"},
        {"../index.htm#gone", "missing"},
        {"../gone.htm#here", "missing"},
        {"#x", "stands"},
        {"#gone", "missing"},
        {"#top", "stands"},
        {"#", "stands"},
        {"", "stands"},
        {"?a=b", "stands"},
        {"../", "stands"},
        {".", "missing"},
        {"../../../../etc/passwd", "missing"},
        {outside.c_str(), "missing"},
        {"http://example.org/#x", "elsewhere"},
        {"//example.org", "elsewhere"},
        {"mailto:ann@example.org", "elsewhere"},
        {"javascript:go('a.htm')", "elsewhere"},
    };
    std::string html = "<p id=x>";
    std::vector<std::string> expected;
    for (const auto& row : rows) {
        html += "<a href=\"" + std::string(row.target) + "\">x</a>\n";
        expected.push_back(std::string(row.target) + " " + row.state);
    }
    Write(inside, html);
    EXPECT_EQ(LinksOf(inside), expected);
    EXPECT_TRUE(LinksOf(home).empty());
}

TEST_F(LinkListTest, ListsWhateverLeadsSomewhere) {
    folder.Put("x", "");
    Write(inside,
          "<link rel=stylesheet href=a.css><meta http-equiv=Refresh content='1;URL=b.htm'>"
          "<area href=c.htm><iframe src=d.htm><a href=no></iframe><form action=e.htm>"
          "<svg><a xlink:href=f.htm></a></svg><button formaction=g.htm>"
          "<noframes><a href=h.htm></noframes><!-- <a href=no> --><script>'<a "
          "href=no>'</script><img src=no.gif><a name=no>");
    EXPECT_THAT(
        LinksOf(inside),
        testing::ElementsAre("a.css missing", "b.htm missing", "c.htm missing", "d.htm missing",
                             "e.htm missing", "f.htm missing", "g.htm missing", "h.htm missing"));
    const std::string frames =
        "<frameset><frame src='news/in side.htm'></frameset><noframes><a href=f>x</a></noframes>";
    home->PageType = PageType::Frames;
    Write(home, frames);
    EXPECT_THAT(LinksOf(home), testing::ElementsAre("news/in side.htm stands", "f missing"));

    // Open pages count as they are seen.
    workspace.ShowPage(home->Key(), "home", home->Filename, home->PageType);
    workspace.ShowPage(inside->Key(), "inside", inside->Filename, inside->PageType);
    ASSERT_TRUE(workspace.Find(home->Key())
                    ->SetHTML(CommentFrameset(frames + "<p id=typed><a href=typed.htm>")));
    ASSERT_TRUE(workspace.Find(inside->Key())->SetHTML("<a href=../index.htm#typed>"));
    EXPECT_EQ(LinksOf(home).back(), "typed.htm missing");
    EXPECT_THAT(LinksOf(inside), testing::ElementsAre("../index.htm#typed stands"));
}

}  // namespace
}  // namespace pw
