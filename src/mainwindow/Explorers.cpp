#include "mainwindow/Explorers.h"

#include "editing/ElementRecognition.h"
#include "editing/frmPage.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "frame/MainWindowLayout.h"
#include "mainwindow/Commands.h"
#include "mainwindow/ElementDialogs.h"
#include "mainwindow/PageTree.h"
#include "mainwindow/Pictures.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"
#include "project/Folders.h"
#include "project/Pages.h"
#include "project/Tasks.h"
#include "project/frmTask.h"

namespace pw {

namespace {

constexpr const char* kModule = "UIFunctions.";

// --- The project --------------------------------------------------------------------------------

struct ImagePair {
    int closed;
    int open;
};

ImagePair PictureOf(ExplorerImage image) {
    switch (image) {
        case ExplorerImage::Project:
            return {kPictureProject, 0};
        case ExplorerImage::WebSite:
            return {kPictureWebSite, 0};
        case ExplorerImage::Folder:
            return {kPictureFolder, kPictureOpenFolder};
        case ExplorerImage::Page:
            return {kPicturePage, 0};
        case ExplorerImage::DefaultPage:
            return {kPictureDefaultPage, 0};
        case ExplorerImage::FramesPage:
            return {kPictureFramePage, 0};
    }
    return {0, 0};
}

class TreeFiller : public ExplorerNodes {
  public:
    explicit TreeFiller(TreeView& tree) : tree_(tree), update_(tree) {}

    void Clear() override { tree_.Clear(); }
    void Add(const std::string& parentKey, const std::string& key, const std::string& text,
             const std::string& tag, ExplorerImage image, bool expanded) override {
        const ImagePair pictures = PictureOf(image);
        TreeNode node;
        node.key = key;
        node.text = text;
        node.tag = tag;
        node.image = pictures.closed;
        node.expandedImage = pictures.open;
        node.expanded = expanded;
        node.bold = image == ExplorerImage::DefaultPage;
        tree_.Add(parentKey, std::move(node));
    }

