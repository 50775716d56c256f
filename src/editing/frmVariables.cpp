#include "editing/frmVariables.h"

#include "editing/ElementRecognition.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/MergeVariables.h"
#include "project/Workspace.h"
#include "project/frmNameValue.h"
#include "project/omProj/Project.h"

namespace pw {

frmVariables::frmVariables(ProjectContext& context, std::function<void()> editProperties)
    : Dialog("frmVariables", "Merge Variables"),
      context_(context),
      editProperties_(std::move(editProperties)) {
    for (ListView* list : {&lvwStandard, &lvwCustom}) {
        list->SetColumns({{"Name", 200}, {"Value", 280}});
        list->ItemClick = [this](int) { SetUI(); };
    }
    tabVariables.Click = [this] { SetUI(); };
    for (int i = 0; i < int(cmdVariable.size()); ++i) {
        cmdVariable[std::size_t(i)].Click = [this, i] { cmdVariable_Click(i); };
    }
    cmdProcess.Click = [this] { cmdProcess_Click(); };
    LoadVariables(Which::Both);
    SetUI();
}

void frmVariables::LoadVariables(Which which) {
    UpdateProjectMergeVariables(context_);
    lvwStandard.Clear();
    if (which == Which::Both) lvwCustom.Clear();
    for (const MergeVariable& variable : context_.project.MergeVariables()) {
        ListRow row;
        row.cells = {variable.Name, variable.Value};
        if (variable.Type == "S") {
            lvwStandard.Add(std::move(row));
        } else if (which == Which::Both) {
            lvwCustom.Add(std::move(row));
        }
    }
}

void frmVariables::SetUI() {
    const bool custom = tabVariables.Selected() == Custom;
    const bool selected = VisibleList().Selected() >= 0;
    const bool pageOpen = !context_.workspace.CurrentPageKey().empty();
    cmdVariable[Insert].SetEnabled(selected && pageOpen);
    cmdVariable[Add].SetEnabled(custom && lvwCustom.Count() < kMostCustomVariables);
    // A standard variable is modified where it comes from: in the project's properties.
    cmdVariable[Modify].SetEnabled(!custom || selected);
    cmdVariable[Remove].SetEnabled(custom && selected);
}

void frmVariables::cmdVariable_Click(int index) {
    Trap(context_.frame.errorLog, "Variables.", "cmdVariable_Click", [&] {
        switch (index) {
            case Insert:
                InsertSelected();
                break;
            case Add:
                AskForRow(-1);
                break;
            case Modify:
                if (tabVariables.Selected() == Custom) {
                    AskForRow(lvwCustom.Selected());
                } else {
                    editProperties_();
                    LoadVariables(Which::StandardOnly);
                    changed_ = true;
                }
                break;
            case Remove:
                RemoveSelected();
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
    InsertHTMLAtCursor(
        context_, context_.workspace.CurrentPageKey(),
        "<A type=omMerge name=" + QuoteDouble(name) + ">" + EscapeHTML(value) + "</A>");
    changed_ = true;
}

void frmVariables::AskForRow(int index) {
    NameValueQuestion question;
    question.title = index < 0 ? "Add Variable" : "Modify Variable";
    if (index >= 0) {
        const ListRow row = lvwCustom.Row(index);
        question.initial = {row.cells[0], row.cells[1]};
    }
    question.refuse = [this, index](const NameValue& entry) -> std::string {
        // The name stands between double quotes in the pages.
        if (entry.name.find_first_of("\"<>") != std::string::npos) return "Invalid name.";
        for (const ListView* list : {&lvwCustom, &lvwStandard}) {
            for (int i = 0; i < list->Count(); ++i) {
                if (list == &lvwCustom && i == index) continue;
                if (EqualsNoCase(list->Row(i).cells[0], entry.name)) {
                    return "A variable with this name already exists. Please use a different name.";
                }
            }
        }
        return {};
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
    changed_ = true;
}

void frmVariables::RemoveSelected() {
    const int index = lvwCustom.Selected();
    const Answer answer =
        context_.frame.dialogs.MsgBox({"Are you sure you want to remove custom merge variable " +
                                           QuoteSingle(lvwCustom.Row(index).cells[0]) + "?",
                                       "Remove Merge Variable", Icon::Question, Buttons::YesNo});
    if (answer != Answer::Yes) return;
    lvwCustom.Remove(index);
    changed_ = true;
}

void frmVariables::cmdProcess_Click() {
    WriteChanges();
    Close();
}

// There is no way out without writing: the close box does what Close does.
bool frmVariables::Form_QueryUnload() {
    WriteChanges();
    return true;
}

void frmVariables::WriteChanges() {
    if (!changed_) return;
    changed_ = false;
    Trap(context_.frame.errorLog, "Variables.", "cmdProcess_Click", [this] {
        RemoveVariablesOfType(context_, "C");
        for (int i = 0; i < lvwCustom.Count(); ++i) {
            const ListRow row = lvwCustom.Row(i);
            MergeVariable* variable = context_.project.MergeVariables().Add();
            if (!variable) break;
            variable->Type = "C";
            variable->Name = row.cells[0];
            variable->Value = row.cells[1];
        }
        context_.project.IsDirty = true;
        UpdateMergeVariablesInOpenPages(context_);
        static_cast<void>(UpdateMergeVariablesInClosedPages(context_, PagesToUpdate::ClosedOnly));
    });
}

}  // namespace pw
