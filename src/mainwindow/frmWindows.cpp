#include "mainwindow/frmWindows.h"

#include <algorithm>

#include "mainwindow/Pictures.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"

namespace pw {

frmWindows::frmWindows(MainContext& context) : Dialog("frmWindows", "Windows"), context_(context) {
    lvwWindows.SetColumns({{"Page", 330}, {"State", 90}});
    lvwWindows.ItemClick = [this](int) { EnableButtons(); };
    lvwWindows.DblClick = [this] { cmdOK_Click(); };
    cmdOK.Click = [this] { cmdOK_Click(); };
    cmdCloseWindow.Click = [this] { cmdCloseWindow_Click(); };
    cmdCancel.Click = [this] { Close(); };
    Fill();
    lvwWindows.SetSelected(lvwWindows.FindKey(context_.CurrentPageKey));
    EnableButtons();
}

void frmWindows::Fill() {
    lvwWindows.Clear();
    for (const auto& document : context_.OpenDocuments.All()) {
        const bool changed = document->IsDirty();
        ListRow row;
        row.key = document->PageKey();
        row.cells = {document->Caption(), changed ? "Changed" : ""};
        row.image = changed ? kPictureChangedWindow : kPictureWindow;
        lvwWindows.Add(std::move(row));
    }
    lvwWindows.SortAgain();
}

std::string frmWindows::SelectedKey() const {
    return lvwWindows.Selected() < 0 ? "" : lvwWindows.Row(lvwWindows.Selected()).key;
}

void frmWindows::EnableButtons() {
    const bool any = lvwWindows.Selected() >= 0;
    cmdOK.SetEnabled(any);
    cmdCloseWindow.SetEnabled(any);
}

void frmWindows::cmdOK_Click() {
    const std::string key = SelectedKey();
    if (key.empty()) return;
    Close();
    context_.window.ActivatePage(key);
}

void frmWindows::cmdCloseWindow_Click() {
    frmDocument* document = context_.OpenDocuments.Find(SelectedKey());
    if (!document) return;
    const int place = lvwWindows.Selected();
    // It may refuse, and has told the user why.
    document->CloseWindow();
    Fill();
    if (lvwWindows.Count() == 0) return Close();
    lvwWindows.SetSelected(std::min(place, lvwWindows.Count() - 1));
    EnableButtons();
}

}  // namespace pw
