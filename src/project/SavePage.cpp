#include "project/SavePage.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "frame/SaveQuestion.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Lifecycle.h"
#include "project/Pages.h"
#include "project/Scratch.h"
#include "project/Workspace.h"

namespace pw {
namespace {

constexpr const char* kModule = "ProjectFunctions.";

std::string AskForFile(ProjectContext& context, const Page& page) {
    FileQuestion question;
    question.title = "Save Page As";
    question.filter = "HTML (*.htm;*.html)|*.htm;*.html";
    question.initialPath =
        BuildPath(context.frame.settings.HTMLPageFolder, GetFileName(page.Filename));
    question.defaultExtension = "htm";
    question.ownExtension = GetExtension(page.Filename);
    return AskSaveFile(context.frame, std::move(question));
}

/** "" on success, else the reason. */
std::string WriteCopy(ProjectContext& context, const Page& page, const std::string& path) {
    FrameContext& frame = context.frame;
    if (IsInRunFolder(frame, path))
        return "That folder is the program's own and is emptied. Please choose another one.";
    if (EqualsNoCase(path, frame.settings.ProjectFilename))
        return "That is the file of this project. Please choose another name.";
    std::string reason;
    if (!UpdateOpenPageProperties(context, &reason)) return reason;
    NoteUnusedAttachments(context);
    // The page's own file is now what the user sees, with a frameset restored.
    const FileError error = frame.files.Copy(page.Filename, path);
    if (error != FileError::None) return "The reason: " + Describe(error) + ".";
    if (!CopyAttachmentsTo(context, page, GetParentFolder(path)))
        return "The page was written, but not all of its pictures and other media.";
    return "";
}

}  // namespace

bool SavePageAs(ProjectContext& context) {
    return Trap(context.frame.errorLog, kModule, "SavePageAs", false, [&] {
        const std::string key = context.workspace.CurrentPageKey();
        Page* page = GetPage(context, key);
        if (!page || !context.workspace.FindOpenPage(key)) return false;
        const std::string path = AskForFile(context, *page);
        if (path.empty()) return false;
        const std::string reason = WriteCopy(context, *page, path);
        if (reason.empty()) return true;
        context.frame.dialogs.MsgBox({"Page " + QuoteSingle(GetFileName(path)) +
                                          " can not be saved.\n\nPlease try again.\n\n" + reason,
                                      "Save Page As", Icon::Stop});
        return false;
    });
}

bool WriteDOMToFile(FrameContext& frame, const dom::Document* document, const std::string& path) {
    return Trap(frame.errorLog, kModule, "WriteDOMToFile", false, [&] {
        if (!document || path.empty()) return false;
        const std::string bytes = document->bytes();
        if (bytes.empty()) return false;
        const FileError error = frame.files.Write(path, bytes);
        if (error != FileError::None) throw Failure(path + ": " + Describe(error));
        return true;
    });
}

}  // namespace pw
