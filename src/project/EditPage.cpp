#include "project/EditPage.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "project/FramesetMask.h"
#include "project/Links.h"
#include "project/MergeVariables.h"
#include "project/Pages.h"
#include "project/Workspace.h"

namespace pw {

namespace {

std::string CanNotBeChanged(const Page& page, const std::string& why) {
    return "Page " + QuoteSingle(page.Name) + " can not be changed: " + why + ".";
}

/** True when the document differs from what it was. */
bool RunStep(dom::Document& document, PageStep step, const PageEdit& edit) {
    const auto before = document.revision();
    const dom::Document::Step scope(
        document, step == PageStep::OfTheUser ? dom::StepKind::Command : dom::StepKind::Upkeep);
    edit(document);
    return document.revision() != before;
}

void MarkChanged(ProjectContext& context, Page& page) {
    page.IsDirty = true;
    context.project.IsDirty = true;
}

Outcome<bool> EditOpen(ProjectContext& context, Page& page, OpenPage& open, PageStep step,
                       const PageEdit& edit) {
    if (!open.TakeOverEdits())
        return Problem{CanNotBeChanged(page, "its changed HTML can not be used")};
    if (!RunStep(open.Document(), step, edit)) return false;
    MarkChanged(context, page);
    open.ShowChanges();
    return true;
}

Outcome<bool> EditClosed(ProjectContext& context, Page& page, PageStep step, const PageEdit& edit,
                         const PageLook& mayConcern) {
    FileSystem& files = context.frame.files;
    std::string bytes;
    const FileError read = files.Read(page.Filename, bytes);
    if (read == FileError::NotFound) return false;
    if (read != FileError::None) return Problem{CanNotBeChanged(page, Describe(read))};
    if (mayConcern && !mayConcern(bytes)) return false;
    dom::ParseError error;
    auto document = dom::Document::parse(bytes, &error);
    const bool isMasked = page.PageType == PageType::Frames;
    if (document && isMasked)
        document = dom::Document::parseText(CommentFrameset(document->html()), document->encoding(),
                                            &error);
    if (!document) return Problem{CanNotBeChanged(page, error.message)};
    if (!RunStep(*document, step, edit)) return false;
    const FileError written = files.Write(
        page.Filename, isMasked
                           ? dom::encode(UncommentFrameset(document->html()), document->encoding())
                           : document->bytes());
    if (written != FileError::None) return Problem{CanNotBeChanged(page, Describe(written))};
    page.Title = document->title();
    MarkChanged(context, page);
    return true;
}

}  // namespace

Outcome<bool> EditPage(ProjectContext& context, Page& page, PageStep step, const PageEdit& edit,
                       const PageLook& mayConcern) {
    try {
        OpenPage* open = context.workspace.FindOpenPage(page.Key());
        return open ? EditOpen(context, page, *open, step, edit)
                    : EditClosed(context, page, step, edit, mayConcern);
    } catch (const std::exception& failure) {
        context.frame.errorLog.LogError("", CurrentFailure(), "ProjectFunctions.", "EditPage");
        return Problem{CanNotBeChanged(page, failure.what())};
    }
}

EditedPages EditAllPages(ProjectContext& context, PageStep step,
                         const std::function<void(Page&, dom::Document&)>& edit,
                         const std::function<bool(Page&, std::string_view text)>& mayConcern) {
    EditedPages edited;
    for (const PageIndexEntry& entry : context.project.PageIndex()) {
        Page& page = *entry.Item;
        const auto outcome = EditPage(
            context, page, step, [&](dom::Document& document) { edit(page, document); },
            mayConcern ? PageLook([&](std::string_view text) { return mayConcern(page, text); })
                       : PageLook());
        if (!outcome) {
            edited.left.push_back(page.Name);
            edited.problems.push_back(outcome.problem());
        } else if (*outcome) {
            ++edited.changed;
        }
    }
    return edited;
}

void BringUpToDate(ProjectContext& context, const std::string& pageKey, dom::Document& document) {
    FollowMoves(context, pageKey, document);
    UpdateMergeVariablesOnThisPage(context, document);
}

}  // namespace pw
