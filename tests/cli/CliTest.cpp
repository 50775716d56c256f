// Runs the real program on real files.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

#include "frame/FunctionLibrary.h"
#include "platform/SystemInfo.h"
#include "platform/posix/ProjectLock.h"
#include "platform/posix/RunFolder.h"
#include "project/omProj/Project.h"
#include "support/LinkCheck.h"
#include "support/TemporaryFolder.h"

namespace pw {
namespace {

namespace fs = std::filesystem;

const fs::path kManual = "/usr/share/doc/apache2-doc/manual";

struct Outcome {
    int code = -1;
    std::string output;  ///< both streams
    std::vector<std::string> Lines() const {
        auto lines = Split(output, '\n');
        if (!lines.empty() && lines.back().empty()) lines.pop_back();
        return lines;
    }
};

std::string Quoted(const std::string& word) {
    return "'" + ReplaceAll(word, "'", "'\\''") + "'";
}

struct CliTest : testing::Test {
    std::string CommandLine(const std::vector<std::string>& words) {
        std::string line = Quoted(PAGEWICK_CLI) + " --profile " + Quoted(folder.Native("profile"));
        for (const auto& word : words)
            line += " " + Quoted(word);
        return line;
    }
    Outcome Cli(const std::vector<std::string>& words) {
        Outcome run;
        FILE* pipe = ::popen((CommandLine(words) + " 2>&1").c_str(), "r");
        char buffer[4096];
        for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            run.output.append(buffer, read);
        const int status = ::pclose(pipe);
        run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return run;
    }
    std::string Path(const std::string& name) { return folder.Native(name); }
    /** Pages that a run has taken in and not yet tidied up. */
    int PagesAtWork() {
        int count = 0;
        std::error_code gone;  // files come and go meanwhile
        fs::recursive_directory_iterator at(Path("profile"), gone);
        for (; !gone && at != fs::recursive_directory_iterator(); at.increment(gone))
            count += at->path().extension() == ".htm" ? 1 : 0;
        return count;
    }
    /** Run folders that nobody has tidied up. */
    int Leftovers() {
        int count = 0;
        for (const auto& entry : fs::recursive_directory_iterator(Path("profile")))
            count += entry.path().filename().string().starts_with("run-") ? 1 : 0;
        return count;
    }

