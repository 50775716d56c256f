#pragma once
// The kinds of control that dialogs are made of.
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/DialogHost.h"
#include "platform/controls/Control.h"

namespace pw {

class Label : public Control {
  public:
    Label(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::Label) {}
};

/** A box around others: hiding or disabling it does so to all in it. */
class Frame : public Control {
  public:
    Frame(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::Frame) {}
};

class Button : public Control {
  public:
    Button(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::Button) {}
    Event<> Click{this, "Click"};
    /** A press by the user; nothing happens while disabled or hidden. */
    void UserClick() {
        if (Enabled() && Visible()) Click();
    }
};

enum class TextStyle { Plain, Password, Path };

/** One or more lines of text; lines end with CR LF, whatever the widget uses. */
class TextBox : public Control {
  public:
    TextBox(ControlOwner* owner, std::string name, TextStyle style = TextStyle::Plain)
        : Control(owner, std::move(name), ControlKind::TextBox), style_(style) {}

    const std::string& Text() const { return text_; }
    void SetText(std::string text);
    TextStyle Style() const { return style_; }
    int maxLength = 0;  ///< characters; 0 is without limit
    bool readOnly = false;
    void SelectAll();
    std::size_t SelStart() const { return selStart_; }
    std::size_t SelLength() const { return selLength_; }
    void Select(std::size_t start,
                std::size_t length);  ///< bytes; by program, for the view to show
    void UserSelected(std::size_t start, std::size_t length) {
        selStart_ = start;
        selLength_ = length;
    }

    Event<> Change{this, "Change"};
    Event<> LostFocus{this, "LostFocus"};
    /** May set the code to 0 to refuse the character. Codes are Unicode, 8 is backspace. */
    Event<int&> KeyPress{this, "KeyPress"};
    /** Typing or pasting by the user: each character passes KeyPress; what is refused is left out.
     */
    void UserSetText(const std::string& text);
    bool AcceptsKey(int code);

  private:
    std::string text_;
    TextStyle style_;
    std::size_t selStart_ = 0;
    std::size_t selLength_ = 0;
};

class CheckBox : public Control {
  public:
    CheckBox(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::CheckBox) {}
    bool Checked() const { return checked_; }
    void SetChecked(bool checked);
    Event<> Change{this, "Change"};
    Event<> Click{this, "Click"};
    void UserSetChecked(bool checked);

  private:
    bool checked_ = false;
};

/** One of several; those of one group name exclude each other. */
class OptionButton : public Control {
  public:
    OptionButton(ControlOwner* owner, std::string name);
    bool Checked() const { return checked_; }
    void SetChecked(bool checked);
    std::string group;  ///< default: the name without its number
    Event<> Change{this, "Change"};
    Event<> Click{this, "Click"};
    void UserClick();

  private:
    ControlOwner* owner_;
    bool checked_ = false;
};

class ComboBox : public Control {
  public:
    ComboBox(ControlOwner* owner, std::string name, bool editable = false)
        : Control(owner, std::move(name), ControlKind::ComboBox), editable_(editable) {}
    bool Editable() const { return editable_; }
    const std::vector<std::string>& Items() const { return items_; }
    void SetItems(std::vector<std::string> items);
    void AddItem(std::string item);
    void Clear();
    int ListIndex() const { return listIndex_; }  ///< -1: none
    void SetListIndex(int index);
    /** The chosen item, or what was typed. */
    const std::string& Text() const { return text_; }
    /** Chooses the item of that text. Else an editable box keeps it as typed text; another one
     *  chooses the item that differs in case alone, or none. */
    void SetText(const std::string& text);
    Event<> Change{this, "Change"};
    void UserSelect(int index) {
        if (Enabled()) SetListIndex(index);
    }
    void UserSetText(const std::string& text) {
        if (Enabled() && editable_) SetText(text);
    }

  private:
    bool editable_;
    std::vector<std::string> items_;
    int listIndex_ = -1;
    std::string text_;
};

/** Number with arrows beside it. */
class UpDown : public Control {
  public:
    UpDown(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::UpDown) {}
    int Value() const { return value_; }
    void SetValue(int value);
    int minimum = 0;
    int maximum = 100;
    Event<> Change{this, "Change"};

