// Saves that are cut short: by every failure of the disk in turn, and by a killed program.
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "support/FaultyDisk.h"
#include "support/SampleProject.h"

namespace pw {
namespace {

using test::AddPage;
using test::FaultPlan;
using test::FaultyDatabaseDisk;
using test::FaultyFileSystem;
using test::FillSampleProject;
using test::ProjectPrinter;
using test::TemporaryFolder;

/** The project that a file holds, or the reason why it holds none. */
std::string StateOf(FileSystem& files, const std::string& path) {
    const TemporaryFolder folder;
    Project project(files);
    project.WorkingFolder = folder.Path();
    if (project.Load(path) != ProjectResult::Success) return project.LastMessage();
    return ProjectPrinter::Print(project) + folder.Get("index.htm");
}

enum class Way { InPlace, OverAnotherFile };

/** Makes each change of a save fail in turn until a save makes fewer than that. */
void FailEachChange(Way way, FaultPlan::Kind kind, FaultPlan::Length length) {
    const auto files = MakePosixFileSystem();
    FaultPlan plan;
    FaultyDatabaseDisk database(plan);
    FaultyFileSystem faulty(*files, plan);
    const TemporaryFolder work;
    const TemporaryFolder home;
    const std::string target = home.Path("a.pwp");
    Project project(faulty);
    FillSampleProject(project, work);
    ASSERT_EQ(project.Save(target), ProjectResult::Success);
    const std::string oldState = StateOf(*files, target);
    std::filesystem::copy_file(home.Native("a.pwp"), home.Native("old"));
    project.Name = "new";
    work.Put("index.htm", "<p>new</p>");
    AddPage(project.WebSites().Item(1)->Pages(), work, "new.htm", std::string(70'000, 'n'));
    project.WebSites().Item(1)->Sections().Item(1)->Sections().Remove(1);
    std::string newState;
    int failures = 0;
    for (int failAt = 1;; ++failAt) {
        SCOPED_TRACE("change " + std::to_string(failAt));
        std::filesystem::copy_file(home.Native("old"), home.Native("a.pwp"),
                                   std::filesystem::copy_options::overwrite_existing);
        if (way == Way::OverAnotherFile) {
            ASSERT_EQ(project.Save(home.Path("own.pwp")), ProjectResult::Success);
        }
        plan = {failAt, kind, length};
        const ProjectResult result = project.Save(target);
        const bool struck = plan.struck;
        plan = {};
        const std::string message = project.LastMessage();
        const std::string state = StateOf(*files, target);
        if (!struck) {
            ASSERT_EQ(result, ProjectResult::Success) << message;
            break;
        }
        if (result == ProjectResult::Success) {
            EXPECT_NE(state, oldState) << "only what fails beside the file stops no save";
        } else {
            ++failures;
            EXPECT_TRUE(project.IsDirty);
            EXPECT_FALSE(message.empty());
            EXPECT_FALSE(home.Has(".a.pwp.new"));
        }
        if (state != oldState) {
            if (newState.empty()) newState = state;
            ASSERT_EQ(state, newState);
            ASSERT_NE(state.find("name=new"), std::string::npos) << state;
        }
    }
    EXPECT_FALSE(home.Has("a.pwp-journal"));
    EXPECT_GT(failures, 5);
}

TEST(SaveFaults, EveryFailureLeavesTheOldProjectOrTheNew) {
    using Kind = FaultPlan::Kind;
    using Length = FaultPlan::Length;
    struct Row {
        const char* name;
        Kind kind;
        Length length;
    };
    for (const Row& row : {Row{"the disk is full", Kind::DiskFull, Length::FromThenOn},
                           Row{"one failure of the disk", Kind::IOError, Length::Once},
                           Row{"the disk broke", Kind::IOError, Length::FromThenOn},
                           Row{"one refusal", Kind::NoPermission, Length::Once}})
        for (const Way way : {Way::InPlace, Way::OverAnotherFile}) {
            SCOPED_TRACE(std::string(row.name) +
                         (way == Way::InPlace ? ", in place" : ", over another file"));
            FailEachChange(way, row.kind, row.length);
        }
}

TEST(SaveFaults, AFullDiskWhileOpeningLeavesNothing) {
    const auto files = MakePosixFileSystem();
    const TemporaryFolder work;
    const TemporaryFolder home;
    const TemporaryFolder other;
    Project project(*files);
    FillSampleProject(project, work);
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    const pid_t child = fork();
    if (child == 0) {
        // The largest page does not fit any more.
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {50'000, 50'000};
        setrlimit(RLIMIT_FSIZE, &limit);
        Project loaded(*files);
        loaded.WorkingFolder = other.Path();
        const bool full = loaded.Load(home.Path("a.pwp")) == ProjectResult::DiskFull;
        const bool named = loaded.LastMessage().find("a.htm") != std::string::npos;
        _exit(full && named && loaded.PageIndex().Count() == 0 ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(other.Native()))
        EXPECT_TRUE(entry.is_directory()) << entry.path();
}

constexpr int kKillPages = 12;

std::string PageOfState(int state, int number) {
    return "state " + std::to_string(state) + " " +
           std::string(static_cast<std::size_t>(2000 * number),
                       static_cast<char>('a' + state % 26));
}

/** Saves one state after the other until it is killed; tells each that is safe. */
[[noreturn]] void SaveUntilKilled(FileSystem& files, const TemporaryFolder& work,
                                  const std::string& file, int tell) {
    Project project(files);
    project.WorkingFolder = work.Path();
    if (project.Load(file) != ProjectResult::Success) _exit(1);
    if (write(tell, &project.VersionBuild, sizeof(int)) != sizeof(int)) _exit(5);
    for (int state = project.VersionBuild + 1;; ++state) {
        project.VersionBuild = state;
        for (const PageIndexEntry& entry : project.PageIndex()) {
            entry.Item->Title = std::to_string(state);
            work.Put(entry.Item->Name, PageOfState(state, entry.Item->Id()));
        }
        // Now and then the file is given up, so that the next save makes a new one in its place.
        Project* saver = &project;
        Project fresh(files);
        if (state % 3 == 0) {
            fresh.WorkingFolder = work.Path();
            if (project.SaveTree(work.Path("tree")) != ProjectResult::Success) _exit(2);
            if (fresh.LoadTree(work.Path("tree")) != ProjectResult::Success) _exit(3);
            fresh.ProjectId = project.ProjectId = "{" + std::to_string(state) + "}";
            saver = &fresh;
        }
        if (saver->Save(file) != ProjectResult::Success) _exit(4);
        if (write(tell, &state, sizeof state) != sizeof state) _exit(5);
    }
}

TEST(SaveFaults, AKilledSaveLeavesAWholeProject) {
    const auto files = MakePosixFileSystem();
    const TemporaryFolder home;
    const std::string file = home.Path("a.pwp");
    {
        const TemporaryFolder work;
        Project project(*files);
        project.WorkingFolder = work.Path();
        project.ProjectId = "{0}";
        WebSite* site = project.WebSites().Add();
        for (int number = 1; number <= kKillPages; ++number)
            AddPage(site->Pages(), work, "p" + std::to_string(number) + ".htm",
                    PageOfState(0, number))
                ->Title = "0";
        ASSERT_EQ(project.Save(file), ProjectResult::Success);
    }
    std::mt19937 random(20261122);
    int safe = 0;
    int journals = 0;
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const TemporaryFolder work;
        int told[2];
        ASSERT_EQ(pipe(told), 0);
        const pid_t child = fork();
        if (child == 0) {
            close(told[0]);
            SaveUntilKilled(*files, work, file, told[1]);
        }
        close(told[1]);
        // Killed at any moment of one of the first saves.
        int state = 0;
        for (unsigned skip = random() % 3 + 1; skip > 0; --skip) {
            ASSERT_EQ(read(told[0], &state, sizeof state), ssize_t{sizeof state});
            safe = state;
        }
        usleep(random() % 20'000);
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "it ended by itself with " << WEXITSTATUS(status);
        while (read(told[0], &state, sizeof state) == ssize_t{sizeof state})
            safe = state;
        close(told[0]);
        journals += home.Has("a.pwp-journal") ? 1 : 0;

        const TemporaryFolder other;
        Project loaded(*files);
        loaded.WorkingFolder = other.Path();
        ASSERT_EQ(loaded.Load(file), ProjectResult::Success) << loaded.LastMessage();
        state = loaded.VersionBuild;
        EXPECT_TRUE(state == safe || state == safe + 1) << state << " after " << safe;
        ASSERT_EQ(loaded.PageCount(), kKillPages);
        for (const PageIndexEntry& entry : loaded.PageIndex()) {
            EXPECT_EQ(entry.Item->Title, std::to_string(state));
            EXPECT_EQ(other.Get(entry.Item->Name), PageOfState(state, entry.Item->Id()));
        }
        EXPECT_FALSE(home.Has("a.pwp-journal"));
        safe = state;
        if (round % 20 > 0) continue;
        // What the killed ones left goes with the next good save.
        ASSERT_EQ(loaded.Save(file), ProjectResult::Success) << loaded.LastMessage();
        for (const auto& entry : std::filesystem::directory_iterator(home.Native()))
            EXPECT_EQ(entry.path().filename(), "a.pwp");
    }
    RecordProperty("journals", journals);
    EXPECT_GT(safe, 20) << "the saves must have come to something";
}

}  // namespace
}  // namespace pw
