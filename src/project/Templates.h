#pragma once
// The picture of the project that the open dialog shows, and the page that new pages can start
// from.
#include <string>

#include "project/ProjectContext.h"

namespace pw {

class Page;

/** Makes the thumbnail, or refreshes the file that is there. */
bool CreateThumbnail(ProjectContext& context);
/** A JPEG of the current page as it is seen. False, with a former file left as it is, unless the
 *  main window is in front and the page is open. */
bool CreatePageImage(ProjectContext& context, const std::string& path);

/** Makes the current page the project's template; nothing happens unless it is open. */
bool SetDefaultTemplate(ProjectContext& context);
/** Fills the template page from a file, pulling its media into the top level's `media` folder. */
bool InsertDefaultTemplate(ProjectContext& context, const std::string& sourceFile, Page& page);

}  // namespace pw
