#pragma once
// The merge variables of the project: the standard ones to look at and insert, the custom ones to
// add, change, remove and insert. Refuses a second variable of a name and more than a hundred
// custom ones. Close writes them into the project and their values into every page.
#include <string>

#include "platform/controls/Dialog.h"
#include "project/ProjectContext.h"

namespace pw {

class frmVariables : public Dialog {
  public:
    /** `name`: the variable to begin with, if there is one of that name. */
    explicit frmVariables(ProjectContext& context, std::string name = {});

    TabStrip tabVariables{this, "tabVariables"};  ///< standard, custom
    ListView lvwStandard{this, "lvwStandard"};
    ListView lvwCustom{this, "lvwCustom"};
    /** Insert, Add, Modify, Remove. */
    ControlArray<Button, 4> cmdVariable{this, "cmdVariable"};
    Button cmdProcess{this, "cmdProcess"};  ///< Close

    void Form_Load() override;
    bool Form_QueryUnload() override;
    /** Shows the variable of that name, if there is one. */
    void Select(const std::string& name);

  private:
    enum Tab { Standard = 0, Custom = 1 };
    enum Command { Insert = 0, Add = 1, Modify = 2, Remove = 3 };
    enum class Lists { Both, StandardOnly };

    void LoadVariables(Lists lists);
    void SetUI();
    ListView& VisibleList() { return tabVariables.Selected() == Custom ? lvwCustom : lvwStandard; }
    void cmdVariable_Click(int index);
    void InsertSelected();
    void EditProperties();
    /** Asks for a row of the custom list; `index` -1 is a new one. */
    void AskForRow(int index);
    void RemoveSelected();
    bool IsTaken(const std::string& name, int exceptRow) const;
    void WriteChanges();
    void WriteCustomVariables();

    ProjectContext& context_;
    std::string name_;
    bool changed_ = false;
};

}  // namespace pw
