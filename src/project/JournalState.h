#pragma once
// What the journal of the open project remembers between two of its ticks.
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

namespace pw {

class Project;

/**
 * Tells whether the tree of the project differs from the one last taken. A look costs little,
 * whatever the size of the project: the project's own values, the pages that are known to change,
 * and in turn a few of the others, so that each is looked at every so many times.
 */
class TreeWatch {
  public:
    /** Remembers the tree as it is; takes time in proportion to it. */
    void Take(Project& project);
    bool Changed(Project& project, const std::set<std::string>& likelyPages);
    void Forget();
    bool IsTaken() const { return taken_; }

  private:
    bool taken_ = false;
    std::uint64_t base_ = 0;
    std::unordered_map<std::string, std::uint64_t> pages_;
    int next_ = 1;  // in the page index
};

struct JournalState {
    /** How far the text of an open page has got into its file. */
    struct OpenPageMark {
        std::uint64_t written = 0;  ///< revision of the document
        std::uint64_t seen = 0;
        double quietSince = 0;    ///< seconds of the clock
        double waitingSince = 0;  ///< 0 when nothing waits
        double takenOverAt = 0;   ///< when the source view was last asked
    };
    bool running = false;  ///< a project is open and was not given up
    std::map<std::string, OpenPageMark> openPages;
    std::set<std::string> editedPages;  ///< keys, since the last save
    TreeWatch tree;                     ///< as it stands in the journal
    std::string fileStamp;              ///< of the project file at the last load or save
    std::string record;                 ///< as it stands in the journal
    double pausedUntil = 0;             ///< seconds of the clock; set when it could not be written
};

}  // namespace pw
