#pragma once
// The one command bar of the program, `barMain`: commands with a number and a state, and the bands
// (menus and toolbars) that they stand on. A command's state is the same wherever it stands; its
// caption is the band's. The skin makes menus, toolbars and shortcuts from it.
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/controls/Control.h"

namespace pw {

enum class BandKind { Menu, Toolbar, Popup };
enum class ToolKind { Button, Combo };

struct Tool {
    int number = 0;
    ToolKind kind = ToolKind::Button;
    std::string description;  ///< the status bar shows it on hover
    std::string icon;         ///< freedesktop icon name; "" for none
    std::string shortcut;     ///< "Ctrl+Shift+S"; "" for none
    bool checkable = false;
    bool enabled = true;
    bool checked = false;
    bool visible = true;
    // Combo tools.
    std::vector<std::string> items;
    std::string text;
    bool editable = false;
};

/** An entry of a band. */
struct BandItem {
    enum class Kind { Tool, SubBand, Separator } kind = Kind::Tool;
    int number = 0;       ///< of the tool
    std::string caption;  ///< with "&"
    std::string subBand;  ///< name of the band that opens
};

struct Band {
    std::string name;
    std::string caption;  ///< of the menu, or of the toolbar
    BandKind kind = BandKind::Menu;
    std::vector<BandItem> items;
    bool visible = true;
    bool enabled = true;  ///< as a whole: a disabled band disables its tools on it
};

class CommandBarObserver {
  public:
    virtual ~CommandBarObserver() = default;
    virtual void ToolChanged(const Tool& tool) = 0;
    virtual void BandChanged(const Band& band) = 0;  ///< visible, enabled or items
    virtual void PopUp(const Band& band) = 0;        ///< at the pointer
};

class CommandBar : public EventSource {
  public:
    /** `owner` answers for the failures of its handlers. */
    explicit CommandBar(const ControlOwner* owner = nullptr) : owner_(owner) {}
    CommandBar(const CommandBar&) = delete;
    CommandBar& operator=(const CommandBar&) = delete;

    FaultSink* Faults() const override { return owner_ ? owner_->Faults() : nullptr; }
    std::string ModuleDot() const override {
        return (owner_ ? owner_->ModuleName() : "CommandBar") + ".";
    }
    std::string ProcedureOf(const char* event) const override {
        return std::string("barMain_") + event;
    }

    /** Adds a tool once; a second time only fills what was empty. */
    Tool& AddTool(Tool tool);
    Band& AddBand(Band band);
    Tool* FindTool(int number);
    const Tool* FindTool(int number) const;
    Band* FindBand(const std::string& name);
    const std::vector<std::string>& BandNames() const { return order_; }

    // State; each tells the observer when something changed.
    void SetEnabled(int number, bool enabled);
    void SetChecked(int number, bool checked);
    void SetToolVisible(int number, bool visible);
    /** On every band that the tool stands on. */
    void SetCaption(int number, const std::string& caption);
    void SetDescription(int number, const std::string& description);
    void SetComboItems(int number, std::vector<std::string> items);
    /** Shows a value; raises nothing. */
    void SetComboText(int number, const std::string& text);
    void SetBandVisible(const std::string& band, bool visible);
    void SetBandEnabled(const std::string& band, bool enabled);
    void SetBandItems(const std::string& band, std::vector<BandItem> items);
    void PopUp(const std::string& band);
    /** The caption on the first band that the tool stands on. */
    std::string Caption(int number) const;
    /** Enabled itself, and on at least one enabled band. */
    bool IsEnabled(int number) const;

    // What the user does. Disabled and hidden tools do nothing.
    void Click(int number);
    void ChooseCombo(int number, const std::string& text);
    void OpenBand(const std::string& band);
    void CloseToolbar(const std::string& band);
    void PointerEnters(int number);
    void PointerLeaves();

    Event<int> ToolClick{this, "ToolClick"};
    Event<int> ComboChange{this, "ComboChange"};
    Event<const std::string&> BandOpen{this, "BandOpen"};
    Event<const std::string&> ToolbarClosed{this, "ToolbarClosed"};
    Event<int> MouseEnter{this, "MouseEnter"};
    Event<> MouseExit{this, "MouseExit"};
    void SetObserver(CommandBarObserver* observer) { observer_ = observer; }

  private:
    const ControlOwner* owner_;
    std::map<int, Tool> tools_;
    std::map<std::string, Band> bands_;
    std::vector<std::string> order_;
    CommandBarObserver* observer_ = nullptr;
};

}  // namespace pw
