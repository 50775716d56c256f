#pragma once
// The merge variables of the project: the standard ones to look at and insert, the custom ones to
// add, change and remove. Refuses a second variable of a name. What was changed is written on
// Close, into the project and into every page.
#include <functional>

#include "platform/controls/Dialog.h"
#include "project/ProjectContext.h"

namespace pw {

class frmVariables : public Dialog {
  public:
    static constexpr int kMostCustomVariables = 100;

    /** `editProperties` opens the project's properties, where the standard variables come from. */
    frmVariables(ProjectContext& context, std::function<void()> editProperties);

    TabStrip tabVariables{this, "tabVariables"};
    ListView lvwStandard{this, "lvwStandard"};
    ListView lvwCustom{this, "lvwCustom"};
    /** Insert, Add, Modify, Remove. */
    ControlArray<Button, 4> cmdVariable{this, "cmdVariable"};
    Button cmdProcess{this, "cmdProcess"};  ///< Close

    bool Form_QueryUnload() override;

  private:
    enum Tab { Standard = 0, Custom = 1 };
    enum Button_ { Insert = 0, Add = 1, Modify = 2, Remove = 3 };
    enum class Which { Both, StandardOnly };

    void LoadVariables(Which which);
    void SetUI();
    ListView& VisibleList() { return tabVariables.Selected() == Custom ? lvwCustom : lvwStandard; }
    void cmdVariable_Click(int index);
    void cmdProcess_Click();
    void InsertSelected();
    /** Asks for a row of the custom list; `index` -1 is a new one. */
    void AskForRow(int index);
    void RemoveSelected();
    void WriteChanges();

    ProjectContext& context_;
    std::function<void()> editProperties_;
    bool changed_ = false;
};

}  // namespace pw
