#pragma once
// One run of a command: the world, the settings of the profile, a run folder of its own, a project.
#include <memory>
#include <string>

#include "frame/Context.h"
#include "platform/headless/HeadlessDialogHost.h"
#include "platform/headless/HeadlessMessageLoop.h"
#include "platform/headless/MemoryClipboard.h"
#include "platform/posix/RunFolder.h"
#include "project/HeadlessWorkspace.h"
#include "project/ProjectContext.h"
#include "project/omProj/Project.h"

namespace pw::cli {

/** The command could not do its work: the message goes to the user, exit code 1. */
struct CommandFailure {
    std::string message;  ///< "" when it has been told already
};

/** A native path, relative or not, as the program writes paths. Throws CommandFailure for a name
 *  that cannot be written so. */
std::string PathFromArgument(const std::string& argument);
/** As PathFromArgument, of a project that exists: its extension may be left out. */
std::string ProjectFromArgument(const std::string& argument);

class Session {
  public:
    /** `profile` is a native path or "". */
    explicit Session(const std::string& profile);
    /** Leaves nothing behind in the temporary folder. */
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    ProjectContext& Context() { return *context_; }
    pw::Project& Project() { return *project_; }
    FileSystem& Files() { return *files_; }

    void NewProject(const std::string& file, const std::string& name);
    void Open(const std::string& file);
    /** Into the project's own file. */
    void Save();

  private:
    std::unique_ptr<FileSystem> files_;
    std::unique_ptr<SettingsHive> hive_;
    std::unique_ptr<Clock> clock_;
    std::unique_ptr<SystemInfo> system_;
    std::unique_ptr<Launcher> launcher_;
    HeadlessMessageLoop loop_;
    MemoryClipboard clipboard_;
    PrintingDialogHost dialogs_;
    std::unique_ptr<FrameContext> frame_;
    std::unique_ptr<RunFolder> runFolder_;
    std::unique_ptr<pw::Project> project_;
    HeadlessWorkspace workspace_;
    std::unique_ptr<ProjectContext> context_;
};

}  // namespace pw::cli
