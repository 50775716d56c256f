#pragma once
// Work on several files that is done as a whole or not at all.
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace pw {

class Page;
struct ProjectContext;

/** Remembers how to take back what was done, and does so at its end, the last first, unless it is
 *  told that all went well. */
class FileChanges {
  public:
    FileChanges() = default;
    ~FileChanges();
    FileChanges(const FileChanges&) = delete;
    FileChanges& operator=(const FileChanges&) = delete;

    void OnFailure(std::function<void()> undo) { undo_.push_back(std::move(undo)); }
    void Keep() { undo_.clear(); }

  private:
    std::vector<std::function<void()>> undo_;
};

/** The media of a page as they were when it was made: the page's list, and the files in the folder
 *  beside it. */
class MediaBefore {
  public:
    MediaBefore(ProjectContext& context, Page& page);
    /** Takes off the list and out of the folder what has come since. */
    void Restore();

  private:
    struct Listed {
        int state;
        int kind;
        std::int64_t size;
    };
    std::vector<std::string> NamesInFolder() const;

    ProjectContext& context_;
    Page& page_;
    std::string folder_;
    std::map<std::string, Listed> listed_;  ///< by path
    std::set<std::string> names_;
};

}  // namespace pw
