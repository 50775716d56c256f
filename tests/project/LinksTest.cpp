#include "project/Links.h"

#include "platform/Text.h"
#include "platform/dom/Encoding.h"
#include "project/EditPage.h"
#include "project/Folders.h"
#include "project/FramesetMask.h"
#include "project/LinkAttributes.h"
#include "project/LinkTargets.h"
#include "support/FaultyDisk.h"
#include "support/LinkCheck.h"
#include "support/TestProject.h"

namespace pw {
namespace {

std::string PageWith(const std::string& body) {
    return "<html><head><title>T</title></head>\r\n<body  class=x>" + body + "</body></html>\n";
}

/** Home (index.htm), the page that gets another name (old.htm), and a folder with a page. */
struct LinksTest : testing::Test, test::TestProject {
    Page* home = Insert("home");
    Page* target = Insert("old");
    Folder* news = AddFolder(context, {}, {"news"});
    Page* inside = Insert("inside", "<p>text</p>", Container(*news));

    void Write(Page* page, const std::string& bytes) {
        ASSERT_EQ(files->Write(page->Filename, bytes), FileError::None);
    }
    std::int64_t Written(const Page* page) { return files->Stat(page->Filename).modified; }
    bool Rename(const std::string& name) {
        reason.clear();
        return RenamePage(context, *target, name, &reason);
    }

