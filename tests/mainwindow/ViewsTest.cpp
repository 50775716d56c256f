// The three views of a page and the rules by which one follows the other.
#include <gtest/gtest.h>

#include "editing/frmPage.h"
#include "mainwindow/Pictures.h"
#include "mainwindow/UIState.h"
#include "platform/Text.h"
#include "project/InsertPage.h"
#include "project/Journal.h"
#include "project/Pages.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

using test::TestProgram;

TEST(ViewTabs, ByPosition) {
    struct Row {
        int x;
        TabPress three;
        TabPress two;
    };
    const Row rows[] = {
        {0, TabPress::Normal, TabPress::Normal},      {10, TabPress::Normal, TabPress::Normal},
        {809, TabPress::Normal, TabPress::Normal},    {810, TabPress::Nothing, TabPress::Nothing},
        {943, TabPress::Nothing, TabPress::Nothing},  {944, TabPress::Html, TabPress::Preview},
        {1559, TabPress::Html, TabPress::Preview},    {1560, TabPress::Preview, TabPress::Nothing},
        {2400, TabPress::Preview, TabPress::Nothing}, {2401, TabPress::Nothing, TabPress::Nothing},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(TabAt(row.x, 3), row.three) << row.x;
        EXPECT_EQ(TabAt(row.x, 2), row.two) << row.x;
    }
}

struct Views : testing::Test {
    Views() { program.Press(3); }
    /** The box with one text in place of another. */
    void TypeSource(const std::string& from, const std::string& to) {
        MemorySourceBox& box = program.pageSurface().source;
        const std::string text = box.Text();
        ASSERT_NE(text.find(from), std::string::npos) << text;
        box.UserType(ReplaceAll(text, from, to));
    }
    /** Types source that can't be a page, into the HTML view. */
    void TypeRefusedSource() {
        program.page().picViewTab_MouseUp(kHtml);
        std::string deep;
        for (int i = 0; i < 20000; ++i)
            deep += "<div>";
        TypeSource("<p><br></p>", "<p>Typed with care</p>" + deep);
    }
    TestProgram program;
    static constexpr int kNormal = 10;
    static constexpr int kHtml = 1000;
    static constexpr int kPreview = 2000;
};

TEST_F(Views, EachShowsThePage) {
    frmDocument& page = program.page();
    MemoryDocument& surface = program.pageSurface();
    EXPECT_EQ(surface.tabs, 3);

    page.picViewTab_MouseUp(kHtml);
    EXPECT_EQ(page.State(), View::Html);
    EXPECT_EQ(surface.view, View::Html);
    EXPECT_EQ(surface.tab, View::Html);
    EXPECT_NE(surface.source.Text().find("<title>"), std::string::npos);
    EXPECT_NE(surface.source.Text().find("\r\n"), std::string::npos);

    page.picViewTab_MouseUp(kPreview);
    EXPECT_EQ(surface.view, View::Preview);
    EXPECT_NE(surface.preview.find("<title>"), std::string::npos);
    EXPECT_FALSE(surface.previewBase.empty());

    page.picViewTab_MouseUp(kNormal);
    EXPECT_EQ(surface.view, View::Normal);
    EXPECT_FALSE(page.IsDirty()) << "looking at a page changes nothing";
}

TEST_F(Views, TypedSourceIsTakenOverByAnyPress) {
    struct Row {
        const char* name;
        int press;
        View after;
        bool pending;
    };
    const Row rows[] = {
        {"normal tab", 10, View::Normal, false},     {"preview tab", 2000, View::Preview, false},
        {"HTML tab itself", 1000, View::Html, true}, {"between the tabs", 900, View::Html, true},
        {"behind the tabs", 3000, View::Html, true},
    };
    int round = 0;
    for (const Row& row : rows) {
        frmDocument& page = program.page();
        page.SetToNormalEditMode();
        page.picViewTab_MouseUp(kHtml);
        const std::string title = "Round " + std::to_string(++round);
        TypeSource("<title>" + page.Document().title() + "</title>",
                   "<title>" + title + "</title>");
        EXPECT_TRUE(page.HasPendingSource()) << row.name;
        page.picViewTab_MouseUp(row.press);
        EXPECT_EQ(page.State(), row.after) << row.name;
        EXPECT_EQ(page.HasPendingSource(), row.pending) << row.name;
        EXPECT_EQ(page.Document().title(), title) << row.name;
        EXPECT_EQ(program.window().tvwProjectExplorer.Find(page.PageKey())->text, title)
            << row.name;
        EXPECT_EQ(page.Caption(), title + " [index.htm]") << row.name;
        EXPECT_TRUE(program.project().IsDirty);
    }
}

