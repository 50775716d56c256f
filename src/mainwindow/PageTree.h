#pragma once
// The tree of the page explorer. It is built once when a page comes to the front, and from then on
// takes note of what changes in the page's document; an update touches only what the changes
// concern. A text that is typed concerns nothing.
//
// A node of the tree knows its element by the element's own number (`TreeNode::id`), which stays.
// Its key tells the element's place in the source and is renewed whenever elements come or go.
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/controls/Controls.h"
#include "platform/dom/Document.h"

namespace pw {

struct FrameContext;
class frmDocument;

class PageTree {
  public:
    /** Both must outlive it. */
    PageTree(const FrameContext& context, TreeView& tree) : context_(context), tree_(tree) {}
    ~PageTree() { Leave(); }
    PageTree(const PageTree&) = delete;
    PageTree& operator=(const PageTree&) = delete;

    /** Brings the tree in step with that page, which must be ready. */
    void Update(frmDocument& page);
    /** Empties the tree, and remembers in the page which nodes stood open. */
    void Clear();
    /** The page closes. */
    void Forget(const frmDocument& page);

    /** None for elements that have no node. */
    TreeNode* Find(const dom::Node& element) const;
    /** The element of a node; none when the page no longer has it. */
    dom::Node* ElementOf(const TreeNode& node) const;

  private:
    void Follow(frmDocument& page);
    void Leave();
    void TakeNote(const dom::Change& change);
    void Rebuild();
    void Reconcile();
    void Renumber();
    bool IsShown(const dom::Node& node) const;
    /** The element in whose node the changes below `parent` are seen; none when it has no node. */
    const dom::Node* OwnerOf(const dom::Node* parent) const;
    std::vector<const dom::Node*> ShownBelow(const dom::Node& owner) const;
    std::vector<TreeNode*> Strays(const dom::Node& owner) const;
    void AddMissing(const dom::Node& owner);
    void Add(TreeNode* parent, const dom::Node& element, int index);
    void Remove(TreeNode& node);
    void KeepExpanded(const TreeNode& node);

    const FrameContext& context_;
    TreeView& tree_;
    frmDocument* page_ = nullptr;
    const dom::Node* root_ = nullptr;  ///< BODY, or the FRAMESET in its place
    std::unordered_map<dom::NodeId, TreeNode*> nodes_;

    // What happened since the last update.
    bool stale_ = true;  ///< too much: the whole tree is to be made anew
    bool moved_ = false;
    bool comments_ = false;                    ///< comments have nodes in the tree as it stands
    std::unordered_set<dom::NodeId> parents_;  ///< whose children came or went
    std::unordered_set<dom::NodeId> changed_;  ///< whose attributes or text are others
};

}  // namespace pw
