#include "editing/FileChanges.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "project/Paths.h"
#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw {

FileChanges::~FileChanges() {
    for (; !undo_.empty(); undo_.pop_back()) {
        // One that can't be put back doesn't keep the others from it.
        try {
            undo_.back()();
        } catch (...) {
        }
    }
}

MediaBefore::MediaBefore(ProjectContext& context, Page& page)
    : context_(context), page_(page), folder_(GetMediaFolder(context, page.Key())) {
    for (const Attachment& attachment : page.Attachments())
        listed_[attachment.Filename()] = {attachment.State, attachment.Kind, attachment.Size};
    for (const std::string& name : NamesInFolder())
        names_.insert(name);
}

void MediaBefore::Restore() {
    Attachments& attachments = page_.Attachments();
    for (int i = attachments.Count(); i >= 1; --i) {
        Attachment& attachment = *attachments.Item(i);
        const auto before = listed_.find(attachment.Filename());
        if (before == listed_.end()) {
            static_cast<void>(attachments.Remove(i));
        } else {
            attachment.State = before->second.state;
            attachment.Kind = before->second.kind;
            attachment.Size = before->second.size;
        }
    }
    for (const std::string& name : NamesInFolder())
        if (names_.count(name) == 0) DeleteFile(context_.frame.files, BuildPath(folder_, name));
}

std::vector<std::string> MediaBefore::NamesInFolder() const {
    std::vector<FolderEntry> entries;
    std::vector<std::string> names;
    if (context_.frame.files.List(folder_, entries) != FileError::None) return names;
    for (const FolderEntry& entry : entries)
        if (!entry.isFolder) names.push_back(entry.name);
    return names;
}

}  // namespace pw
