#pragma once
// Cut, copy and paste of pages in the project explorer.
#include <string>
#include <string_view>

#include "project/ProjectContext.h"

namespace pw {

class Page;

/** Remembers a copy of the page with its media; an open page is written to its file first. False,
 *  with a sentence in `reason` where there is one to tell, when that can't be. */
bool CopyPage(ProjectContext& context, std::string_view key, std::string* reason = nullptr);
/** The same, and takes the page out of the project. False, and the page stays, with a sentence in
 *  `reason` where one is to be told. */
bool CutPage(ProjectContext& context, std::string_view key, std::string* reason = nullptr);
/** Inserts the page and shows it, in the folder or site at the key or in that of the page at the
 *  key. Its links go on leading where they led, and those to a page that was cut follow it. None,
 *  with a sentence in `reason`, when it could not be done; such a sentence with a page names those
 *  whose links could not follow. */
Page* PastePage(ProjectContext& context, std::string_view targetKey, std::string* reason = nullptr);

}  // namespace pw
