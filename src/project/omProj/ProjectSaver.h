#pragma once
// One save: which way it goes, what stands beside the file meanwhile, and what is left when
// something fails. Everything throws `ProjectFailure`; the file is then as it was before, or can be
// put back from the journal beside it, which the message names.
#include <cstdint>
#include <string>

#include "project/omProj/Database.h"
#include "project/omProj/Project.h"
#include "project/omProj/ProjectWriter.h"

namespace pw {

class ProjectSaver {
  public:
    ProjectSaver(Project& project, FileSystem& files, std::string target)
        : project_(project), files_(files), target_(std::move(target)) {}

    /**
     * `known` is the mark of the file whose content the project was loaded from or saved to. A file
     * that still bears it is brought up to date in place; any other is replaced by a new one,
     * written from nothing but the project and its working folder. Returns the new mark.
     */
    FileMark SaveProject(const FileMark& known);
    void SaveJournal(const JournalBase& base);

  private:
    /** False when the file is not one to go on with, so that a new one has to take its place. */
    bool UpdateInPlace(const FileMark& known);
    bool IsWorthUpdating(ProjectDatabase& database, const ProjectFileHeader& header,
                         std::int64_t bytes) const;
    void WriteNew(std::uint32_t applicationId, const JournalBase& base);
    void SweepUnfinished() const;
    std::string UnfinishedPath() const;
    void Log(const std::string& message) const;

    Project& project_;
    FileSystem& files_;
    std::string target_;
};

/**
 * Plays back what a crash left in the journal beside a project file. A journal is never thrown
 * away: one that the file has no use for is left where it is. True when none is left there.
 */
bool SettleJournal(FileSystem& files, const std::string& projectFile);

}  // namespace pw