    std::string reason;
};

TEST_F(LinksTest, FollowThePageAndNothingElseChanges) {
    const struct {
        const char* name;
        bool isInFolder;
        const char* before;
        const char* after;
    } rows[] = {
        {"a link", false, "<a  href='old.htm' id=y>x</a>", "<a  href='new.htm' id=y>x</a>"},
        {"other letters", false, "<A HREF=OLD.HTM>x</A>", "<A HREF=new.htm>x</A>"},
        {"a bookmark is lost", false, "<a href=old.htm#top>", "<a href=new.htm>"},
        {"escaped", false, "<a href=\"o%6Cd.htm\">", "<a href=\"new.htm\">"},
        {"with a reference", false, "<a href=\"&#111;ld.htm\">", "<a href=\"new.htm\">"},
        {"a long way", false, "<a href=\"./news/../old.htm\">", "<a href=\"new.htm\">"},
        {"a longer name holds it", false, "<a href=old.html>", "<a href=new.htm>"},
        {"a map", false, "<map><area href=old.htm></map>", "<map><area href=new.htm></map>"},
        {"a frame in the text", false, "<iframe src=\"old.htm#a\"></iframe>",
         "<iframe src=\"new.htm#a\"></iframe>"},
        {"a form", false, "<form action=\"old.htm?x\"></form>",
         "<form action=\"new.htm?x\"></form>"},
        {"a refresh", false, "<meta http-equiv=refresh content=\"5; url=old.htm\">",
         "<meta http-equiv=refresh content=\"5; url=new.htm\">"},
        {"from a folder", true, "<a href=../old.htm>", "<a href=../new.htm>"},
        {"another page of that name", true, "<a href=old.htm>", "<a href=old.htm>"},
        {"in a folder of that name", false, "<a href=news/old.htm>", "<a href=news/old.htm>"},
        {"a frame of a longer name", false, "<iframe src=old.html></iframe>",
         "<iframe src=old.html></iframe>"},
        {"from the root", false, "<a href=/old.htm>", "<a href=new.htm>"},
        {"from the root, in a folder", true, "<a href=/old.htm#x><form action=/old.htm#x></form>",
         "<a href=../new.htm><form action=/new.htm#x></form>"},
        {"of another host", false, "<a href=//old.htm>", "<a href=//old.htm>"},
        {"in a query", false, "<a href=\"p.php?u=x/../old.htm\"><a href=\"p.php?u=/old.htm\">",
         "<a href=\"p.php?u=x/../old.htm\"><a href=\"p.php?u=/old.htm\">"},
        {"a found word", false, "<a href=\"old.htm#:~:text=x\">", "<a href=\"new.htm\">"},
        {"a drawing", false, "<svg><a xlink:href=\"old.htm#x\"></a></svg>",
         "<svg><a xlink:href=\"new.htm#x\"></a></svg>"},
        {"a button", false, "<button formaction=old.htm?x></button><input formaction=old.htm>",
         "<button formaction=new.htm?x></button><input formaction=new.htm>"},
        {"without frames", false, "<noframes><a href=old.htm#x>x</a></noframes>",
         "<noframes><a href=new.htm>x</a></noframes>"},
        {"a page within", false, "<iframe srcdoc=\"<a href='old.htm'>\"></iframe>",
         "<iframe srcdoc=\"<a href='new.htm'>\"></iframe>"},
        {"of another site", false, "<a href=http://example.org/old.htm>",
         "<a href=http://example.org/old.htm>"},
        {"a mere bookmark", false, "<a href=#old.htm>", "<a href=#old.htm>"},
        {"a picture", false, "<img src=old.htm alt=old.htm>", "<img src=old.htm alt=old.htm>"},
        {"text", false, "old.htm<!-- <a href=old.htm> -->", "old.htm<!-- <a href=old.htm> -->"},
    };
    for (const auto& row : rows) {
        Page* page = row.isInFolder ? inside : home;
        Write(page, PageWith(row.before));
        const auto before = Age(page->Filename);
        ASSERT_TRUE(Rename("new.htm")) << reason;
        EXPECT_EQ(reason, "");
        EXPECT_EQ(Text(page->Filename), PageWith(row.after)) << row.name;
        EXPECT_EQ(Written(page) == before, std::string(row.before) == row.after) << row.name;
        Write(page, "");
        ASSERT_TRUE(Rename("old.htm"));
    }
    EXPECT_EQ(workspace.Count("ShowStatus Updating links on page 'inside'"),
              int(std::size(rows)) * 2);
    EXPECT_EQ(workspace.progress, 100);
    EXPECT_EQ(workspace.calls.back(), "ShowStatus For Help, press F1");
}

TEST_F(LinksTest, KeepTheirBookmarksWhenTheUserWantsIt) {
    frame.settings.KeepBookmarks = true;
    const std::string rest = "<a href=old.html#y><a href=http://a/old.htm#y>";
    Write(home, PageWith("<a href=old.htm?x#y><a href=/old.htm#y>" + rest));
    LinkUpdate update;
    ASSERT_TRUE(RenamePage(context, *target, "new.htm", &reason, &update)) << reason;
    EXPECT_EQ(Text(home->Filename), PageWith("<a href=new.htm?x#y><a href=/new.htm#y>" + rest));
    EXPECT_EQ(update.lostBookmarks, 0);
    EXPECT_EQ(workspace.calls.back(), "ShowStatus For Help, press F1");
}

TEST_F(LinksTest, TellsWhatWasChangedAndLost) {
    Write(home, PageWith("<a href=old.htm#y>1</a><a href=old.htm>2</a><a href=OLD.htm#z>3</a>"
                         "<noframes><a href=old.htm#n>4</a></noframes>"));
    LinkUpdate update;
    ASSERT_TRUE(RenamePage(context, *target, "new.htm", &reason, &update)) << reason;
    EXPECT_EQ(update.lostBookmarks, 3);
    EXPECT_EQ(workspace.calls.back(), "ShowStatus 3 links lost their bookmark.");
    ASSERT_EQ(update.pages.size(), 1u);
    EXPECT_EQ(update.pages[0].page, home->Key());
    EXPECT_EQ(update.pages[0].file, home->Filename);
    // What it tells is enough to take all of it back.
    const auto document = dom::Document::parseText(Text(home->Filename));
    for (const ChangedReference& change : update.pages[0].changes) {
        dom::Node* element = document->all().at(std::size_t(change.element));
        if (change.attribute.empty()) {
            document->setText(*element->firstChild(), change.former);
        } else {
            document->setAttribute(*element, change.attribute, change.former);
        }
    }
    EXPECT_EQ(document->html(),
              PageWith("<a href=old.htm#y>1</a><a href=old.htm>2</a><a href=OLD.htm#z>3</a>"
                       "<noframes><a href=old.htm#n>4</a></noframes>"));
}

TEST_F(LinksTest, FollowInAllEncodings) {
    ASSERT_TRUE(Rename("gr\xC3\xBCn.htm")) << reason;
    const struct {
        const char* encoding;
        const char* before;
        const char* after;
    } rows[] = {
        {"utf-8", "gr\xC3\xBCn.htm", "b.htm"},        {"utf-8", "gr%C3%BCn.htm", "b.htm"},
        {"windows-1252", "GR\xC3\x9CN.htm", "b.htm"}, {"windows-1252", "gr&uuml;n.htm", "b.htm"},
        {"utf-16le", "gr\xC3\xBCn.htm", "b.htm"},     {"utf-16be", "other.htm", "other.htm"},
    };
    for (const auto& row : rows) {
        const std::string name = row.encoding;
        const dom::Encoding encoding{name, name.starts_with("utf-16")};
        const std::string head = "<meta charset=" + name + "><p>\xC3\xBC<a href=\"";
        Write(home, dom::encode(head + row.before + "\">", encoding));
        ASSERT_TRUE(Rename("b.htm")) << reason;
        EXPECT_EQ(Text(home->Filename), dom::encode(head + row.after + "\">", encoding))
            << name << " " << row.before;
        ASSERT_TRUE(Rename("gr\xC3\xBCn.htm"));
    }
}

TEST_F(LinksTest, AreEscapedAndFoundAgain) {
    Write(inside, PageWith("<a href=\"../old.htm\">x</a>"));
    Write(target, PageWith("<a href=\"old.htm\">itself</a>"));
    const char* const names[] = {"a b&c.htm", "50% #1.htm", "it's (new).htm", "OLD.htm", "old.htm"};
    const char* const links[] = {"a%20b&amp;c.htm", "50%25%20%231.htm", "it's%20%28new%29.htm",
                                 "OLD.htm", "old.htm"};
    for (std::size_t i = 0; i < std::size(names); ++i) {
        ASSERT_TRUE(Rename(names[i])) << reason;
        EXPECT_EQ(Text(inside->Filename),
                  PageWith("<a href=\"../" + std::string(links[i]) + "\">x</a>"));
        EXPECT_EQ(Text(target->Filename),
                  PageWith("<a href=\"" + std::string(links[i]) + "\">itself</a>"));
    }
    ASSERT_TRUE(Rename("last.htm"));
    const std::string file = SaveAs("one.pwp");
    ASSERT_TRUE(OpenProject(context, file, Silent::Yes)) << LastLogged();
    Page* page = project.FindPage("W0001P0002");
    ASSERT_TRUE(page);
    EXPECT_EQ(GetFileName(page->Filename), "last.htm");
    EXPECT_EQ(Text(page->Filename), PageWith("<a href=\"last.htm\">itself</a>"));
}

TEST_F(LinksTest, OfOpenPagesChangeAndStayUnderUndo) {
    workspace.ShowPage(home->Key(), "home", home->Filename, home->PageType);
    workspace.ShowPage(inside->Key(), "inside", inside->Filename, inside->PageType);
    auto& open = *workspace.Find(home->Key());
    dom::Document& document = *open.document;
    open.viewState = 2;
    const std::string file = Text(home->Filename);
    document.insertAdjacentHTML(*document.body(), "beforeEnd",
                                "<a href=old.htm>typed</a><iframe src=old.htm></iframe>");
    const std::string typed = document.html();
    document.markClean();
    document.setUpkeep([&](dom::Document& undone) { BringUpToDate(context, home->Key(), undone); });
    project.IsDirty = false;

    ASSERT_TRUE(Rename("new.htm")) << reason;
    EXPECT_EQ(document.html(), ReplaceAll(typed, "old.htm", "new.htm"));
    EXPECT_EQ(open.viewState, 1);
    EXPECT_TRUE(open.IsDirty());
    EXPECT_TRUE(home->IsDirty);
    EXPECT_TRUE(project.IsDirty);
    EXPECT_FALSE(workspace.Find(inside->Key())->IsDirty()) << "it has no such link";
    EXPECT_EQ(Text(home->Filename), file) << "an open page is not saved";
    const std::string renamed = document.html();
    dom::Node* link = document.links().at(0);
    document.removeNode(*link);
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.html(), renamed) << "the rename is no step of the page";
    EXPECT_TRUE(document.undo());
    EXPECT_TRUE(document.links().empty());
    EXPECT_TRUE(document.redo());
    EXPECT_EQ(document.html(), renamed);

