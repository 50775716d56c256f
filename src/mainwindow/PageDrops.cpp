#include "mainwindow/PageDrops.h"

#include "frame/Context.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "project/DroppedFiles.h"
#include "project/OfferLeftOut.h"
#include "project/omProj/Project.h"

namespace pw {

namespace {

void TellProblems(MainContext& context, const std::vector<std::string>& problems) {
    if (problems.empty()) return;
    // A folder full of files can be dropped at once; a message has its limits.
    constexpr std::size_t kTold = 8;
    std::string text;
    for (std::size_t i = 0; i < problems.size() && i < kTold; ++i)
        text += (text.empty() ? "" : "\n\n") + problems[i];
    if (problems.size() > kTold)
        text += "\n\n" + std::to_string(problems.size() - kTold) + " more were left out.";
    context.frame.dialogs.MsgBox(
        {text, context.frame.brand.FormCaption(), Icon::Exclamation, Buttons::Ok});
}

template <class Take>
void Insert(MainContext& context, frmDocument& page, Take take) {
    if (page.State() != View::Normal) return;
    TakenFiles taken;
    {
        const BusyPointer busy(context.window);
        taken = take();
    }
    OfferLeftOut(context.frame, taken.leftOut, [&](const std::vector<std::string>& files) {
        const BusyPointer busy(context.window);
        for (const std::string& problem : taken.takeLeftOut(files))
            taken.problems.push_back(problem);
    });
    {
        const BusyPointer busy(context.window);
        page.docDHTMLEditor.InsertMarkup(taken.html);
        if (taken.addedPages) {
            context.model.IsDirty = true;
            RefillProjectExplorer(context);
        }
        page.docDHTMLEditor.SetFocus();
    }
    TellProblems(context, taken.problems);
}

}  // namespace

void ConnectPageDrops(MainContext& context, frmDocument& page) {
    HtmlEditor& editor = page.docDHTMLEditor;
    editor.FilesBrought = [&context, &page](const std::vector<std::string>& files) {
        Insert(context, page, [&] { return TakeFiles(context.project, page.PageKey(), files); });
    };
    editor.PictureBrought = [&context, &page](const std::string& png) {
        Insert(context, page,
               [&] { return TakePicture(context.project, page.PageKey(), png, "png"); });
    };
    editor.ForeignAddresses = AdoptIntoPage(context.project, page.PageKey());
}

}  // namespace pw
