#pragma once
// The dialog of the user's settings.
//   Edits    the properties of `Settings` that the tables in the constructor name.
//   Refuses  a folder or a browser that is no full path; anything but digits in its numbers.
//   Writes   on OK every one of them to `Settings` and to the stored settings, and then applies
//            what open pages, toolbars, the status bar and the auto-save timer can take at once.
//            While one can't be stored, it says so and stays.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "frame/Settings.h"
#include "mainwindow/Context.h"
#include "platform/controls/Dialog.h"

namespace pw {

/** A text box that shows a path in the system's own form. */
class PathBox : public TextBox {
  public:
    PathBox(ControlOwner* owner, std::string name)
        : TextBox(owner, std::move(name), TextStyle::Path) {}
};

class frmOptions : public Dialog {
  public:
    explicit frmOptions(MainContext& context);
    void Form_Load() override;

    TextBox txtFirstName{this, "txtFirstName"};
    TextBox txtLastName{this, "txtLastName"};
    TextBox txtUserCompany{this, "txtUserCompany"};
    TextBox txtUserEmail{this, "txtUserEmail"};
    /** Projects, templates, image library, themes, hosting profiles. */
    ControlArray<PathBox, 5> txtFolders{this, "txtFolders"};
    /** One for each folder, then one for each browser. */
    ControlArray<Button, 7> cmdBrowse{this, "cmdBrowse"};
    CheckBox chkAutoSave{this, "chkAutoSave"};
    TextBox txtAutoSave{this, "txtAutoSave"};
    ComboBox cboFontName{this, "cboFontName"};
    ComboBox cboFontSize{this, "cboFontSize"};
    /** Text, then HTML tags, properties, values and background. */
    ControlArray<ColorBox, 5> optColor{this, "optColor"};
    ComboBox cboConnectionSpeed{this, "cboConnectionSpeed"};
    TextBox txtDownloadTime{this, "txtDownloadTime"};
    ControlArray<TextBox, 2> txtGridSpacing{this, "txtGridSpacing"};
    CheckBox chkShowCommentsInExplorer{this, "chkShowCommentsInExplorer"};
    CheckBox chkKeepBookmarks{this, "chkKeepBookmarks"};
    PathBox txtIEPath{this, "txtIEPath"};
    PathBox txtNNPath{this, "txtNNPath"};
    ControlArray<OptionButton, 3> optSkillLevel{this, "optSkillLevel"};
    CheckBox chkShowKindlerun{this, "chkShowKindlerun"};
    CheckBox chkSendErrorLog{this, "chkSendErrorLog"};
    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};

    /** Takes everything over from the controls. A sentence about what could not be stored, and so
     *  stays as it was; "" when all was. */
    std::string WriteSettingsToReg();

  private:
    struct TextSetting {
        TextBox* control;
        std::string Settings::*setting;
        const char* section;
        const char* name;
    };
    struct NumberSetting {
        TextBox* control;
        std::int32_t Settings::*setting;
        const char* section;
        const char* name;
        std::int32_t byDefault;  ///< for what is below 1
    };
    struct CheckSetting {
        CheckBox* control;
        bool Settings::*setting;
        const char* section;
        const char* name;
    };
    struct ColorSetting {
        ColorBox* control;
        std::uint32_t Settings::*setting;
        const char* section;
        const char* name;
    };

    void chkAutoSave_Change();
    void cmdBrowse_Click(int index);
    void optColor_Click(int index);
    void cmdOK_Click();
    bool HasOnlyFullPaths();
    int SkillLevel() const;
    void ApplyToOpenPages();

    MainContext& context_;
    Settings& settings_;
    std::vector<TextSetting> texts_;
    std::vector<TextSetting> paths_;
    std::vector<NumberSetting> numbers_;
    std::vector<CheckSetting> checks_;
    std::vector<ColorSetting> colors_;
};

}  // namespace pw
