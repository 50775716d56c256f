// Lists and trees.
#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTreeView>

#include "platform/qt/Binding.h"
#include "platform/qt/ListModel.h"
#include "platform/qt/QtText.h"
#include "platform/qt/TreeModel.h"

namespace pw {

namespace {

/** What the mouse and the keyboard do in a list as in a tree. `Model` has the events MouseDown,
 *  MouseUp and DblClick. */
template <typename Model>
class ViewBinding : public Binding {
  public:
    ViewBinding(Control& control, QAbstractItemView& view)
        : Binding(control, view), model_(static_cast<Model&>(control)), view_(view) {
        view_.setContextMenuPolicy(Qt::PreventContextMenu);
        view_.installEventFilter(this);
        view_.viewport()->installEventFilter(this);
        connect(&view_, &QAbstractItemView::pressed, this, [this](const QModelIndex& index) {
            // A press on what is selected already is a click too.
            if (!selectedByPress_) userSelects(index);
        });
        connect(&view_, &QAbstractItemView::doubleClicked, this, [this] { model_.DblClick(); });
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == view_.viewport()) return viewportEvent(event);
        if (event->type() == QEvent::KeyPress) return keyPress(static_cast<QKeyEvent&>(*event));
        if (event->type() == QEvent::ContextMenu) {
            auto& menu = static_cast<QContextMenuEvent&>(*event);
            if (menu.reason() == QContextMenuEvent::Keyboard) rightClick();
            return menu.reason() == QContextMenuEvent::Keyboard;
        }
        return false;
    }

  protected:
    virtual void userSelects(const QModelIndex& index) = 0;

    void followSelection() {
        connect(view_.selectionModel(), &QItemSelectionModel::selectionChanged, this,
                [this](const QItemSelection& selected) {
                    if (showing() || selected.indexes().isEmpty() || programSelects()) return;
                    selectedByPress_ = true;
                    userSelects(selected.indexes().first());
                });
    }
    virtual bool programSelects() const { return false; }

    Model& model_;
    QAbstractItemView& view_;

  private:
    bool viewportEvent(QEvent* event) {
        const bool press = event->type() == QEvent::MouseButtonPress;
        if (!press && event->type() != QEvent::MouseButtonRelease) return false;
        const bool right = static_cast<QMouseEvent*>(event)->button() == Qt::RightButton;
        if (press) {
            selectedByPress_ = false;
            model_.MouseDown(right);
        } else {
            // The view must have had the release before a menu comes up.
            QMetaObject::invokeMethod(
                this, [this, right] { model_.MouseUp(right); }, Qt::QueuedConnection);
        }
        return false;
    }

    bool keyPress(const QKeyEvent& key) {
        const bool enter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
        if (enter && model_.DblClick && view_.currentIndex().isValid()) {
            model_.DblClick();
            return true;
        }
        const bool menu = key.key() == Qt::Key_Menu ||
                          (key.key() == Qt::Key_F10 && key.modifiers() == Qt::ShiftModifier);
        if (menu) rightClick();
        return menu;
    }

    void rightClick() {
        model_.MouseDown(true);
        model_.MouseUp(true);
    }

    bool selectedByPress_ = false;
};

class ListBinding : public ViewBinding<ListView> {
  public:
    ListBinding(Control& control, QAbstractItemView& view)
        : ViewBinding(control, view),
          rows_(model_,
                view.property("checkable").toBool() ? ListModel::Checkable::Yes
                                                    : ListModel::Checkable::No,
                this) {
        view.setModel(&rows_);
        view.setSelectionBehavior(QAbstractItemView::SelectRows);
        view.setSelectionMode(QAbstractItemView::SingleSelection);
        view.setEditTriggers(QAbstractItemView::NoEditTriggers);
        if (auto* tree = qobject_cast<QTreeView*>(&view)) {
            tree->setRootIsDecorated(false);
            tree->setUniformRowHeights(true);
            header_ = tree->header();
        }
        if (header_) {
            header_->setSectionsClickable(true);
            connect(header_, &QHeaderView::sectionClicked, this,
                    [this](int column) { model_.UserColumnClick(column); });
        }
        followSelection();
    }

  protected:
    void userSelects(const QModelIndex& index) override { model_.UserSelect(index.row()); }

    void show(Aspect aspect) override {
        if (aspect == Aspect::Items && !due_) {
            // Rows that come one by one are shown together.
            due_ = true;
            QMetaObject::invokeMethod(
                this, [this] { refresh(); }, Qt::QueuedConnection);
        }
        if (aspect == Aspect::Selection) showSelection();
    }

  private:
    void refresh() {
        if (!due_) return;
        due_ = false;
        rows_.refresh();
        showWidths();
        showOrder();
        showSelection();
    }

