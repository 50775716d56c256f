#include "editing/frmVariables.h"

#include <algorithm>

#include "editing/ElementRecognition.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/RangeEdit.h"
#include "project/MergeVariables.h"
#include "project/Workspace.h"
#include "project/frmNameValue.h"
#include "project/frmProject.h"
#include "project/omProj/Project.h"

namespace pw {

namespace {

constexpr const char* kModule = "Variables.";

int FindName(const ListView& list, const std::string& name, int exceptRow = -1) {
    for (int row = 0; row < list.Count(); ++row)
        if (row != exceptRow && EqualsNoCase(list.Row(row).cells[0], name)) return row;
    return -1;
}

/** An anchor can not stand in another one, and what is put into a variable goes with its next
 *  value: the caret moves behind the anchor that holds it. Selected text of a link gives way to the
 *  variable, with the link's halves on both sides. */
void LeaveAnchor(dom::Document& document) {
    if (document.selection().type != dom::SelectionType::Text) return;
    const bool isSelected = !document.selection().collapsed();
    document.deleteSelection();
    dom::Node* anchor = document.elementAtCaret();
    while (anchor && !anchor->is("a"))
        anchor = anchor->parentElement();
    if (!anchor || !anchor->parent()) return;
    dom::Node& parent = *anchor->parent();
    dom::Node* next = anchor->next();
    if (isSelected && !IsMergeSpan(*anchor))
        next = dom::splitElements(document, document.selection().focus, parent);
    const auto isBlank = [](const dom::Node* node) {
        if (!node || !node->is("a") || node->hasAttribute("name") || node->hasAttribute("id"))
            return false;
        const auto children = node->children();
        return std::all_of(children.begin(), children.end(), [](const dom::Node* child) {
            return child->isText() && child->data().empty();
        });
    };
    document.collapse({&parent, next ? next->index() : parent.children().size()});
    // A link without a text is none.
    if (isSelected && isBlank(next ? next->previous() : parent.lastChild()))
        document.removeNode(next ? *next->previous() : *parent.lastChild());
    if (isSelected && isBlank(next)) document.removeNode(*next);
}

}  // namespace

frmVariables::frmVariables(ProjectContext& context, std::string name)
    : Dialog("frmVariables", "Merge Variables"), context_(context), name_(std::move(name)) {
    for (ListView* list : {&lvwStandard, &lvwCustom}) {
        list->SetColumns({{"Name", 190}, {"Value", 260}});
        list->ItemClick = [this](int) { SetUI(); };
        list->DblClick = [this] { cmdVariable[Insert].UserClick(); };
    }
    tabVariables.Click = [this] { SetUI(); };
    for (int i = 0; i < int(cmdVariable.size()); ++i)
        cmdVariable[std::size_t(i)].Click = [this, i] { cmdVariable_Click(i); };
    cmdProcess.Click = [this] {
        WriteChanges();
        Close();
    };
}

void frmVariables::Form_Load() {
    LoadVariables(Lists::Both);
    Select(name_);
}

void frmVariables::LoadVariables(Lists lists) {
    UpdateProjectMergeVariables(context_);
    lvwStandard.Clear();
    if (lists == Lists::Both) lvwCustom.Clear();
    for (const MergeVariable& variable : context_.project.MergeVariables()) {
        ListRow row;
        row.cells = {variable.Name, variable.Value};
        if (variable.Type == "S") {
            lvwStandard.Add(std::move(row));
        } else if (lists == Lists::Both && variable.Type == "C") {
            lvwCustom.Add(std::move(row));
        }
    }
}

void frmVariables::Select(const std::string& name) {
    for (const Tab tab : {Custom, Standard}) {
        ListView& list = tab == Custom ? lvwCustom : lvwStandard;
        const int row = FindName(list, name);
        if (row < 0) continue;
        tabVariables.SetSelected(tab);
        list.SetSelected(row);
        break;
    }
    SetUI();
}

void frmVariables::SetUI() {
    const bool isCustom = tabVariables.Selected() == Custom;
    const bool isSelected = VisibleList().Selected() >= 0;
    const bool isPageOpen = !context_.workspace.CurrentPageKey().empty();
    cmdVariable[Insert].SetEnabled(isSelected && isPageOpen);
    cmdVariable[Add].SetEnabled(isCustom && lvwCustom.Count() < kMostCustomVariables);
    // A standard variable is changed where it comes from: in the project's properties.
    cmdVariable[Modify].SetEnabled(!isCustom || isSelected);
    cmdVariable[Remove].SetEnabled(isCustom && isSelected);
}

void frmVariables::cmdVariable_Click(int index) {
    Trap(context_.frame.errorLog, kModule, "cmdVariable_Click", [&] {
        const bool isCustom = tabVariables.Selected() == Custom;
        changed_ = true;
        switch (index) {
            case Insert:
                InsertSelected();
                break;
            case Add:
                AskForRow(-1);
                break;
            case Modify:
                isCustom ? AskForRow(lvwCustom.Selected()) : EditProperties();
                break;
            case Remove:
                RemoveSelected();
                break;
            default:
                break;
        }
        SetUI();
    });
}

void frmVariables::InsertSelected() {
    const ListRow row = VisibleList().Row(VisibleList().Selected());
    const std::string& name = row.cells[0];
    const std::string& value = row.cells[1];
    if (name.empty() || value.empty()) return;
    const std::string key = context_.workspace.CurrentPageKey();
    OpenPage* open = context_.workspace.FindOpenPage(key);
    if (!open) return;
    open->TakeOverEdits();
    const dom::Document::Step step(open->Document());
    LeaveAnchor(open->Document());
    InsertHTMLAtCursor(context_, key, VariableMarkup(name, value));
}

void frmVariables::EditProperties() {
    frmProject properties(context_);
    context_.frame.dialogs.ShowModal(properties);
    if (properties.Confirmed()) context_.workspace.RefillProjectExplorer();
    LoadVariables(Lists::StandardOnly);
}

bool frmVariables::IsTaken(const std::string& name, int exceptRow) const {
    return FindName(lvwStandard, name) >= 0 || FindName(lvwCustom, name, exceptRow) >= 0;
}

void frmVariables::AskForRow(int index) {
    NameValueQuestion question;
    question.title = index < 0 ? "Add Variable" : "Modify Variable";
    if (index >= 0) {
        const ListRow row = lvwCustom.Row(index);
        question.initial = {row.cells[0], row.cells[1]};
    }
    question.refuse = [this, index](const NameValue& entry) -> std::string {
        if (IsTaken(entry.name, index))
            return "A variable with this name already exists. Please use a different name.";
        return VariableNameProblem(entry.name);
    };
    const auto entry = AskNameValue(context_.frame.dialogs, std::move(question));
    if (!entry) return;
    ListRow row;
    row.cells = {entry->name, entry->value};
    if (index < 0) {
        lvwCustom.Add(std::move(row));
        lvwCustom.SetSelected(lvwCustom.Count() - 1);
    } else {
        lvwCustom.SetRow(index, std::move(row));
    }
}

void frmVariables::RemoveSelected() {
    const int index = lvwCustom.Selected();
    const Message question{"Are you sure you want to remove custom merge variable " +
                               QuoteSingle(lvwCustom.Row(index).cells[0]) + "?",
                           "Remove Merge Variable", Icon::Question, Buttons::YesNo};
    if (context_.frame.dialogs.MsgBox(question) != Answer::Yes) return;
    lvwCustom.Remove(index);
    if (lvwCustom.Count() > 0) lvwCustom.SetSelected(std::min(index, lvwCustom.Count() - 1));
}

/** There is no way out without writing: the frame's button does what Close does. */
bool frmVariables::Form_QueryUnload() {
    WriteChanges();
    return true;
}

void frmVariables::WriteChanges() {
    if (!changed_) return;
    changed_ = false;
    Trap(context_.frame.errorLog, kModule, "cmdProcess_Click", [&] {
        WriteCustomVariables();
        UpdateMergeVariablesInAllPages(context_, Title());
    });
}

void frmVariables::WriteCustomVariables() {
    std::vector<VariableValue> before;
    std::vector<VariableValue> wanted;
    for (const MergeVariable& variable : context_.project.MergeVariables())
        if (variable.Type == "C") before.push_back({variable.Name, variable.Value});
    for (int i = 0; i < lvwCustom.Count(); ++i) {
        const ListRow row = lvwCustom.Row(i);
        wanted.push_back({row.cells[0], row.cells[1]});
    }
    ReplaceVariablesOfType(context_, "C", wanted);
    if (before != wanted) context_.project.IsDirty = true;
}

}  // namespace pw
