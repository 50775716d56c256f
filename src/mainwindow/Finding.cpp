#include "mainwindow/Finding.h"

#include "frame/Context.h"
#include "mainwindow/Context.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"

namespace pw {

PageFinder::PageFinder(MainContext& context) : context_(context), history_(context.frame.hive) {}

PageFinder::~PageFinder() {
    Close();
}

frmFindReplace& PageFinder::TheDialog() {
    SearchedPage& page = *this;
    if (!dialog_) dialog_ = std::make_unique<frmFindReplace>(context_.frame, history_, page);
    return *dialog_;
}

void PageFinder::Open(int tool) {
    TheDialog().Setup(tool);
    context_.frame.dialogs.Show(TheDialog());
}

void PageFinder::FindAgain(frmFindReplace::Direction direction) {
    if (!dialog_ || !dialog_->HasSearch()) return Open(frmFindReplace::kFind);
    dialog_->FindAgain(direction);
}

void PageFinder::Close() {
    if (dialog_) dialog_->Close();
}

FindTarget PageFinder::Target() {
    frmDocument* page = context_.CurrentDocument();
    if (!page) return {};
    page->WaitUntilReady();
    return {page->CurrentViewState(), &page->Document(), &page->Surface().Source()};
}

void PageFinder::ScrollToSelection() {
    frmDocument* page = context_.CurrentDocument();
    EditorSurface* surface = page ? page->docDHTMLEditor.Surface() : nullptr;
    if (surface) surface->ScrollToSelection();
}

void PageFinder::ShowStatus(const std::string& text) {
    context_.window.ShowStatus(text);
}

}  // namespace pw
