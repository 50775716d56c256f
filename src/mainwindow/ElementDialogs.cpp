#include "mainwindow/ElementDialogs.h"

#include <algorithm>
#include <iterator>

#include "editing/ElementRecognition.h"
#include "editing/frmPage.h"
#include "editing/frmVariables.h"
#include "frame/Context.h"
#include "mainwindow/frmDocument.h"

namespace pw {

namespace {

bool Any(const dom::Node&) {
    return true;
}
bool IsLink(const dom::Node& element) {
    return !element.getAttribute("href").empty();
}

void ShowPageDialog(MainContext& context) {
    ShowPageProperties(context.project, context.CurrentPageKey);
}

void ShowVariablesDialog(MainContext& context) {
    const dom::Node* span = GetValidElement(context.CurrentElement());
    frmVariables dialog(context.project, span->getAttribute("name"));
    context.frame.dialogs.ShowModal(dialog);
}

enum class DoubleClick { SelectsWord, OpensDialog };

struct ElementDialog {
    const char* tag;
    bool (*fits)(const dom::Node& element);
    /** None where there is no such dialog yet. */
    void (*show)(MainContext& context);
    DoubleClick doubleClick = DoubleClick::SelectsWord;
};

/** The first line that fits counts. */
constexpr ElementDialog kDialogs[] = {
    {"a", IsMergeSpan, ShowVariablesDialog, DoubleClick::OpensDialog},
    {"a", IsLink, nullptr},
    {"a", Any, nullptr},
    {"body", Any, ShowPageDialog},
    {"html", Any, ShowPageDialog},
    {"form", Any, nullptr},
    {"hr", Any, nullptr, DoubleClick::OpensDialog},
    {"img", Any, nullptr, DoubleClick::OpensDialog},
    {"input", Any, nullptr, DoubleClick::OpensDialog},
    {"marquee", Any, nullptr, DoubleClick::OpensDialog},
    {"select", Any, nullptr, DoubleClick::OpensDialog},
    {"table", Any, nullptr},
    {"td", Any, nullptr},
    {"th", Any, nullptr},
    {"textarea", Any, nullptr, DoubleClick::OpensDialog},
    {"applet", Any, nullptr, DoubleClick::OpensDialog},
    {"object", Any, nullptr, DoubleClick::OpensDialog},
};

/** The line of what the current element stands for; none where there is no dialog. */
const ElementDialog* DialogInForce(const MainContext& context) {
    frmDocument* document = context.CurrentDocument();
    dom::Node* current = context.CurrentElement();
    if (!document || !current || document->State() != View::Normal) return nullptr;
    // It may be gone by now, or lie in the page that was in front before.
    const dom::Document& page = document->Document();
    if (page.node(current->id()) != current || !page.isConnected(current)) return nullptr;
    const dom::Node* element = GetValidElement(current);
    if (!element) return nullptr;
    const auto line = std::find_if(
        std::begin(kDialogs), std::end(kDialogs),
        [&](const ElementDialog& each) { return element->is(each.tag) && each.fits(*element); });
    return line != std::end(kDialogs) && line->show ? line : nullptr;
}

}  // namespace

bool HasElementDialog(const MainContext& context) {
    return DialogInForce(context) != nullptr;
}

void ShowElementDialog(MainContext& context) {
    Trap(context.frame.errorLog, "UIFunctions.", "ShowElementDialog", [&] {
        const ElementDialog* dialog = DialogInForce(context);
        if (!dialog) return;
        context.ElementDialogMode = DialogMode::Edit;
        dialog->show(context);
    });
}

bool OpensOnDoubleClick(const MainContext& context) {
    const ElementDialog* dialog = DialogInForce(context);
    return dialog && dialog->doubleClick == DoubleClick::OpensDialog;
}

}  // namespace pw
