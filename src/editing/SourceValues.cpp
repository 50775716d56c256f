#include "editing/SourceValues.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Paths.h"
#include "project/ProjectContext.h"
#include "project/References.h"
#include "project/omProj/Project.h"

namespace pw {

namespace {

/** With a drive in front where the user thinks of another system. */
bool IsOnDisk(std::string_view value) {
    const bool hasDrive = value.size() > 2 && value[1] == ':' && value[2] == '\\';
    return hasDrive || value.starts_with('\\');
}

/** Kinds of picture that no browser shows. */
constexpr const char* kForeignPictures[] = {"tif", "tiff", "fpx"};

}  // namespace

std::string SourceValue(const ProjectContext& context, std::string_view text,
                        std::string_view pageKey) {
    std::string entered = Trim(text);
    if (!IsLocalReference(entered)) return entered;
    return ResolvePath(context, entered, GetPageFolder(context, pageKey));
}

std::string ShownSource(const ProjectContext& context, std::string_view value,
                        std::string_view pageKey) {
    if (!IsOnDisk(value)) return std::string(value);
    return IsInFolder(value, context.frame.settings.PreviewFolder)
               ? GetVirtualPath(context, value, pageKey)
               : ToNativePath(value);
}

std::string SourceProblem(const ProjectContext& context, std::string_view value) {
    if (!IsOnDisk(value)) return {};
    const std::string name = "'" + GetFileName(value) + "'";
    if (!FileExists(context.frame.files, value))
        return "There is no file " + name + " at that place.\n\nPlease choose another one.";
    for (const char* extension : kForeignPictures) {
        if (EqualsNoCase(GetExtension(value), extension))
            return "Web browsers can not show pictures of the kind of " + name +
                   ".\n\nPlease save the picture as a JPEG, PNG or GIF file in a picture program, "
                   "and choose that file.";
    }
    return {};
}

std::optional<std::string> TakeSource(ProjectContext& context, std::string_view value, Page& page) {
    if (!IsOnDisk(value)) return std::string(value);
    const Attachment* taken = AddSystemAttachment(context, value, page, AttachmentOrigin::Placed);
    if (!taken) return std::nullopt;
    return EncodeLink(GetVirtualPath(context, taken->Filename(), page.Key()));
}

}  // namespace pw