  private:
    TreeView& tree_;
    TreeUpdate update_;
};

void SetPane(MainContext& context, Pane pane) {
    context.CommandFocus = Pane::Page;
    context.ContextPane = pane;
}

/** Goes to the page of the selected node, and the keyboard with it. */
void OpenSelectedPage(MainContext& context) {
    const std::string key = context.window.SelectedProjectNode();
    const Page* page = GetPage(context.project, key);
    if (!page) return;
    SetPane(context, Pane::Page);
    ResetUI(context);
    context.window.ShowPage(key, page->Name, page->Filename, page->PageType);
}

void tvwProjectExplorer_NodeClick(MainContext& context, const TreeNode& node) {
    // The page in front stays there: raising it again would take the keyboard from the tree. The
    // right button asks for the menu of a node, and the arrow keys walk over them.
    const bool elsewhere = node.key != context.CurrentPageKey;
    if (context.ExplorerPress == MouseButton::Left && elsewhere &&
        SelectedNodeLetter(context) == 'P') {
        OpenSelectedPage(context);
        return;
    }
    SetPane(context, Pane::ProjectExplorer);
    ResetUI(context);
}

void tvwProjectExplorer_MouseUp(MainContext& context, bool rightButton) {
    context.ExplorerPress = MouseButton::None;
    // A press that opened a page has left the explorer.
    const bool left = !rightButton && context.ContextPane == Pane::Page &&
                      context.window.SelectedProjectNode() == context.CurrentPageKey;
    if (!left) context.ContextPane = Pane::ProjectExplorer;
    if (SelectedNodeLetter(context) == 'W') {
        SetEditMenuItems(context);
        return;
    }
    SetContextMenu(context, rightButton ? ContextMenu::PopUp : ContextMenu::Prepare);
}

// --- The page -----------------------------------------------------------------------------------

void tvwPageExplorer_MouseDown(MainContext& context) {
    SetPane(context, Pane::PageExplorer);
    ResetUI(context);
}

/** The node stands for an element, which can have gone since the tree was brought up to date. */
void tvwPageExplorer_NodeClick(MainContext& context, const TreeNode& node) {
    const dom::Node* element = context.window.PageElements().ElementOf(node);
    UpdatePageExplorer(context, context.CurrentPageKey);
    const TreeNode* found = element ? context.window.PageElements().Find(*element) : nullptr;
    if (found) SelectPageNode(context, found->key);
}

// --- The tasks ----------------------------------------------------------------------------------

/** The tick in front of a task says that it is done. */
void lvwTasks_ItemCheck(MainContext& context, int row) {
    const ListRow ticked = context.window.lvwTasks.Row(row);
    if (ticked.checked) {
        MarkTaskComplete(context.project, ticked.tag);
    } else {
        UnmarkTaskComplete(context.project, ticked.tag);
    }
    ResetUI(context);
}

}  // namespace

// --- The project --------------------------------------------------------------------------------

void RefillProjectExplorer(MainContext& context) {
    TreeView& tree = context.window.tvwProjectExplorer;
    std::string selected = tree.SelectedKey();
    {
        TreeFiller filler(tree);
        context.model.FillExplorer(filler, 0);
    }
    if (!tree.Find(selected)) selected = context.CurrentPageKey;
    tree.SetSelected(selected);
}

void SetExpandedState(MainContext& context, const TreeNode& node) {
    if (WebSite* site = context.model.FindWebSite(node.key)) site->Expanded = node.expanded;
    if (Folder* folder = context.model.FindFolder(node.key)) folder->Expanded = node.expanded;
}

// --- The page -----------------------------------------------------------------------------------

void ClearPageExplorer(MainContext& context) {
    context.window.PageElements().Clear();
}

void UpdatePageExplorer(MainContext& context, const std::string& key) {
    Trap(context.frame.errorLog, kModule, "UpdatePageExplorer", [&] {
        if (!context.window.picPageExplorer.Visible()) return;
        frmDocument* document = context.OpenDocuments.Find(key);
        if (!document) return;
        document->WaitUntilReady();
        context.window.PageElements().Update(*document);
    });
}

void SelectNodeOfElement(MainContext& context) {
    frmDocument* document = context.CurrentDocument();
    if (!document) return;
    const dom::Node* element = context.CurrentElement();
    const TreeNode* node = nullptr;
    for (; element && !node; element = GetParentElement(document->Document(), element, ""))
        node = context.window.PageElements().Find(*element);
    if (node) context.window.tvwPageExplorer.SetSelected(node->key);
}

void SelectPageNode(MainContext& context, const std::string& nodeKey) {
    frmDocument* document = context.CurrentDocument();
    if (!document || nodeKey.empty() || document->State() != View::Normal) return;
    Trap(context.frame.errorLog, kModule, "SelectPageNode", [&] {
        context.SelectingFromExplorer = true;
        HtmlEditor& editor = document->docDHTMLEditor;
        dom::Document& dom = editor.DOM();
        const std::size_t index = std::size_t(std::max(0.0, Val(nodeKey.substr(1))));
        if (index > 0 && index < dom.all().size()) {
            dom::Node* element = dom.all()[index];
            context.SetCurrentElement(element, document);
            if (editor.Surface()) editor.Surface()->ScrollIntoView(*element);
            SelectElement(dom, *element);
        }
    });
    context.SelectingFromExplorer = false;
    UpdateDocumentUI(context, context.CurrentPageKey);
}

// --- The tasks ----------------------------------------------------------------------------------

void RefreshTasks(MainContext& context) {
    ListView& list = context.window.lvwTasks;
    const std::string selected = list.Selected() >= 0 ? list.Row(list.Selected()).key : "";
    list.Clear();
    for (const Task& task : context.model.Tasks())
        list.Add(TaskRow(task));
    list.SortAgain();
    if (!selected.empty()) list.SetSelected(list.FindKey(selected));
}

void SelectTask(MainContext& context, const std::string& key) {
    ListView& list = context.window.lvwTasks;
    if (const int row = list.FindKey(key); row >= 0) list.SetSelected(row);
}

void ShowSelectedTask(MainContext& context) {
    const ListView& list = context.window.lvwTasks;
    if (list.Selected() < 0) return;
    ShowTaskDialog(context.project, list.Row(list.Selected()).tag);
    ResetUI(context);
}

// --- Properties ---------------------------------------------------------------------------------

bool HasObjectDialog(char letter) {
    return letter == 'F' || letter == 'P' || letter == 'R' || letter == 'W';
}

bool HasPropertiesDialog(const MainContext& context) {
    switch (context.ContextPane) {
        case Pane::ProjectExplorer:
            return HasObjectDialog(SelectedNodeLetter(context));
        case Pane::TaskList:
            return context.window.lvwTasks.Selected() >= 0;
        case Pane::Page:
        case Pane::PageExplorer:
            break;
    }
    return HasElementDialog(context);
}

void ShowPropertiesDialog(MainContext& context) {
    switch (context.ContextPane) {
        case Pane::ProjectExplorer:
            ShowProjectObjectDialog(context);
            break;
        case Pane::TaskList:
            ShowSelectedTask(context);
            break;
        case Pane::Page:
        case Pane::PageExplorer:
            ShowElementDialog(context);
            break;
    }
}

void ShowProjectObjectDialog(MainContext& context) {
    TrapAndTell(context.frame.faults, kModule, "ShowProjectObjectDialog", [&] {
        const std::string key = context.window.tvwProjectExplorer.SelectedKey();
        switch (SelectedNodeLetter(context)) {
            case 'F':
                EditFolderProperties(context.project, key);
                break;
            case 'P':
                ShowPageProperties(context.project, key);
                break;
            case 'R':
            case 'W':
                EditProjectProperties(context);
                break;
            default:
                break;
        }
        ResetUI(context);
    });
}

// --- Showing and hiding -------------------------------------------------------------------------

namespace {

Frame* PaneOf(frmMDIMain& window, int tool) {
    switch (tool) {
        case 209:
            return &window.picProjectExplorer;
        case 210:
            return &window.picPageExplorer;
        case 211:
            return &window.picTaskExplorer;
        default:
            return nullptr;
    }
}

}  // namespace

bool IsExplorerShown(const MainContext& context, int tool) {
    const Frame* pane = PaneOf(context.window, tool);
    return pane && pane->Visible();
}

void ShowExplorer(MainContext& context, int tool, bool show) {
    frmMDIMain& window = context.window;
    Frame* pane = PaneOf(window, tool);
    if (!pane) return;
    const bool appears = show && !pane->Visible();
    pane->SetVisible(show);
    bool any = false;
    for (int each = kFirstExplorerTool; each <= kLastExplorerTool; ++each)
        any = any || IsExplorerShown(context, each);
    window.picExplorers.SetVisible(any);
    context.barMain.SetChecked(tool, show);
    if (appears && tool == 209 && context.model.IsLoaded) RefillProjectExplorer(context);
    if (appears && tool == 210) UpdatePageExplorer(context, context.CurrentPageKey);
}

void ConnectExplorers(MainContext& context) {
    MainContext* c = &context;
    frmMDIMain& window = context.window;

    TreeView& project = window.tvwProjectExplorer;
    project.NodeClick = [c](const TreeNode& node) { tvwProjectExplorer_NodeClick(*c, node); };
    project.MouseDown = [c](bool right) {
        c->ExplorerPress = right ? MouseButton::Right : MouseButton::Left;
        SetPane(*c, Pane::ProjectExplorer);
    };
    project.DblClick = [c] { OpenSelectedPage(*c); };
    project.MouseUp = [c](bool right) { tvwProjectExplorer_MouseUp(*c, right); };
    project.ExpandedChanged = [c](const TreeNode& node) { SetExpandedState(*c, node); };

    TreeView& page = window.tvwPageExplorer;
    page.MouseDown = [c](bool) { tvwPageExplorer_MouseDown(*c); };
    page.MouseUp = [c](bool right) {
        SetContextMenu(*c, right ? ContextMenu::PopUp : ContextMenu::Prepare);
    };
    page.NodeClick = [c](const TreeNode& node) { tvwPageExplorer_NodeClick(*c, node); };

    ListView& tasks = window.lvwTasks;
    tasks.SetColumns(TaskColumns());
    tasks.MouseDown = [c](bool) {
        if (c->ContextPane != Pane::TaskList) SetPane(*c, Pane::TaskList);
        ResetUI(*c);
    };
    tasks.ItemClick = [c](int) { SetEditMenuItems(*c); };
    tasks.MouseUp = [c](bool right) {
        SetContextMenu(*c, right ? ContextMenu::PopUp : ContextMenu::Prepare);
    };
    tasks.DblClick = [c] { ShowSelectedTask(*c); };
    tasks.ItemCheck = [c](int row) { lvwTasks_ItemCheck(*c, row); };
}

}  // namespace pw
