#include "mainwindow/Explorers.h"

#include <unordered_set>

#include "editing/ElementRecognition.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "frame/MainWindowLayout.h"
#include "mainwindow/Commands.h"
#include "mainwindow/PageNodes.h"
#include "mainwindow/Pictures.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"
#include "platform/dom/TextRange.h"
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
    explicit TreeFiller(TreeView& tree) : tree_(tree) { tree_.BeginUpdate(); }
    ~TreeFiller() override { tree_.EndUpdate(); }
    TreeFiller(const TreeFiller&) = delete;
    TreeFiller& operator=(const TreeFiller&) = delete;

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

/** Which nodes of the tree are open, in the page that the tree shows. */
void KeepExpandedNodes(MainContext& context) {
    TreeView& tree = context.window.tvwPageExplorer;
    frmDocument* document = context.OpenDocuments.Find(tree.tag);
    if (!document) return;
    document->ExpandedNodes.clear();
    std::vector<TreeNode*> open(tree.Roots());
    while (!open.empty()) {
        const TreeNode* node = open.back();
        open.pop_back();
        if (node->children.empty()) continue;
        if (node->expanded) document->ExpandedNodes.insert(node->tag);
        open.insert(open.end(), node->children.begin(), node->children.end());
    }
}

/** The body, or the frameset that stands in its place. */
dom::Node* FirstBody(const dom::Document& document) {
    for (dom::Node* element : document.all()) {
        if (element->is("body") || element->is("frameset")) return element;
    }
    return nullptr;
}

void FillPageTree(MainContext& context, frmDocument& owner) {
    TreeView& tree = context.window.tvwPageExplorer;
    const dom::Document& document = owner.Document();
    const dom::Node* body = FirstBody(document);
    if (!body) return;
    const auto add = [&](const std::string& parentKey, TreeNode node) {
        node.expanded = parentKey.empty() || owner.ExpandedNodes.count(node.tag) > 0;
        const TreeNode* added = tree.Add(parentKey, std::move(node));
        return added ? added->key : parentKey;
    };

    // One walk in source order. The path holds the elements around the current place, each with the
    // key of the nearest node that stands for it.
    struct Enclosing {
        const dom::Node* element;
        std::string key;
    };
    std::vector<Enclosing> path{{body, add("", MakePageNode(context.frame, document, *body))}};
    const auto& all = document.all();
    for (std::size_t i = std::size_t(document.sourceIndex(body)) + 1; i < all.size(); ++i) {
        const dom::Node* element = all[i];
        const dom::Node* parent = element->parent();
        while (path.size() > 1 && path.back().element != parent)
            path.pop_back();
        std::string key = path.back().key;
        if (IsShownInExplorer(context.frame, *element))
            key = add(key, MakePageNode(context.frame, document, *element));
        if (element->firstChild()) path.push_back({element, std::move(key)});
    }
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
    KeepExpandedNodes(context);
    context.window.tvwPageExplorer.Clear();
    context.window.tvwPageExplorer.tag.clear();
}

void UpdatePageExplorer(MainContext& context, const std::string& key) {
    Trap(context.frame.errorLog, kModule, "UpdatePageExplorer", [&] {
        if (!context.window.picPageExplorer.Visible()) return;
        frmDocument* document = context.OpenDocuments.Find(key);
        if (!document) return;
        document->WaitUntilReady();

        TreeView& tree = context.window.tvwPageExplorer;
        KeepExpandedNodes(context);
        const std::string selected = tree.tag == key ? tree.SelectedKey() : std::string();
        tree.BeginUpdate();
        tree.Clear();
        tree.tag = key;
        Trap(context.frame.errorLog, kModule, "AddToPageExplorer",
             [&] { FillPageTree(context, *document); });
        tree.EndUpdate();
        tree.SetSelected(selected);
    });
}

void SelectNodeOfElement(MainContext& context) {
    frmDocument* document = context.CurrentDocument();
    dom::Node* element = context.CurrentElement();
    if (!document || !element) return;
    dom::Document& dom = document->Document();
    if (!IsExplorerElement(element)) element = GetParentElement(dom, element, "");
    const int index = dom.sourceIndex(element);
    if (index < 0) return;
    const std::string key = PageNodeKey(index);
    if (context.window.tvwPageExplorer.Find(key)) context.window.tvwPageExplorer.SetSelected(key);
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
            const bool invisible =
                element->isComment() || element->is("meta") || element->is("comment");
            if (!invisible) {
                if (dom.selection().type == dom::SelectionType::Control) dom.setSelection({});
                dom::TextRange range(dom);
                range.moveToElementText(*element);
                range.select();
            }
        }
    });
    context.SelectingFromExplorer = false;
    UpdateDocumentUI(context, context.CurrentPageKey);
}

// --- The tasks ----------------------------------------------------------------------------------

void RefreshTasks(MainContext& context) {
    ListView& list = context.window.lvwTasks;
    list.Clear();
    for (const Task& task : context.model.Tasks())
        list.Add(TaskRow(task));
}

void ShowSelectedTask(MainContext& context) {
    const ListView& list = context.window.lvwTasks;
    if (list.Selected() < 0) return;
    ShowTaskDialog(context.project, list.Row(list.Selected()).tag);
    ResetUI(context);
}

// --- Properties ---------------------------------------------------------------------------------

bool HasObjectDialog(char letter) {
    return letter == 'F' || letter == 'R' || letter == 'W';
}

bool HasPropertiesDialog(const MainContext& context) {
    switch (context.ContextPane) {
        case Pane::ProjectExplorer:
            return HasObjectDialog(SelectedNodeLetter(context));
        case Pane::TaskList:
            return context.window.lvwTasks.Selected() >= 0;
        default:
            return false;
    }
}

void ShowPropertiesDialog(MainContext& context) {
    if (context.ContextPane == Pane::ProjectExplorer) ShowProjectObjectDialog(context);
    if (context.ContextPane == Pane::TaskList) ShowSelectedTask(context);
}

void ShowProjectObjectDialog(MainContext& context) {
    Trap(context.frame.errorLog, kModule, "ShowProjectObjectDialog", [&] {
        const std::string key = context.window.tvwProjectExplorer.SelectedKey();
        switch (SelectedNodeLetter(context)) {
            case 'F':
                EditFolderProperties(context.project, key);
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
    page.NodeClick = [c](const TreeNode& node) { SelectPageNode(*c, std::string(node.key)); };

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
    tasks.ColumnClick = [c](int column) { c->window.lvwTasks.SortBy(column); };
}

}  // namespace pw
