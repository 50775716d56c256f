#pragma once
// Which files of the project its pages, style sheets and styles refer to.
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace pw {

class Page;
struct ProjectContext;

/**
 * What pages and style sheets refer to. Each is read once, and again when it has changed, so that
 * asking for all of a project costs little more than a look at the time of each file.
 */
class FileUses {
  public:
    using Paths = std::vector<std::string>;

    /** Every path below the preview folder that a reference in the page can mean, as its window has
     *  it or else its file: attributes, styles, and what scripts name. Links to pages are left out.
     *  A path need not have a file. */
    const Paths& OfPage(ProjectContext& context, const Page& page);
    const Paths& OfStyleSheet(ProjectContext& context, const std::string& file);

  private:
    struct Known {
        std::uint64_t size = 0;
        std::int64_t modified = 0;  ///< 0 for what may have changed since
        Paths paths;
    };
    template <class Read>
    const Paths& Of(ProjectContext& context, const std::string& file, Read read);

    std::unordered_map<std::string, Known> files_;
};

/** Every file that a page of the project refers to, at first or second hand; without the pages
 *  whose keys begin with `exceptBelow`, when that is not "". */
std::unordered_set<std::string> FilesInUse(ProjectContext& context,
                                           std::string_view exceptBelow = {});
/** The same without what only the template for new pages refers to. */
std::unordered_set<std::string> FilesInUseBySite(ProjectContext& context);

/** Marks what the program brought along and nothing refers to any more as stale, the rest of it as
 *  in use. To be called before the project is saved or published. */
void NoteUnusedAttachments(ProjectContext& context);

}  // namespace pw
