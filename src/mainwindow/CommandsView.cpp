// The View, Tools, Window and Help menus, and the menu of connection speeds.
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/Commands.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmAbout.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "mainwindow/frmOptions.h"
#include "mainwindow/frmTip.h"
#include "mainwindow/frmWindows.h"
#include "project/Lifecycle.h"
#include "project/Pages.h"

namespace pw {

namespace {

void PreviewInBrowser(MainContext& context, const std::string& browser) {
    std::string unwritten;
    if (!UpdateOpenPageProperties(context.project, &unwritten)) {
        context.frame.dialogs.MsgBox(
            {unwritten, context.frame.brand.FormCaption(), Icon::Exclamation, Buttons::Ok});
        return;
    }
    const Page* page = GetPage(context.project, context.CurrentPageKey);
    if (!page || browser.empty()) return;
    if (!context.frame.launcher.Start(browser, page->Filename)) {
        context.frame.dialogs.MsgBox({"The browser '" + ToNativePath(browser) +
                                          "' can not be started.\n\nPlease choose another one on "
                                          "the Tools menu, under Options.",
                                      context.frame.brand.FormCaption(), Icon::Exclamation,
                                      Buttons::Ok});
    }
}

void ToggleMarks(HtmlEditor& editor, int tool) {
    if (tool == 203) editor.SetShowBorders(!editor.ShowBorders());
    if (tool == 204) editor.SetShowDetails(!editor.ShowDetails());
}

void ToggleSnapToGrid(MainContext& context) {
    frmDocument* document = context.CurrentDocument();
    if (!document) return;
    HtmlEditor& editor = document->docDHTMLEditor;
    editor.SetSnapToGridOn(!editor.SnapToGrid());
    ResetUI(context);
}

void ToggleToolbar(MainContext& context, int tool) {
    const std::string toolbar = ToolbarOfCommand(tool);
    const Band* band = context.barMain.FindBand(toolbar);
    if (!band) return;
    const bool shown = !band->visible;
    context.barMain.SetBandVisible(toolbar, shown);
    context.barMain.SetChecked(tool, shown);
}

}  // namespace

void MenuView(MainContext& context, int tool) {
    frmDocument* document = context.CurrentDocument();
    switch (tool) {
        case 201:
            ShowPropertiesDialog(context);
            break;
        case 203:
        case 204:
            if (document && document->State() == View::Normal) {
                ToggleMarks(document->docDHTMLEditor, tool);
                UpdateDocumentUI(context, document->PageKey());
            }
            break;
        case 205:
            if (document && document->State() == View::Preview) document->ReloadFrames();
            if (document) document->docDHTMLEditor.Refresh();
            break;
        case 207:
            PreviewInBrowser(context, context.frame.settings.IEFilename);
            break;
        case 208:
            PreviewInBrowser(context, context.frame.settings.NNFilename);
            break;
        case 209:
        case 210:
        case 211:
            ShowExplorer(context, tool, !IsExplorerShown(context, tool));
            break;
        default:
            ToggleToolbar(context, tool);
            break;
    }
}

void MenuTools(MainContext& context, int tool) {
    if (tool == 504) ToggleSnapToGrid(context);
    if (tool != 505) return;
    frmOptions dialog(context);
    context.frame.dialogs.ShowModal(dialog);
}

void MenuWindow(MainContext& context, int tool) {
    MainWindowSurface& surface = context.window.Surface();
    switch (tool) {
        case 901:
            surface.Arrange(Arrangement::Cascade);
            break;
        case 902:
            surface.Arrange(Arrangement::TileHorizontally);
            break;
        case 903:
            surface.Arrange(Arrangement::TileVertically);
            break;
        case 904:
            context.window.CloseAllPages(false);
            break;
        case kMoreWindowsTool: {
            frmWindows dialog(context);
            context.frame.dialogs.ShowModal(dialog);
            break;
        }
        default: {
            const int place = tool - kFirstWindowTool;
            if (place < 0 || place >= context.OpenDocuments.Count()) break;
            context.window.ActivatePage(context.OpenDocuments.All()[std::size_t(place)]->PageKey());
            break;
        }
    }
}

void MenuHelp(MainContext& context, int tool) {
    switch (tool) {
        case 1001:
            ShowHelp(context.frame, 0);
            break;
        case 1002: {
            frmTip dialog(context.frame);
            context.frame.dialogs.ShowModal(dialog);
            break;
        }
        case 1012: {
            frmAbout dialog(context.frame);
            context.frame.dialogs.ShowModal(dialog);
            break;
        }
        default:
            break;
    }
}

void MenuDownload(MainContext& context, int tool) {
    context.frame.settings.ConnectionSpeed = tool - 1200;
    UpdateDownloadTime(context);
    context.window.ResetStatus();
}

}  // namespace pw
