#include "mainwindow/UIState.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/Explorers.h"
#include "platform/Text.h"
#include "platform/dom/TextRange.h"
#include "project/Folders.h"
#include "project/Pages.h"
#include "support/StandInEditor.h"
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

// --- Situations against commands ----------------------------------------------------------------

/** The situations by the letters of the table below. In those of the explorers a page is open in
 *  normal view. */
struct Situation {
    char letter;
    const char* name;
    std::function<void(TestProgram&)> make;
};

dom::Node* First(TestProgram& program, const char* tag) {
    return program.page().Document().tags(tag).front();
}

void Caret(TestProgram& program, const char* tag) {
    dom::Node* element = First(program, tag);
    program.page().Document().collapse({element, 0});
    program.page().m_docEvents_onmousedown(element);
}

void SelectObject(TestProgram& program, dom::Node* object) {
    dom::Selection selection;
    selection.type = dom::SelectionType::Control;
    selection.control = object;
    program.page().Document().setSelection(selection);
    program.page().m_docEvents_onmousedown(object);
}

std::string FolderKey(TestProgram& program) {
    return AddFolder(program.window().ProjectState(),
                     GetContainer(program.window().ProjectState(), ""), {"Products", "", 1})
        ->Key();
}

void PressTask(TestProgram& program, int row) {
    program.window().lvwTasks.MouseDown(false);
    program.window().lvwTasks.UserSelect(row);
    program.window().lvwTasks.MouseUp(false);
}

const std::vector<Situation>& Situations() {
    static const std::vector<Situation> all = {
        {'p', "a project without an open page", [](TestProgram& p) { p.Press(904); }},
        {'N', "a caret", [](TestProgram& p) { Caret(p, "p"); }},
        {'T', "selected text",
         [](TestProgram& p) {
             Caret(p, "p");
             dom::TextRange range(p.page().Document());
             range.moveToElementText(*First(p, "p"));
             range.select();
         }},
        {'I', "a selected image", [](TestProgram& p) { SelectObject(p, First(p, "img")); }},
        {'A', "a selected image that is positioned absolutely",
         [](TestProgram& p) { SelectObject(p, p.page().Document().tags("img").back()); }},
        {'C', "a table cell", [](TestProgram& p) { Caret(p, "td"); }},
        {'F', "a form field",
         [](TestProgram& p) {
             Caret(p, "form");
             p.page().m_docEvents_onmousedown(First(p, "input"));
         }},
        {'H', "HTML view", [](TestProgram& p) { p.page().picViewTab_MouseUp(1000); }},
        {'V', "preview", [](TestProgram& p) { p.page().picViewTab_MouseUp(2000); }},
        {'P', "a page in the explorer",
         [](TestProgram& p) { p.PressNode(p.context().CurrentPageKey); }},
        {'D', "a folder in the explorer",
         [](TestProgram& p) {
             const std::string key = FolderKey(p);
             RefillProjectExplorer(p.context());
             p.PressNode(key);
         }},
        {'W', "the site in the explorer",
         [](TestProgram& p) { p.PressNode(p.context().CurrentPageKey.substr(0, 5)); }},
        {'R', "the project in the explorer", [](TestProgram& p) { p.PressNode("R"); }},
        {'K', "a task", [](TestProgram& p) { PressTask(p, 0); }},
        {'k', "the task list", [](TestProgram& p) { PressTask(p, -1); }},
        {'E', "an element in the page explorer",
         [](TestProgram& p) {
             p.window().tvwPageExplorer.MouseDown(false);
             p.window().tvwPageExplorer.UserSelect(
                 p.window().tvwPageExplorer.Roots().front()->children.back()->key);
             p.window().tvwPageExplorer.MouseUp(false);
         }},
    };
    return all;
}

/** Which commands can be pressed where. What has no handler yet can be pressed nowhere. */
struct Possible {
    const char* tools;
    std::string where;
    const char* openQuestion = "";  ///< where the state hangs on more than the situation
};

const std::vector<Possible>& Table() {
    const std::string normal = "NTIACFPDWRKkE";
    const std::string page = normal + "HV";
    const std::string project = "p" + page;
    static const std::vector<Possible> table = {
        {"3 6 19 209-211 213-219 505 1001 1002 1012 1201-1212", "0" + project},
        {"2 4 5 7 8 10 14-17", project},
        {"9 11 12 18 205 207 502 901-905 914", page},
        {"208", ""},  // no second browser is set
        {"101 102", ""},
        {"103 104 1103 1104", "TIAPE"},
        {"105 1105", "NTIACFE"},
        {"106 1106", "TIAPDKE"},
        {"107", normal + "H"},
        {"108-111", normal + "H", "V"},
        {"201 1107", "DWRK", "pNTIACFHVPE"},
        {"202", "NTIACFPE"},
        {"203 204 504", normal, "HV"},
        {"301-304 306 307 309-316 318-323 331-333", normal},
        {"324", "T", "NCFPDWRKkEH"},
        {"325", "T", "NIACFPDWRKkE"},
        {"327-330 426", normal},
        {"401-408", "NTCFPDWRKkE", "IA"},
        {"409-411", normal},
        {"412 413 415 427", "NTC", "IAFPDWRKkE"},
        {"416 601", normal},
        {"418", "IA", "E"},
        {"419-425", "A", "E"},
        {"602-607 609", "C"},
        {"608", ""},
        {"1101", "F"},
    };
    return table;
}

