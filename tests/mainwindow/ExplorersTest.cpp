#include "mainwindow/Explorers.h"

#include <gtest/gtest.h>

#include <random>

#include "editing/ElementRecognition.h"
#include "mainwindow/PageNodes.h"
#include "mainwindow/Pictures.h"
#include "mainwindow/UIState.h"
#include "project/Folders.h"
#include "project/Tasks.h"
#include "project/frmTask.h"
#include "support/CpuTimer.h"
#include "support/TestProgram.h"

namespace pw {
namespace {

using test::TestProgram;

/** "BODY(DIV(IMG) A)", with the texts of the nodes. */
std::string Outline(const std::vector<TreeNode*>& nodes) {
    std::string text;
    for (const TreeNode* node : nodes) {
        if (!text.empty()) text += " ";
        text += node->text;
        if (!node->children.empty()) text += "(" + Outline(node->children) + ")";
    }
    return text;
}

struct PageExplorer : testing::Test {
    PageExplorer() { program.Press(3); }
    std::string Shown(const std::string& body) {
        EXPECT_TRUE(
            program.page().SetHTML("<html><head><title>t</title></head>" + body + "</html>"));
        UpdatePageExplorer(program.context(), program.page().PageKey());
        return Outline(tree.Roots());
    }
    TestProgram program;
    TreeView& tree = program.window().tvwPageExplorer;
};

TEST_F(PageExplorer, ShowsTheElementsThatMatter) {
    struct Row {
        const char* body;
        const char* outline;
        int picture;  ///< of the last node
    };
    const Row rows[] = {
        {"<body></body>", "<BODY>", 23},
        {"<frameset cols='*'><frame name=a></frameset>", "<FRAMESET>(a)", 38},
        {"<body><p><b>x</b><img src='media/a.gif'></p></body>", "<BODY>(a.gif)", 41},
        {"<body><img dynsrc='v/film.avi'></body>", "<BODY>(film.avi)", 53},
        {"<body><div><p><hr></p></div><hr></body>", "<BODY>(DIV(HR) HR)", 43},
        {"<body><a href='x.htm'>t</a></body>", "<BODY>(x.htm)", 44},
        {"<body><a name=here>t</a></body>", "<BODY>(here)", 24},
        {"<body><a>t</a></body>", "<BODY>(BOOKMARK)", 24},
        {"<body><a type=omMerge name='COMPANY name' href=x>t</a></body>",
         "<BODY>(Merge Variable Company Name)", 20},
        {"<body><table><tr><td>x</td></tr></table></body>", "<BODY>(TABLE(TR))", 51},
        {"<body><form name=f><input type=radio name=r></form></body>", "<BODY>(f(r))", 34},
        {"<body><input name=t></body>", "<BODY>(t)", 35},
        {"<body><input type=image src='i/go.gif'></body>", "<BODY>(go.gif)", 29},
        {"<body><select></select></body>", "<BODY>(<SELECT>)", 33},
        {"<body><script language=JScript>1</script></body>", "<BODY>(JScript)", 49},
        {"<body><!-- note --></body>", "<BODY>", 23},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(Shown(row.body), row.outline);
        const TreeNode* last = tree.Roots().front();
        while (!last->children.empty())
            last = last->children.back();
        EXPECT_EQ(last->image, row.picture) << row.outline;
    }
    program.frame().settings.ShowCommentsInExplorer = true;
    EXPECT_EQ(Shown("<body><!-- a \r\nnote --></body>"), "<BODY>(a note)");
}

TEST_F(PageExplorer, AHiddenOneIsNeverRebuilt) {
    Shown("<body><hr></body>");
    program.Press(210);
    EXPECT_FALSE(program.window().picPageExplorer.Visible());
    EXPECT_EQ(Shown("<body><hr><hr></body>"), "<BODY>(HR)");
    program.Press(210);
    EXPECT_EQ(Outline(tree.Roots()), "<BODY>(HR HR)");
}

TEST_F(PageExplorer, KeepsWhatIsOpenAcrossRebuilds) {
    Shown("<body><div><hr></div></body>");
    TreeNode* div = tree.Roots().front()->children.front();
    EXPECT_FALSE(div->expanded);
    tree.UserExpand(*div, true);
    dom::Document& document = program.page().Document();
    document.insertAdjacentHTML(*document.body(), "afterBegin", "<hr>");
    UpdatePageExplorer(program.context(), program.page().PageKey());
    ASSERT_EQ(Outline(tree.Roots()), "<BODY>(HR DIV(HR))");
    EXPECT_TRUE(tree.Roots().front()->children.back()->expanded);
}

TEST_F(PageExplorer, SelectsBothWays) {
    Shown("<body><div>first</div><p><img src=a.gif></p></body>");
    MainContext& context = program.context();
    dom::Document& document = program.page().Document();
    dom::Node* image = document.tags("img").front();
    program.page().m_docEvents_onmousedown(image);
    program.page().docDHTMLEditor_DisplayChanged();
    EXPECT_EQ(tree.SelectedKey(), "E" + std::to_string(document.sourceIndex(image)));

    tree.UserSelect(tree.Roots().front()->children.front()->key);
    EXPECT_EQ(context.CurrentElement(), document.tags("div").front());
    EXPECT_EQ(document.elementAtCaret(), document.tags("div").front());
    EXPECT_FALSE(context.SelectingFromExplorer);
    tree.MouseDown(false);
    EXPECT_EQ(context.ContextPane, Pane::PageExplorer);
}

TEST_F(PageExplorer, OrdinaryTypingDoesNotRebuildIt) {
    Shown("<body><p>text</p><hr></body>");
    frmDocument& page = program.page();
    dom::Document& document = page.Document();
    dom::Node* paragraph = document.tags("p").front();
    document.collapse({paragraph->firstChild(), 4});
    page.m_docEvents_onmousedown(paragraph);
    page.docDHTMLEditor_DisplayChanged();
    const TreeNode* before = tree.Roots().front();
    const auto type = [&](const KeyPress& key) {
        page.m_docEvents_onkeyup();
        page.docDHTMLEditor_onkeyup(key);
        program.Settle();
    };
    document.replaceText(*paragraph->firstChild(), 4, 0, "s");
    type({83});
    EXPECT_EQ(tree.Roots().front(), before);
    document.insertAdjacentHTML(*document.body(), "beforeEnd", "<hr>");
    type({13});
    EXPECT_EQ(Outline(tree.Roots()), "<BODY>(HR)") << "Enter alone is not worth a new tree";
    type({84});
    document.insertAdjacentHTML(*document.body(), "beforeEnd", "<hr>");
    program.Settle();
    EXPECT_EQ(Outline(tree.Roots()), "<BODY>(HR HR HR)");
}

/** What the view on the screen is told. */
struct Counter : TreeObserver {
    explicit Counter(TreeView& tree) : tree_(tree) { tree.SetTreeObserver(this); }
    ~Counter() override { tree_.SetTreeObserver(nullptr); }
    void TreeAboutToBeReset() override {}
    void TreeReset() override { told += "reset "; }
    void NodeAboutToBeAdded(TreeNode*, std::size_t) override {}
    void NodeAdded() override { told += "add "; }
    void NodeAboutToBeRemoved(TreeNode&) override {}
    void NodeRemoved() override { told += "remove "; }
    void NodeChanged(TreeNode& node) override { told += "change:" + node.text + " "; }
    void NodeSelected(TreeNode*) override {}
    std::string Told() { return std::exchange(told, ""); }
    std::string told;
    TreeView& tree_;
};

TEST_F(PageExplorer, TouchesOnlyWhatAnEditConcerns) {
    Shown("<body><p>text</p><div><a href=x.htm>link</a></div><hr></body>");
    frmDocument& page = program.page();
    dom::Document& document = page.Document();
    Counter view(tree);
    const auto told = [&] {
        UpdatePageExplorer(program.context(), page.PageKey());
        return view.Told();
    };
    dom::Node* link = document.tags("a").front();
    document.replaceText(*document.tags("p").front()->firstChild(), 4, 0, "s");
    EXPECT_EQ(told(), "");
    document.insertAdjacentHTML(*document.body(), "afterBegin", "<p>more</p>");
    EXPECT_EQ(told(), "") << "a paragraph has no node";
    EXPECT_EQ(tree.Roots().front()->children.front()->key,
              "E" + std::to_string(document.sourceIndex(document.tags("div").front())));
    document.setAttribute(*link, "href", "y.htm");
    EXPECT_EQ(told(), "change:y.htm ");
    document.insertAdjacentHTML(*link, "beforeEnd", "<img src=a.gif>");
    EXPECT_EQ(told(), "add ");
    document.undo();
    EXPECT_EQ(told(), "remove ");
    document.moveNode(*document.body(), *link, document.body()->firstChild());
    EXPECT_EQ(told(), "remove add ");
    EXPECT_EQ(Outline(tree.Roots()), "<BODY>(y.htm DIV HR)");
}

TEST_F(PageExplorer, StaysInStepThroughAnyEdits) {
    Shown("<body><div><table><tr><td><img src=a.gif></td></tr></table></div><hr></body>");
    frmDocument& page = program.page();
    std::mt19937 random(4711);
    const auto below = [&](std::size_t count) { return std::size_t(random()) % count; };
    const char* bits[] = {"<hr>",
                          "<p><a href=b.htm>x<img src=b.gif></a></p>",
                          "<div><div><hr></div>text</div>",
                          "<table><tr><td>1</td><td><input name=n></td></tr></table>",
                          "<!-- note -->",
                          "words"};
    const char* wheres[] = {"beforeBegin", "afterBegin", "beforeEnd", "afterEnd"};
    for (int step = 0; step < 400; ++step) {
        dom::Document& document = page.Document();
        if (document.all().size() > 150) document.setInnerHTML(*document.body(), "<p>again</p>");
        const std::size_t first = std::size_t(document.sourceIndex(document.body()));
        const std::size_t pick = first + below(document.all().size() - first);
        dom::Node* element = document.all()[pick];
        const bool body = element == document.body();
        switch (below(7)) {
            case 0:
                if (!body) document.removeNode(*element);
                break;
            case 1:
                if (element->isElement())
                    document.setAttribute(*element, "name", "n" + std::to_string(step));
                break;
            case 2:
                static_cast<void>(document.undo());
                break;
            case 3:
                if (!body && !element->contains(*document.body()->firstChild()))
                    document.moveNode(*document.body(), *element, document.body()->firstChild());
                break;
            case 4:
                program.frame().settings.ShowCommentsInExplorer = below(2) == 0;
                break;
            default:
                if (element->isElement())
                    document.insertAdjacentHTML(*element, body ? "beforeEnd" : wheres[below(4)],
                                                bits[below(std::size(bits))]);
                break;
        }
        document.sealStep();
        if (below(3) != 0) continue;  // several edits between two looks
        UpdatePageExplorer(program.context(), page.PageKey());

        std::map<const dom::Node*, std::string> lines;  // by element, for those with a node
        std::string expected;
        for (std::size_t i = std::size_t(document.sourceIndex(document.body()));
             i < document.all().size(); ++i) {
            const dom::Node* shown = document.all()[i];
            if (!IsShownInExplorer(program.frame(), *shown)) continue;
            const dom::Node* around = shown->parent();
            while (around && !lines.count(around))
                around = around->parent();
            if (!around && !lines.empty()) around = document.body();
            lines[shown] = (around ? lines[around] + "/" : "") + "E" + std::to_string(i);
            expected += lines[shown] + MakePageNode(program.frame(), document, *shown).text + "\n";
        }
        std::string found;
        const std::function<void(const TreeNode&, const std::string&)> walk =
            [&](const TreeNode& node, const std::string& path) {
                found += path + node.key + node.text + "\n";
                EXPECT_EQ(tree.Find(node.key), &node);
                for (const TreeNode* child : node.children)
                    walk(*child, path + node.key + "/");
            };
        walk(*tree.Roots().front(), "");
        ASSERT_EQ(found, expected) << "step " << step;
    }
}

TEST_F(PageExplorer, APressOnANodeMeansItsElementEvenAfterEdits) {
    Shown("<body><hr><div>here</div><hr></body>");
    dom::Document& document = program.page().Document();
    dom::Node* division = document.tags("div").front();
    const std::string key = tree.Roots().front()->children[1]->key;
    document.insertAdjacentHTML(*document.body(), "afterBegin", "<p>1</p><p>2</p>");
    tree.UserSelect(key);
    EXPECT_EQ(program.context().CurrentElement(), division);
    const std::string now = tree.SelectedKey();
    EXPECT_EQ(now, "E" + std::to_string(document.sourceIndex(division)));
    document.removeNode(*division);
    tree.UserSelect(now);
    EXPECT_EQ(Outline(tree.Roots()), "<BODY>(HR HR)") << "what is gone is not selected";
}

TEST_F(PageExplorer, IsBuiltInOneWalk) {
    const auto milliseconds = [&](int count) {
        std::string body = "<body>";
        for (int i = 0; i < count; ++i)
            body += i % 10 == 0 ? "</div><div>" : "<p><img src=a.gif>";
        Shown(body + "</body>");
        double best = 1e9;
        for (int run = 0; run < 3; ++run) {
            const test::CpuTimer timer;
            ClearPageExplorer(program.context());
            UpdatePageExplorer(program.context(), program.page().PageKey());
            best = std::min(best, timer.Milliseconds());
        }
        return best;
    };
    const double small = milliseconds(2500);
    const double large = milliseconds(10000);
    EXPECT_LT(large, 16 * small + 5) << "four times the elements";
    RecordProperty("milliseconds_for_10000", int(large));
}

TEST(ProjectExplorer, FollowsTheProject) {
    TestProgram program;
    program.Press(3);
    TreeView& tree = program.window().tvwProjectExplorer;
    EXPECT_EQ(Outline(tree.Roots()), "My Web Site(Web Site(My Web Site Home Page))");
    ProjectContext& project = program.window().ProjectState();
    Folder* folder = AddFolder(project, GetContainer(project, ""), {"Products", "", 1});
    ASSERT_NE(folder, nullptr);
    RefillProjectExplorer(program.context());
    EXPECT_EQ(Outline(tree.Roots()), "My Web Site(Web Site(My Web Site Home Page Products))");

    TreeNode* node = tree.Find(folder->Key());
    tree.UserExpand(*node, !node->expanded);
    EXPECT_EQ(folder->Expanded, node->expanded);
    const bool open = node->expanded;
    RefillProjectExplorer(program.context());
    EXPECT_EQ(tree.Find(folder->Key())->expanded, open);

    // A folder is looked at in the explorer; another page is gone to.
    tree.UserSelect(folder->Key());
    EXPECT_EQ(program.context().ContextPane, Pane::ProjectExplorer);
    EXPECT_EQ(program.bar().Caption(201), "Folder P&roperties...");
    program.dialogs().ExpectDialog("frmFolder", [](Dialog& dialog) {
        static_cast<TextBox*>(dialog.Find("txtName"))->UserSetText("Goods");
        static_cast<Button*>(dialog.Find("cmdOK"))->UserClick();
    });
    program.dialogs().ExpectMessage(Answer::Yes, "may break links");
    program.Press(201);
    EXPECT_EQ(folder->Name, "Goods");
    EXPECT_NE(Outline(tree.Roots()).find("Goods"), std::string::npos);
}

TEST(TaskExplorer, SortsByValuesAndTicksOffWhatIsDone) {
    TestProgram program;
    program.Press(3);
    struct Row {
        const char* name;
        int priority;
        int status;
        double due;
    };
    const Row rows[] = {{"b", 2, 1, MakeDate(2026, 2, 1)},
                        {"a", 0, 2, MakeDate(2026, 11, 1)},
                        {"C", 1, 5, 0},
                        {"d", 1, 1, MakeDate(2025, 12, 31)}};
    for (const Row& row : rows) {
        Task* task = program.project().Tasks().Add(row.name);
        ASSERT_TRUE(task);
        task->Name = row.name;
        task->Priority = std::int16_t(row.priority);
        task->Status = std::int16_t(row.status);
        task->CompleteBy = row.due;
    }
    RefreshTasks(program.context());
    ListView& list = program.window().lvwTasks;
    const auto names = [&] {
        std::string text;
        for (int i = 0; i < list.Count(); ++i)
            text += list.Row(i).cells[0];
        return text;
    };
    const std::pair<int, const char*> presses[] = {
        {0, "abCd"}, {0, "dCba"}, {1, "adCb"}, {1, "bdCa"}, {2, "bdaC"}, {4, "dbaC"}, {4, "Cabd"}};
    list.SetSelected(2);
    for (const auto& [column, order] : presses) {
        list.UserColumnClick(column);
        // Equal ones stay as they stood.
        EXPECT_EQ(names(), order) << column;
        EXPECT_EQ(list.Row(list.Selected()).key, "C");
    }
    EXPECT_TRUE(list.SortDescending());

    program.project().IsDirty = false;
    list.UserCheck(list.FindKey("b"), true);
    EXPECT_EQ(program.project().Tasks().Item("b")->Status, int(TaskStatus::Completed));
    EXPECT_TRUE(program.project().IsDirty);
    EXPECT_EQ(names(), "Cabd") << "the order and the selection stay";
    EXPECT_EQ(list.Row(list.Selected()).key, "C");
    const ListRow done = list.Row(list.FindKey("b"));
    EXPECT_EQ(done.cells[2], "Completed");
    EXPECT_EQ(done.image, kPictureFinishedTask);
    EXPECT_TRUE(done.dimmed);
    list.UserCheck(list.FindKey("b"), false);
    EXPECT_EQ(program.project().Tasks().Item("b")->Status, int(TaskStatus::NotStarted));
    EXPECT_EQ(list.Row(list.FindKey("b")).image, kPictureTask);
}

TEST(TaskExplorer, UntickingGivesTheFormerStatusBack) {
    TestProgram program;
    program.Press(3);
    ListView& list = program.window().lvwTasks;
    const auto completeInDialog = [&] {
        program.dialogs().ExpectDialog("frmTask", [](Dialog& dialog) {
            auto& task = static_cast<frmTask&>(dialog);
            task.cboStatus.UserSelect(int(TaskStatus::Completed));
            task.cmdOK.UserClick();
        });
        ShowTaskDialog(program.window().ProjectState(), "t");
    };
    Task* task = program.project().Tasks().Add("t");
    RefreshTasks(program.context());
    for (const int status : {0, 2, 5, 7, -3}) {
        task->Status = status;
        list.UserCheck(0, true);
        list.UserCheck(0, false);
        EXPECT_EQ(task->Status, status);
        if (task->Name.empty()) task->Name = "t";
        completeInDialog();
        EXPECT_TRUE(list.Row(0).checked);
        list.UserCheck(0, false);
        EXPECT_EQ(task->Status, status);
    }
    task->Status = int(TaskStatus::Completed);
    task->FormerStatus.reset();
    list.UserCheck(0, false);
    EXPECT_EQ(task->Status, int(TaskStatus::NotStarted)) << "nobody knows of another";
}

TEST(TaskExplorer, ShowsAndKeepsWhatItCanNotName) {
    TestProgram program;
    program.Press(3);
    Task* task = program.project().Tasks().Add("t");
    task->Name = " odd ";
    task->Priority = 9;
    task->Status = -1;
    task->AssociatedWith = "The cat";
    for (const double due : {-20000.25, 0.5, 45000.75, 1e300}) {
        task->CompleteBy = due;
        RefreshTasks(program.context());
        const ListRow row = program.window().lvwTasks.Row(0);
        EXPECT_EQ(row.cells[1] + row.cells[2], "9-1");
        EXPECT_NE(row.cells[4], "") << due;
        program.dialogs().ExpectDialog("frmTask", [](Dialog& dialog) {
            auto& shown = static_cast<frmTask&>(dialog);
            EXPECT_EQ(shown.cboPriority.Text() + shown.cboStatus.Text(), "9-1");
            shown.cmdOK.UserClick();
            EXPECT_FALSE(shown.IsOpen());
        });
        ShowTaskDialog(program.window().ProjectState(), "t");
        EXPECT_EQ(task->CompleteBy, due);
    }
    EXPECT_EQ(task->Name + task->AssociatedWith, " odd The cat");
    EXPECT_EQ(task->Priority, 9);
    EXPECT_EQ(task->Status, -1);
}

TEST(TaskExplorer, SelectsANewTask) {
    TestProgram program;
    program.Press(3);
    ListView& list = program.window().lvwTasks;
    for (const char* name : {"m", "a", "z"}) {
        program.dialogs().ExpectDialog("frmTask", [name](Dialog& dialog) {
            auto& task = static_cast<frmTask&>(dialog);
            task.txtName.UserSetText(name);
            task.cmdOK.UserClick();
        });
        program.Press(5);
        if (list.Count() == 1) list.UserColumnClick(0);
        ASSERT_GE(list.Selected(), 0) << name;
        EXPECT_EQ(list.Row(list.Selected()).cells[0], name);
    }
    program.dialogs().ExpectDialog("frmTask", nullptr);
    program.Press(5);
    EXPECT_EQ(list.Row(list.Selected()).cells[0], "z") << "cancelled";
}

TEST(Explorers, HideWithTheirFrame) {
    TestProgram program;
    frmMDIMain& window = program.window();
    EXPECT_TRUE(window.picExplorers.Visible());
    for (const int tool : {209, 210, 211}) {
        if (window.IsExplorerShown(tool)) window.picExplorer_Closed(tool);
        EXPECT_FALSE(program.bar().FindTool(tool)->checked);
    }
    EXPECT_FALSE(window.picExplorers.Visible());
    program.Press(211);
    EXPECT_TRUE(window.picExplorers.Visible());
    EXPECT_TRUE(window.picTaskExplorer.Visible());
}

}  // namespace
}  // namespace pw
