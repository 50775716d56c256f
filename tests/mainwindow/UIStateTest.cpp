#include "mainwindow/UIState.h"

#include <gtest/gtest.h>

#include <map>

#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/Explorers.h"
#include "platform/dom/TextRange.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

using test::TestProgram;

TEST(DownloadTime, IsAFigureOfMerit) {
    struct Row {
        std::int64_t size;
        int speed;
        const char* text;
    };
    const Row rows[] = {
        {0, 1, "<1 second over 14.4K Modem (0 byte(s))"},
        {999, 4, "<1 second over 56K Modem (999 byte(s))"},
        {1920, 1, "1 seconds over 14.4K Modem (2KB)"},
        {150000, 4, "20 seconds over 56K Modem (150KB)"},
        {2500000, 11, "4 seconds over T3 (2.50MB)"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(DownloadTimeText(row.size, row.speed), row.text);
    EXPECT_THROW(DownloadSeconds(1, 0), Failure);
    EXPECT_THROW(DownloadSeconds(1, 13), Failure);
}

TEST(FontSizes, StandForTheSizesOfHtml) {
    const char* texts[] = {"", "8", "10", "12", "14", "18", "24", "36", ""};
    for (int index = 0; index <= 8; ++index) {
        EXPECT_EQ(FontSizeText(index), texts[index]);
        if (*texts[index]) {
            EXPECT_EQ(FontSizeIndex(texts[index]), index);
        }
    }
    EXPECT_EQ(FontSizeIndex("11"), 0);
}

/** Situations against commands: which of them can be pressed. */
TEST(UIState, CommandsFollowTheSituation) {
    TestProgram program;
    program.frame().settings.IEFilename = "\\usr\\bin\\browser";
    program.frame().settings.NNFilename.clear();
    const auto off = [&](const char* situation, std::initializer_list<int> tools) {
        for (const int tool : tools)
            EXPECT_FALSE(program.bar().IsEnabled(tool)) << situation << ": " << tool;
    };
    const auto on = [&](const char* situation, std::initializer_list<int> tools) {
        for (const int tool : tools)
            EXPECT_TRUE(program.bar().IsEnabled(tool)) << situation << ": " << tool;
    };
    const auto always = {3, 6, 19, 209, 210, 211, 213, 219, 505, 1001, 1012, 1204};
    const auto never = {13, 14, 15, 16, 18, 108, 109, 202, 203, 301, 325, 416, 418, 501, 601, 701};

    ResetUI(program.context());
    on("nothing open", always);
    off("nothing open", never);
    off("nothing open",
        {2, 4, 7, 8, 9, 10, 11, 12, 17, 101, 103, 107, 205, 207, 327, 401, 404, 901});

    program.Press(3);
    on("page in normal view", always);
    off("page in normal view", never);
    on("page in normal view", {2, 4, 7, 8, 9, 10, 11, 12, 17, 107, 205, 207, 327, 901, 904});
    off("page in normal view", {101, 102, 208});

    program.page().picViewTab_MouseUp(1000);
    on("HTML view", {2, 7, 9, 107, 205, 901});
    off("HTML view", {101, 102, 103, 104, 105, 106, 327, 401, 404, 407, 412, 426});
    program.Press(107);
    const MemorySourceBox& box = program.pageSurface().source;
    EXPECT_EQ(box.SelStart(), 0u);
    EXPECT_EQ(box.SelLength(), box.Text().size());

    program.page().picViewTab_MouseUp(2000);
    off("preview", {101, 103, 106, 107, 327, 404});
    on("preview", {2, 7, 9, 205, 901});

    program.Press(904);
    on("project without an open page", {2, 4, 7, 8, 10, 17});
    off("project without an open page", {9, 11, 12, 103, 107, 205, 207, 327, 901, 904});
}

TEST(UIState, IsEditPossibleByPane) {
    TestProgram program;
    program.Press(3);
    MainContext& context = program.context();
    const std::string page = context.CurrentPageKey;
    const auto possible = [&](Pane pane) {
        std::string tools;
        for (const int tool : {103, 104, 105, 106}) {
            if (IsEditPossible(context, tool, pane)) tools += std::to_string(tool) + " ";
            EXPECT_EQ(IsEditPossible(context, tool, pane),
                      IsEditPossible(context, tool + 1000, pane));
        }
        return tools;
    };
    dom::Document& document = program.page().Document();
    document.setSelection({});
    EXPECT_EQ(possible(Pane::Page), "105 ");
    document.collapse({document.body(), 0});
    EXPECT_EQ(possible(Pane::Page), "105 ") << "a caret selects nothing";
    dom::TextRange(document).select();
    EXPECT_EQ(possible(Pane::Page), "103 104 105 106 ");
    EXPECT_EQ(possible(Pane::PageExplorer), "103 104 105 106 ");
    program.page().picViewTab_MouseUp(1000);
    EXPECT_EQ(possible(Pane::Page), "");
    program.page().SetToNormalEditMode();

    const std::string site = page.substr(0, 5);
    const std::map<std::string, std::string> byNode = {
        {page, "103 104 106 "}, {site, ""}, {"R", ""}, {"", ""}};
    for (const auto& [node, tools] : byNode) {
        program.window().SelectProjectNode(node);
        EXPECT_EQ(possible(Pane::ProjectExplorer), tools) << "node '" << node << "'";
    }
    program.window().ProjectState().copiedPage.file = "\\x";
    for (const auto& [node, tools] : byNode) {
        program.window().SelectProjectNode(node);
        const bool paste = !node.empty() && node != "R";
        EXPECT_EQ(IsEditPossible(context, 105, Pane::ProjectExplorer), paste) << node;
    }
    EXPECT_EQ(possible(Pane::TaskList), "");
    Task* task = program.project().Tasks().Add("guid");
    task->Name = "Proofread";
    RefreshTasks(context);
    program.window().lvwTasks.SetSelected(0);
    EXPECT_EQ(possible(Pane::TaskList), "106 ");

    // Delete in the Edit menu acts on the task then, and not on the page.
    program.window().lvwTasks.MouseDown(false);
    program.Press(106);
    EXPECT_EQ(program.project().Tasks().Count(), 0);
    EXPECT_EQ(program.project().PageCount(), 1);
}

TEST(UIState, CaptionsSayWhoseProperties) {
    TestProgram program;
    program.Press(3);
    MainContext& context = program.context();
    frmDocument& page = program.page();
    ASSERT_TRUE(
        page.SetHTML("<body><p>t</p><form><input type=radio name=r></form>"
                     "<table><tr><td><b>c</b></td></tr></table></body>"));
    struct Row {
        const char* name;
        Pane pane;
        const char* node;
        const char* tag;
        const char* caption;
        bool dialog;
    };
    const Row rows[] = {
        {"folder", Pane::ProjectExplorer, "F", "", "Folder P&roperties...", true},
        {"page", Pane::ProjectExplorer, "P", "", "Page P&roperties...", false},
        {"site", Pane::ProjectExplorer, "W", "", "Project P&roperties...", true},
        {"task", Pane::TaskList, "", "", "Task P&roperties...", false},
        {"field", Pane::Page, "", "input", "Option Button P&roperties...", false},
        {"bold text in a cell", Pane::Page, "", "b", "Table Cell P&roperties...", false},
        {"text outside a table", Pane::Page, "", "p", "Page P&roperties...", false},
    };
    for (const Row& row : rows) {
        context.ContextPane = row.pane;
        if (*row.tag) context.SetCurrentElement(page.Document().tags(row.tag).front(), &page);
        SetPropertyCaptions(context, *row.node);
        EXPECT_EQ(program.bar().Caption(201), row.caption) << row.name;
        EXPECT_EQ(program.bar().Caption(1107), row.caption) << row.name;
        EXPECT_EQ(HasObjectDialog(*row.node), row.dialog) << row.name;
    }
    EXPECT_EQ(program.bar().Caption(202), "Page &HTML...");
    context.ContextPane = Pane::Page;
    context.SetCurrentElement(page.Document().tags("input").front(), &page);
    SetContextMenu(context, ContextMenu::PopUp);
    EXPECT_TRUE(program.bar().FindTool(1101)->visible) << "inside a form";
}

TEST(UIState, ToolbarsFollowTheSkillLevel) {
    const std::map<int, std::string> shown = {
        {0, "Format Insert Standard "},
        {1, "Format Insert Standard Table "},
        {2, "Format Forms Insert Insert Advanced Layering Standard Table "}};
    for (const auto& [level, names] : shown) {
        TestProgram program("", level);
        std::string visible;
        for (const char* name : kToolbarNames) {
            if (program.window().IsToolbarVisible(name)) visible += std::string(name) + " ";
            EXPECT_EQ(program.bar().FindTool(CommandOfToolbar(name))->checked,
                      program.window().IsToolbarVisible(name));
        }
        EXPECT_EQ(visible, names) << level;
        EXPECT_EQ(program.bar().FindTool(202)->visible, level != 0);
    }
    TestProgram program;
    program.bar().CloseToolbar("Table");
    EXPECT_FALSE(program.bar().FindTool(219)->checked);
    program.Press(219);
    EXPECT_TRUE(program.window().IsToolbarVisible("Table"));
}

TEST(UIState, NothingIsCommandedWhileTheProjectIsBusy) {
    TestProgram program;
    program.Press(3);
    program.project().RaiseProgress = true;
    int asked = 0;
    program.project().ProjectProgressChanged = [&](int) {
        ++asked;
        program.bar().Click(2);
        program.bar().Click(904);
    };
    ASSERT_EQ(program.project().Save(program.outer.folder.Path("a.pwp")), ProjectResult::Success);
    EXPECT_GT(asked, 0);
    EXPECT_EQ(program.project().PageCount(), 1);
    EXPECT_EQ(program.context().OpenDocuments.Count(), 1);
}

}  // namespace
}  // namespace pw
