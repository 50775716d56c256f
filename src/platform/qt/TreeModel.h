#pragma once
#include <QAbstractItemModel>

#include "platform/controls/Controls.h"

namespace pw {

/** Shows a TreeView and follows it node by node, so that a tree of 10,000 nodes is never rebuilt
 *  for one of them. Takes the tree's observer's place while it lives. */
class TreeModel : public QAbstractItemModel, public TreeObserver {
    Q_OBJECT
  public:
    TreeModel(TreeView& tree, QObject* parent);
    ~TreeModel() override;

    TreeNode* node(const QModelIndex& index) const;
    QModelIndex indexOf(const TreeNode* node) const;
    /** True while the tree itself is changing: what the view then reports, no user did. */
    bool changing() const { return changing_ > 0; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    void TreeAboutToBeReset() override;
    void TreeReset() override;
    void NodeAboutToBeAdded(TreeNode* parent, std::size_t index) override;
    void NodeAdded() override;
    void NodeAboutToBeRemoved(TreeNode& node) override;
    void NodeRemoved() override;
    void NodeChanged(TreeNode& node) override;
    void NodeSelected(TreeNode* node) override;

  signals:
    void wasReset();
    void nodeAdded(pw::TreeNode* parent);
    void nodeRemoved();
    void nodeChanged(pw::TreeNode* node);
    void nodeSelected(pw::TreeNode* node);

  private:
    const std::vector<TreeNode*>& childrenOf(const QModelIndex& parent) const;
    TreeView& tree_;
    TreeNode* addedTo_ = nullptr;
    int changing_ = 0;
    bool resetting_ = false;
};

}  // namespace pw
