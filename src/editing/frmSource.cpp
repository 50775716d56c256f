#include "editing/frmSource.h"

#include <array>

#include "editing/SourceValues.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Pages.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr const char* kImageFilter =
    "Images (*.gif;*.jpg)|*.gif;*.jpg|Bitmap (*.bmp)|*.bmp|"
    "Portable Network Graphics (*.png)|*.png|Kodak FlashPix (*.fpx)|*.fpx|"
    "Tagged Image File Format (*.tiff)|*.tif;*.tiff|"
    "JPEG (*.jpg;*.jpeg)|*.jpg;*.jpeg|WebP (*.webp)|*.webp|"
    "Scalable Vector Graphics (*.svg)|*.svg|All Files (*.*)|*.*";

/** An attribute of the pages' elements that names what the mode is about. */
struct Use {
    const char* tag = nullptr;
    const char* attribute = nullptr;
};

struct ModeTexts {
    const char* caption;
    const char* listLabel;
    const char* fileTitle;
    const char* filter;
    std::array<Use, 5> uses;
};

/** In the order of SourceMode. */
constexpr ModeTexts kModes[] = {
    {"Image Source",
     "&Images on open pages:",
     "Select Image File",
     kImageFilter,
     {{{"img", "src"}}}},
    {"Video Source",
     "&Videos on open pages:",
     "Select Video File",
     "AVI (*.avi)|*.avi|MPEG (*.mpa;*.mp2;*.mpa;*.mpg;*.mpv;*.mpeg)|"
     "*.mpa;*.mp2;*.mpg;*.mpv;*.mpeg|QuickTime (*.mov, *.qt)|*.mov;*.qt",
     {{{"img", "dynsrc"}}}},
    {"ActiveX Source",
     "&ActiveX objects on open pages:",
     "Select ActiveX File",
     "All Files (*.*)|*.*",
     {{{"object", "codebase"}, {"object", "data"}}}},
    {"Background Image Source",
     "&Background images on open pages:",
     "Select Background Image File",
     kImageFilter,
     {{{"body", "background"},
       {"table", "background"},
       {"tr", "background"},
       {"td", "background"},
       {"th", "background"}}}},
    {"Background Sound Source",
     "&Background sounds on open pages:",
     "Select Background Sound File",
     "Audio (*.wav;*.mid;*.mp2)|*.wav;*.mid;*.mp2",
     {{{"bgsound", "src"}}}},
};

const ModeTexts& TextsOf(SourceMode mode) {
    return kModes[std::size_t(mode)];
}

bool IsWebAddress(std::string_view value) {
    return StartsWithNoCase(value, "http://") || StartsWithNoCase(value, "https://");
}

}  // namespace

