#include "mainwindow/Explorers.h"

#include <gtest/gtest.h>

#include <chrono>

#include "mainwindow/UIState.h"
#include "project/Folders.h"
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

TEST_F(PageExplorer, IsBuiltInOneWalk) {
    const auto milliseconds = [&](int count) {
        std::string body = "<body>";
        for (int i = 0; i < count; ++i)
            body += i % 10 == 0 ? "</div><div>" : "<p><img src=a.gif>";
        Shown(body + "</body>");
        double best = 1e9;
        for (int run = 0; run < 3; ++run) {
            const auto start = std::chrono::steady_clock::now();
            UpdatePageExplorer(program.context(), program.page().PageKey());
            const std::chrono::duration<double, std::milli> took =
                std::chrono::steady_clock::now() - start;
            best = std::min(best, took.count());
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
