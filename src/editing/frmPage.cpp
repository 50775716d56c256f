#include "editing/frmPage.h"

#include <algorithm>

#include "editing/FileChanges.h"
#include "editing/SourceValues.h"
#include "editing/frmSource.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Links.h"
#include "project/PageNames.h"
#include "project/Pages.h"
#include "project/Paths.h"
#include "project/Workspace.h"
#include "project/frmNameValue.h"

namespace pw {

namespace {

constexpr const char* kDefaultFileName = "index.htm";
constexpr const char* kMetaTitles[] = {"User Meta Tag", "HTTP-EQUIV Meta Tag"};
constexpr SourceMode kSourceModes[] = {SourceMode::BackgroundImage, SourceMode::Sound};
constexpr int kGeneralTab = 0;
constexpr int kAppearanceTab = 1;
constexpr int kMetaTagsTab = 2;
constexpr int kAttachmentsTab = 3;
constexpr int kMaximumDigits = 4;

void FilenameKeysOnly(int& code) {
    if (!IsFilenameKey(code)) code = 0;
}

/** What a visitor calls the kind of a file: "GIF file". */
std::string TypeOfFile(const std::string& path) {
    const std::string extension = ToUpper(GetExtension(path));
    return extension.empty() ? "File" : extension + " file";
}

bool IsClassFile(std::string_view path) {
    return EqualsNoCase(GetExtension(path), "class");
}

std::string NotCopied(std::string_view path) {
    return "The file '" + GetFileName(path) +
           "' can not be copied into the project.\n\nPlease choose another one.";
}

/** For a name that was given on the way to one that could not be. */
void RenameBack(ProjectContext& context, Page& page, const std::string& name) {
    std::string reason;
    if (!RenamePage(context, page, name, &reason))
        context.frame.errorLog.LogError(reason, Failure(reason), "Page.", "RenameBack");
}

}  // namespace

frmPage::frmPage(ProjectContext& context, Page& page, OpenPage& open)
    : Dialog("frmPage", "Page Properties"), context_(context), page_(page), open_(open) {
    ConnectHandlers();
    ShowGeneral();
    ShowAppearance();
    metaTags_ = PageMetaTags(open.Document());
    ShowMetaTags();
    for (const Attachment& attachment : page.Attachments())
        files_.push_back({attachment.Key(), attachment.Filename(), attachment.Size});
    ShowAttachments();
    ShowSummary();
}

void frmPage::ConnectHandlers() {
    txtTitle.Change = [this] { txtTitle_Change(); };
    txtFileName.KeyPress = FilenameKeysOnly;
    chkDefaultPage.Click = [this] { chkDefaultPage_Click(); };
    for (std::size_t i = 0; i < chkBackground.size(); ++i) {
        chkBackground[i].Change = [this] { EnableAppearance(); };
        cmdBrowse[i].Click = [this, i] { cmdBrowse_Click(int(i)); };
    }
    for (std::size_t i = 0; i < chkMargin.size(); ++i) {
        chkMargin[i].Change = [this] { EnableAppearance(); };
        txtMargin[i].KeyPress = DigitsOnly;
        txtMargin[i].maxLength = kMaximumDigits;
    }
    for (std::size_t i = 0; i < optColor.size(); ++i)
        optColor[i].Click = [this, i] { optColor_Click(int(i)); };
    chkSoundLoop.Change = [this] { EnableAppearance(); };
    txtLoop.KeyPress = DigitsOnly;
    txtLoop.maxLength = kMaximumDigits;

    tabMetaTags.Click = [this] { EnableListButtons(); };
    for (std::size_t i = 0; i < lvwMetaTags.size(); ++i) {
        lvwMetaTags[i].SetColumns({{"Name", 180}, {"Content", 300}});
        lvwMetaTags[i].ItemClick = [this](int) { EnableListButtons(); };
        lvwMetaTags[i].DblClick = [this] { EditMetaTag(SelectedMetaTag()); };
    }
    for (std::size_t i = 0; i < cmdMetaTags.size(); ++i)
        cmdMetaTags[i].Click = [this, i] { cmdMetaTags_Click(int(i)); };
    lvwAttachments.SetColumns({{"Filename", 240}, {"Size", 100}, {"Type", 120}});
    lvwAttachments.ItemClick = [this](int) { EnableListButtons(); };
    for (std::size_t i = 0; i < cmdAttachments.size(); ++i)
        cmdAttachments[i].Click = [this, i] { cmdAttachments_Click(int(i)); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { Close(); };
}

// --- What is shown ------------------------------------------------------------------------------

void frmPage::ShowGeneral() {
    const std::string title = open_.Document().title();
    title_ = title.empty() ? page_.Name : title;
    txtTitle.SetText(title_);
    txtTitle_Change();
    txtFileName.SetText(GetFileName(page_.Filename));
    txtDesc.SetText(page_.Description);
    txtKeywords.SetText(page_.Keywords);
    chkDefaultPage.SetChecked(page_.IsDefault);
    const Page* byDefault = GetDefaultPage(context_, page_.Key());
    // A single "&" would be taken for the mark of an access key.
    lblDefault.SetCaption(byDefault ? ReplaceAll(byDefault->Name, "&", "&&")
                                    : "No default page selected.");
    cboPageStyle.SetItems({"Normal HTML page", "Frame page"});
    cboPageStyle.SetListIndex(page_.PageType == PageType::Frames ? 1 : 0);
    // Frames have no dialog yet, so a page stays of the style that it is.
    cboPageStyle.SetEnabled(false);
    cmdSetFrameStyle.SetEnabled(false);
}

void frmPage::ShowAppearance() {
    appearance_ = ReadAppearance(open_.Document());
    const std::string* written[] = {&appearance_.background, &appearance_.sound};
    for (std::size_t i = 0; i < txtSource.size(); ++i) {
        chkBackground[i].SetChecked(!written[i]->empty());
        const std::string value = SourceValue(context_, *written[i], page_.Key());
        txtSource[i].SetText(ShownSource(context_, value, page_.Key()));
        shownSource_[i] = txtSource[i].Text();
    }
    chkWatermark.SetChecked(appearance_.watermark);
    const bool endless = appearance_.loop == PageAppearance::kEndless;
    chkSoundLoop.SetChecked(endless);
    txtLoop.SetText(std::to_string(endless ? 1 : appearance_.loop));
    for (std::size_t i = 0; i < optColor.size(); ++i)
        optColor[i].SetValue(appearance_.colors[i]);
    for (std::size_t i = 0; i < chkMargin.size(); ++i) {
        chkMargin[i].SetChecked(appearance_.margins[i].has_value());
        txtMargin[i].SetText(std::to_string(appearance_.margins[i].value_or(0)));
    }
    EnableAppearance();
}

void frmPage::EnableAppearance() {
    const bool possible = HasAppearance(open_.Document());
    for (std::size_t i = 0; i < chkBackground.size(); ++i) {
        const bool on = possible && chkBackground[i].Checked();
        chkBackground[i].SetEnabled(possible);
        txtSource[i].SetEnabled(on);
        cmdBrowse[i].SetEnabled(on);
    }
    chkWatermark.SetEnabled(possible && chkBackground[0].Checked());
    chkSoundLoop.SetEnabled(possible && chkBackground[1].Checked());
    txtLoop.SetEnabled(chkSoundLoop.Enabled() && !chkSoundLoop.Checked());
    for (std::size_t i = 0; i < optColor.size(); ++i)
        optColor[i].SetEnabled(possible);
    for (std::size_t i = 0; i < chkMargin.size(); ++i) {
        chkMargin[i].SetEnabled(possible);
        txtMargin[i].SetEnabled(possible && chkMargin[i].Checked());
    }
}

void frmPage::ShowMetaTags() {
    std::string selected[2];
    for (std::size_t i = 0; i < lvwMetaTags.size(); ++i) {
        ListView& list = lvwMetaTags[i];
        if (list.Selected() >= 0) selected[i] = list.Row(list.Selected()).key;
        list.Clear();
    }
    for (int place = 0; place < metaTags_.Count(); ++place) {
        const PageMetaTag& tag = metaTags_.At(place);
        const std::string key = std::to_string(place);
        if (!tag.removed)
            lvwMetaTags[std::size_t(tag.kind)].Add({key, {tag.name, tag.content}, 0, key});
    }
    for (std::size_t i = 0; i < lvwMetaTags.size(); ++i)
        lvwMetaTags[i].SetSelected(lvwMetaTags[i].FindKey(selected[i]));
    EnableListButtons();
}

void frmPage::ShowAttachments() {
    lvwAttachments.Clear();
    for (const ListedFile& file : files_)
        lvwAttachments.Add({file.path,
                            {GetFileName(file.path), FormatSize(file.size), TypeOfFile(file.path)},
                            0,
                            file.path});
    EnableListButtons();
}

void frmPage::EnableListButtons() {
    const bool tagSelected = SelectedMetaTag() >= 0;
    cmdMetaTags[1].SetEnabled(tagSelected);
    cmdMetaTags[2].SetEnabled(tagSelected);
    cmdAttachments[1].SetEnabled(lvwAttachments.Selected() >= 0);
}

void frmPage::ShowSummary() {
    const std::string text = GetPageText(context_, page_.Key());
    const auto date = [](DateTime when) {
        return when == 0 ? std::string() : FormatDate(when, DateStyle::GeneralDate);
    };
    const std::string values[] = {FormatSize(CalculatePageSize(context_, page_.Key())),
                                  std::to_string(CountWords(text)),
                                  std::to_string(Utf16Length(text)),
                                  date(page_.Created),
                                  page_.CreatedBy,
                                  date(page_.Modified),
                                  page_.ModifiedBy};
    for (std::size_t i = 0; i < lblSummaryVal.size(); ++i)
        lblSummaryVal[i].SetCaption(values[i]);
}

// --- What the user does -------------------------------------------------------------------------

void frmPage::txtTitle_Change() {
    cmdOK.SetEnabled(!Trim(txtTitle.Text()).empty());
}

void frmPage::chkDefaultPage_Click() {
    if (chkDefaultPage.Checked()) {
        txtFileName.SetText(kDefaultFileName);
    } else if (txtFileName.Text() == kDefaultFileName) {
        txtFileName.SetText(GetFileName(page_.Filename));
    }
}

void frmPage::cmdBrowse_Click(int index) {
    TextBox& field = txtSource[std::size_t(index)];
    const std::string value = SourceValue(context_, field.Text(), page_.Key());
    const auto chosen = AskSource(context_, kSourceModes[index], page_.Key(), value);
    if (!chosen) return;
    field.SetText(ShownSource(context_, *chosen, page_.Key()));
    field.tag = *chosen;
}

void frmPage::optColor_Click(int index) {
    static constexpr const char* kTitles[] = {"Page Background Color", "Text Color", "Link Color",
                                              "Visited Link Color", "Active Link Color"};
    ColorBox& box = optColor[std::size_t(index)];
    if (const auto color = context_.frame.dialogs.PickColor(kTitles[index], box.Value()))
        box.SetValue(*color);
}

// --- Meta tags ----------------------------------------------------------------------------------

int frmPage::SelectedMetaTag() const {
    const ListView& list = lvwMetaTags[std::size_t(tabMetaTags.Selected())];
    return list.Selected() < 0 ? -1 : int(Val(list.Row(list.Selected()).tag));
}

void frmPage::cmdMetaTags_Click(int index) {
    const int selected = SelectedMetaTag();
    if (index == 0) EditMetaTag(-1);
    if (index == 1 && selected >= 0) EditMetaTag(selected);
    if (index == 2 && selected >= 0) RemoveMetaTag(selected);
}

void frmPage::EditMetaTag(int place) {
    const int kind = tabMetaTags.Selected();
    NameValueQuestion question;
    question.title = kMetaTitles[kind];
    question.valueLabel = "&Content";
    if (place >= 0) question.initial = {metaTags_.At(place).name, metaTags_.At(place).content};
    const auto entry = AskNameValue(context_.frame.dialogs, std::move(question));
    if (!entry) return;
    if (place < 0) place = metaTags_.Add(MetaKind(kind), "", "");
    metaTags_.At(place).name = entry->name;
    metaTags_.At(place).content = entry->value;
    ShowMetaTags();
}

void frmPage::RemoveMetaTag(int place) {
    const Message question{"Are you sure you want to remove this meta tag?", "Remove Meta Tag",
                           Icon::Question, Buttons::YesNo, Answer::No};
    if (context_.frame.dialogs.MsgBox(question) != Answer::Yes) return;
    metaTags_.At(place).removed = true;
    ShowMetaTags();
}

// --- Attachments --------------------------------------------------------------------------------

void frmPage::cmdAttachments_Click(int index) {
    if (index == 0) {
        AddAttachment();
    } else {
        RemoveAttachment();
    }
    ShowAttachments();
}

void frmPage::AddAttachment() {
    const char* title = "Add Attachment";
    const std::string path =
        context_.frame.dialogs.OpenFile({title, "All Files (*.*)|*.*", "", ""});
    if (path.empty()) return;
    std::string problem;
    const FileInfo info = context_.frame.files.Stat(path);
    if (IsClassFile(path)) {
        problem =
            "A Java class can not be attached to a page by itself: it belongs to an applet."
            "\n\nPlease choose it in the properties of the applet.";
    } else if (!FileExists(context_.frame.files, path)) {
        problem = NotCopied(path);
    } else if (lvwAttachments.FindKey(path) < 0) {
        files_.push_back({"", path, std::int64_t(info.size)});
    }
    if (!problem.empty()) context_.frame.dialogs.MsgBox({problem, title, Icon::Exclamation});
}

void frmPage::RemoveAttachment() {
    if (lvwAttachments.Selected() < 0) return;
    const Message question{"Are you sure you want to remove this attachment?", "Remove Attachment",
                           Icon::Question, Buttons::YesNo, Answer::No};
    if (context_.frame.dialogs.MsgBox(question) != Answer::Yes) return;
    const auto removed = files_.begin() + lvwAttachments.Selected();
    if (!removed->key.empty()) removedFiles_.push_back(removed->key);
    files_.erase(removed);
}

// --- OK -----------------------------------------------------------------------------------------

void frmPage::cmdOK_Click() {
    // 1. All that can be refused by looking.
    if (!SourcesStand() || !FileNameStands() || !TagsStand()) return;
    // 2. Files. The name comes last: links all over the project follow it.
    MediaBefore media(context_, page_);
    FileChanges changes;
    changes.OnFailure([&media] { media.Restore(); });
    const auto looks = WantedAppearance();
    if (!looks || !TakeAttachments() || !TakeFileName(changes)) return;
    // 3. The page, in one step, and its record.
    const std::uint64_t before = open_.Document().revision();
    WriteDocument(*looks);
    changes.Keep();
    WriteAttachments();
    WriteRecord();
    if (open_.Document().revision() != before) {
        MarkChanged();
        open_.UpdateHTML();
        context_.workspace.UpdatePageExplorer(page_.Key());
    }
    ShowElsewhere();
    Close();
}

bool frmPage::SourcesStand() {
    for (std::size_t i = 0; i < txtSource.size(); ++i) {
        const std::string& text = txtSource[i].Text();
        // What the page came with is let alone.
        if (!txtSource[i].Enabled() || text == shownSource_[i]) continue;
        const std::string problem =
            SourceProblem(context_, SourceValue(context_, text, page_.Key()));
        if (problem.empty()) continue;
        Refuse(problem, kAppearanceTab, txtSource[i]);
        return false;
    }
    return true;
}

std::string frmPage::WantedFileName() const {
    std::string name = Trim(txtFileName.Text());
    if (name.empty() || !GetExtension(name).empty()) return name;
    const std::string extension = GetExtension(page_.Filename);
    return name + "." + (extension.empty() ? "htm" : extension);
}

bool frmPage::FileNameStands() {
    newName_ = WantedFileName();
    holder_ = nullptr;
    if (newName_ == GetFileName(page_.Filename)) newName_.clear();
    if (newName_.empty()) return true;
    std::string problem = PageNameProblem(newName_);
    if (problem.empty() && IsPageNameTaken(context_, page_, newName_)) {
        if (chkDefaultPage.Checked()) holder_ = FindNeighbour(context_, page_, newName_);
        if (!holder_)
            problem = "A page already exists with the filename " + newName_ +
                      ".\n\nPlease select another name and try again.";
    }
    if (problem.empty()) return true;
    Refuse(problem, kGeneralTab, txtFileName);
    return false;
}

bool frmPage::TagsStand() {
    if (metaTags_.CanWrite(open_.Document())) return true;
    Refuse(
        "The page has no head for a meta tag.\n\nPlease remove the new tags, or give the page a "
        "head in the HTML view first.",
        kMetaTagsTab, lvwMetaTags[0]);
    return false;
}

bool frmPage::TakeFileName(FileChanges& changes) {
    if (newName_.empty()) return true;
    const std::string former = GetFileName(page_.Filename);
    std::string problem;
    const bool renamed = (!holder_ || MoveAside(*holder_, changes, problem)) &&
                         RenamePage(context_, page_, newName_, &problem);
    if (!renamed) {
        if (problem.empty()) problem = "The file can not be renamed. The error log tells why.";
        Refuse(problem, kGeneralTab, txtFileName);
        return false;
    }
    changes.OnFailure([this, former] { RenameBack(context_, page_, former); });
    // Links that could not follow.
    if (!problem.empty()) context_.frame.dialogs.MsgBox({problem, Title(), Icon::Exclamation});
    return true;
}

bool frmPage::MoveAside(Page& holder, FileChanges& changes, std::string& problem) {
    const std::string file = GetFileName(holder.Filename);
    const std::string title = holder.Name;
    if (!MovePageAside(context_, holder, &problem)) return false;
    changes.OnFailure([this, &holder, file, title] {
        RenameBack(context_, holder, file);
        SetPageTitle(context_, holder, title);
    });
    return true;
}

std::string frmPage::WantedTitle() const {
    // A title that the user has just thought of is better than ours.
    if (!holder_ || txtTitle.Text() != title_) return Trim(txtTitle.Text());
    const Folder* folder = GetFolder(context_, page_.Key());
    return (folder ? folder->Name + " " : "") + "Home Page";
}

bool frmPage::TakeAttachments() {
    for (const ListedFile& file : files_) {
        if (!file.key.empty()) continue;
        if (!AddSystemAttachment(context_, file.path, page_)) {
            Refuse(NotCopied(file.path), kAttachmentsTab, lvwAttachments);
            return false;
        }
    }
    return true;
}

void frmPage::WriteAttachments() {
    const auto isListed = [this](const std::string& path) {
        return std::any_of(files_.begin(), files_.end(),
                           [&](const ListedFile& file) { return file.path == path; });
    };
    for (const std::string& key : removedFiles_) {
        const Attachment* attachment = page_.Attachments().Item(key);
        if (attachment && !isListed(attachment->Filename()))
            static_cast<void>(pw::RemoveAttachment(context_, page_, key));
    }
    const bool isAnyNew = std::any_of(files_.begin(), files_.end(),
                                      [](const ListedFile& file) { return file.key.empty(); });
    if (isAnyNew || !removedFiles_.empty()) MarkChanged();
}

bool frmPage::TakeWanted(int index, std::string& reference) {
    TextBox& field = txtSource[std::size_t(index)];
    if (!chkBackground[std::size_t(index)].Checked()) reference.clear();
    if (!field.Enabled() || field.Text() == shownSource_[index]) return true;
    const auto taken =
        TakeSource(context_, SourceValue(context_, field.Text(), page_.Key()), page_);
    if (taken) {
        reference = *taken;
    } else {
        Refuse("This file can not be copied into the project.\n\nPlease choose another one.",
               kAppearanceTab, field);
    }
    return taken.has_value();
}

std::optional<PageAppearance> frmPage::WantedAppearance() {
    PageAppearance wanted = appearance_;
    if (!TakeWanted(0, wanted.background) || !TakeWanted(1, wanted.sound)) return std::nullopt;
    wanted.watermark = chkWatermark.Checked() && !wanted.background.empty();
    if (!wanted.sound.empty()) {
        const int times = std::max(int(Val(txtLoop.Text())), 1);
        wanted.loop = chkSoundLoop.Checked() ? PageAppearance::kEndless : times;
    }
    for (std::size_t i = 0; i < optColor.size(); ++i)
        wanted.colors[i] = optColor[i].Value();
    for (std::size_t i = 0; i < chkMargin.size(); ++i) {
        wanted.margins[i].reset();
        if (chkMargin[i].Checked()) wanted.margins[i] = int(Val(txtMargin[i].Text()));
    }
    return wanted;
}

void frmPage::WriteDocument(const PageAppearance& looks) {
    dom::Document& document = open_.Document();
    const dom::Document::Step step(document);
    const std::string title = WantedTitle();
    if (title != Trim(title_)) document.setTitle(title);
    WriteAppearance(document, looks);
    metaTags_.Write(document);
}

void frmPage::ClearDefaultPage() {
    const Container container = GetContainer(context_, page_.Key());
    if (!container) return;
    for (Page& sibling : container.PageList())
        sibling.IsDefault = false;
}

void frmPage::WriteRecord() {
    const auto write = [this](std::string& field, const std::string& value) {
        if (field == value) return;
        field = value;
        context_.project.IsDirty = true;
    };
    const std::string title = WantedTitle();
    if (title != Trim(title_)) {
        write(page_.Name, title);
        write(page_.Title, title);
    }
    write(page_.Description, txtDesc.Text());
    write(page_.Keywords, txtKeywords.Text());
    if (chkDefaultPage.Checked() == page_.IsDefault) return;
    if (chkDefaultPage.Checked()) ClearDefaultPage();
    page_.IsDefault = chkDefaultPage.Checked();
    context_.project.IsDirty = true;
}

void frmPage::ShowElsewhere() {
    open_.RefreshCaption();
    context_.workspace.RefillProjectExplorer();
}

void frmPage::MarkChanged() {
    page_.IsDirty = true;
    context_.project.IsDirty = true;
}

void frmPage::Refuse(const std::string& message, int tab, Control& control) {
    context_.frame.dialogs.MsgBox({message, Title(), Icon::Exclamation});
    tabPage.SetSelected(tab);
    control.SetFocus();
}

void frmPage::Refuse(const std::string& message, int tab, TextBox& control) {
    Refuse(message, tab, static_cast<Control&>(control));
    control.SelectAll();
}

// --- Showing it ---------------------------------------------------------------------------------

void ShowPageProperties(ProjectContext& context, const std::string& key) {
    Page* page = GetPage(context, key);
    if (!page) return;
    Workspace& workspace = context.workspace;
    if (!workspace.FindOpenPage(key))
        workspace.ShowPage(key, page->Name, page->Filename, page->PageType);
    OpenPage* open = workspace.FindOpenPage(key);
    if (!open) return;
    open->SetToNormalEditMode();
    open->TakeOverEdits();
    // Source that can not be taken over has been told of, and keeps its view.
    if (open->CurrentViewState() != ViewState::Normal) return;
    std::string reason;
    if (open->IsDirty() && !SavePageFile(context, *page, &reason)) {
        context.frame.dialogs.MsgBox(
            {reason + "\n\nPlease try again.", "Page Properties", Icon::Exclamation});
        return;
    }
    frmPage dialog(context, *page, *open);
    context.frame.dialogs.ShowModal(dialog);
}

}  // namespace pw