std::vector<int> Numbers(const std::string& tools) {
    std::vector<int> numbers;
    for (const std::string& part : Split(tools, ' ')) {
        const auto dash = part.find('-');
        const int last = std::stoi(dash == std::string::npos ? part : part.substr(dash + 1));
        for (int tool = std::stoi(part); tool <= last; ++tool)
            numbers.push_back(tool);
    }
    return numbers;
}

void CheckSituation(TestProgram& program, char letter, const std::string& name) {
    for (const Possible& row : Table()) {
        if (std::string(row.openQuestion).find(letter) != std::string::npos) continue;
        const bool possible = row.where.find(letter) != std::string::npos;
        for (const int tool : Numbers(row.tools)) {
            const bool hidden = tool == 202 && program.frame().settings.SkillLevel == 0;
            EXPECT_EQ(program.bar().IsEnabled(tool), possible && HasHandler(tool) && !hidden)
                << name << ": " << tool;
        }
    }
}

struct UIStateAtLevel : testing::TestWithParam<int> {};

TEST_P(UIStateAtLevel, CommandsFollowTheSituation) {
    TestProgram program("", GetParam());
    program.frame().settings.IEFilename = "\\usr\\bin\\browser";
    program.frame().settings.NNFilename.clear();
    ResetUI(program.context());
    CheckSituation(program, '0', "nothing open");
    program.surface.makeEditor = [] { return std::make_unique<test::StandInEditor>(); };
    program.Press(3);
    Task* task = program.project().Tasks().Add("1");
    ASSERT_TRUE(task);
    task->Name = "task";
    RefreshTasks(program.context());
    ASSERT_TRUE(program.page().SetHTML(
        "<html><head><title>t</title></head><body><p>text</p><img src=a.gif>"
        "<table><tr><td>cell</td></tr></table><form><input name=n></form>"
        "<img src=b.gif style='position:absolute;left:1px;top:1px'><div>last</div></body></html>"));
    // The last of them closes the page.
    for (std::size_t i = Situations().size(); i-- > 0;) {
        const Situation& situation = Situations()[i];
        if (situation.letter == 'H' && GetParam() == 0) continue;
        const int preview = GetParam() == 0 ? 1000 : 2000;
        program.page().SetToNormalEditMode();
        program.page().LeaveOtherPanes();
        program.page().Document().clearHistory();
        Caret(program, "p");
        program.Settle();
        if (situation.letter == 'V') {
            program.page().picViewTab_MouseUp(preview);
        } else {
            situation.make(program);
        }
        program.Settle();
        ResetUI(program.context());
        SetContextMenu(program.context(), ContextMenu::Prepare);
        CheckSituation(program, situation.letter, situation.name);
    }
}

INSTANTIATE_TEST_SUITE_P(SkillLevels, UIStateAtLevel, testing::Values(0, 1, 2));

TEST(UIState, SelectAllInHtmlViewIsThatOfTheTextBox) {
    TestProgram program;
    program.Press(3);
    program.page().picViewTab_MouseUp(1000);
    program.Press(107);
    const MemorySourceBox& box = program.pageSurface().source;
    EXPECT_EQ(box.SelStart(), 0u);
    EXPECT_EQ(box.SelLength(), box.Text().size());
}

TEST(UIState, MarksAndGridBelongToThePage) {
    TestProgram program;
    const auto checked = [&] {
        std::string tools;
        for (const int tool : {203, 204, 504})
            if (program.bar().FindTool(tool)->checked) tools += std::to_string(tool) + " ";
        return tools;
    };
    program.Press(3);
    for (const int tool : {203, 204, 504})
        EXPECT_FALSE(checked().find(std::to_string(tool)) != std::string::npos);
    program.Press(203);
    program.Press(504);
    EXPECT_EQ(checked(), "203 504 ");
    EXPECT_TRUE(program.page().docDHTMLEditor.ShowBorders());
    EXPECT_FALSE(program.page().docDHTMLEditor.ShowDetails());
    EXPECT_TRUE(program.page().docDHTMLEditor.SnapToGrid());
    // In the source they are not at hand, and come back with the view.
    program.page().picViewTab_MouseUp(1000);
    EXPECT_FALSE(program.bar().IsEnabled(203));
    EXPECT_TRUE(program.bar().IsEnabled(504));
    EXPECT_EQ(checked(), "203 504 ");
    program.page().SetToNormalEditMode();
    program.Press(203);
    program.Press(204);
    EXPECT_EQ(checked(), "204 504 ");
    program.Press(904);
    EXPECT_EQ(checked(), "");
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
        {"page", Pane::ProjectExplorer, "P", "", "Page P&roperties...", true},
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
