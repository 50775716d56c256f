#pragma once
// The copy of a project file that stands beside it, under the extension ~pw, while a save in place
// runs: a second safety beside the transaction. It carries a mark behind the bytes of the project
// and is locked by the program that made it. So what a dead program left is told from what a user
// put there, which is never touched.
#include <cstdint>
#include <functional>
#include <string>

#include "platform/FileSystem.h"
#include "platform/posix/Descriptor.h"

namespace pw {

/** Where it stands: the extension of the file replaced by "~pw". Paths with backslashes. */
std::string SafetyCopyOf(const std::string& projectFile);

class SafetyCopy {
  public:
    using Logger = std::function<void(const std::string& message)>;

    /** Makes none yet. */
    SafetyCopy(FileSystem& files, std::string projectFile, Logger log);
    /** Removes the copy that was made. */
    ~SafetyCopy();
    SafetyCopy(const SafetyCopy&) = delete;
    SafetyCopy& operator=(const SafetyCopy&) = delete;

    /**
     * Where the disk can share blocks between files the copy costs nothing; elsewhere a larger file
     * is not copied at all, as that would cost more than the save. Failing, and finding another
     * file in its place, is logged only: the transaction alone keeps the old state too.
     */
    void Make();
    /** After a good save: removes what saves of dead programs have left beside the file. */
    void RemoveAbandoned();

  private:
    bool Fill(int copy, std::string& problem);
    void Place(const std::string& unfinished);
    void RemoveUnfinished();
    void RemoveLogged(const std::string& path);

    FileSystem& files_;
    std::string projectFile_;
    std::string copy_;
    Logger log_;
    Descriptor made_;
};

}  // namespace pw
