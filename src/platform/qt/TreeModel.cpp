#include "platform/qt/TreeModel.h"

#include <QFont>

#include <algorithm>

#include "platform/qt/ImageList.h"
#include "platform/qt/QtText.h"

namespace pw {

TreeModel::TreeModel(TreeView& tree, QObject* parent) : QAbstractItemModel(parent), tree_(tree) {
    tree_.SetTreeObserver(this);
}

TreeModel::~TreeModel() {
    tree_.SetTreeObserver(nullptr);
}

TreeNode* TreeModel::node(const QModelIndex& index) const {
    if (!index.isValid() || resetting_) return nullptr;
    return static_cast<TreeNode*>(index.internalPointer());
}

const std::vector<TreeNode*>& TreeModel::childrenOf(const QModelIndex& parent) const {
    const TreeNode* owner = node(parent);
    return owner ? owner->children : tree_.Roots();
}

QModelIndex TreeModel::indexOf(const TreeNode* node) const {
    if (!node || resetting_) return {};
    const auto& siblings = node->parent ? node->parent->children : tree_.Roots();
    const std::size_t at = node->IndexAmong(siblings);
    return at < siblings.size() ? createIndex(int(at), 0, node) : QModelIndex();
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (resetting_ || row < 0 || column != 0) return {};
    const auto& siblings = childrenOf(parent);
    if (std::size_t(row) >= siblings.size()) return {};
    return createIndex(row, column, siblings[std::size_t(row)]);
}

QModelIndex TreeModel::parent(const QModelIndex& index) const {
    const TreeNode* child = node(index);
    return child ? indexOf(child->parent) : QModelIndex();
}

int TreeModel::rowCount(const QModelIndex& parent) const {
    return resetting_ ? 0 : int(childrenOf(parent).size());
}

int TreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

QVariant TreeModel::data(const QModelIndex& index, int role) const {
    const TreeNode* shown = node(index);
    if (!shown) return {};
    switch (role) {
        case Qt::DisplayRole:
            return toQt(shown->text);
        case Qt::DecorationRole: {
            const bool open = shown->expanded && shown->expandedImage != 0;
            const int image = open ? shown->expandedImage : shown->image;
            return image != 0 ? QVariant(imageIcon(image)) : QVariant();
        }
        case Qt::FontRole: {
            if (!shown->bold) return {};
            QFont font;
            font.setBold(true);
            return font;
        }
        default:
            return {};
    }
}

void TreeModel::TreeAboutToBeReset() {
    ++changing_;
    beginResetModel();
    resetting_ = true;
}

void TreeModel::TreeReset() {
    if (!resetting_) TreeAboutToBeReset();  // this model came while an update was under way
    resetting_ = false;
    endResetModel();
    emit wasReset();
    --changing_;
}

void TreeModel::NodeAboutToBeAdded(TreeNode* parent, std::size_t index) {
    ++changing_;
    addedTo_ = parent;
    beginInsertRows(indexOf(parent), int(index), int(index));
}

void TreeModel::NodeAdded() {
    endInsertRows();
    emit nodeAdded(addedTo_);
    --changing_;
}

void TreeModel::NodeAboutToBeRemoved(TreeNode& node) {
    ++changing_;
    const QModelIndex at = indexOf(&node);
    beginRemoveRows(indexOf(node.parent), at.row(), at.row());
}

void TreeModel::NodeRemoved() {
    endRemoveRows();
    emit nodeRemoved();
    --changing_;
}

void TreeModel::NodeChanged(TreeNode& node) {
    ++changing_;
    const QModelIndex at = indexOf(&node);
    emit dataChanged(at, at);
    emit nodeChanged(&node);
    --changing_;
}

void TreeModel::NodeSelected(TreeNode* node) {
    ++changing_;
    emit nodeSelected(node);
    --changing_;
}

}  // namespace pw