    // What was not in the page at the rename comes back with the present address.
    document.removeNode(*document.links().at(0));
    ASSERT_TRUE(Rename("newest.htm"));
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.html(), ReplaceAll(typed, "old.htm", "newest.htm"));
    document.setAttribute(*document.links().at(0), "href", "old.htm");
    document.setAttribute(*document.links().at(0), "href", "index.htm");
    Page* successor = Insert("old");
    ASSERT_EQ(GetFileName(successor->Filename), "old.htm");
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.links().at(0)->getAttribute("href"), "old.htm") << "a page stands there";

    workspace.ShowPage(target->Key(), "old", target->Filename, target->PageType);
    ASSERT_TRUE(Rename("newer.htm"));
    EXPECT_EQ(workspace.Find(target->Key())->captions, 1);
}

TEST_F(LinksTest, OfFramesFollowOpenAndClosed) {
    const auto frames = [](const std::string& link) {
        return "<html><head><title>F</title></head>\n<frameset cols=\"50%,50%\">\n"
               "<frame name=a src=\"" +
               link + "\"><frame name=\"b\" SRC=" + link + "><frame src='c.htm'>\n</frameset>\n" +
               "<noframes><body><p>src=old.htm <a href=\"" + link +
               "\">x</a></body></noframes>\n</html>\n";
    };
    home->PageType = PageType::Frames;
    Write(home, frames("old.htm"));
    ASSERT_TRUE(Rename("new.htm")) << reason;
    EXPECT_EQ(Text(home->Filename), frames("new.htm"));

    // A window holds the frameset masked.
    workspace.ShowPage(home->Key(), "home", home->Filename, home->PageType);
    auto& open = *workspace.Find(home->Key());
    ASSERT_TRUE(open.SetHTML(CommentFrameset(frames("new.htm"))));
    open.MarkClean();
    open.document->clearHistory();
    ASSERT_TRUE(Rename("newer.htm")) << reason;
    EXPECT_EQ(UncommentFrameset(open.document->html()), frames("newer.htm"));
    EXPECT_TRUE(open.IsDirty());
    EXPECT_FALSE(open.document->canUndo());
}

