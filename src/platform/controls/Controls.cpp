#include "platform/controls/Controls.h"

#include "platform/Text.h"
#include "platform/controls/Dialog.h"

#include <utf8proc.h>

namespace pw {

// --- TextBox ------------------------------------------------------------------------------------

void TextBox::SetText(std::string text) {
    if (text_ == text) return;
    text_ = std::move(text);
    selStart_ = std::min(selStart_, text_.size());
    selLength_ = std::min(selLength_, text_.size() - selStart_);
    Notify(Aspect::Text);
    Change();
}

void TextBox::SelectAll() {
    Select(0, text_.size());
}

void TextBox::Select(std::size_t start, std::size_t length) {
    selStart_ = std::min(start, text_.size());
    selLength_ = std::min(length, text_.size() - selStart_);
    Notify(Aspect::TextSelection);
}

bool TextBox::AcceptsKey(int code) {
    if (!KeyPress) return true;
    KeyPress(code);
    return code != 0;
}

void TextBox::UserSetText(const std::string& text) {
    if (!Enabled() || readOnly) return;
    std::string accepted;
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    std::size_t at = 0;
    int characters = 0;
    while (at < text.size()) {
        utf8proc_int32_t code = 0;
        const auto used = std::max<utf8proc_ssize_t>(
            1, utf8proc_iterate(bytes + at, utf8proc_ssize_t(text.size() - at), &code));
        const bool known = text_.find(text.substr(at, std::size_t(used))) != std::string::npos;
        const bool room = maxLength == 0 || characters < maxLength;
        if (room && (known || AcceptsKey(code))) {
            accepted.append(text, at, std::size_t(used));
            ++characters;
        }
        at += std::size_t(used);
    }
    const bool refused = accepted != text;
    SetText(std::move(accepted));
    // The widget shows what was typed: it must be told even where the model did not change.
    if (refused) Notify(Aspect::Text);
}

// --- CheckBox, OptionButton ---------------------------------------------------------------------

void CheckBox::SetChecked(bool checked) {
    if (checked_ == checked) return;
    checked_ = checked;
    Notify(Aspect::Checked);
    Change();
}

void CheckBox::UserSetChecked(bool checked) {
    if (!Enabled()) return;
    SetChecked(checked);
    Click();
}

OptionButton::OptionButton(ControlOwner* owner, std::string name)
    : Control(owner, std::move(name), ControlKind::OptionButton), owner_(owner) {
    group = Name().substr(0, Name().find('_'));
}

void OptionButton::SetChecked(bool checked) {
    if (checked_ == checked) return;
    checked_ = checked;
    if (checked) {
        for (Control* control : owner_->Controls()) {
            if (control == this || control->Kind() != ControlKind::OptionButton) continue;
            auto& other = static_cast<OptionButton&>(*control);
            if (other.group == group) other.SetChecked(false);
        }
    }
    Notify(Aspect::Checked);
    Change();
}

void OptionButton::UserClick() {
    if (!Enabled()) return;
    SetChecked(true);
    Click();
}

// --- ComboBox -----------------------------------------------------------------------------------

void ComboBox::SetItems(std::vector<std::string> items) {
    if (items_ == items) return;
    items_ = std::move(items);
    Notify(Aspect::Items);
    SetText(std::string(text_));
}

void ComboBox::AddItem(std::string item) {
    items_.push_back(std::move(item));
    Notify(Aspect::Items);
}

void ComboBox::Clear() {
    items_.clear();
    listIndex_ = -1;
    Notify(Aspect::Items);
    if (!text_.empty()) {
        text_.clear();
        Notify(Aspect::Selection);
        Change();
    }
}

void ComboBox::SetListIndex(int index) {
    if (index < 0 || index >= int(items_.size())) index = -1;
    std::string text = index < 0 ? std::string() : items_[std::size_t(index)];
    if (listIndex_ == index && text_ == text) return;
    listIndex_ = index;
    text_ = std::move(text);
    Notify(Aspect::Selection);
    Change();
}

void ComboBox::SetText(const std::string& text) {
    const auto exact = std::find(items_.begin(), items_.end(), text);
    if (exact != items_.end()) return SetListIndex(int(exact - items_.begin()));
    for (std::size_t i = 0; i < items_.size() && !editable_; ++i) {
        if (EqualsNoCase(items_[i], text)) return SetListIndex(int(i));
    }
    const std::string kept = editable_ ? text : std::string();
    if (listIndex_ == -1 && text_ == kept) return;
    listIndex_ = -1;
    text_ = kept;
    Notify(Aspect::Selection);
    Change();
}

// --- Values -------------------------------------------------------------------------------------

void UpDown::SetValue(int value) {
    value = std::clamp(value, minimum, maximum);
    if (value_ == value) return;
    value_ = value;
    Notify(Aspect::Value);
    Change();
}

void DatePicker::SetValue(double value) {
    if (value_ == value) return;
    value_ = value;
    Notify(Aspect::Value);
    Change();
}

void ProgressBar::SetValue(int value) {
    value = std::clamp(value, 0, 100);
    if (value_ == value) return;
    value_ = value;
    Notify(Aspect::Value);
}

void ColorBox::SetValue(Color value) {
    if (value_ == value) return;
    value_ = value;
    Notify(Aspect::Color);
    Change();
}

void PictureBox::SetFilename(std::string filename) {
    filename_ = std::move(filename);
    Notify(Aspect::Picture);
}

void TabStrip::SetSelected(int index) {
    if (selected_ == index) return;
    selected_ = index;
    Notify(Aspect::Selection);
}

void TabStrip::UserSelect(int index) {
    if (selected_ == index) return;
    SetSelected(index);
    Click();
}

// --- ListView -----------------------------------------------------------------------------------

void ListView::SetColumns(std::vector<ListColumn> columns) {
    columns_ = std::move(columns);
    Notify(Aspect::Items);
}

void ListView::Add(ListRow row) {
    rows_.push_back(std::move(row));
    Notify(Aspect::Items);
}

void ListView::SetRow(int index, ListRow row) {
    rows_.at(std::size_t(index)) = std::move(row);
    Notify(Aspect::Items);
}

void ListView::Remove(int index) {
    if (index < 0 || index >= int(rows_.size())) return;
    rows_.erase(rows_.begin() + index);
    if (selected_ >= int(rows_.size())) selected_ = int(rows_.size()) - 1;
    Notify(Aspect::Items);
}

void ListView::Clear() {
    rows_.clear();
    source_ = nullptr;
    selected_ = -1;
    Notify(Aspect::Items);
}

void ListView::SetSource(int count, std::function<ListRow(int)> source) {
    rows_.clear();
    sourceCount_ = count;
    source_ = std::move(source);
    selected_ = -1;
    Notify(Aspect::Items);
}

void ListView::SetSelected(int index) {
    if (index < -1 || index >= Count()) index = -1;
    if (selected_ == index) return;
    selected_ = index;
    Notify(Aspect::Selection);
}

int ListView::FindKey(const std::string& key) const {
    for (int i = 0; i < Count(); ++i) {
        if (Row(i).key == key) return i;
    }
    return -1;
}

void ListView::SortBy(int column) {
    descending_ = column == sortColumn_ && !descending_;
    sortColumn_ = column;
    SortAgain();
}

void ListView::SortAgain() {
    if (sortColumn_ < 0) return;
    const auto column = std::size_t(sortColumn_);
    const bool numeric = column < columns_.size() && columns_[column].numeric;
    const auto text = [column](const ListRow& row) {
        return column < row.cells.size() ? row.cells[column] : std::string();
    };
    const auto number = [&](const ListRow& row) {
        const auto found = row.order.find(sortColumn_);
        return found == row.order.end() ? Val(text(row)) : found->second;
    };
    const auto isBefore = [&](const ListRow& a, const ListRow& b) {
        if (numeric || a.order.count(sortColumn_) > 0) return number(a) < number(b);
        return FoldCase(text(a)) < FoldCase(text(b));
    };
    const std::string selectedKey = selected_ >= 0 ? Row(selected_).key : std::string();
    std::stable_sort(rows_.begin(), rows_.end(), [&](const ListRow& a, const ListRow& b) {
        return descending_ ? isBefore(b, a) : isBefore(a, b);
    });
    if (!selectedKey.empty()) selected_ = FindKey(selectedKey);
    Notify(Aspect::Items);
}

void ListView::UserColumnClick(int column) {
    if (ColumnClick) {
        ColumnClick(column);
    } else {
        SortBy(column);
    }
}

void ListView::UserSelect(int index) {
    SetSelected(index);
    if (selected_ >= 0) ItemClick(selected_);
}

void ListView::UserCheck(int index, bool checked) {
    rows_.at(std::size_t(index)).checked = checked;
    Notify(Aspect::Items);
    ItemCheck(index);
}

// --- TreeView -----------------------------------------------------------------------------------

std::size_t TreeNode::IndexAmong(const std::vector<TreeNode*>& siblings) const {
    if (place_ >= siblings.size() || siblings[place_] != this) {
        const auto at = std::find(siblings.begin(), siblings.end(), this);
        place_ = std::size_t(at - siblings.begin());
    }
    return place_;
}

TreeNode* TreeView::Add(const std::string& parentKey, TreeNode node, int index) {
    TreeNode* parent = parentKey.empty() ? nullptr : Find(parentKey);
    if ((!parentKey.empty() && !parent) || Find(node.key)) return nullptr;
    auto& siblings = parent ? parent->children : roots_;
    const std::size_t at =
        index < 0 || std::size_t(index) > siblings.size() ? siblings.size() : std::size_t(index);
    const bool tell = treeObserver_ && updating_ == 0;
    if (tell) treeObserver_->NodeAboutToBeAdded(parent, at);
    auto owned = std::make_unique<TreeNode>(std::move(node));
    owned->parent = parent;
    owned->children.clear();
    TreeNode* added = owned.get();
    siblings.insert(siblings.begin() + std::ptrdiff_t(at), added);
    byKey_.emplace(added->key, std::move(owned));
    if (tell) treeObserver_->NodeAdded();
    return added;
}

void TreeView::Drop(TreeNode& node) {
    for (TreeNode* child : std::vector<TreeNode*>(node.children))
        Drop(*child);
    if (selected_ == &node) selected_ = nullptr;
    byKey_.erase(std::string(node.key));
}

void TreeView::Remove(const std::string& key) {
    TreeNode* node = Find(key);
    if (!node) return;
    const bool tell = treeObserver_ && updating_ == 0;
    if (tell) treeObserver_->NodeAboutToBeRemoved(*node);
    auto& siblings = node->parent ? node->parent->children : roots_;
    siblings.erase(std::find(siblings.begin(), siblings.end(), node));
    Drop(*node);
    if (tell) treeObserver_->NodeRemoved();
}

void TreeView::Clear() {
    BeginUpdate();
    roots_.clear();
    byKey_.clear();
    selected_ = nullptr;
    EndUpdate();
}

void TreeView::BeginUpdate() {
    if (updating_++ == 0 && treeObserver_) treeObserver_->TreeAboutToBeReset();
}

void TreeView::EndUpdate() {
    if (--updating_ == 0 && treeObserver_) treeObserver_->TreeReset();
}

TreeNode* TreeView::Find(const std::string& key) const {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? nullptr : found->second.get();
}

void TreeView::RenewKeys(const std::function<std::string(const TreeNode&)>& keyOf) {
    decltype(byKey_) renewed;
    renewed.reserve(byKey_.size());
    while (!byKey_.empty()) {
        auto handle = byKey_.extract(byKey_.begin());
        handle.mapped()->key = keyOf(*handle.mapped());
        handle.key() = handle.mapped()->key;
        renewed.insert(std::move(handle));
    }
    byKey_ = std::move(renewed);
}

void TreeView::SetNodeText(TreeNode& node, std::string text) {
    SetNodeLook(node, std::move(text), node.image);
}

void TreeView::SetNodeLook(TreeNode& node, std::string text, int image) {
    if (node.text == text && node.image == image) return;
    node.text = std::move(text);
    node.image = image;
    if (treeObserver_ && updating_ == 0) treeObserver_->NodeChanged(node);
}

void TreeView::SetExpanded(TreeNode& node, bool expanded) {
    if (node.expanded == expanded) return;
    node.expanded = expanded;
    if (treeObserver_ && updating_ == 0) treeObserver_->NodeChanged(node);
}

void TreeView::SetSelected(const std::string& key) {
    TreeNode* node = key.empty() ? nullptr : Find(key);
    if (node == selected_) return;
    selected_ = node;
    if (treeObserver_ && updating_ == 0) treeObserver_->NodeSelected(node);
}

void TreeView::UserSelect(const std::string& key) {
    SetSelected(key);
    if (selected_) NodeClick(*selected_);
}

void TreeView::UserExpand(TreeNode& node, bool expanded) {
    if (node.expanded == expanded) return;
    node.expanded = expanded;
    ExpandedChanged(node);
}

// --- Dialog -------------------------------------------------------------------------------------

void Dialog::SetTitle(std::string title) {
    if (title_ == title) return;
    title_ = std::move(title);
    if (onTitleChanged) onTitleChanged();
}

void Dialog::Close() {
    if (!open_) return;
    open_ = false;
    // A copy: whoever closes the window may take the handler away meanwhile.
    if (const auto close = onClose) close();
}

}  // namespace pw
