#include "mainwindow/PageTree.h"

#include <algorithm>
#include <optional>

#include "frame/Context.h"
#include "mainwindow/PageNodes.h"
#include "mainwindow/frmDocument.h"

namespace pw {

namespace {

/** Beyond this many places a new tree is quicker. */
constexpr std::size_t kManyChanges = 200;
/** The view lays itself out anew with each node that goes. */
constexpr std::size_t kManyRemovals = 16;

dom::Node* FirstBody(const dom::Document& document) {
    for (dom::Node* element : document.all()) {
        if (element->is("body") || element->is("frameset")) return element;
    }
    return nullptr;
}

}  // namespace

// --- The page -----------------------------------------------------------------------------------

void PageTree::Follow(frmDocument& page) {
    if (page_ == &page) return;
    Leave();
    page_ = &page;
    tree_.tag = page.PageKey();
    HtmlEditor& editor = page.docDHTMLEditor;
    editor.PrimitiveApplied = [this](const dom::Change& change) { TakeNote(change); };
    editor.DocumentReplaced = [this] {
        stale_ = true;
        root_ = nullptr;  // the numbers are those of other elements from here on
        nodes_.clear();
    };
}

void PageTree::Leave() {
    if (page_) {
        page_->docDHTMLEditor.PrimitiveApplied = nullptr;
        page_->docDHTMLEditor.DocumentReplaced = nullptr;
    }
    page_ = nullptr;
    stale_ = true;
}

void PageTree::Clear() {
    if (root_) {
        for (const TreeNode* node : tree_.Roots())
            KeepExpanded(*node);
    }
    Leave();
    nodes_.clear();
    root_ = nullptr;
    tree_.Clear();
    tree_.tag.clear();
}

void PageTree::Forget(const frmDocument& page) {
    if (page_ == &page) Leave();
}

void PageTree::TakeNote(const dom::Change& change) {
    using Kind = dom::Change::Kind;
    if (stale_) return;
    switch (change.kind) {
        case Kind::InsertNode:
        case Kind::RemoveNode:
            if (change.node->isText()) return;
            moved_ = true;
            if (change.parent) parents_.insert(change.parent->id());
            break;
        case Kind::SetAttribute:
            changed_.insert(change.node->id());
            break;
        case Kind::SetText:
        case Kind::ReplaceText:
            if (change.node->isComment()) changed_.insert(change.node->id());
            break;
        case Kind::ReplaceSource:
            break;
    }
    stale_ = parents_.size() + changed_.size() > kManyChanges;
}

// --- Updates ------------------------------------------------------------------------------------

void PageTree::Update(frmDocument& page) {
    if (page_ != &page) Clear();
    Follow(page);
    const dom::Document& document = page.Document();
    const bool sameBody = !moved_ || FirstBody(document) == root_;
    if (stale_ || !sameBody || comments_ != context_.settings.ShowCommentsInExplorer) {
        Rebuild();
    } else {
        if (!parents_.empty()) Reconcile();
        if (moved_) Renumber();
        for (const dom::NodeId id : changed_) {
            const auto found = nodes_.find(id);
            if (found == nodes_.end()) continue;
            TreeNode look = MakePageNode(context_, document, *document.node(id));
            tree_.SetNodeLook(*found->second, std::move(look.text), look.image);
        }
    }
    stale_ = moved_ = false;
    parents_.clear();
    changed_.clear();
}

void PageTree::Rebuild() {
    dom::NodeId selected = 0;
    if (root_) {
        if (tree_.Selected()) selected = dom::NodeId(tree_.Selected()->id);
        for (const TreeNode* node : tree_.Roots())
            KeepExpanded(*node);
    }
    {
        const TreeUpdate update(tree_);
        tree_.Clear();
        nodes_.clear();
        comments_ = context_.settings.ShowCommentsInExplorer;
        root_ = FirstBody(page_->Document());
        if (root_) Add(nullptr, *root_, -1);
        Renumber();
    }
    const auto found = nodes_.find(selected);
    if (found != nodes_.end()) tree_.SetSelected(found->second->key);
}

void PageTree::Reconcile() {
    const dom::Document& document = page_->Document();
    std::vector<const dom::Node*> owners;
    std::vector<TreeNode*> strays;
    for (const dom::NodeId id : parents_) {
        const dom::Node* owner = OwnerOf(document.node(id));
        if (!owner || std::find(owners.begin(), owners.end(), owner) != owners.end()) continue;
        owners.push_back(owner);
        const auto found = Strays(*owner);
        strays.insert(strays.end(), found.begin(), found.end());
    }
    std::optional<TreeUpdate> update;
    if (strays.size() > kManyRemovals) update.emplace(tree_);
    // First all that go: what moved from one to the other comes back in its new place. A stray may
    // go with another that is around it, so they are looked up again.
    std::vector<dom::NodeId> going;
    for (const TreeNode* stray : strays)
        going.push_back(dom::NodeId(stray->id));
    for (const dom::NodeId id : going) {
        const auto found = nodes_.find(id);
        if (found != nodes_.end()) Remove(*found->second);
    }
    for (const dom::Node* owner : owners)
        AddMissing(*owner);
}

const dom::Node* PageTree::OwnerOf(const dom::Node* parent) const {
    if (!page_->Document().isConnected(parent)) return nullptr;
    const dom::Node* owner = parent;
    while (owner && !IsShown(*owner))
        owner = owner->parent();
    // What stands behind the body is shown in it.
    if (!owner) owner = root_;
    return owner && nodes_.count(owner->id()) ? owner : nullptr;
}

bool PageTree::IsShown(const dom::Node& node) const {
    return (node.isElement() || node.isComment()) && IsShownInExplorer(context_, node);
}

std::vector<const dom::Node*> PageTree::ShownBelow(const dom::Node& owner) const {
    const dom::Node* scope = &owner == root_ ? nullptr : &owner;
    std::vector<const dom::Node*> shown;
    for (const dom::Node* node = owner.following(scope); node;) {
        const bool has = IsShown(*node);
        if (has) shown.push_back(node);
        node = has ? node->followingSkippingChildren(scope) : node->following(scope);
    }
    return shown;
}

std::vector<TreeNode*> PageTree::Strays(const dom::Node& owner) const {
    std::unordered_set<std::uint64_t> wanted;
    for (const dom::Node* element : ShownBelow(owner))
        wanted.insert(element->id());
    std::vector<TreeNode*> strays;
    for (TreeNode* child : nodes_.at(owner.id())->children) {
        if (!wanted.count(child->id)) strays.push_back(child);
    }
    return strays;
}

void PageTree::AddMissing(const dom::Node& owner) {
    const auto found = nodes_.find(owner.id());
    if (found == nodes_.end()) return;  // gone with one that was around it
    TreeNode& node = *found->second;
    std::size_t place = 0;
    for (const dom::Node* element : ShownBelow(owner)) {
        const bool stands =
            place < node.children.size() && node.children[place]->id == element->id();
        if (!stands) {
            // In another place, where the order has changed.
            if (TreeNode* elsewhere = Find(*element)) Remove(*elsewhere);
            Add(&node, *element, int(place));
        }
        ++place;
    }
}

void PageTree::Add(TreeNode* parent, const dom::Node& element, int index) {
    TreeNode node = MakePageNode(context_, page_->Document(), element);
    // The keys of the others are those of before; all are renewed at the end.
    node.key = "#" + std::to_string(element.id());
    node.expanded = !parent || page_->ExpandedNodes.count(element.id()) > 0;
    TreeNode* added = tree_.Add(parent ? parent->key : "", std::move(node), index);
    if (!added) return;
    nodes_[element.id()] = added;
    for (const dom::Node* child : ShownBelow(element))
        Add(added, *child, -1);
}

void PageTree::Remove(TreeNode& node) {
    KeepExpanded(node);
    std::vector<const TreeNode*> going{&node};
    while (!going.empty()) {
        const TreeNode* each = going.back();
        going.pop_back();
        nodes_.erase(dom::NodeId(each->id));
        going.insert(going.end(), each->children.begin(), each->children.end());
    }
    tree_.Remove(std::string(node.key));
}

void PageTree::Renumber() {
    const dom::Document& document = page_->Document();
    tree_.RenewKeys([&document](const TreeNode& node) {
        return PageNodeKey(document.sourceIndex(document.node(dom::NodeId(node.id))));
    });
}

// --- Nodes --------------------------------------------------------------------------------------

void PageTree::KeepExpanded(const TreeNode& node) {
    if (!page_) return;
    std::vector<const TreeNode*> open{&node};
    while (!open.empty()) {
        const TreeNode* each = open.back();
        open.pop_back();
        if (each->children.empty()) continue;
        if (each->expanded) {
            page_->ExpandedNodes.insert(dom::NodeId(each->id));
        } else {
            page_->ExpandedNodes.erase(dom::NodeId(each->id));
        }
        open.insert(open.end(), each->children.begin(), each->children.end());
    }
}

TreeNode* PageTree::Find(const dom::Node& element) const {
    const auto found = nodes_.find(element.id());
    return found == nodes_.end() ? nullptr : found->second;
}

dom::Node* PageTree::ElementOf(const TreeNode& node) const {
    if (!page_) return nullptr;
    const dom::Document& document = page_->Document();
    dom::Node* element = document.node(dom::NodeId(node.id));
    return document.isConnected(element) ? element : nullptr;
}

}  // namespace pw
