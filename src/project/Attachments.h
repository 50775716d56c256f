#pragma once
// The list of files that each page carries. It is rebuilt from the page's document whenever the
// page's data are saved, so that it follows what the page refers to.
#include <string>
#include <string_view>

#include "platform/dom/Document.h"
#include "project/ProjectContext.h"
#include "project/omProj/Items.h"

namespace pw {

class Page;

/**
 * Adds a file to a page as in use, which survives every scan. A file outside the project's folder
 * is one that the user chose, and is copied into the page's `media` folder first. None when the
 * file is missing. `origin` is an AttachmentOrigin; what was chosen once stays so.
 */
Attachment* AddSystemAttachment(ProjectContext& context, std::string_view path, Page& page,
                                int origin = AttachmentOrigin::Chosen);

/** Takes a file off a page's list. It is moved aside (see RemovedFiles.h) unless the project lists
 *  it elsewhere or refers to it. False when there is no such attachment. */
bool RemoveAttachment(ProjectContext& context, Page& page, std::string_view key);

/** Rescans a page. References in the document are relative to `baseURL`; only files of the project
 *  count. */
void SaveAttachments(ProjectContext& context, const dom::Document& document,
                     std::string_view baseURL, Page& page);

/** Copies the page's media into the `media` folder in `folder`; false when some could not be. */
bool CopyAttachmentsTo(ProjectContext& context, const Page& page, std::string_view folder);

/** Removes the project's own attachments of a state. */
void RemoveProjectAttachmentsOfType(ProjectContext& context, int state);

}  // namespace pw