  private:
    int value_ = 0;
};

/** A day without a time, or none where the box in front of it is not ticked. */
class DatePicker : public Control {
  public:
    DatePicker(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::DatePicker) {}
    /** A day count from 1899-12-30; 0 is no date. */
    double Value() const { return value_; }
    void SetValue(double value);
    Event<> Change{this, "Change"};

  private:
    double value_ = 0;
};

class ProgressBar : public Control {
  public:
    ProgressBar(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::ProgressBar) {}
    int Value() const { return value_; }
    void SetValue(int value);  ///< clamped to 0 … 100

  private:
    int value_ = 0;
};

/** A swatch that shows a colour and opens the picker when pressed. */
class ColorBox : public Control {
  public:
    ColorBox(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::ColorBox) {}
    Color Value() const { return value_; }
    void SetValue(Color value);
    Event<> Change{this, "Change"};
    Event<> Click{this, "Click"};
    void UserClick() {
        if (Enabled() && Visible()) Click();
    }

  private:
    Color value_ = 0;
};

/** A picture from a file, or drawn by the skin from its tag. */
class PictureBox : public Control {
  public:
    PictureBox(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::Picture) {}
    const std::string& Filename() const { return filename_; }
    void SetFilename(std::string filename);

  private:
    std::string filename_;
};

class TabStrip : public Control {
  public:
    TabStrip(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::TabStrip) {}
    int Selected() const { return selected_; }
    void SetSelected(int index);
    Event<> Click{this, "Click"};
    void UserSelect(int index);

  private:
    int selected_ = 0;
};

struct ListRow {
    std::string key;
    std::vector<std::string> cells;
    int image = 0;  ///< number in the main image list; 0: none
    std::string tag;
    bool checked = false;
    bool dimmed = false;  ///< done with, or not to be had
    /** By column: the number to sort by where the text would sort wrongly, as that of a date. */
    std::map<int, double> order;
};

struct ListColumn {
    std::string caption;
    int width = 0;         ///< pixels; 0 leaves the form's own
    bool numeric = false;  ///< set to the right and sorted as numbers
};

class ListView : public Control {
  public:
    ListView(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::ListView) {}
    const std::vector<ListColumn>& Columns() const { return columns_; }
    void SetColumns(std::vector<ListColumn> columns);
    int Count() const { return source_ ? sourceCount_ : int(rows_.size()); }
    ListRow Row(int index) const { return source_ ? source_(index) : rows_.at(std::size_t(index)); }
    void Add(ListRow row);
    void SetRow(int index, ListRow row);
    void Remove(int index);
    void Clear();
    /** Long lists: rows are made when they are looked at. */
    void SetSource(int count, std::function<ListRow(int)> source);
    int Selected() const { return selected_; }  ///< -1: none
    void SetSelected(int index);
    int FindKey(const std::string& key) const;  ///< index or -1
    /** Sorts the rows by a column; again by the same one turns the order. Equal ones stay as they
     *  stood. The skin marks the column with an arrow. */
    void SortBy(int column);
    /** Brings new rows into the order that the list has. */
    void SortAgain();
    int SortColumn() const { return sortColumn_; }  ///< -1: as they were added
    bool SortDescending() const { return descending_; }
    Event<int> ItemClick{this, "ItemClick"};
    Event<> DblClick{this, "DblClick"};
    Event<int> ColumnClick{this, "ColumnClick"};
    Event<int> ItemCheck{this, "ItemCheck"};
    Event<bool> MouseDown{this, "MouseDown"};  ///< true: the right button
    Event<bool> MouseUp{this, "MouseUp"};
    void UserSelect(int index);
    void UserCheck(int index, bool checked);
    /** A press on the heading sorts, unless the logic does something else there. */
    void UserColumnClick(int column);

