#pragma once
// Writing a page to a file outside the project.
#include <string>

#include "platform/dom/Document.h"
#include "project/ProjectContext.h"

namespace pw {

/** Writes the current page to a file of the user's choosing, its media beside it. False when there
 *  is no current page, when the user cancels, or, with a message, when it cannot be written. */
bool SavePageAs(ProjectContext& context);

/** Writes the whole document, doctype included, replacing the file. Nothing happens and the answer
 *  is false without a document, without a path, or when the document is empty. */
bool WriteDOMToFile(FrameContext& frame, const dom::Document* document, const std::string& path);

}  // namespace pw
