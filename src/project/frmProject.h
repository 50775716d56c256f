#pragma once
// The properties of the project: name and author, company, and a summary.
#include <array>
#include <string>

#include "platform/controls/Dialog.h"
#include "project/ProjectContext.h"

namespace pw {

class frmProject : public Dialog {
  public:
    explicit frmProject(ProjectContext& context);

    TabStrip tabProject{this, "tabProject"};

    TextBox txtProjectName{this, "txtProjectName"};
    TextBox txtProjectDesc{this, "txtProjectDesc"};
    TextBox txtAuthorName{this, "txtAuthorName"};
    TextBox txtAuthorEmail{this, "txtAuthorEmail"};
    TextBox txtAuthorLocation{this, "txtAuthorLocation"};
    ControlArray<TextBox, 3> txtVersion{this, "txtVersion"};
    CheckBox chkAutoVer{this, "chkAutoVer"};

    TextBox txtCompanyName{this, "txtCompanyName"};
    TextBox txtCompanyTagLine{this, "txtCompanyTagLine"};
    TextBox txtCompanyStreet{this, "txtCompanyStreet"};
    TextBox txtCompanyCity{this, "txtCompanyCity"};
    TextBox txtCompanyState{this, "txtCompanyState"};
    TextBox txtCompanyPostal{this, "txtCompanyPostal"};
    TextBox txtCompanyCountry{this, "txtCompanyCountry"};
    TextBox txtCompanyWeb{this, "txtCompanyWeb"};
    TextBox txtCompanyEmail{this, "txtCompanyEmail"};
    TextBox txtCompanyPhone{this, "txtCompanyPhone"};
    TextBox txtCompanyFax{this, "txtCompanyFax"};

    /** Created, created by, modified, modified by, pages, size. */
    ControlArray<Label, 6> lblSummary{this, "lblSummary"};

    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};

    void Form_Load() override;
    /** True when it was closed with OK. */
    bool Confirmed() const { return confirmed_; }

  private:
    /** A text box and the property that it edits. */
    struct Field {
        TextBox* box;
        std::string* value;
    };
    void FillSummary();
    void txtProjectName_Change();
    void tabProject_Click();
    void cmdOK_Click();

    ProjectContext& context_;
    std::array<Field, 15> fields_;
    bool confirmed_ = false;
};

}  // namespace pw
