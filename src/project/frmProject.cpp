#include "project/frmProject.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

constexpr std::array<int, 3> kHelpTopics = {10070, 10080, 10650};  // by tab
constexpr int kBackspace = 8;
constexpr int kMostVersionDigits = 4;

void RefuseUnlessFilename(int& code) {
    if (!IsFilenameKey(code)) code = 0;
}

void RefuseUnlessDigit(int& code) {
    if (code != kBackspace && (code < '0' || code > '9')) code = 0;
}

}  // namespace

frmProject::frmProject(ProjectContext& context)
    : Dialog("frmProject", "Project Properties"),
      context_(context),
      fields_{{{&txtProjectDesc, &context.project.Description},
               {&txtAuthorName, &context.project.AuthorName},
               {&txtAuthorEmail, &context.project.AuthorEmail},
               {&txtAuthorLocation, &context.project.AuthorLocation},
               {&txtCompanyName, &context.project.CompanyName},
               {&txtCompanyTagLine, &context.project.CompanyTagLine},
               {&txtCompanyStreet, &context.project.CompanyStreet},
               {&txtCompanyCity, &context.project.CompanyCity},
               {&txtCompanyState, &context.project.CompanyState},
               {&txtCompanyPostal, &context.project.CompanyPostal},
               {&txtCompanyCountry, &context.project.CompanyCountry},
               {&txtCompanyWeb, &context.project.CompanyWebSite},
               {&txtCompanyEmail, &context.project.CompanyEmail},
               {&txtCompanyPhone, &context.project.CompanyPhone},
               {&txtCompanyFax, &context.project.CompanyFax}}} {
    txtProjectName.KeyPress = [](int& code) { RefuseUnlessFilename(code); };
    txtProjectName.Change = [this] { txtProjectName_Change(); };
    for (std::size_t i = 0; i < txtVersion.size(); ++i) {
        txtVersion[i].KeyPress = [](int& code) { RefuseUnlessDigit(code); };
        txtVersion[i].maxLength = kMostVersionDigits;
    }
    tabProject.Click = [this] { tabProject_Click(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { Close(); };
}

void frmProject::Form_Load() {
    const Project& project = context_.project;
    txtProjectName.SetText(project.Name);
    txtProjectName_Change();
    for (const Field& field : fields_)
        field.box->SetText(*field.value);
    txtVersion[0].SetText(std::to_string(project.VersionMajor));
    txtVersion[1].SetText(std::to_string(project.VersionMinor));
    txtVersion[2].SetText(std::to_string(project.VersionBuild));
    chkAutoVer.SetChecked(project.AutoVersion);
    FillSummary();
    tabProject_Click();
}

void frmProject::FillSummary() {
    const Project& project = context_.project;
    const std::array<std::string, 6> texts = {
        FormatDate(project.Created, DateStyle::LongDateLongTime),
        project.CreatedBy,
        FormatDate(project.Modified, DateStyle::LongDateLongTime),
        project.ModifiedBy,
        std::to_string(project.PageCount()),
        FormatSize(project.ProjectSize())};
    for (std::size_t i = 0; i < texts.size(); ++i)
        lblSummary[i].SetCaption(texts[i]);
}

void frmProject::txtProjectName_Change() {
    cmdOK.SetEnabled(!Trim(txtProjectName.Text()).empty());
}

void frmProject::tabProject_Click() {
    helpTopic = kHelpTopics.at(std::size_t(std::clamp(tabProject.Selected(), 0, 2)));
}

void frmProject::cmdOK_Click() {
    Project& project = context_.project;
    project.Name = Trim(txtProjectName.Text());
    for (const Field& field : fields_)
        *field.value = field.box->Text();
    project.VersionMajor = int(Val(txtVersion[0].Text()));
    project.VersionMinor = int(Val(txtVersion[1].Text()));
    project.VersionBuild = int(Val(txtVersion[2].Text()));
    project.AutoVersion = chkAutoVer.Checked();
    project.IsLoaded = true;
    project.IsDirty = true;
    confirmed_ = true;
    context_.workspace.RefreshCaption();
    Close();
}

}  // namespace pw