    test::TemporaryFolder folder;
};

TEST_F(CliTest, DoesAWholeJob) {
    folder.Put("in\\index.html",
               "<title>Home\tpage</title><a href=sub/b.html>b</a><img src=a.gif>");
    folder.Put("in\\a.gif", "picture");
    folder.Put("in\\sub\\b.html", "<title>B</title><a href=../index.html>h</a>");
    const std::string project = Path("my shop.pwp");
    ASSERT_EQ(Cli({"new", project}).output, "");
    ASSERT_EQ(Cli({"add", project, Path("in")}).output, "2 pages added.\n");
    EXPECT_EQ(Cli({"list", project}).output,
              "W0001P0001\tindex.htm\tHome page\n"
              "W0001F0001\tsub/\tsub\n"
              "W0001F0001P0001\tsub/b.htm\tB\n");
    EXPECT_THAT(Cli({"list", "--json", project}).output,
                testing::HasSubstr("{\"key\": \"W0001P0001\", \"kind\": \"page\", \"file\": "
                                   "\"index.htm\", \"title\": \"Home page\", \"default\": true}"));
    EXPECT_EQ(Cli({"cat", project, "W0001F0001P0001"}).output,
              "<title>B</title><a href=../index.htm>h</a>");

    EXPECT_EQ(
        Cli({"set", project, "companyname=Ann & Co", "VersionMajor=4", "AutoVersion=no"}).code, 0);
    const std::string info = Cli({"info", project}).output;
    EXPECT_THAT(info, testing::HasSubstr("Name: my shop\n"));
    EXPECT_THAT(info, testing::HasSubstr("CompanyName: Ann & Co\n"));
    EXPECT_THAT(info, testing::HasSubstr("PageCount: 2\n"));
    EXPECT_THAT(Cli({"info", project, "--json"}).output,
                testing::HasSubstr("\"VersionMajor\": 4, "));

    EXPECT_EQ(Cli({"rename", project, "W0001F0001", "texts"}).code, 0);
    EXPECT_EQ(Cli({"rename", project, "W0001F0001P0001", "New <title>", "--title"}).code, 0);
    EXPECT_THAT(Cli({"list", project}).output,
                testing::HasSubstr("W0001F0001P0001\ttexts/b.htm\tNew <title>\n"));

    const Outcome published = Cli({"publish", project, "--html", Path("out")});
    EXPECT_THAT(published.output, testing::EndsWith(Path("out/my shop") + "\n"));
    EXPECT_EQ(test::ReadNative(Path("out/my shop/media/a.gif")), "picture");
    EXPECT_THAT(test::ReadNative(Path("out/my shop/texts/b.htm")),
                testing::HasSubstr("<title>New &lt;title&gt;</title>"));

    EXPECT_EQ(Cli({"remove", project, "W0001F0001"}).code, 0);
    EXPECT_EQ(Cli({"list", project}).Lines().size(), 1u);
    EXPECT_EQ(Leftovers(), 0);
}

TEST_F(CliTest, RenamesPagesAndListsLinks) {
    folder.Put("in\\index.html",
               "<title>Home</title><a href=\"sub/b.html#x\">b</a>"
               "<a href=http://example.org>w</a><a href=gone.htm>g</a>");
    folder.Put("in\\sub\\b.html", "<title>B</title><a name=x href=../index.html>h</a>");
    const std::string project = Path("p.pwp");
    ASSERT_EQ(Cli({"new", project}).code, 0);
    ASSERT_EQ(Cli({"add", project, Path("in")}).code, 0);
    EXPECT_EQ(Cli({"links", project}).output,
              "W0001P0001\tindex.htm\tsub/b.htm#x\tstands\n"
              "W0001P0001\tindex.htm\thttp://example.org\tnot tested\n"
              "W0001P0001\tindex.htm\tgone.htm\tmissing\n"
              "W0001F0001P0001\tsub/b.htm\t../index.htm\tstands\n");

    EXPECT_EQ(Cli({"rename", project, "W0001F0001P0001", "c", "--keep-bookmarks"}).output, "");
    EXPECT_EQ(Cli({"rename", project, "W0001F0001", "texts"}).output, "");
    EXPECT_THAT(Cli({"cat", project, "W0001P0001"}).output,
                testing::HasSubstr("<a href=\"texts/c.htm#x\">"));
    EXPECT_EQ(Cli({"rename", project, "W0001F0001", "sub"}).output, "");
    EXPECT_EQ(Cli({"rename", project, "W0001F0001P0001", "news"}).output,
              "1 link lost its bookmark.\n");
    EXPECT_EQ(Cli({"rename", project, "W0001P0001", "start.html"}).output, "");
    EXPECT_EQ(Cli({"list", project}).output,
              "W0001P0001\tstart.html\tHome\n"
              "W0001F0001\tsub/\tsub\n"
              "W0001F0001P0001\tsub/news.htm\tB\n");
    EXPECT_EQ(Cli({"cat", project, "W0001F0001P0001"}).output,
              "<title>B</title><a name=x href=../start.html>h</a>");
    EXPECT_EQ(Cli({"links", "--json", project}).Lines().at(1),
              "  {\"key\": \"W0001P0001\", \"file\": \"start.html\", \"target\": "
              "\"sub/news.htm\", \"state\": \"stands\"},");
    const Outcome taken = Cli({"rename", project, "W0001P0001", "start.html"});
    EXPECT_EQ(taken.code, 1);
    EXPECT_EQ(taken.output, "The page already has this file name.\n");
    EXPECT_EQ(Leftovers(), 0);
}

TEST_F(CliTest, AProjectsExtensionIsNoPartOfItsName) {
    folder.Put("Site 2.0.pwp", "another project");
    EXPECT_EQ(Cli({"new", Path("example.com")}).output, Path("example.com.pwp") + "\n");
    EXPECT_THAT(Cli({"info", Path("example.com")}).output,
                testing::HasSubstr("Name: example.com\n"));
    EXPECT_EQ(Cli({"list", Path("example.com.pwp")}).code, 0);
    EXPECT_FALSE(folder.Has("example.com"));
    EXPECT_EQ(Cli({"new", Path("Site 2.0")}).code, 1);
    EXPECT_EQ(folder.Get("Site 2.0.pwp"), "another project");
}

TEST_F(CliTest, ListsAndSetsVariables) {
    folder.Put("in.html", "<title>Home</title><a type=omMerge name=Slogan>x</a>");
    const std::string project = Path("p.pwp");
    ASSERT_EQ(Cli({"new", project}).code, 0);
    ASSERT_EQ(Cli({"add", project, Path("in.html")}).code, 0);
    EXPECT_EQ(Cli({"variable", project, "Slogan=Buy & save", "Year=2026"}).output, "");
    EXPECT_EQ(Cli({"variable", project, " slogan = a=b ", "Year="}).output, "");
    const auto lines = Cli({"variable", project}).Lines();
    ASSERT_EQ(lines.size(), 28u);
    EXPECT_EQ(lines[0], "custom\tslogan\ta=b");
    EXPECT_EQ(lines[1], "custom\tYear\t");
    EXPECT_EQ(lines[2], "standard\tProject Name\tp");
    EXPECT_EQ(Cli({"variable", project, "--json"}).Lines().at(1),
              "  {\"kind\": \"custom\", \"name\": \"slogan\", \"value\": \"a=b\"},");
    EXPECT_THAT(Cli({"cat", project, "W0001P0001"}).output, testing::HasSubstr(">a=b</a>"));
}

TEST_F(CliTest, ListsTasks) {
    const std::string file = Path("p.pwp");
    ASSERT_EQ(Cli({"new", file}).code, 0);
    EXPECT_EQ(Cli({"tasks", file}).output, "");
    EXPECT_EQ(Cli({"tasks", file, "--json"}).output, "[]\n");
    {
        const auto files = MakePosixFileSystem();
        Project project(*files);
        project.WorkingFolder = GetParentFolder(folder.Put("work\\x", ""));
        ASSERT_EQ(project.Load(folder.Path("p.pwp")), ProjectResult::Success);
        Task* task = project.Tasks().Add("{key}");
        task->Name = "Check\tlinks";
        task->Priority = 2;
        task->Status = 4;
        task->AssignedTo = "Ann";
        task->CompleteBy = MakeDate(2026, 12, 24, 0, 0, 0);
        task->PublishingDependent = true;
        ASSERT_EQ(project.Save(folder.Path("p.pwp")), ProjectResult::Success);
    }
    EXPECT_EQ(Cli({"tasks", file}).output,
              "Check links\tHigh\tWaiting on someone else\tAnn\t2026-12-24\n");
    EXPECT_THAT(Cli({"tasks", file, "--json"}).output,
                testing::HasSubstr("\"completeBy\": \"2026-12-24\", "
                                   "\"publishingDependent\": true, "));
}

TEST_F(CliTest, SweepsWhatAKilledRunHasLeft) {
    const std::string project = Path("p.pwp");
    ASSERT_EQ(Cli({"new", project}).code, 0);
    const auto files = MakePosixFileSystem();
    const std::string temporary = FindPlaces(Path("profile")).temporaryFolder;
    std::string killed;
    {
        const auto run = RunFolder::Create(*files, temporary);
        killed = run->Path();
        ASSERT_EQ(files->Write(killed + "\\page.htm", "text"), FileError::None);
    }
    const auto living = RunFolder::Create(*files, temporary);
    EXPECT_EQ(Cli({"list", project}).code, 0);
    EXPECT_FALSE(files->Stat(killed).exists);
    EXPECT_TRUE(files->Stat(living->Path()).exists);
}

TEST_F(CliTest, SaysWhatIsWrong) {
    const std::string project = Path("p.pwp");
    ASSERT_EQ(Cli({"new", project}).code, 0);
    folder.Put("damaged.pwp", "SQLite format 3" + std::string(5000, 'x'));
    const struct {
        std::vector<std::string> words;
        int code;
        const char* says;
    } rows[] = {
        {{}, 2, "Usage: pagewick-cli"},
        {{"--help"}, 0, "publish"},
        {{"help", "set"}, 0, "VersionMajor"},
        {{"add", "--help"}, 0, "--folder KEY"},
        {{"--version"}, 0, "pagewick-cli 2"},
        {{"fly", project}, 2, "no command 'fly'"},
        {{"list"}, 2, "missing"},
        {{"list", project, "x"}, 2, "'x' is too much"},
        {{"list", project, "--fast"}, 2, "no option --fast"},
        {{"new", project}, 1, "exists already"},
        {{"new", Path("x.pwp"), "--name"}, 2, "needs a value"},
        {{"new", Path("x.pwp"), "--name", "a/b"}, 2, "name"},
        {{"new", Path("a\\b.pwp")}, 1, "backslash"},
        {{"info", Path("no.pwp")}, 1, ""},
        {{"list", Path("no.pwp")}, 1, "does not exist"},
        {{"list", Path("damaged.pwp")}, 1, "can not be opened"},
        {{"info", Path("damaged.pwp")}, 1, ""},
        {{"cat", project, "W0001P0001"}, 1, "no item"},
        {{"cat", project, "W0001"}, 1, "no page"},
        {{"remove", project, "W0001"}, 1, "no item"},
        {{"rename", project, "W0001", "x"}, 1, "Only folders and pages"},
        {{"rename", project, "W0001P0001", "x"}, 1, "no item"},
        {{"rename", "--help"}, 0, "--title"},
        {{"links", Path("no.pwp")}, 1, "does not exist"},
        {{"links", "--help"}, 0, "\"not tested\""},
        {{"tasks", project, "--all"}, 2, "no option --all"},
        {{"tasks", "--help"}, 0, "priority"},
        {{"variable", "--help"}, 0, "[NAME=VALUE...]"},
        {{"variable", project, "Slogan"}, 2, "NAME=VALUE"},
        {{"variable", project, "company name=x"}, 2, "set PROJECT.pwp CompanyName=VALUE"},
        {{"variable", project, "Project Pages=3"}, 2, "by itself"},
        {{"variable", project, "a<b=3"}, 1, "Invalid name."},
        {{"set", project, "Name"}, 2, "NAME=VALUE"},
        {{"set", project, "Colour=red"}, 2, "no property 'Colour'"},
        {{"set", project, "VersionMajor=two"}, 2, "takes a number"},
        {{"set", project, "CreatedBy=me"}, 2, "can not be set"},
        {{"add", project, Path("nothing")}, 1, "does not exist"},
        {{"add", project, Path("nothing"), "--folder", "W0001F0009"}, 1, "no folder"},
        {{"publish", project}, 2, "--html"},
    };
    for (const auto& row : rows) {
        const Outcome run = Cli(row.words);
        EXPECT_EQ(run.code, row.code) << run.output;
        EXPECT_NE(run.output, "") << testing::PrintToString(row.words);
        EXPECT_THAT(run.output, testing::HasSubstr(row.says));
    }
    EXPECT_EQ(Cli({"list", project}).output, "") << "nothing of this has changed the project";
    EXPECT_EQ(Leftovers(), 0);
}

TEST_F(CliTest, TellsWhatWasLeftOut) {
    const std::string project = Path("p.pwp");
    ASSERT_EQ(Cli({"new", project}).code, 0);
    folder.Put("in\\a.html", "<title>a</title><img src=../x/a.gif><img src=../y/b.gif>");
    folder.Put("x\\a.gif", "GIF89a");
    folder.Put("y\\b.gif", "GIF89a");
    const Outcome added = Cli({"add", project, Path("in"), "--with-files-from", Path("x")});
    EXPECT_EQ(added.code, 0);
    EXPECT_EQ(added.output,
              "'../y/b.gif' in 'a.html' was left out: it lies outside of the folder.\n"
              "To take such files along, name their folder with --with-files-from.\n"
              "1 page added.\n");
    EXPECT_EQ(Cli({"cat", project, "W0001P0001"}).output,
              "<title>a</title><img src=media/a.gif><img src=../y/b.gif>");
    EXPECT_EQ(Cli({"add", project, Path("in"), "--with-files-from", Path("none")}).output,
              "There is no folder '" + Path("none") + "'.\n");
}

TEST_F(CliTest, TakesTheManualInAndPublishesItWhole) {
    if (!fs::exists(kManual / "en")) GTEST_SKIP() << "needs the package apache2-doc";
    const std::string project = Path("manual.pwp");
    ASSERT_EQ(Cli({"new", project, "--name", "Manual"}).code, 0);
    // Its pictures and style sheets lie beside the language, not below it.
    const Outcome added =
        Cli({"add", project, (kManual / "en").string(), "--with-files-from",
             (kManual / "images").string(), "--with-files-from=" + (kManual / "style").string()});
    ASSERT_EQ(added.code, 0) << added.output;
    const Outcome published = Cli({"publish", project, "--html", Path("out")});
    ASSERT_EQ(published.code, 0) << published.output;
    const fs::path site = Path("out/Manual");

    const auto pages = test::PagesBelow(kManual / "en");
    EXPECT_EQ(Cli({"list", project}).Lines().size(),
              pages.size() + std::size_t(std::count_if(
                                 fs::recursive_directory_iterator(kManual / "en"), {},
                                 [](const auto& entry) { return entry.is_directory(); })));
    const auto placeOf = [&](const fs::path& page) {
        const fs::path below = fs::relative(page, kManual / "en");
        return site / below.parent_path() / (ToLower(page.stem().string()) + ".htm");
    };
    // Every link of the source that leads to a page of the manual or to a picture, style sheet or
    // script stands in the result, at the same place, and leads to the same.
    int followed = 0;
    for (const auto& page : pages) {
        const auto before = test::LocalLinks(page);
        const auto after = test::LocalLinks(placeOf(page));
        ASSERT_EQ(before.size(), after.size()) << page;
        for (std::size_t i = 0; i < before.size(); ++i) {
            const bool isPage = IsPageFilename(before[i].target.string());
            const bool isInside = before[i].target.string().starts_with((kManual / "en/").string());
            if (!before[i].exists || (isPage && !isInside)) {
                EXPECT_EQ(after[i].value, before[i].value) << page;
                continue;
            }
            ++followed;
            EXPECT_TRUE(after[i].exists)
                << page << ": " << before[i].value << " became " << after[i].value;
            EXPECT_EQ(after[i].anchor, before[i].anchor);
            if (isPage) {
                EXPECT_EQ(after[i].target, placeOf(before[i].target));
            } else if (before[i].target.extension() != ".css") {
                EXPECT_EQ(test::ReadNative(after[i].target), test::ReadNative(before[i].target));
            }
        }
    }
    EXPECT_GT(followed, 10000);
    EXPECT_TRUE(fs::exists(site / "media/manual.css"));
}

TEST_F(CliTest, TidiesUpWhenItIsInterrupted) {
    const std::string project = Path("p.pwp");
    ASSERT_EQ(Cli({"new", project}).code, 0);
    for (int i = 0; i < 3000; ++i)
        folder.Put("in\\p" + std::to_string(i) + ".html", "<title>x</title>");
    const std::string line = "exec " + CommandLine({"add", project, Path("in")}) + " > " +
                             Quoted(Path("output")) + " 2>&1";
    const pid_t process = ::fork();
    if (process == 0) {
        ::execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
        ::_exit(127);
    }
    // Once and in the middle of the work: before it the shell would end, and twice is an order.
    while (PagesAtWork() == 0 && ::waitpid(process, nullptr, WNOHANG) == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    ::kill(process, SIGINT);
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process) << "all was added before the signal";
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(folder.Get("output"), "Interrupted. The project is as it was.\n");
    EXPECT_EQ(Cli({"list", project}).output, "");

    ASSERT_EQ(Cli({"add", project, Path("in")}).code, 0);
    EXPECT_EQ(std::system((CommandLine({"list", project}) + " | head -1 > /dev/null").c_str()), 0);
    EXPECT_EQ(Leftovers(), 0);
}

TEST_F(CliTest, RefusesAProjectThatIsInUse) {
    const std::string project = Path("p.pwp");
    ASSERT_EQ(Cli({"new", project}).code, 0);
    const Places places = FindPlaces(Path("profile"));
    std::unique_ptr<ProjectLock> lock;
    ASSERT_EQ(ProjectLock::Acquire(folder.Path("p.pwp"), places.lockFolder, lock),
              LockOutcome::Locked);
    const Outcome refused = Cli({"set", project, "Name=other"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_THAT(refused.output, testing::HasSubstr("open"));
    EXPECT_EQ(Cli({"info", project}).code, 0) << "its properties can be looked at all the same";
    lock.reset();
    EXPECT_EQ(Cli({"set", project, "Name=other"}).code, 0);
}

}  // namespace
}  // namespace pw