frmSource::frmSource(ProjectContext& context, std::string pageKey)
    : Dialog("frmSource", "Source"), context_(context), pageKey_(std::move(pageKey)) {
    cmdBrowse[0].toolTip = "Select a file on your computer";
    cmdBrowse[1].toolTip = "Use your web browser to select a file or page";
    lvwURL.SetColumns({{"Filename", 180}, {"Folder", 120}, {"Page", 140}});

    txtURL.Change = [this] {
        txtURL.tag = SourceValue(context_, txtURL.Text(), pageKey_);
        cmdOK.SetEnabled(!txtURL.tag.empty());
    };
    for (std::size_t i = 0; i < cmdBrowse.size(); ++i)
        cmdBrowse[i].Click = [this, i] { cmdBrowse_Click(int(i)); };
    lvwURL.ItemClick = [this](int row) { lvwURL_ItemClick(row); };
    lvwURL.DblClick = [this] { cmdOK_Click(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCancel.Click = [this] { Close(); };
    cmdOK.SetEnabled(false);
}

void frmSource::SetupDialog(SourceMode mode) {
    mode_ = mode;
    SetTitle(TextsOf(mode).caption);
    lblURL.SetCaption(TextsOf(mode).listLabel);
    Trap(context_.frame.errorLog, "Source.", "SetupDialog", [this] {
        std::set<std::string> listed;
        for (OpenPage* open : context_.workspace.OpenPages())
            ListSources(*open, listed);
    });
}

void frmSource::ListSources(OpenPage& open, std::set<std::string>& listed) {
    const std::string& key = open.PageKey();
    const Page* page = GetPage(context_, key);
    const WebSite* site = GetWebSite(context_, key);
    if (!page || !site) return;
    const Folder* folder = GetFolder(context_, key);
    const std::string& where = folder ? folder->Name : site->Name;
    for (const Use& use : TextsOf(mode_).uses) {
        if (!use.tag) continue;
        for (const dom::Node* element : open.Document().tags(use.tag)) {
            const std::string value =
                SourceValue(context_, element->getAttribute(use.attribute), key);
            if (value.empty() || !listed.insert(value).second) continue;
            const std::string name = GetFileName(value);
            lvwURL.Add({value, {name.empty() ? value : name, where, page->Name}, 0, value});
        }
    }
}

void frmSource::SetURL(const std::string& value) {
    txtURL.SetText(ShownSource(context_, value, pageKey_));
    txtURL.tag = value;
}

void frmSource::lvwURL_ItemClick(int row) {
    if (row >= 0 && row < lvwURL.Count()) SetURL(lvwURL.Row(row).tag);
}

void frmSource::cmdBrowse_Click(int index) {
    if (index == 0) {
        BrowseFiles();
    } else {
        BrowseWeb();
    }
}

void frmSource::BrowseFiles() {
    const bool pictures = mode_ == SourceMode::Image || mode_ == SourceMode::BackgroundImage;
    const Settings& settings = context_.frame.settings;
    std::string start = FileExists(context_.frame.files, txtURL.tag) ? txtURL.tag : std::string();
    if (start.empty() && pictures &&
        FolderExists(context_.frame.files, settings.ImageLibraryFolder))
        start = settings.ImageLibraryFolder;
    const ModeTexts& texts = TextsOf(mode_);
    const std::string file =
        context_.frame.dialogs.OpenFile({texts.fileTitle, texts.filter, start, ""});
    if (!file.empty()) SetURL(file);
}

void frmSource::BrowseWeb() {
    DialogHost& dialogs = context_.frame.dialogs;
    const std::string& browser = context_.frame.settings.IEFilename;
    const std::string start = IsWebAddress(txtURL.tag) ? txtURL.tag : std::string();
    if (browser.empty() || !context_.frame.launcher.Start(browser, start)) {
        dialogs.MsgBox(
            {"The web browser can not be started.\n\nPlease choose one on the Tools "
             "menu, under Options, or type the address.",
             Title(), Icon::Exclamation});
        return;
    }
    // Browsers tell no other program what is seen in them; the clipboard is the way they share.
    const Message wait{
        "Find the file in your web browser and copy its address there.\n\nThen come "
        "back and press OK.",
        Title(), Icon::Information, Buttons::OkCancel};
    if (dialogs.MsgBox(wait) != Answer::Ok) return;
    const std::string address = Trim(context_.frame.clipboard.Text());
    if (!IsWebAddress(address) || address.find_first_of(" \t\r\n") != std::string::npos) {
        dialogs.MsgBox(
            {"The clipboard does not hold the address of a file on the web.\n\nPlease "
             "copy one in your web browser and try again.",
             Title(), Icon::Exclamation});
        return;
    }
    SetURL(address);
}

void frmSource::cmdOK_Click() {
    if (txtURL.tag.empty()) return;
    const std::string problem = SourceProblem(context_, txtURL.tag);
    if (!problem.empty()) {
        context_.frame.dialogs.MsgBox({problem, Title(), Icon::Exclamation});
        txtURL.SelectAll();
        txtURL.SetFocus();
        return;
    }
    result_ = txtURL.tag;
    Close();
}

std::optional<std::string> AskSource(ProjectContext& context, SourceMode mode,
                                     const std::string& pageKey, const std::string& value) {
    frmSource dialog(context, pageKey);
    dialog.SetupDialog(mode);
    dialog.SetURL(value);
    context.frame.dialogs.ShowModal(dialog);
    return dialog.Result();
}

}  // namespace pw