    void showWidths() {
        if (!header_ || columnsShown_ == model_.Columns().size()) return;
        columnsShown_ = model_.Columns().size();
        header_->setVisible(columnsShown_ > 0);
        for (std::size_t i = 0; i < columnsShown_; ++i) {
            const int width = model_.Columns()[i].width;
            if (width > 0) header_->resizeSection(int(i), width);
        }
    }

    void showSelection() {
        if (due_) return refresh();
        const bool before = settling_;
        settling_ = true;
        const int row = model_.Selected();
        if (row < 0) {
            view_.selectionModel()->clear();
        } else {
            view_.setCurrentIndex(rows_.index(row, 0));
            view_.scrollTo(rows_.index(row, 0));
        }
        settling_ = before;
    }
    bool programSelects() const override { return settling_; }

    void showOrder() {
        if (!header_ || model_.SortColumn() < 0) return;
        header_->setSortIndicatorShown(true);
        header_->setSortIndicator(model_.SortColumn(), model_.SortDescending()
                                                           ? Qt::DescendingOrder
                                                           : Qt::AscendingOrder);
    }

    ListModel rows_;
    QHeaderView* header_ = nullptr;
    std::size_t columnsShown_ = 0;
    bool due_ = false;
    bool settling_ = false;
};

class TreeBinding : public ViewBinding<TreeView> {
  public:
    TreeBinding(Control& control, QTreeView& view)
        : ViewBinding(control, view), tree_(view), nodes_(model_, this) {
        tree_.setModel(&nodes_);
        tree_.setHeaderHidden(true);
        tree_.setUniformRowHeights(true);
        tree_.setSelectionMode(QAbstractItemView::SingleSelection);
        tree_.setEditTriggers(QAbstractItemView::NoEditTriggers);
        tree_.setExpandsOnDoubleClick(!model_.DblClick);
        connect(&nodes_, &TreeModel::wasReset, this, &TreeBinding::showAllNodes);
        connect(&nodes_, &TreeModel::nodeAdded, this, [this](TreeNode* parent) {
            // A node that is to stand open can do so only with its first child.
            if (parent && parent->expanded && parent->children.size() == 1) showExpanded(parent);
        });
        connect(&nodes_, &TreeModel::nodeRemoved, this, [this] { showSelection(); });
        connect(&nodes_, &TreeModel::nodeChanged, this, &TreeBinding::showExpanded);
        connect(&nodes_, &TreeModel::nodeSelected, this, [this] { showSelection(); });
        connect(&tree_, &QTreeView::expanded, this,
                [this](const QModelIndex& index) { userExpands(index, true); });
        connect(&tree_, &QTreeView::collapsed, this,
                [this](const QModelIndex& index) { userExpands(index, false); });
        followSelection();
        showAllNodes();
    }

  protected:
    void show(Aspect) override {}
    bool programSelects() const override { return settling_ || nodes_.changing(); }
    void userSelects(const QModelIndex& index) override {
        if (const TreeNode* node = nodes_.node(index)) model_.UserSelect(std::string(node->key));
    }

  private:
    void userExpands(const QModelIndex& index, bool expanded) {
        TreeNode* node = nodes_.node(index);
        if (node && !programSelects()) model_.UserExpand(*node, expanded);
    }

    void showAllNodes() {
        settling_ = true;
        std::vector<TreeNode*> waiting(model_.Roots());
        while (!waiting.empty()) {
            TreeNode* node = waiting.back();
            waiting.pop_back();
            if (node->children.empty()) continue;
            if (node->expanded) tree_.setExpanded(nodes_.indexOf(node), true);
            waiting.insert(waiting.end(), node->children.begin(), node->children.end());
        }
        settling_ = false;
        showSelection();
    }

    void showExpanded(TreeNode* node) {
        const bool before = settling_;
        settling_ = true;
        tree_.setExpanded(nodes_.indexOf(node), node->expanded);
        settling_ = before;
    }

    void showSelection() {
        const TreeNode* selected = model_.Selected();
        if (selected && nodes_.node(tree_.currentIndex()) == selected) return;
        const bool before = settling_;
        settling_ = true;
        const QModelIndex index = nodes_.indexOf(selected);
        if (index.isValid()) {
            tree_.setCurrentIndex(index);
            tree_.scrollTo(index);
        } else {
            tree_.selectionModel()->clear();
        }
        settling_ = before;
    }

    QTreeView& tree_;
    TreeModel nodes_;
    bool settling_ = false;
};

}  // namespace

std::unique_ptr<Binding> makeListBinding(Control& control, QWidget& widget) {
    auto* view = qobject_cast<QAbstractItemView*>(&widget);
    // The list box has no model of its own yet: it would be a list view of one column.
    if (!view || control.Kind() != ControlKind::ListView) return nullptr;
    return std::make_unique<ListBinding>(control, *view);
}

std::unique_ptr<Binding> makeTreeBinding(Control& control, QWidget& widget) {
    auto* view = qobject_cast<QTreeView*>(&widget);
    return view ? std::make_unique<TreeBinding>(control, *view) : nullptr;
}

}  // namespace pw
