#include "mainwindow/Commands.h"

#include <algorithm>
#include <iterator>

#include "frame/Context.h"
#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/Menus.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "project/omProj/Project.h"

namespace pw {

namespace {

struct Range {
    int first;
    int last;
    const char* name;
    void (*run)(MainContext& context, int tool);
};
constexpr Range kRanges[] = {
    {1, 99, "MenuFile", MenuFile},
    {101, 199, "MenuEdit", MenuEdit},
    {201, 299, "MenuView", MenuView},
    {301, 399, "MenuInsert", MenuInsert},
    {401, 499, "MenuFormat", MenuFormat},
    {501, 599, "MenuTools", MenuTools},
    {601, 699, "MenuTable", MenuTable},
    {901, 999, "MenuWindow", MenuWindow},
    {1001, 1099, "MenuHelp", MenuHelp},
    {1101, 1199, "MenuContext", MenuContext},
    {1200, 1298, "MenuDownload", MenuDownload},
};

struct Opening {
    const char* band;
    void (*prepare)(MainContext& context);
};
constexpr Opening kOpenings[] = {
    {"mnuEdit", SetEditMenu},     {"mnuFormat", SetEditMenu}, {"mnuTable", SetEditMenu},
    {"mnuWindow", SetWindowMenu}, {"mnuView", ResetUI},       {"mnuFile", SetFileMenu},
    {"mnuFilePublish", ResetUI},
};

void barMain_BandOpen(MainContext& context, const std::string& band) {
    for (const Opening& opening : kOpenings) {
        if (band == opening.band) opening.prepare(context);
    }
}

void barMain_ComboChange(MainContext& context, int tool) {
    if (tool < 400 || tool > 499) return;
    RunCommand(context, tool);
    if (frmDocument* document = context.CurrentDocument()) document->docDHTMLEditor.SetFocus();
}

void barMain_MouseEnter(MainContext& context, int tool) {
    const Tool* entered = context.barMain.FindTool(tool);
    if (entered) context.window.ShowStatus(entered->description);
}

}  // namespace

void RunCommand(MainContext& context, int tool) {
    if (context.model.Busy()) return;
    const auto range = std::find_if(std::begin(kRanges), std::end(kRanges), [tool](const Range& r) {
        return tool >= r.first && tool <= r.last;
    });
    if (range == std::end(kRanges)) return;
    // Typing and a command never share an undo step.
    if (frmDocument* document = context.CurrentDocument()) {
        document->WaitUntilReady();
        document->Document().sealStep();
    }
    TrapAndTell(context.frame.faults, "MDIMain.", range->name, [&] { range->run(context, tool); });
    if (frmDocument* document = context.CurrentDocument()) {
        document->WaitUntilReady();
        document->Document().sealStep();
        document->MarkChanges();
    }
}

void ConnectCommandBar(MainContext& context) {
    MainContext* c = &context;
    CommandBar& bar = context.barMain;
    bar.ToolClick = [c](int tool) {
        RunCommand(*c, tool);
        ResetUI(*c);
    };
    bar.ComboChange = [c](int tool) { barMain_ComboChange(*c, tool); };
    bar.BandOpen = [c](const std::string& band) { barMain_BandOpen(*c, band); };
    bar.ToolbarClosed = [c](const std::string& band) {
        c->barMain.SetChecked(CommandOfToolbar(band), false);
    };
    bar.MouseEnter = [c](int tool) { barMain_MouseEnter(*c, tool); };
    bar.MouseExit = [c] { c->window.ResetStatus(); };
}

}  // namespace pw
