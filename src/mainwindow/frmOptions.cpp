#include "mainwindow/frmOptions.h"

#include <iterator>

#include "frame/Colors.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"

namespace pw {

namespace {

constexpr const char* kTryAgain =
    "\n\nPlease see that there is room on the disk and that your settings may be written, and "
    "press "
    "OK again.";

/** Stores settings one by one. One that can't be stored keeps its value in the program as well. */
class SettingsWriter {
  public:
    explicit SettingsWriter(SettingsHive& hive) : hive_(hive) {}

    template <typename T>
    void Store(T& setting, const T& value, const char* section, const char* name) {
        if (Write(section, name, value)) {
            setting = value;
        } else {
            unstored_ += (unstored_.empty() ? "" : ", ") + std::string(name);
        }
    }

    /** "" when all were stored. */
    std::string Problem() const {
        if (unstored_.empty()) return {};
        return "These options could not be stored and stay as they were: " + unstored_ + "." +
               kTryAgain;
    }

  private:
    bool Write(const char* section, const char* name, const std::string& value) {
        return SetRegText(hive_, section, name, value);
    }
    template <typename Number>
    bool Write(const char* section, const char* name, Number value) {
        return SetRegNumber(hive_, section, name, std::int32_t(value));
    }

    SettingsHive& hive_;
    std::string unstored_;
};

}  // namespace

frmOptions::frmOptions(MainContext& context)
    : Dialog("frmOptions", "Options"), context_(context), settings_(context.frame.settings) {
    using S = Settings;
    texts_ = {{&txtFirstName, &S::Firstname, "General", "First Name"},
              {&txtLastName, &S::Lastname, "General", "Last Name"},
              {&txtUserCompany, &S::UserCompany, "General", "User Company"},
              {&txtUserEmail, &S::UserEmail, "General", "User E-mail"}};
    paths_ = {{&txtFolders[0], &S::ProjectsFolder, "General", "Projects Folder"},
              {&txtFolders[1], &S::TemplatesFolder, "General", "Templates Folder"},
              {&txtFolders[2], &S::ImageLibraryFolder, "General", "Image Library Folder"},
              {&txtFolders[3], &S::ThemesFolder, "General", "Themes Folder"},
              {&txtFolders[4], &S::WHPFolder, "General", "WHP Folder"},
              {&txtIEPath, &S::IEFilename, "Other", "IE Browser"},
              {&txtNNPath, &S::NNFilename, "Other", "NN Browser"}};
    numbers_ = {{&txtAutoSave, &S::AutoSaveFrequency, "General", "AutoSave Frequency", 10},
                {&txtDownloadTime, &S::DownloadTime, "Project", "Download Time", 60},
                {&txtGridSpacing[0], &S::GridHorizontal, "Project", "Grid Horizontal", 50},
                {&txtGridSpacing[1], &S::GridVertical, "Project", "Grid Vertical", 50}};
    checks_ = {{&chkAutoSave, &S::AutoSave, "General", "AutoSave"},
               {&chkShowCommentsInExplorer, &S::ShowCommentsInExplorer, "Project",
                "Show Comments In Explorer"},
               {&chkKeepBookmarks, &S::KeepBookmarks, "Project", "Keep Bookmarks"},
               {&chkShowKindlerun, &S::ShowKindlerun, "Other", "Show Kindlerun"},
               {&chkSendErrorLog, &S::SendErrorLog, "Other", "Send Error log"}};
    colors_ = {{&optColor[1], &S::HTMLTagColor, "Other", "HTML Tag Color"},
               {&optColor[2], &S::HTMLPropertyColor, "Other", "HTML Property Color"},
               {&optColor[3], &S::HTMLValueColor, "Other", "HTML Value Color"},
               {&optColor[4], &S::HTMLBackgroundColor, "Other", "HTML Background Color"}};

    for (const NumberSetting& number : numbers_)
        number.control->KeyPress = DigitsOnly;
    for (std::size_t i = 0; i < cmdBrowse.size(); ++i)
        cmdBrowse[i].Click = [this, i] { cmdBrowse_Click(int(i)); };
    for (std::size_t i = 0; i < optColor.size(); ++i)
        optColor[i].Click = [this, i] { optColor_Click(int(i)); };
    chkAutoSave.Change = [this] { chkAutoSave_Change(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { Close(); };
}

void frmOptions::Form_Load() {
    for (const auto* table : {&texts_, &paths_}) {
        for (const TextSetting& text : *table)
            text.control->SetText(settings_.*text.setting);
    }
    for (const NumberSetting& number : numbers_)
        number.control->SetText(std::to_string(settings_.*number.setting));
    for (const CheckSetting& check : checks_)
        check.control->SetChecked(settings_.*check.setting);
    for (const ColorSetting& color : colors_)
        color.control->SetValue(settings_.*color.setting);
    optColor[0].SetValue(ParseHtmlColor(settings_.DefaultFontColor).value_or(0));

    cboFontName.SetItems(context_.window.Surface().FontNames());
    cboFontName.SetText(settings_.DefaultFont);
    std::vector<std::string> sizes;
    for (int index = 1; !FontSizeText(index).empty(); ++index)
        sizes.push_back(FontSizeText(index));
    cboFontSize.SetItems(std::move(sizes));
    cboFontSize.SetText(std::to_string(settings_.DefaultFontSize));
    cboConnectionSpeed.SetItems({std::begin(kConnectionSpeeds), std::end(kConnectionSpeeds)});
    cboConnectionSpeed.SetListIndex(settings_.ConnectionSpeed - 1);
    for (std::size_t i = 0; i < optSkillLevel.size(); ++i)
        optSkillLevel[i].SetChecked(int(i) == settings_.SkillLevel);
    chkAutoSave_Change();
}

void frmOptions::chkAutoSave_Change() {
    txtAutoSave.SetEnabled(chkAutoSave.Checked());
}

void frmOptions::cmdBrowse_Click(int index) {
    static constexpr const char* kFolders[] = {"projects", "templates", "image library", "themes",
                                               "whp profiles"};
    TextBox& target = *paths_[std::size_t(index)].control;
    std::string chosen;
    if (index < int(std::size(kFolders))) {
        chosen = context_.frame.dialogs.BrowseFolder(
            std::string("Select a ") + kFolders[index] + " folder...", target.Text());
    } else {
        const std::string now = target.Text().empty() ? "\\usr\\bin" : target.Text();
        chosen =
            context_.frame.dialogs.OpenFile({"Select a Browser", "Applications (*)|*", now, ""});
    }
    if (!chosen.empty()) target.SetText(chosen);
}

void frmOptions::optColor_Click(int index) {
    static constexpr const char* kTitles[] = {"Text Default Color", "HTML Tag Color",
                                              "HTML Attribute Color", "HTML Attribute Value Color",
                                              "HTML Background Color"};
    ColorBox& box = optColor[std::size_t(index)];
    if (const auto color = context_.frame.dialogs.PickColor(kTitles[index], box.Value()))
        box.SetValue(*color);
}

bool frmOptions::HasOnlyFullPaths() {
    for (const TextSetting& path : paths_) {
        const std::string text = Trim(path.control->Text());
        if (text.empty() || text[0] == '\\') continue;
        context_.frame.dialogs.MsgBox({"'" + ToNativePath(text) +
                                           "' is not a full path.\n\nPlease enter one, or choose "
                                           "it with the Browse button.",
                                       context_.frame.brand.FormCaption(), Icon::Exclamation,
                                       Buttons::Ok});
        path.control->SelectAll();
        path.control->SetFocus();
        return false;
    }
    return true;
}

int frmOptions::SkillLevel() const {
    for (std::size_t i = 0; i < optSkillLevel.size(); ++i) {
        if (optSkillLevel[i].Checked()) return int(i);
    }
    return settings_.SkillLevel;
}

std::string frmOptions::WriteSettingsToReg() {
    const Settings former = settings_;
    HiveBatch batch(context_.frame.hive);
    SettingsWriter writer(context_.frame.hive);
    for (const TextSetting& text : texts_)
        writer.Store(settings_.*text.setting, Trim(text.control->Text()), text.section, text.name);
    for (const TextSetting& path : paths_) {
        const std::string chosen = Trim(path.control->Text());
        const bool isFolder = path.control != &txtNNPath && path.control != &txtIEPath;
        if (chosen.empty() && isFolder) continue;  // the program can't do without its folders
        writer.Store(settings_.*path.setting, chosen, path.section, path.name);
    }
    for (const NumberSetting& number : numbers_) {
        const auto value = std::int32_t(Val(number.control->Text()));
        writer.Store(settings_.*number.setting, value < 1 ? number.byDefault : value,
                     number.section, number.name);
    }
    for (const CheckSetting& check : checks_)
        writer.Store(settings_.*check.setting, check.control->Checked(), check.section, check.name);
    for (const ColorSetting& color : colors_)
        writer.Store(settings_.*color.setting, color.control->Value(), color.section, color.name);
    writer.Store(settings_.DefaultFontColor, HtmlColor(optColor[0].Value()), "Project",
                 "Default Font Color");
    writer.Store(settings_.DefaultFont,
                 cboFontName.ListIndex() >= 0 ? cboFontName.Text() : settings_.DefaultFont,
                 "Project", "Default Font");
    writer.Store(settings_.DefaultFontSize,
                 cboFontSize.ListIndex() >= 0 ? std::int16_t(Val(cboFontSize.Text()))
                                              : settings_.DefaultFontSize,
                 "Project", "Default Font Size");
    writer.Store(settings_.ConnectionSpeed,
                 cboConnectionSpeed.ListIndex() >= 0 ? cboConnectionSpeed.ListIndex() + 1
                                                     : settings_.ConnectionSpeed,
                 "Project", "Connection Speed");
    writer.Store(settings_.SkillLevel, SkillLevel(), "Other", "Skill Level");
    if (batch.Commit()) return writer.Problem();
    settings_ = former;
    std::string problem = "None of the options could be stored.";
    return problem.append(kTryAgain);
}

void frmOptions::ApplyToOpenPages() {
    for (const auto& document : context_.OpenDocuments.All()) {
        document->ColorCodeHTML();
        document->ApplyGrid();
    }
}

void frmOptions::cmdOK_Click() {
    if (!HasOnlyFullPaths()) return;
    const bool showedComments = settings_.ShowCommentsInExplorer;
    const int formerLevel = settings_.SkillLevel;
    const std::string problem = WriteSettingsToReg();
    if (settings_.ShowCommentsInExplorer != showedComments)
        UpdatePageExplorer(context_, context_.CurrentPageKey);
    if (settings_.SkillLevel != formerLevel) ApplySkillLevel(context_);
    ApplyToOpenPages();
    ResetUI(context_);
    context_.window.StartTimer();
    if (problem.empty()) return Close();
    context_.frame.errorLog.LogError("", Failure(problem), "Options.", "cmdOK_Click");
    context_.frame.dialogs.MsgBox({problem, Title(), Icon::Exclamation});
}

}  // namespace pw
