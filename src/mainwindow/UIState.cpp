#include "mainwindow/UIState.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

#include "editing/ElementRecognition.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/Pictures.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"
#include "project/InsertPage.h"
#include "project/Pages.h"

namespace pw {

namespace {

constexpr const char* kModule = "UIFunctions.";

// --- What the commands need ---------------------------------------------------------------------

enum class Needs {
    Nothing,
    Project,     ///< one is open
    Page,        ///< one is open, in whatever view
    Text,        ///< a page whose view has text to select and to search
    NormalView,  ///< a page in normal view
    Documents,   ///< any page window
    Browser,     ///< a page and the path of the first browser
    Navigator,   ///< a page and the path of the second one
    Properties   ///< of something that has a dialog
};

struct Rule {
    int first;
    int last;
    Needs needs;
};

/** The commands whose state depends on more than this (101 to 106, the formats) are not in it. */
// clang-format off
constexpr Rule kRules[] = {
    // File
    {1, 1, Needs::Nothing}, {2, 2, Needs::Project}, {3, 3, Needs::Nothing}, {4, 5, Needs::Project},
    {6, 6, Needs::Nothing}, {7, 8, Needs::Project}, {9, 9, Needs::Page}, {10, 10, Needs::Project},
    {11, 12, Needs::Page}, {14, 17, Needs::Project}, {18, 18, Needs::Page}, {19, 19, Needs::Nothing},
    {kFirstRecentTool, kLastRecentTool, Needs::Nothing},
    // Edit
    {107, 111, Needs::Text},
    // View
    {201, 201, Needs::Properties}, {203, 204, Needs::NormalView}, {205, 205, Needs::Page},
    {207, 207, Needs::Browser}, {208, 208, Needs::Navigator}, {209, 219, Needs::Nothing},
    // Insert
    {301, 333, Needs::NormalView},
    // Format
    {401, 416, Needs::NormalView}, {426, 427, Needs::NormalView},
    // Tools
    {504, 504, Needs::Page}, {505, 505, Needs::Nothing},
    // Window
    {901, 904, Needs::Documents}, {kFirstWindowTool, kMoreWindowsTool, Needs::Documents},
    // Help
    {1001, 1012, Needs::Nothing},
    // The context menu, the connections
    {1107, 1107, Needs::Properties}, {1201, 1212, Needs::Nothing},
};
// clang-format on

/** Bands that are of use only while a page is up in normal view. */
constexpr const char* kPageBands[] = {"Format", "Layering", "Forms",          "mnuInsert",
                                      "Insert", "mnuTable", "Insert Advanced"};

struct State {
    bool project = false;
    bool page = false;
    bool normal = false;
    bool preview = false;
    bool documents = false;
    bool properties = false;
    char letter = 0;
};

State ReadState(const MainContext& context) {
    State state;
    const frmDocument* document = context.CurrentDocument();
    state.project = context.model.IsLoaded;
    state.page = document != nullptr;
    state.normal = document && document->State() == View::Normal;
    state.preview = document && document->State() == View::Preview;
    state.documents = !context.OpenDocuments.Empty();
    state.letter = context.ContextPane == Pane::ProjectExplorer ? SelectedNodeLetter(context) : 0;
    state.properties = HasPropertiesDialog(context);
    return state;
}

bool IsMet(Needs needs, const State& state, const Settings& settings) {
    switch (needs) {
        case Needs::Nothing:
            return true;
        case Needs::Project:
            return state.project;
        case Needs::Page:
            return state.page;
        case Needs::Text:
            return state.page && !state.preview;
        case Needs::NormalView:
            return state.normal;
        case Needs::Documents:
            return state.documents;
        case Needs::Browser:
            return state.page && !settings.IEFilename.empty();
        case Needs::Navigator:
            return state.page && !settings.NNFilename.empty();
        case Needs::Properties:
            return state.properties;
    }
    return false;
}

void Enable(MainContext& context, int tool, bool enabled) {
    context.barMain.SetEnabled(tool, enabled && HasHandler(tool));
}

// --- Commands of the page -----------------------------------------------------------------------

struct Toggle {
    int tool;
    int command;
};
constexpr Toggle kToggles[] = {
    {404, DECMD_BOLD},
    {405, DECMD_ITALIC},
    {406, DECMD_UNDERLINE},
    {407, DECMD_SETFORECOLOR},
    {408, DECMD_SETBACKCOLOR},
    {409, DECMD_JUSTIFYLEFT},
    {410, DECMD_JUSTIFYCENTER},
    {411, DECMD_JUSTIFYRIGHT},
    {412, DECMD_UNORDERLIST},
    {413, DECMD_ORDERLIST},
    {414, DECMD_OUTDENT},
    {415, DECMD_INDENT},
    {418, DECMD_MAKE_ABSOLUTE},
    {419, DECMD_LOCK_ELEMENT},
    {420, DECMD_BRING_TO_FRONT},
    {421, DECMD_SEND_TO_BACK},
    {422, DECMD_BRING_FORWARD},
    {423, DECMD_SEND_BACKWARD},
    {424, DECMD_SEND_BELOW_TEXT},
    {425, DECMD_BRING_ABOVE_TEXT},
    {601, DECMD_INSERTTABLE},
    {602, DECMD_INSERTROW},
    {603, DECMD_DELETEROWS},
    {604, DECMD_INSERTCOL},
    {605, DECMD_DELETECOLS},
    {606, DECMD_INSERTCELL},
    {607, DECMD_DELETECELLS},
    {608, DECMD_MERGECELLS},
    {609, DECMD_SPLITCELL},
};

bool IsAvailable(CommandState state) {
    return state == CommandState::Enabled || state == CommandState::Latched;
}

void UpdateToggles(MainContext& context, HtmlEditor& editor) {
    for (const Toggle& toggle : kToggles) {
        if (!HasHandler(toggle.tool)) continue;
        const CommandState state = editor.QueryStatus(toggle.command);
        context.barMain.SetEnabled(toggle.tool, IsAvailable(state));
        context.barMain.SetChecked(toggle.tool, state == CommandState::Latched);
    }
}

struct FontTool {
    int tool;
    int command;
    std::string (*show)(const std::string&);
};

std::string AsIs(const std::string& value) {
    return value;
}
std::string AsFontSize(const std::string& value) {
    return FontSizeText(int(Val(value)));
}

constexpr FontTool kFontTools[] = {{401, DECMD_GETBLOCKFMT, AsIs},
                                   {402, DECMD_GETFONTNAME, AsIs},
                                   {403, DECMD_GETFONTSIZE, AsFontSize}};

void UpdateFontTools(MainContext& context, HtmlEditor& editor) {
    for (const FontTool& font : kFontTools) {
        const bool available = IsAvailable(editor.QueryStatus(font.command));
        context.barMain.SetEnabled(font.tool, available);
        context.barMain.SetComboText(font.tool,
                                     available ? font.show(editor.ExecCommand(font.command)) : "");
    }
}

/** Each page has its own; `editor` is none without a page. */
void UpdateEditorChecks(MainContext& context, const HtmlEditor* editor) {
    context.barMain.SetChecked(203, editor && editor->ShowBorders());
    context.barMain.SetChecked(204, editor && editor->ShowDetails());
    context.barMain.SetChecked(504, editor && editor->SnapToGrid());
}

void ClearPageTools(MainContext& context) {
    for (const Toggle& toggle : kToggles) {
        Enable(context, toggle.tool, false);
        context.barMain.SetChecked(toggle.tool, false);
    }
    for (const FontTool& font : kFontTools) {
        Enable(context, font.tool, false);
        context.barMain.SetComboText(font.tool, "");
    }
    Enable(context, 101, false);
    Enable(context, 102, false);
    const frmDocument* document = context.CurrentDocument();
    UpdateEditorChecks(context, document ? &document->docDHTMLEditor : nullptr);
}

void UpdateViewChecks(MainContext& context) {
    for (int tool = kFirstExplorerTool; tool <= kLastExplorerTool; ++tool) {
        context.barMain.SetChecked(tool, IsExplorerShown(context, tool));
    }
    for (const char* toolbar : kToolbarNames) {
        const Band* band = context.barMain.FindBand(toolbar);
        if (band) context.barMain.SetChecked(CommandOfToolbar(toolbar), band->visible);
    }
    for (int speed = 1; speed <= int(std::size(kConnectionSpeeds)); ++speed) {
        context.barMain.SetChecked(1200 + speed, speed == context.frame.settings.ConnectionSpeed);
    }
}

void UpdateWelcome(MainContext& context) {
    const bool show = !context.model.IsLoaded && context.OpenDocuments.Empty();
    if (context.WelcomeShown == show) return;
    context.WelcomeShown = show;
    context.window.Surface().ShowWelcome(show, RecentProjects(context.frame));
}

enum class Selected { Nothing, Text, Object };

/** A mere caret selects nothing. */
Selected WhatIsSelected(const dom::Document& document) {
    const dom::Selection& selection = document.selection();
    if (selection.type == dom::SelectionType::Control) return Selected::Object;
    if (selection.type == dom::SelectionType::None || selection.collapsed())
        return Selected::Nothing;
    return Selected::Text;
}

bool IsPageEditPossible(const MainContext& context, int tool) {
    frmDocument* document = context.CurrentDocument();
    if (!document || document->State() != View::Normal) return false;
    HtmlEditor& editor = document->docDHTMLEditor;
    if (tool == 105) return editor.QueryStatus(DECMD_PASTE) == CommandState::Enabled;
    return !editor.Busy() && WhatIsSelected(editor.DOM()) != Selected::Nothing;
}

bool IsExplorerEditPossible(const MainContext& context, int tool) {
    const char letter = SelectedNodeLetter(context);
    if (letter == 0) return false;
    if (tool == 105) return !context.project.copiedPage.empty() && letter != 'R';
    if (tool == 106) return letter != 'W' && letter != 'R';
    return letter != 'F' && letter != 'W' && letter != 'R';
}

void SetEditTools(MainContext& context, Pane focus) {
    for (int tool = 103; tool <= 106; ++tool) {
        const bool possible = IsEditPossible(context, tool, focus);
        Enable(context, tool, possible);
        Enable(context, tool + 1000, possible);
    }
}

}  // namespace

Pane FocusInForce(const MainContext& context) {
    return context.CommandFocus != Pane::Page ? context.CommandFocus : context.ContextPane;
}

char SelectedNodeLetter(const MainContext& context) {
    const std::string key = context.window.tvwProjectExplorer.SelectedKey();
    if (key.empty()) return 0;
    return key.size() < std::size_t(kBlockWidth) ? key[0] : key[key.size() - kBlockWidth];
}

bool IsEditPossible(MainContext& context, int tool, Pane focus) {
    if (tool > 1000) tool -= 1000;
    switch (focus) {
        case Pane::Page:
        case Pane::PageExplorer:
            return IsPageEditPossible(context, tool);
        case Pane::ProjectExplorer:
            return IsExplorerEditPossible(context, tool);
        case Pane::TaskList:
            return tool == 106 && context.window.lvwTasks.Selected() >= 0;
    }
    return false;
}

void SetEditMenuItems(MainContext& context) {
    Trap(context.frame.errorLog, kModule, "SetEditMenuItems",
         [&] { SetEditTools(context, FocusInForce(context)); });
}

namespace {

/** Properties and HTML of what is selected in the pane that the user is in. */
void UpdatePropertiesTools(MainContext& context) {
    const bool inProject = context.ContextPane == Pane::ProjectExplorer;
    SetPropertyCaptions(context, inProject ? SelectedNodeLetter(context) : 0);
    const bool possible = HasPropertiesDialog(context);
    Enable(context, 201, possible);
    Enable(context, 1107, possible);
}

}  // namespace

void UpdateUndoTools(MainContext& context, HtmlEditor& editor) {
    const auto isEnabled = [&](int command) {
        return editor.QueryStatus(command) == CommandState::Enabled;
    };
    Enable(context, 101, isEnabled(DECMD_UNDO));
    Enable(context, 102, isEnabled(DECMD_REDO));
}

void UpdateDocumentUI(MainContext& context, const std::string& key) {
    Trap(context.frame.errorLog, kModule, "UpdateDocumentUI", [&] {
        frmDocument* document = context.OpenDocuments.Find(key);
        if (!document || context.CommandFocus != Pane::Page || document->State() != View::Normal) {
            return;
        }
        HtmlEditor& editor = document->docDHTMLEditor;
        // Once for all that is read below. Without a caret there is nothing to wait for.
        if (IsAvailable(editor.QueryStatus(DECMD_GETFONTNAME))) document->WaitUntilReady();
        UpdateToggles(context, editor);
        UpdateFontTools(context, editor);
        UpdateUndoTools(context, editor);
        SetEditTools(context, FocusInForce(context));
        UpdatePropertiesTools(context);

        const Selected selected = WhatIsSelected(editor.DOM());
        const bool linkable = IsAvailable(editor.QueryStatus(DECMD_HYPERLINK));
        Enable(context, 325, linkable);
        Enable(context, 324,
               selected != Selected::Object && (linkable || selected == Selected::Text));
        UpdateEditorChecks(context, &editor);
    });
}

void ResetUI(MainContext& context) {
    Trap(context.frame.errorLog, kModule, "ResetUI", [&] {
        const State state = ReadState(context);
        for (const char* band : kPageBands)
            context.barMain.SetBandEnabled(band, state.normal);
        for (const Rule& rule : kRules) {
            const bool met = IsMet(rule.needs, state, context.frame.settings);
            for (int tool = rule.first; tool <= rule.last; ++tool)
                Enable(context, tool, met);
        }
        if (state.normal) {
            UpdateDocumentUI(context, context.CurrentPageKey);
        } else {
            ClearPageTools(context);
        }
        SetEditTools(context, FocusInForce(context));
        SetPropertyCaptions(context, state.letter);
        context.window.tvwPageExplorer.SetEnabled(state.normal);
        context.window.tvwProjectExplorer.SetEnabled(state.project);
        UpdateViewChecks(context);
        UpdateDownloadTime(context);
        UpdateWelcome(context);
    });
}

void SetContextMenu(MainContext& context, ContextMenu how) {
    Trap(context.frame.errorLog, kModule, "SetContextMenu", [&] {
        frmDocument* document = context.CurrentDocument();
        const bool normal = document && document->State() == View::Normal;
        UpdatePropertiesTools(context);
        const bool inForm =
            context.ContextPane == Pane::Page && normal &&
            GetParentElement(document->Document(), context.CurrentElement(), "FORM");
        context.barMain.SetToolVisible(1101, inForm);
        SetEditTools(context,
                     how == ContextMenu::PopUp ? context.ContextPane : FocusInForce(context));
        if (how == ContextMenu::PopUp) context.barMain.PopUp(kContextMenu);
    });
}

namespace {

/** What the properties and HTML commands are about; an empty HTML caption hides the command. */
struct PropertyCaptions {
    std::string properties;
    std::string html;
};

PropertyCaptions CaptionsOf(const MainContext& context, char letter) {
    if (context.ContextPane == Pane::TaskList) return {"Task P&roperties...", ""};
    switch (letter) {
        case 'F':
            return {"Folder P&roperties...", ""};
        case 'P':
            return {"Page P&roperties...", "Page &HTML..."};
        case 'R':
        case 'W':
            return {"Project P&roperties...", ""};
        default:
            break;
    }
    dom::Node* element = GetValidElement(context.CurrentElement());
    const std::string name =
        element && element->is("html") ? "Page" : Trim(GetElementTypeName(element));
    return {Trim(name + " P&roperties..."), Trim(name + " &HTML...")};
}

}  // namespace

void SetPropertyCaptions(MainContext& context, char letter) {
    const PropertyCaptions captions = CaptionsOf(context, letter);
    const frmDocument* document = context.CurrentDocument();
    context.barMain.SetCaption(201, captions.properties);
    context.barMain.SetCaption(1107, captions.properties);
    // A beginner is not shown any HTML.
    const bool shown = !captions.html.empty() && context.frame.settings.SkillLevel != 0;
    context.barMain.SetToolVisible(202, shown);
    if (!captions.html.empty()) context.barMain.SetCaption(202, captions.html);
    Enable(context, 202, document && document->State() == View::Normal);
}

// --- Skill levels -------------------------------------------------------------------------------

bool IsToolbarStandard(const std::string& toolbar, int skillLevel) {
    static constexpr std::pair<const char*, int> kFromLevel[] = {
        {"Format", 0},   {"Forms", 2},    {"Insert", 0}, {"Insert Advanced", 2},
        {"Layering", 2}, {"Standard", 0}, {"Table", 1}};
    return std::any_of(std::begin(kFromLevel), std::end(kFromLevel), [&](const auto& entry) {
        return toolbar == entry.first && skillLevel >= entry.second;
    });
}

void ShowStandardToolbars(MainContext& context, int skillLevel) {
    for (const char* toolbar : kToolbarNames) {
        const bool shown = IsToolbarStandard(toolbar, skillLevel);
        context.barMain.SetBandVisible(toolbar, shown);
        context.barMain.SetChecked(CommandOfToolbar(toolbar), shown);
    }
}

void ApplySkillLevel(MainContext& context) {
    const int level = context.frame.settings.SkillLevel;
    for (const auto& document : context.OpenDocuments.All()) {
        // Without an HTML tab there would be no way out of the HTML view.
        if (level == 0 && document->State() == View::Html) document->SetToNormalEditMode();
        document->UpdatePicViewTab();
    }
    ShowStandardToolbars(context, level);
    ResetUI(context);
}

// --- Font tools ---------------------------------------------------------------------------------

namespace {
constexpr const char* kFontSizes[] = {"8", "10", "12", "14", "18", "24", "36"};
}

std::string FontSizeText(int index) {
    return index >= 1 && index <= int(std::size(kFontSizes)) ? kFontSizes[index - 1] : "";
}

int FontSizeIndex(const std::string& text) {
    const auto at = std::find(std::begin(kFontSizes), std::end(kFontSizes), text);
    return at == std::end(kFontSizes) ? 0 : int(at - std::begin(kFontSizes)) + 1;
}

void InitDHTMLFormats(MainContext& context) {
    frmDocument* document = context.CurrentDocument();
    if (context.FormatsFilled || !document) return;
    context.FormatsFilled = true;
    std::vector<std::string> names;
    for (std::string& name :
         Split(document->docDHTMLEditor.ExecCommand(DECMD_GETBLOCKFMTNAMES), '\n')) {
        if (!Trim(name).empty()) names.push_back(Trim(name));
    }
    context.barMain.SetComboItems(401, std::move(names));
    context.barMain.SetComboItems(402, context.window.Surface().FontNames());
    context.barMain.SetComboItems(403, {std::begin(kFontSizes), std::end(kFontSizes)});
}

// --- Status bar ---------------------------------------------------------------------------------

namespace {

constexpr int kSpeeds[] = {14400,  28800,  33600,  56000,   56000,   112000,
                           256000, 300000, 512000, 1544000, 4500000, 10000000};
static_assert(std::size(kSpeeds) == std::size(kConnectionSpeeds));

/** The panel's own steps: by thousands. */
std::string PanelSize(std::int64_t size) {
    if (size < 1000) return std::to_string(size) + " byte(s)";
    const double bytes = double(size);
    if (size < 1000000) return FormatDecimals(bytes / 1000, 0, Grouping::Thousands) + "KB";
    return FormatNumber(bytes / 1000000, NumberStyle::Standard) + "MB";
}

}  // namespace

std::int64_t DownloadSeconds(std::int64_t size, int speed) {
    if (speed < 1 || speed > int(std::size(kSpeeds))) {
        throw Failure(11, "There is no connection of the number " + std::to_string(speed) + ".");
    }
    return std::int64_t(std::floor(double(size) / kSpeeds[speed - 1] / 8 * 60));
}

std::string DownloadTimeText(std::int64_t size, int speed) {
    const std::int64_t seconds = DownloadSeconds(size, speed);
    const std::string time = seconds == 0 ? "<1 second" : std::to_string(seconds) + " seconds";
    return time + " over " + kConnectionSpeeds[speed - 1] + " (" + PanelSize(size) + ")";
}

void UpdateDownloadTime(MainContext& context) {
    Trap(context.frame.errorLog, kModule, "UpdateDownloadTime", [&] {
        Label& panel = context.window.sbrMain[2];
        panel.toolTip = kDownloadToolTip;
        frmDocument* document = context.CurrentDocument();
        if (!document) {
            panel.tag.clear();
            panel.SetCaption(FormatSize(0));
            return;
        }
        const Settings& settings = context.frame.settings;
        // Of the document as it stands: what is being typed as source is not taken over for this.
        const std::int64_t size =
            DocumentSize(context.project, document->Document(), document->BaseURL());
        const bool slow = DownloadSeconds(size, settings.ConnectionSpeed) >= settings.DownloadTime;
        panel.tag = std::to_string(slow ? kPictureSlow : kPictureQuick);
        panel.SetCaption(DownloadTimeText(size, settings.ConnectionSpeed));
    });
}

void ShowStatusText(MainContext& context, const std::string& text) {
    context.window.sbrMain[0].SetCaption(text);
    // Asking the system takes a while, and texts come with every move of the pointer.
    constexpr double kSecondsBetweenLooks = 5;
    const double now = context.frame.clock.MonotonicSeconds();
    if (now - context.ConnectionChecked < kSecondsBetweenLooks) return;
    context.ConnectionChecked = now;
    const bool online = IsOnline(context.frame.system);
    Label& panel = context.window.sbrMain[1];
    panel.tag = std::to_string(online ? kPictureOnline : kPictureOffline);
    panel.toolTip = online ? "Internet connection detected" : "No Internet connection detected";
    panel.SetCaption(online ? "Online" : "Offline");
}

}  // namespace pw
