// The Insert, Format and Table menus.
#include <algorithm>
#include <iterator>

#include "editing/ElementRecognition.h"
#include "editing/frmVariables.h"
#include "frame/Colors.h"
#include "frame/Context.h"
#include "mainwindow/Commands.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"

namespace pw {

namespace {

frmDocument* DocumentInNormalView(MainContext& context) {
    frmDocument* document = context.CurrentDocument();
    return document && document->State() == View::Normal ? document : nullptr;
}

// --- Insert -------------------------------------------------------------------------------------

struct LineBreak {
    int tool;
    const char* html;
};
constexpr LineBreak kLineBreaks[] = {
    {326, "<BR>"},           {327, "<BR>"}, {328, "<BR clear=left>"}, {329, "<BR clear=right>"},
    {330, "<BR clear=all>"},
};

// --- Format -------------------------------------------------------------------------------------

std::string ComboText(MainContext& context, int tool) {
    const Tool* combo = context.barMain.FindTool(tool);
    return combo ? combo->text : std::string();
}

/** An argument, or none when the command is called off. */
using Argument = std::optional<std::string>;

Argument NoArgument(MainContext&, int) {
    return std::string();
}

Argument TextArgument(MainContext& context, int tool) {
    const std::string text = ComboText(context, tool);
    return text.empty() ? Argument() : Argument(text);
}

/** The size of the list, or the nearest that is not larger for one typed or set elsewhere. */
Argument SizeArgument(MainContext& context, int tool) {
    const std::string text = ComboText(context, tool);
    int index = FontSizeIndex(text);
    if (index == 0) {
        const double points = Val(text);
        if (points <= 0) return std::nullopt;
        index = 1;
        while (index < 7 && Val(FontSizeText(index + 1)) <= points)
            ++index;
    }
    return std::to_string(index);
}

Argument ColorArgument(MainContext& context, int tool) {
    const char* title = tool == 407 ? "Text Foreground Color" : "Text Background Color";
    const std::optional<Color> color =
        context.frame.dialogs.PickColor(title, tool == 407 ? 0x000000 : 0xFFFFFF);
    return color ? Argument(HtmlColor(*color)) : Argument();
}

struct FormatCommand {
    int tool;
    int command;
    Argument (*argument)(MainContext& context, int tool);
    const char* tableAlign;  ///< what a selected table gets in place of the command
};
constexpr FormatCommand kFormatCommands[] = {
    {401, DECMD_SETBLOCKFMT, TextArgument, nullptr},
    {402, DECMD_SETFONTNAME, TextArgument, nullptr},
    {403, DECMD_SETFONTSIZE, SizeArgument, nullptr},
    {404, DECMD_BOLD, NoArgument, nullptr},
    {405, DECMD_ITALIC, NoArgument, nullptr},
    {406, DECMD_UNDERLINE, NoArgument, nullptr},
    {407, DECMD_SETFORECOLOR, ColorArgument, nullptr},
    {408, DECMD_SETBACKCOLOR, ColorArgument, nullptr},
    {409, DECMD_JUSTIFYLEFT, NoArgument, "left"},
    {410, DECMD_JUSTIFYCENTER, NoArgument, "center"},
    {411, DECMD_JUSTIFYRIGHT, NoArgument, "right"},
    {412, DECMD_UNORDERLIST, NoArgument, nullptr},
    {413, DECMD_ORDERLIST, NoArgument, nullptr},
    {414, DECMD_OUTDENT, NoArgument, nullptr},
    {415, DECMD_INDENT, NoArgument, nullptr},
    {418, DECMD_MAKE_ABSOLUTE, NoArgument, nullptr},
    {419, DECMD_LOCK_ELEMENT, NoArgument, nullptr},
    {420, DECMD_BRING_TO_FRONT, NoArgument, nullptr},
    {421, DECMD_SEND_TO_BACK, NoArgument, nullptr},
    {422, DECMD_BRING_FORWARD, NoArgument, nullptr},
    {423, DECMD_SEND_BACKWARD, NoArgument, nullptr},
    {424, DECMD_SEND_BELOW_TEXT, NoArgument, nullptr},
    {425, DECMD_BRING_ABOVE_TEXT, NoArgument, nullptr},
    {426, DECMD_REMOVEFORMAT, NoArgument, nullptr},
    {427, DECMD_UNLINK, NoArgument, nullptr},
};

/** True when the current element is a table that took the alignment itself. */
bool AlignTable(MainContext& context, frmDocument& document, const FormatCommand& format) {
    dom::Node* element = context.CurrentElement();
    if (!format.tableAlign || !element || !element->is("table")) return false;
    if (document.Document().sourceIndex(element) < 0) return false;
    document.Document().setAttribute(*element, "align", format.tableAlign);
    return true;
}

// --- Table --------------------------------------------------------------------------------------

struct TableTool {
    int tool;
    int command;
};
constexpr TableTool kTableTools[] = {
    {602, DECMD_INSERTROW},  {603, DECMD_DELETEROWS}, {604, DECMD_INSERTCOL},
    {605, DECMD_DELETECOLS}, {606, DECMD_INSERTCELL}, {607, DECMD_DELETECELLS},
    {608, DECMD_MERGECELLS}, {609, DECMD_SPLITCELL},
};

bool IsOff(CommandState state) {
    return state == CommandState::NotSupported || state == CommandState::Disabled;
}

}  // namespace

void MenuInsert(MainContext& context, int tool) {
    frmDocument* document = DocumentInNormalView(context);
    if (!document) return;
    context.ElementDialogMode = DialogMode::Insert;
    if (tool == 323) {
        frmVariables dialog(context.project);
        context.frame.dialogs.ShowModal(dialog);
    }
    for (const LineBreak& lineBreak : kLineBreaks) {
        if (lineBreak.tool != tool) continue;
        InsertHTMLAtCursor(context.project, document->PageKey(), lineBreak.html);
        document->docDHTMLEditor.SetFocus();
    }
    document->docDHTMLEditor_DisplayChanged();
}

void MenuFormat(MainContext& context, int tool) {
    frmDocument* document = DocumentInNormalView(context);
    const auto format =
        std::find_if(std::begin(kFormatCommands), std::end(kFormatCommands),
                     [tool](const FormatCommand& each) { return each.tool == tool; });
    if (!document || format == std::end(kFormatCommands)) return;
    HtmlEditor& editor = document->docDHTMLEditor;
    if (!AlignTable(context, *document, *format)) {
        if (IsOff(editor.QueryStatus(format->command))) return;
        const Argument argument = format->argument(context, tool);
        if (!argument) return;
        editor.ExecCommand(format->command, *argument);
    }
    UpdateDocumentUI(context, document->PageKey());
}

void MenuTable(MainContext& context, int tool) {
    frmDocument* document = DocumentInNormalView(context);
    if (!document) return;
    context.ElementDialogMode = DialogMode::Insert;
    for (const TableTool& each : kTableTools) {
        if (each.tool == tool) document->docDHTMLEditor.ExecCommand(each.command);
    }
    document->docDHTMLEditor_DisplayChanged();
    UpdateDocumentUI(context, document->PageKey());
}

}  // namespace pw
