// Locks between real processes: a child takes one, is killed, and the parent looks on.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/posix/ProjectLock.h"
#include "platform/posix/RunFolder.h"
#include "platform/posix/SingleInstance.h"
#include "support/TemporaryFolder.h"

namespace pw {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

/** A child process that does something and then lives until it is killed. */
class Child {
  public:
    explicit Child(const std::function<bool()>& act) {
        int ready[2];
        if (::pipe(ready) != 0) std::abort();
        pid_ = ::fork();
        if (pid_ == 0) {
            const char worked = act() ? 'y' : 'n';
            if (::write(ready[1], &worked, 1) != 1) ::_exit(1);
            for (;;)
                ::pause();
        }
        char worked = 'n';
        EXPECT_EQ(::read(ready[0], &worked, 1), 1);
        EXPECT_EQ(worked, 'y');
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~Child() { Kill(); }
    int Pid() const { return pid_; }
    void Kill() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }

  private:
    pid_t pid_ = 0;
};

TEST(ProjectLock, IsHeldAcrossProcessesAndGoneWithThem) {
    const TemporaryFolder folder;
    const std::string path = folder.Put("site.pwp", "project");
    fs::create_symlink("site.pwp", folder.Native("alias.pwp"));
    fs::create_hard_link(folder.Native("site.pwp"), folder.Native("second.pwp"));
    std::unique_ptr<ProjectLock> childs;  // lives in the child only
    Child child([&] {
        return ProjectLock::Acquire(path, folder.Path("locks"), childs) == LockOutcome::Locked;
    });

    for (const char* name : {"site.pwp", "alias.pwp", "second.pwp", ".\\site.pwp"}) {
        SCOPED_TRACE(name);
        std::unique_ptr<ProjectLock> lock;
        LockHolder holder;
        EXPECT_EQ(ProjectLock::Acquire(folder.Path(name), folder.Path("locks"), lock, &holder),
                  LockOutcome::Held);
        EXPECT_EQ(lock, nullptr);
        EXPECT_EQ(holder.pid, child.Pid());
        EXPECT_EQ(Describe(holder), "core_tests (process " + std::to_string(child.Pid()) + ")");
    }
    std::unique_ptr<ProjectLock> other, lock;
    EXPECT_EQ(ProjectLock::Acquire(folder.Path("other.pwp"), folder.Path("locks"), other),
              LockOutcome::Locked)
        << "a project that does not exist yet";
    child.Kill();
    EXPECT_EQ(ProjectLock::Acquire(path, folder.Path("locks"), lock), LockOutcome::Locked);
    EXPECT_EQ(folder.Get("site.pwp"), "project");
    lock.reset();
    other.reset();
    EXPECT_TRUE(fs::is_empty(folder.Native("locks"))) << "released locks leave nothing";
}

TEST(ProjectLock, FollowsAFileThatWasReplaced) {
    const TemporaryFolder folder;
    std::unique_ptr<ProjectLock> lock, second;
    ASSERT_EQ(ProjectLock::Acquire(folder.Path("a.pwp"), folder.Path("locks"), lock),
              LockOutcome::Locked);
    folder.Put("a.pwp", "saved for the first time");
    EXPECT_TRUE(lock->FollowFile());
    fs::create_hard_link(folder.Native("a.pwp"), folder.Native("b.pwp"));
    EXPECT_EQ(ProjectLock::Acquire(folder.Path("b.pwp"), folder.Path("locks"), second),
              LockOutcome::Held);
}

TEST(ProjectLock, TellsWhenNoLockCanBeMade) {
    const TemporaryFolder folder;
    folder.Put("locks", "a file where the folder should be");
    std::unique_ptr<ProjectLock> lock;
    EXPECT_EQ(ProjectLock::Acquire(folder.Put("a.pwp", ""), folder.Path("locks"), lock),
              LockOutcome::Failed);
}

TEST(SingleInstance, AllowsOneForEachProfile) {
    const TemporaryFolder folder;
    const Places first = FindPlaces(folder.Native("first"));
    const Places second = FindPlaces(folder.Native("second"));
    std::unique_ptr<FileLock> a, b, c;
    EXPECT_EQ(BecomeSingleInstance(first, a), LockOutcome::Locked);
    EXPECT_EQ(BecomeSingleInstance(first, b), LockOutcome::Held);
    EXPECT_EQ(BecomeSingleInstance(second, c), LockOutcome::Locked);
    a.reset();
    EXPECT_EQ(BecomeSingleInstance(first, b), LockOutcome::Locked);
}

TEST(RunFolder, OffersWhatACrashLeftAndNothingThatRuns) {
    const TemporaryFolder folder;
    const auto files = MakePosixFileSystem();
    std::unique_ptr<RunFolder> childs;
    Child child([&] {
        childs = RunFolder::Create(*files, folder.Path("cache"));
        return childs && files->MakeFolder(childs->Path() + "\\~pw\\preview") == FileError::None;
    });
    const auto mine = RunFolder::Create(*files, folder.Path("cache"));
    ASSERT_NE(mine, nullptr);
    EXPECT_EQ(fs::status(ToNativePath(mine->Path())).permissions(), fs::perms(0700));
    EXPECT_TRUE(RunFolder::FindAbandoned(*files, folder.Path("cache")).empty());

    child.Kill();
    const auto abandoned = RunFolder::FindAbandoned(*files, folder.Path("cache"));
    ASSERT_EQ(abandoned.size(), 1u);
    EXPECT_GT(abandoned[0].started, 1'500'000'000'000'000'000);
    auto taken = RunFolder::TakeOver(*files, abandoned[0].folder);
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(RunFolder::TakeOver(*files, abandoned[0].folder), nullptr);
    EXPECT_EQ(RunFolder::Discard(*files, abandoned[0].folder), FileError::NoPermission);
    EXPECT_TRUE(RunFolder::FindAbandoned(*files, folder.Path("cache")).empty());
    EXPECT_TRUE(files->Stat(taken->Path() + "\\~pw\\preview").isFolder);

    taken.reset();  // looked at, to be decided later
    ASSERT_EQ(RunFolder::FindAbandoned(*files, folder.Path("cache")).size(), 1u);
    EXPECT_EQ(RunFolder::Discard(*files, abandoned[0].folder), FileError::None);
    EXPECT_EQ(RunFolder::Discard(*files, abandoned[0].folder), FileError::None);
    EXPECT_EQ(mine->Remove(), FileError::None);
    EXPECT_TRUE(fs::is_empty(folder.Native("cache")));
}

TEST(RunFolder, GoesAsOne) {
    const TemporaryFolder folder;
    const auto files = MakePosixFileSystem();
    const std::string cache = folder.Path("cache");
    // Killed while the files go, at any moment, it is no run folder that something could be
    // recovered from.
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<RunFolder> run;
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            run = RunFolder::Create(*files, cache);
            for (int page = 0; page < 200; ++page)
                if (files->Write(run->Path() + "\\p" + std::to_string(page), "page") !=
                    FileError::None)
                    ::_exit(1);
            if (::write(ready[1], "y", 1) != 1) ::_exit(2);
            static_cast<void>(run->Remove());
            ::_exit(0);
        }
        char byte = 0;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1);
        ::usleep(useconds_t(round * 100));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(ready[0]);
        ::close(ready[1]);
        for (const AbandonedRun& left : RunFolder::FindAbandoned(*files, cache)) {
            std::vector<FolderEntry> entries;
            EXPECT_EQ(files->List(left.folder, entries), FileError::None);
            EXPECT_EQ(entries.size(), 201u) << "all of it, and the lock";
            EXPECT_EQ(RunFolder::Discard(*files, left.folder), FileError::None);
        }
        RunFolder::SweepLeaving(*files, cache);
        EXPECT_TRUE(fs::is_empty(folder.Native("cache")));
    }
    // Where it can't be put out of the way nothing of it goes.
    const auto run = RunFolder::Create(*files, cache);
    const std::string page = run->Path() + "\\page";
    ASSERT_EQ(files->Write(page, "page"), FileError::None);
    const std::string name = run->Path().substr(cache.size() + 1);
    folder.Put("cache\\old-" + name + "\\in the way", "");
    EXPECT_NE(run->Remove(), FileError::None);
    EXPECT_TRUE(files->Stat(page).exists);
}

TEST(RunFolder, CannotBeMadeWhereNothingCan) {
    const TemporaryFolder folder;
    folder.Put("cache", "a file");
    const auto files = MakePosixFileSystem();
    EXPECT_EQ(RunFolder::Create(*files, folder.Path("cache")), nullptr);
    EXPECT_TRUE(RunFolder::FindAbandoned(*files, folder.Path("cache")).empty());
    EXPECT_EQ(RunFolder::TakeOver(*files, folder.Path("none")), nullptr);
}

}  // namespace
}  // namespace pw
