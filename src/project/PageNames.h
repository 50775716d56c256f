#pragma once
// Names of the pages' files: which are good, which are taken, and how a page makes way for another.
#include <string>
#include <string_view>

namespace pw {

class FileSystem;
class Page;
struct ProjectContext;

/** What is wrong with a name for a page's file, as a message for the user; "" when nothing is. */
std::string PageNameProblem(std::string_view name);

/** The file or folder that has the name in whatever letter case; "" when none but `except` has. */
std::string NameInFolder(const FileSystem& files, const std::string& folder, std::string_view name,
                         std::string_view except = {});

/** True when a file beside the page's own has the name, in whatever letter case. */
bool IsPageNameTaken(const ProjectContext& context, const Page& page, std::string_view name);

/** In the tree and in the page itself, open or not. Throws a Failure when the page can't be read or
 *  written; its title is the old one then. */
void SetPageTitle(ProjectContext& context, Page& page, const std::string& title);

/** The page that has a file of that name in the folder or site of `page`; none when no page has. */
Page* FindNeighbour(const ProjectContext& context, const Page& page, std::string_view name);

/** Gives a page the next free name "page_1.htm" and the title "Page 1", and brings the links to it
 *  up to date. False, with a sentence in `reason`, when its file can't be renamed. */
[[nodiscard]] bool MovePageAside(ProjectContext& context, Page& page, std::string* reason);

}  // namespace pw