TEST_F(LinksTest, ANameThatIsRefusedChangesNothing) {
    Write(home, PageWith("<a href=old.htm>"));
    const auto before = Age(home->Filename);
    const std::string former = target->Filename;
    const struct {
        const char* name;
        const char* says;
    } rows[] = {
        {"old.htm", "already has"},
        {"", "Please enter a name"},
        {"a/b.htm", "can not contain"},
        {"a\tb.htm", "can not contain"},
        {".htm", "begin with a point"},
        {"x.", "end with a point"},
        {"INDEX.htm", "A page already exists with the filename INDEX.htm."},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(Rename(row.name)) << row.name;
        EXPECT_THAT(reason, testing::HasSubstr(row.says));
        EXPECT_EQ(target->Filename, former);
    }
    EXPECT_EQ(Written(home), before);
    ASSERT_EQ(files->RemoveFile(former), FileError::None);
    EXPECT_FALSE(Rename("new.htm"));
    EXPECT_THAT(reason, testing::HasSubstr("'old.htm' can not be renamed to 'new.htm': "));
}

TEST_F(LinksTest, OfPagesThatCanNotBeWrittenAreReported) {
    Page* third = Insert("third");
    for (Page* page : {home, third})
        Write(page, PageWith("<a href=old.htm>"));
    Write(inside, PageWith("<a href=../old.htm>"));
    test::FaultPlan plan;
    test::FaultyFileSystem faulty(*files, plan);
    FrameContext frameWithFaults(
        {faulty, *hive, clock, *system, loop, dialogs, clipboard, launcher}, frame.places);
    frameWithFaults.settings = frame.settings;
    ProjectContext faultyContext{frameWithFaults, project, workspace};

    plan.failAt = 1;
    EXPECT_FALSE(RenamePage(faultyContext, *target, "new.htm", &reason));
    EXPECT_EQ(GetFileName(target->Filename), "old.htm");
    EXPECT_EQ(Text(home->Filename), PageWith("<a href=old.htm>"));

    plan = {.failAt = 3};
    EXPECT_TRUE(RenamePage(faultyContext, *target, "new.htm", &reason));
    EXPECT_THAT(reason, testing::HasSubstr("could not be brought up to date on 'third'."));
    EXPECT_EQ(Text(home->Filename), PageWith("<a href=new.htm>"));
    EXPECT_EQ(Text(third->Filename), PageWith("<a href=old.htm>"));
    EXPECT_EQ(Text(inside->Filename), PageWith("<a href=../new.htm>"));
}