TEST_F(Views, SourceEditKeepsTheBytesOfTheRestAndIsUndone) {
    frmDocument& page = program.page();
    const std::string before = page.Document().html();
    page.picViewTab_MouseUp(kHtml);
    TypeSource("<p><br></p>", "<p CLASS=x>Hello</p>");
    page.SetToNormalEditMode();
    EXPECT_EQ(page.Document().html(), ReplaceAll(before, "<p><br></p>", "<p CLASS=x>Hello</p>"));
    program.Press(101);
    EXPECT_EQ(page.Document().html(), before);
}

TEST_F(Views, SavingTakesPendingSourceOver) {
    frmDocument& page = program.page();
    page.picViewTab_MouseUp(kHtml);
    TypeSource("<p><br></p>", "<p>Saved</p>");
    program.dialogs().ExpectFile(program.frame().settings.ProjectsFolder + "\\site.pwp");
    program.Press(7);
    EXPECT_FALSE(page.HasPendingSource());
    EXPECT_EQ(page.State(), View::Html);
    const Page* item = program.project().FindPage(page.PageKey());
    EXPECT_NE(ReadTextFile(program.frame().files, item->Filename).find("Saved"), std::string::npos);
}

TEST_F(Views, RefusedSourceIsToldOnceAndNeverLost) {
    const std::string key = program.page().PageKey();
    const std::string file = program.project().FindPage(key)->Filename;
    program.dialogs().ExpectFile(program.frame().settings.ProjectsFolder + "\\site.pwp");
    program.Press(7);
    const std::string saved = ReadTextFile(program.frame().files, file);
    TypeRefusedSource();
    const std::string typed = program.pageSurface().source.Text();
    struct Row {
        const char* name;
        std::function<void()> act;
    };
    const Row rows[] = {
        {"the normal tab", [&] { program.page().SetToNormalEditMode(); }},
        {"its window closed", [&] { EXPECT_FALSE(program.page().CloseWindow()); }},
        {"saved", [&] { program.Press(7); }},
        {"removed", [&] { EXPECT_FALSE(RemoveProjectItem(program.window().ProjectState(), key)); }},
        {"cut",
         [&] {
             program.PressNode(key);
             program.window().PaneFocused(Pane::ProjectExplorer);
             program.Press(103);
         }},
        {"page properties", [&] { ShowPageProperties(program.window().ProjectState(), key); }},
        {"all windows closed", [&] { program.Press(904); }},
    };
    for (const Row& row : rows) {
        const std::size_t told = program.dialogs().Messages().size();
        program.dialogs().ExpectMessage(Answer::Ok, "can not be used");
        row.act();
        EXPECT_EQ(program.dialogs().Messages().size(), told + 1) << row.name;
        ASSERT_NE(program.window().FindOpenPage(key), nullptr) << row.name;
        EXPECT_EQ(program.pageSurface().source.Text(), typed) << row.name;
        EXPECT_TRUE(program.page().HasPendingSource()) << row.name;
        EXPECT_EQ(ReadTextFile(program.frame().files, file), saved) << row.name;
        EXPECT_TRUE(program.project().IsDirty) << row.name;
    }
    for (int i = 0; i < 5; ++i) {
        program.outer.clock.seconds += 30;
        JournalTick(program.window().ProjectState());
    }
    EXPECT_EQ(program.pageSurface().source.Text(), typed) << "the journal keeps quiet";
    EXPECT_EQ(program.frame().errorLog.Count(), 1) << "the save alone";

    program.pageSurface().source.UserType(ReplaceAll(typed, "<div>", ""));
    program.Press(7);
    EXPECT_NE(ReadTextFile(program.frame().files, file).find("Typed with care"), std::string::npos);
}

