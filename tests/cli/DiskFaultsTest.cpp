// The whole program on a disk that fails: each call that reaches the disk fails in turn. Runs a
// fixed sample; with PAGEWICK_FAULTS=all in the environment, all of them.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>

#include "platform/Text.h"
#include "project/References.h"
#include "support/LinkCheck.h"
#include "support/SampleProject.h"
#include "tools/FaultOrder.h"

namespace pw {
namespace {

namespace fs = std::filesystem;
using test::FaultOrder;

/** What the disk can answer, and to which calls. */
struct Error {
    const char* name;
    int number;
    unsigned calls;
};
constexpr unsigned kChanges = test::kCreate | test::kWrite | test::kTruncate | test::kRename;
const Error kErrors[] = {
    {"EIO", EIO, test::kOpen | kChanges | test::kRead | test::kSync | test::kClose | test::kRemove},
    {"ENOSPC", ENOSPC, kChanges | test::kSync | test::kClose},
    {"EDQUOT", EDQUOT, kChanges | test::kClose},
    {"EROFS", EROFS, test::kCreate | test::kRename | test::kRemove | test::kTruncate},
    {"EACCES", EACCES, test::kOpen | test::kCreate | test::kRename | test::kRemove},
    {"EFBIG", EFBIG, test::kWrite | test::kTruncate},
};

/** What the program is asked to do, once for each fault. */
struct Job {
    const char* name;
    std::vector<std::string> words;  ///< "@" stands for the test's folder
    bool startsFromNothing = false;
    const char* folder = nullptr;  ///< that it makes beside the project file
    /** It goes on without what it can't have, and names that. */
    std::vector<std::string> parts = {};
};
const Job kJobs[] = {
    {"new", {"new", "@/home/site.pwp"}, true},
    {"add", {"add", "@/home/site.pwp", "@/in"}, false, nullptr, {"page.htm", "b.htm", "p.gif"}},
    {"save", {"set", "@/home/site.pwp", "CompanyName=Ann"}},
    {"rename", {"rename", "@/home/site.pwp", "W0001P0001", "start.htm"}},
    {"variables", {"variable", "@/home/site.pwp", "Town=Berne"}},
    {"publish", {"publish", "@/home/site.pwp", "--html", "@/out"}, false, "out"},
};

struct Answer {
    int status = -1;
    std::string output;
    bool Succeeded() const { return WIFEXITED(status) && WEXITSTATUS(status) == 0; }
};

/** Everything that a project file or a folder holds, without what differs from run to run. */
std::string WithoutTimes(const std::string& text) {
    std::string kept;
    for (const std::string& line : Split(text, '\n'))
        if (!line.starts_with("  created=") && !line.starts_with("  modified=") &&
            !line.starts_with("  project_id=") && !line.starts_with("thumbnail "))
            kept += line + "\n";
    return kept;
}

std::string ContentsOf(const fs::path& folder) {
    std::map<std::string, std::string> files;
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(folder, ignored))
        if (entry.is_regular_file() && !entry.path().filename().string().starts_with("~pw"))
            files[fs::relative(entry.path(), folder)] = test::ReadNative(entry.path());
    std::string text;
    for (const auto& [name, bytes] : files)
        text += name + "\n" + bytes + "\n";
    return text;
}

class DiskFaults : public testing::TestWithParam<Job> {
  protected:
    DiskFaults() {
        const std::string path = folder.Native("order");
        const int file = ::open(path.c_str(), O_RDWR | O_CREAT, 0600);
        EXPECT_EQ(::ftruncate(file, sizeof(FaultOrder)), 0);
        order = static_cast<FaultOrder*>(
            ::mmap(nullptr, sizeof(FaultOrder), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        ::close(file);
        folder.Put("in\\page.htm", "<title>Page</title><img src=p.gif><a href=sub/b.htm>b</a>");
        folder.Put("in\\p.gif", "GIF89a" + std::string(20'000, 'p'));
        folder.Put("in\\sub\\b.htm", "<title>B</title><a href=../page.htm>back</a>");
        folder.Put("first\\index.htm", "<title>Home</title><a href=two.htm>two</a><img src=a.gif>" +
                                           std::string(30'000, 'x'));
        folder.Put("first\\two.htm",
                   "<title>Two</title><a href=index.htm>home</a>"
                   "<a name=pw_mv_Town title=Town>Bern</a>");
        folder.Put("first\\a.gif", "GIF89a" + std::string(100'000, 'a'));
        fs::create_directory(folder.Native("home"));
        const std::string site = folder.Native("home/site.pwp");
        if (!GetParam().startsFromNothing) {
            EXPECT_TRUE(Start({"new", site}).Succeeded());
            EXPECT_TRUE(Start({"add", site, folder.Native("first")}).Succeeded());
            EXPECT_TRUE(Start({"variable", site, "Town=Bern"}).Succeeded());
        }
        before = folder.Get("home\\site.pwp");
        oldState = State();
    }
    ~DiskFaults() override { ::munmap(order, sizeof(FaultOrder)); }

    /** `limit` on the size of files, 0 for none. */
    Answer Start(std::vector<std::string> words, rlim_t limit = 0) {
        Answer run;
        std::string root = folder.Native();
        for (std::string& word : words)
            if (word.starts_with("@")) word = root + word.substr(1);
        const pid_t child = ::fork();
        if (child == 0) {
            std::vector<char*> arguments = {const_cast<char*>(PAGEWICK_CLI),
                                            const_cast<char*>("--profile"), const_cast<char*>("")};
            const std::string profile = folder.Native("profile");
            arguments[2] = const_cast<char*>(profile.c_str());
            for (std::string& word : words)
                arguments.push_back(word.data());
            arguments.push_back(nullptr);
            const int out = ::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            ::dup2(out, 1);
            ::dup2(out, 2);
            ::setenv("LD_PRELOAD", test::kFaultyCalls, 1);
            ::setenv(test::kFaultOrderVariable, folder.Native("order").c_str(), 1);
            if (limit) {
                const rlimit size = {limit, limit};
                ::setrlimit(RLIMIT_FSIZE, &size);
            }
            ::alarm(60);  // a program that hangs dies of it
            ::execv(arguments[0], arguments.data());
            ::_exit(126);
        }
        EXPECT_EQ(::waitpid(child, &run.status, 0), child);
        run.output = test::ReadNative(output);
        return run;
    }

    /** As a user would find it; what lies in a journal is put back by that. */
    std::string State() {
        const std::string file = folder.Path("home\\site.pwp");
        if (!files->Stat(file).exists) return "";
        const test::TemporaryFolder work;
        Project project(*files);
        project.WorkingFolder = work.Path();
        if (project.Load(file) != ProjectResult::Success) return project.LastMessage();
        return WithoutTimes(test::ProjectPrinter::Print(project)) + ContentsOf(work.Native());
    }

    void PutBack() {
        fs::remove_all(folder.Native("profile"));
        fs::remove_all(folder.Native("out"));
        fs::remove_all(folder.Native("home"));
        fs::create_directory(folder.Native("home"));
        if (!GetParam().startsFromNothing) folder.Put("home\\site.pwp", before);
        order->~FaultOrder();
        new (order) FaultOrder();
        folder.Native().copy(order->under, sizeof order->under - 1);
    }

    /** One run; what it leaves is checked. */
    void Check(rlim_t limit = 0) {
        const Answer run = Start(GetParam().words, limit);
        ASSERT_TRUE(WIFEXITED(run.status)) << "died of signal " << WTERMSIG(run.status) << "\n"
                                           << run.output;
        // 1. Nothing lies beside the project but what the program speaks of.
        for (const auto& entry : fs::directory_iterator(folder.Native("home"))) {
            const std::string name = entry.path().filename();
            if (name != "site.pwp") {
                EXPECT_NE(run.output.find(name), std::string::npos)
                    << name << " was left without a word\n"
                    << run.output;
            }
        }
        // 2. The old project or the new one, and the answer says which.
        const bool untouched = folder.Get("home\\site.pwp") == before;
        const std::string state = untouched ? oldState : State();
        if (state != oldState && !GetParam().parts.empty()) {
            for (const std::string& part : GetParam().parts) {
                // What only a page that could not come needs has no business here either.
                const bool isNeeded =
                    IsPageFilename(part) || state.find("src=media/p.gif") != state.npos;
                EXPECT_TRUE(!isNeeded || state.find("/" + part + "\n") != state.npos ||
                            state.find("\n" + part + "\n") != state.npos ||
                            run.output.find(part) != run.output.npos)
                    << part << " is missing without a word: " << run.output;
            }
        } else {
            EXPECT_EQ(state, run.Succeeded() ? newState : oldState)
                << "it said " << WEXITSTATUS(run.status) << ": " << run.output;
        }
        if (!run.Succeeded()) {
            EXPECT_NE(run.output, "") << "failed without a word";
        } else if (GetParam().folder) {
            EXPECT_EQ(ContentsOf(folder.Native(GetParam().folder)), published);
        }
        succeeded += run.Succeeded() ? 1 : 0;
        failed += run.Succeeded() ? 0 : 1;
    }

    const std::unique_ptr<FileSystem> files = MakePosixFileSystem();
    const test::TemporaryFolder folder;
    FaultOrder* order = nullptr;
    std::string before;
    std::string oldState;
    std::string newState;
    std::string published;
    const std::string output = folder.Native("output");
    int succeeded = 0;
    int failed = 0;
};

TEST_P(DiskFaults, LeaveTheOldProjectOrTheNewAndSayWhich) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer has to be the first library";
#endif
    const bool all = ::getenv("PAGEWICK_FAULTS") != nullptr;
    PutBack();
    const Answer whole = Start(GetParam().words);
    ASSERT_TRUE(whole.Succeeded()) << whole.output;
    newState = State();
    if (GetParam().folder)
        published = ContentsOf(folder.Native(GetParam().folder));
    else
        ASSERT_NE(newState, oldState);

    int turn = 0;
    const auto failEach = [&](const Error& error, bool onwards) {
        for (int at = 1;; ++at) {
            // The sample: of each row a few, not the same ones.
            const int step = all ? 1 : 97;
            if (!all) at += at == 1 ? turn++ * 7 % step : step - 1;
            SCOPED_TRACE(std::string(error.name) + " at call " + std::to_string(at) +
                         (onwards ? " and all behind it" : ""));
            PutBack();
            order->calls = error.calls;
            order->error = error.number;
            order->at = at;
            order->onwards = onwards;
            Check();
            if (HasFatalFailure() || order->struck == 0) break;
        }
    };
    for (const Error& error : kErrors)
        for (const bool onwards : {false, true})
            failEach(error, onwards);
    for (const auto kind : {FaultOrder::Kind::Short, FaultOrder::Kind::Interrupt}) {
        SCOPED_TRACE(kind == FaultOrder::Kind::Short ? "half of all bytes" : "interrupted");
        PutBack();
        order->kind = kind;
        order->calls = test::kRead | test::kWrite;
        order->at = 1;
        order->onwards = true;
        const int before = failed;
        Check();
        EXPECT_GT(order->struck, 10);
        EXPECT_EQ(failed, before) << "neither is a failure: " << test::ReadNative(output);
    }
    for (rlim_t limit = 512; limit < 600'000; limit = limit * (all ? 5 : 12) / 4) {
        SCOPED_TRACE("files of at most " + std::to_string(limit) + " bytes");
        PutBack();
        Check(limit);
    }
    EXPECT_GT(succeeded, 0);
    EXPECT_GT(failed, 5);
    RecordProperty("runs", succeeded + failed);
}

INSTANTIATE_TEST_SUITE_P(Cli, DiskFaults, testing::ValuesIn(kJobs),
                         [](const auto& job) { return std::string(job.param.name); });

}  // namespace
}  // namespace pw