  private:
    std::vector<ListColumn> columns_;
    std::vector<ListRow> rows_;
    std::function<ListRow(int)> source_;
    int sourceCount_ = 0;
    int selected_ = -1;
    int sortColumn_ = -1;
    bool descending_ = false;
};

struct TreeNode {
    std::string key;
    std::string text;
    std::string tag;
    std::uint64_t id = 0;  ///< for the logic's use, as the tag
    int image = 0;
    int expandedImage = 0;  ///< 0: as image
    bool expanded = false;
    bool bold = false;
    TreeNode* parent = nullptr;
    std::vector<TreeNode*> children;
    /** Its place among its siblings, which the caller knows: the parent's children or the roots.
     * Quick where little has changed since it was last asked. */
    std::size_t IndexAmong(const std::vector<TreeNode*>& siblings) const;

  private:
    mutable std::size_t place_ = 0;
};

/** What the skin's item model must hear to stay in step without a rebuild. */
class TreeObserver {
  public:
    virtual ~TreeObserver() = default;
    /** From here until TreeReset the nodes may go without further word: look at none of them. */
    virtual void TreeAboutToBeReset() = 0;
    virtual void TreeReset() = 0;
    virtual void NodeAboutToBeAdded(TreeNode* parent, std::size_t index) = 0;
    virtual void NodeAdded() = 0;
    virtual void NodeAboutToBeRemoved(TreeNode& node) = 0;
    virtual void NodeRemoved() = 0;
    virtual void NodeChanged(TreeNode& node) = 0;
    virtual void NodeSelected(TreeNode* node) = 0;
};

class TreeView : public Control {
  public:
    TreeView(ControlOwner* owner, std::string name)
        : Control(owner, std::move(name), ControlKind::TreeView) {}
    /** Adds below `parentKey` ("" for a root), in front of `index` or last. None and no change for
     * a key that exists already or a parent that does not. */
    TreeNode* Add(const std::string& parentKey, TreeNode node, int index = -1);
    void Remove(const std::string& key);  ///< with all below it
    void Clear();
    /** Between these only one TreeReset is told, at the end. */
    void BeginUpdate();
    void EndUpdate();
    TreeNode* Find(const std::string& key) const;
    /** Gives every node a new key; the new ones must differ from each other. Nothing is told. */
    void RenewKeys(const std::function<std::string(const TreeNode&)>& keyOf);
    const std::vector<TreeNode*>& Roots() const { return roots_; }
    std::size_t Count() const { return byKey_.size(); }
    void SetNodeText(TreeNode& node, std::string text);
    void SetNodeLook(TreeNode& node, std::string text, int image);
    void SetExpanded(TreeNode& node, bool expanded);
    TreeNode* Selected() const { return selected_; }
    std::string SelectedKey() const { return selected_ ? selected_->key : std::string(); }
    /** By program: no event. "" selects none. Shown and scrolled to by the skin. */
    void SetSelected(const std::string& key);

    Event<TreeNode&> NodeClick{this, "NodeClick"};
    Event<> DblClick{this, "DblClick"};
    Event<bool> MouseDown{this, "MouseDown"};  ///< true: the right button
    Event<bool> MouseUp{this, "MouseUp"};
    Event<TreeNode&> ExpandedChanged{this, "ExpandedChanged"};
    void UserSelect(const std::string& key);
    void UserExpand(TreeNode& node, bool expanded);
    void SetTreeObserver(TreeObserver* observer) { treeObserver_ = observer; }

  private:
    void Drop(TreeNode& node);
    std::vector<TreeNode*> roots_;
    std::unordered_map<std::string, std::unique_ptr<TreeNode>> byKey_;
    TreeNode* selected_ = nullptr;
    TreeObserver* treeObserver_ = nullptr;
    int updating_ = 0;
};

/** BeginUpdate and EndUpdate of a tree, whichever way the scope ends. */
class TreeUpdate {
  public:
    explicit TreeUpdate(TreeView& tree) : tree_(tree) { tree_.BeginUpdate(); }
    ~TreeUpdate() { tree_.EndUpdate(); }
    TreeUpdate(const TreeUpdate&) = delete;
    TreeUpdate& operator=(const TreeUpdate&) = delete;

  private:
    TreeView& tree_;
};

}  // namespace pw
