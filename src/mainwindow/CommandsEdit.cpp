// The Edit menu and the context menu.
#include <algorithm>
#include <iterator>

#include "frame/Context.h"
#include "mainwindow/Commands.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/Finding.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/dom/TextRange.h"
#include "project/CopyPages.h"
#include "project/Pages.h"

namespace pw {

namespace {

constexpr int kCut = 103;
constexpr int kCopy = 104;
constexpr int kPaste = 105;
constexpr int kDelete = 106;
constexpr int kSelectAll = 107;
constexpr int kFindNext = 110;
constexpr int kFindPrevious = 111;

// --- The project explorer -----------------------------------------------------------------------

bool MayDelete(MainContext& context) {
    if (SelectedNodeLetter(context) != 'F') return true;
    const Message question{
        "Deleting this folder will also delete any pages or sub-folders "
        "contained in it.\n\nDo you want to continue?",
        context.frame.brand.FormCaption(), Icon::Exclamation, Buttons::YesNo, Answer::No};
    return context.frame.dialogs.MsgBox(question) == Answer::Yes;
}

/** The first page of the tree, or else the site. */
std::string FirstNode(MainContext& context) {
    const auto& pages = context.model.PageIndex();
    if (pages.Count() > 0) return pages.Item(1)->Key();
    const WebSite* site = context.model.WebSites().Item(1);
    return site ? site->Key() : std::string();
}

void AfterRemoval(MainContext& context) {
    context.model.IsDirty = true;
    RefillProjectExplorer(context);
    context.window.SelectProjectNode(FirstNode(context));
}

void Refuse(MainContext& context, const std::string& text, const std::string& reason) {
    context.frame.dialogs.MsgBox({text + (reason.empty() ? "" : " " + reason),
                                  context.frame.brand.FormCaption(), Icon::Exclamation,
                                  Buttons::Ok});
}

/** A page that was cut lives on in the clipboard alone. */
bool MayReplaceCutPage(MainContext& context) {
    const auto& copied = context.project.copiedPage;
    if (!copied.isCut || copied.isPasted) return true;
    return context.frame.dialogs.MsgBox(
               {"The page '" + copied.title +
                    "' was cut and has not been pasted yet. It will be lost.\n\n"
                    "Do you want to continue?",
                context.frame.brand.FormCaption(), Icon::Exclamation, Buttons::YesNo,
                Answer::No}) == Answer::Yes;
}

void EditInProjectExplorer(MainContext& context, int tool) {
    if (!IsEditPossible(context, tool, Pane::ProjectExplorer)) return;
    const std::string key = context.window.SelectedProjectNode();
    std::string reason;
    switch (tool) {
        case kCut: {
            if (!MayReplaceCutPage(context)) break;
            if (CutPage(context.project, key, &reason)) {
                AfterRemoval(context);
            } else if (!reason.empty()) {
                Refuse(context, "The page can not be cut.", reason);
            }
            break;
        }
        case kCopy:
            if (!MayReplaceCutPage(context)) break;
            if (!CopyPage(context.project, key, &reason) && !reason.empty())
                Refuse(context, "The page can not be copied.", reason);
            break;
        case kPaste: {
            if (const Page* page = PastePage(context.project, key, &reason)) {
                context.model.IsDirty = true;
                RefillProjectExplorer(context);
                context.window.SelectProjectNode(page->Key());
                // Links that could not follow.
                if (!reason.empty()) Refuse(context, reason, "");
            } else {
                Refuse(context, "The page can not be pasted.", reason);
            }
            break;
        }
        case kDelete: {
            if (!MayDelete(context)) break;
            if (RemoveProjectItem(context.project, key, nullptr, &reason)) {
                AfterRemoval(context);
            } else if (!reason.empty()) {
                Refuse(context, "It can not be removed.", reason);
            }
            break;
        }
        default:
            break;
    }
}

// --- The task list ------------------------------------------------------------------------------

void EditInTaskList(MainContext& context, int tool) {
    if (!IsEditPossible(context, tool, Pane::TaskList)) return;
    const ListView& list = context.window.lvwTasks;
    if (!context.model.Tasks().Remove(list.Row(list.Selected()).tag)) return;
    context.model.IsDirty = true;
    RefreshTasks(context);
}

// --- The page -----------------------------------------------------------------------------------

struct EditCommand {
    int tool;
    int command;
};
constexpr EditCommand kEditCommands[] = {
    {101, DECMD_UNDO},
    {102, DECMD_REDO},
    {kCut, DECMD_CUT},
    {kCopy, DECMD_COPY},
    {kPaste, DECMD_PASTE},
    {kDelete, DECMD_DELETE},
    {kSelectAll, DECMD_SELECTALL},
};

/** Text selected inside a form field is the field's, which the page does not know. */
void SelectFieldText(dom::Document& document) {
    dom::Node* element = document.elementAtCaret();
    if (!element || !(element->is("input") || element->is("textarea"))) return;
    if (document.selection().type != dom::SelectionType::Text) return;
    dom::TextRange range(document);
    range.moveToElementText(*element);
    range.select();
}

void EditInPage(frmDocument& document, int tool) {
    const auto entry = std::find_if(std::begin(kEditCommands), std::end(kEditCommands),
                                    [tool](const EditCommand& each) { return each.tool == tool; });
    if (entry == std::end(kEditCommands)) return;
    HtmlEditor& editor = document.docDHTMLEditor;
    CommandState state = editor.QueryStatus(entry->command);
    const bool ofSelection = tool == kCut || tool == kCopy || tool == kDelete;
    if (state != CommandState::Enabled && ofSelection) {
        SelectFieldText(editor.DOM());
        state = editor.QueryStatus(entry->command);
    }
    if (state == CommandState::Enabled) editor.ExecCommand(entry->command);
}

void EditInDocument(MainContext& context, int tool) {
    frmDocument* document = context.CurrentDocument();
    if (!document) return;
    if (document->State() == View::Normal) {
        EditInPage(*document, tool);
        document->docDHTMLEditor_DisplayChanged();
    } else if (document->State() == View::Html && tool == kSelectAll) {
        SourceBox& source = document->Surface().Source();
        source.Select(0, source.Text().size());
    }
}

bool IsOfPane(int tool) {
    return tool >= kCut && tool <= kDelete;
}

}  // namespace

void MenuEdit(MainContext& context, int tool) {
    const Pane pane = FocusInForce(context);
    if (tool == frmFindReplace::kFind || tool == frmFindReplace::kReplace) {
        context.Finder->Open(tool);
    } else if (tool == kFindNext || tool == kFindPrevious) {
        using Direction = frmFindReplace::Direction;
        context.Finder->FindAgain(tool == kFindNext ? Direction::Down : Direction::Up);
    } else if (pane == Pane::ProjectExplorer && IsOfPane(tool)) {
        EditInProjectExplorer(context, tool);
    } else if (pane == Pane::TaskList && IsOfPane(tool)) {
        EditInTaskList(context, tool);
    } else {
        EditInDocument(context, tool);
    }
}

void MenuContextEdit(MainContext& context, int tool) {
    context.CommandFocus = context.ContextPane;
    MenuEdit(context, tool - 1000);
    context.CommandFocus = Pane::Page;
}

void MenuContext(MainContext& context, int tool) {
    switch (tool) {
        case 1103:
        case 1104:
        case 1105:
        case 1106:
            MenuContextEdit(context, tool);
            break;
        case 1107:
            MenuView(context, 201);
            break;
        case 1108: {
            constexpr int kHides[] = {0, 209, 210, 211};
            const int explorer = kHides[int(context.ContextPane)];
            if (explorer != 0) MenuView(context, explorer);
            break;
        }
        default:
            break;
    }
}

}  // namespace pw