TEST_F(LinksTest, AreReadFromTheTextAsFromTheParsedPage) {
    int compared = 0;
    const auto compare = [&](const std::string& html) {
        std::vector<std::string> scanned, parsed;
        ForEachLink(html, [&](const std::string& value) { scanned.push_back(value); });
        const auto document = dom::Document::parseText(html);
        ASSERT_TRUE(document);
        for (const dom::Node* node = document->root(); node; node = node->following()) {
            if (!node->isElement()) continue;
            for (const dom::Attribute& attribute : node->attributes())
                if (IsLinkAttribute(node->localName(), attribute.name))
                    parsed.push_back(attribute.value);
        }
        ++compared;
        EXPECT_EQ(scanned, parsed) << html.substr(0, 300);
    };
    compare(PageWith("<A HREF='a?x&y'>1</A><p><area href=b><link href=c><form action=''>"));
    const std::filesystem::path manual = "/usr/share/doc/apache2-doc/manual/en";
    if (!std::filesystem::exists(manual)) GTEST_SKIP() << "needs the package apache2-doc";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(manual)) {
        if (entry.path().extension() != ".html") continue;
        compare(dom::decode(test::ReadNative(entry.path())).text);
    }
    EXPECT_GT(compared, 100);
}

TEST_F(LinksTest, TargetsAreTheFramesAndWhatLeadsToThem) {
    ControlOwner owner;
    TreeView tree(&owner, "tvwTargets");
    BuildTargetsList(tree, context);
    EXPECT_EQ(tree.Count(), 1u) << "without frames there is the site alone";
    EXPECT_TRUE(tree.Roots().at(0)->expanded);

    Folder* old = AddFolder(context, Container(*news), {"old"});
    Page* deep = Insert("deep", "", Container(*old));
    for (Page* page : {home, deep})
        page->PageType = PageType::Frames;
    Write(home,
          "<frameset name=\"All\"><FRAME NAME=main SRC=\"names.htm\"><frame src=a.htm>"
          "<frame src='name=x' name=\"\"><frame name = 'my &amp; frame'></frameset>"
          "<noframes><iframe name=inner></iframe><!-- <iframe name=no> --></noframes>"
          "<!-- End Of Frame block --><noframes><frame name=no></noframes>");
    Write(deep, "<frameset><frame src=a.htm></frameset>");
    EXPECT_THAT(FrameNames(Text(home->Filename)),
                testing::ElementsAre("main", "my & frame", "inner"));
    BuildTargetsList(tree, context);
    const TreeNode* frame = tree.Find(home->Key() + "main");
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->tag, "1");
    EXPECT_EQ(frame->image, 45);
    EXPECT_EQ(frame->parent->key, home->Key());
    EXPECT_EQ(frame->parent->tag, "0");
    EXPECT_EQ(tree.Count(), 5u) << "no folder without frames";

    // An open page counts as its window has it.
    workspace.ShowPage(deep->Key(), "deep", deep->Filename, deep->PageType);
    ASSERT_TRUE(workspace.Find(deep->Key())
                    ->SetHTML(CommentFrameset("<frameset><frame name=late></frameset>")));
    BuildTargetsList(tree, context);
    frame = tree.Find(deep->Key() + "late");
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->parent->parent->key, old->Key());
    EXPECT_EQ(frame->parent->parent->image, 7);
    EXPECT_EQ(frame->parent->parent->expandedImage, 8);
}

}  // namespace
}  // namespace pw