TEST_F(Views, ClosingCleansAsSavingDoes) {
    frmDocument& page = program.page();
    const Page* item = program.project().FindPage(page.PageKey());
    const std::string picture = GetParentFolder(item->Filename) + "\\media\\a.gif";
    ASSERT_EQ(program.frame().files.Write(picture, "GIF89a"), FileError::None);
    const std::string address = "file://" + ReplaceAll(picture, "\\", "/");
    page.Document().insertAdjacentHTML(*page.Document().body(), "beforeEnd",
                                       "<img src=\"" + address + "\">");
    EXPECT_TRUE(page.CloseWindow());
    EXPECT_NE(ReadTextFile(program.frame().files, item->Filename).find("src=\"media/a.gif\""),
              std::string::npos);
}

TEST_F(Views, TypedSourceMakesAFramePageAndBack) {
    frmDocument& page = program.page();
    Page* item = program.project().FindPage(page.PageKey());
    page.picViewTab_MouseUp(kHtml);
    const std::string plain = program.pageSurface().source.Text();
    const std::string frames =
        "<html><head><title>Frames</title></head>"
        "<frameset cols=\"50%,*\"><frame src=\"a.htm\"></frameset></html>";
    program.pageSurface().source.UserType(frames);
    page.SetToNormalEditMode();
    EXPECT_EQ(item->PageType, PageType::Frames);
    EXPECT_EQ(item->Title, "Frames");
    EXPECT_EQ(program.window().tvwProjectExplorer.Find(page.PageKey())->image, kPictureFramePage);
    EXPECT_NE(page.Document().html().find("<!-- <frameset"), std::string::npos);
    program.Press(101);
    EXPECT_EQ(item->PageType, PageType::Ordinary) << "undone";
    program.Press(102);
    EXPECT_EQ(item->PageType, PageType::Frames) << "redone";
    EXPECT_EQ(item->Title, "Frames");
    page.picViewTab_MouseUp(kHtml);
    EXPECT_EQ(program.pageSurface().source.Text(), frames);
    program.pageSurface().source.UserType(plain);
    page.CloseWindow();
    EXPECT_EQ(item->PageType, PageType::Ordinary);
    EXPECT_EQ(ReadTextFile(program.frame().files, item->Filename).find("frameset"),
              std::string::npos);
}

TEST_F(Views, ABeginnerHasNoHtmlTab) {
    program.page().picViewTab_MouseUp(kHtml);
    TypeSource("<p><br></p>", "<p>Kept</p>");
    program.frame().settings.SkillLevel = 0;
    ApplySkillLevel(program.context());
    EXPECT_EQ(program.page().State(), View::Normal);
    EXPECT_NE(program.page().Document().html().find("Kept"), std::string::npos);
    EXPECT_EQ(program.pageSurface().tabs, 2);
    program.page().picViewTab_MouseUp(kHtml);
    EXPECT_EQ(program.page().State(), View::Preview) << "that place is the preview's now";
}

TEST_F(Views, FramePagesAreMaskedInNormalViewAlone) {
    const std::string frames =
        "<html><head><title>F</title></head>\n<frameset cols=\"20%,*\">"
        "<frame src=\"a.htm\"><frame src=\"b.htm\"></frameset></html>";
    program.outer.folder.Put("frames.htm", frames);
    InsertPageRequest request;
    request.sourceFile = program.outer.folder.Path("frames.htm");
    request.show = ShowInsertedPage::Yes;
    ASSERT_NE(InsertPage(program.window().ProjectState(), request), nullptr);
    frmDocument& page = program.page();
    EXPECT_NE(page.Document().html().find("<!-- <frameset"), std::string::npos);
    EXPECT_FALSE(page.IsDirty());
    page.picViewTab_MouseUp(kHtml);
    const std::string shown = program.pageSurface().source.Text();
    EXPECT_EQ(shown.find("<!--"), std::string::npos) << shown;
    TypeSource("20%", "30%");
    page.picViewTab_MouseUp(kPreview);
    EXPECT_NE(program.pageSurface().preview.find("<frameset cols=\"30%,*\">"), std::string::npos);
    page.SetToNormalEditMode();
    EXPECT_NE(page.Document().html().find("<!-- <frameset cols=\"30%,*\">"), std::string::npos);
}

}  // namespace
}  // namespace pw
