#include "project/Recovery.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>

#include "project/Folders.h"
#include "project/Journal.h"
#include "project/Links.h"
#include "project/Pages.h"
#include "project/frmRecover.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

/** A test project that lives in a real run folder, as the program's does. */
struct RunningProject : TestProject {
    RunningProject() : run(RunFolder::Create(*files, frame.places.temporaryFolder)) {
        MoveInto(run->Path());
    }
    void MoveInto(const std::string& folder) {
        frame.runFolder = folder;
        EXPECT_TRUE(CreateWorkingFolders(frame));
        InitNewProject(context);
    }
    void Type(const Page& page, const std::string& text) {
        auto& document = *workspace.Find(page.Key())->document;
        document.setInnerText(*document.body(), text);
    }
    void Tick() {
        for (int i = 0; i < 2; ++i) {
            clock.seconds += 3;
            JournalTick(context);
        }
    }
    /** What a killed program leaves: the folder without its lock. Goes on in a folder of its own.
     */
    void Crash() {
        lost = run->Path();
        context.lock.reset();
        run = RunFolder::Create(*files, frame.places.temporaryFolder);
        context.journal = {};
        context.lockedFile.clear();
        workspace.pages.clear();
        workspace.currentPageKey.clear();
        project.Clear();
        frame.settings.ProjectFilename.clear();
        MoveInto(run->Path());
    }

    std::unique_ptr<RunFolder> run;
    std::string lost;
};

TEST(Recovery, BringsBackWhatWasNotSaved) {
    RunningProject test;
    test.folder.Put("source\\a.gif", "GIF89a");
    Page* page = test.Insert("one", "<p>old</p>", {}, ShowInsertedPage::Yes);
    test.Insert("two");
    test.project.Name = "Shop";
    const std::string file = test.SaveAs("shop.pwp");
    EXPECT_TRUE(FindRecoverable(test.frame).empty()) << "this program runs";
    Page* added = test.Insert("three", "<img src=a.gif>");
    const std::string addedText = test.Text(added->Filename);
    test.Type(*page, "typed");
    auto& document = *test.workspace.Find(page->Key())->document;
    document.insertAdjacentHTML(*document.body(), "beforeEnd", "<img src='media/b.gif'>");
    ASSERT_TRUE(WriteTextFile(*test.files, "b", test.frame.settings.MediaFolder + "\\b.gif"));
    test.Tick();
    test.Crash();

    const auto found = FindRecoverable(test.frame);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].projectName, "Shop");
    EXPECT_EQ(found[0].projectFile, file);
    EXPECT_GT(found[0].changed, MakeDate(2020, 1, 1));
    const std::string empty = test.run->Path();
    ASSERT_TRUE(RecoverProject(test.context, test.run, found[0]));
    EXPECT_EQ(test.run->Path(), test.lost);
    EXPECT_FALSE(FolderExists(*test.files, empty));
    EXPECT_EQ(test.frame.settings.ProjectFilename, file);
    EXPECT_TRUE(test.project.IsLoaded);
    EXPECT_TRUE(test.project.IsDirty);
    EXPECT_EQ(test.project.PageCount(), 3);
    page = test.project.FindPage("W0001P0001");
    ASSERT_NE(page, nullptr);
    EXPECT_NE(test.Text(page->Filename).find("typed"), std::string::npos);
    EXPECT_NE(page->Attachments().Find(test.frame.settings.MediaFolder + "\\b.gif"), nullptr);
    EXPECT_EQ(test.Text(test.project.FindPage("W0001P0003")->Filename), addedText);

    test.Crash();
    EXPECT_EQ(FindRecoverable(test.frame).size(), 1u) << "not lost by a second crash";
    ASSERT_TRUE(RecoverProject(test.context, test.run, FindRecoverable(test.frame)[0]));
    EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::No));
    test.Crash();
    EXPECT_TRUE(FindRecoverable(test.frame).empty()) << "all of it is in the file";
    SweepAbandonedRuns(test.frame);
    EXPECT_FALSE(FolderExists(*test.files, test.lost));
    ASSERT_TRUE(OpenProject(test.context, file, Silent::No));
    EXPECT_EQ(test.Text(test.frame.settings.MediaFolder + "\\b.gif"), "b");
}

TEST(Recovery, FollowsNewNamesBetweenTwoTicks) {
    RunningProject test;
    test.project.Name = "Shop";
    Page* page = test.Insert("one");
    Folder* folder = AddFolder(test.context, Container(*test.project.WebSites().Item(1)), {"old"});
    ASSERT_TRUE(folder);
    test.SaveAs("shop.pwp");
    Page* below = test.Insert("two", "<p>below</p>", Container(*folder));
    test.project.IsDirty = true;
    test.Tick();
    ASSERT_TRUE(RenamePage(test.context, *page, "new.htm", nullptr));
    ASSERT_TRUE(RenameFolderOnDisk(test.context, *folder, "fresh"));
    const std::string belowKey = below->Key();
    test.Crash();

    ASSERT_TRUE(RecoverProject(test.context, test.run, FindRecoverable(test.frame).at(0)));
    EXPECT_EQ(test.project.PageCount(), 2);
    EXPECT_EQ(GetFileName(test.project.FindPage("W0001P0001")->Filename), "new.htm");
    EXPECT_NE(test.Text(test.project.FindPage(belowKey)->Filename).find("below"),
              std::string::npos);
}

TEST(Recovery, NeverSavesOverAFileThatChangedSince) {
    RunningProject test;
    test.Insert("one");
    const std::string file = test.SaveAs("one.pwp");
    test.project.Description = "unsaved";
    test.project.IsDirty = true;
    test.Tick();
    test.Crash();
    ASSERT_TRUE(OpenProject(test.context, file, Silent::No));
    test.project.Name = "Newer";
    test.SaveAs("one.pwp");
    InitNewProject(test.context);

    test.dialogs.ExpectMessage(Answer::Ok, "under another name");
    ASSERT_TRUE(RecoverProject(test.context, test.run, FindRecoverable(test.frame).at(0)));
    EXPECT_EQ(test.project.Description, "unsaved");
    EXPECT_EQ(test.frame.settings.ProjectFilename, "");
}

TEST(Recovery, TakesWhatIsGoneFromTheSavedProjectAndNamesIt) {
    enum class Saved { Never, Before };
    struct Row {
        const char* name;
        Saved saved;
        std::vector<std::string> gone;  ///< below the preview folder
        int pages;                      ///< 0: the saved project is opened
        std::vector<const char*> told;
    };
    for (const Row& row :
         {Row{"a page, never saved",
              Saved::Never,
              {"index.htm"},
              2,
              {"could not be recovered:\n\none (index.htm)"}},
          Row{"a page that was saved",
              Saved::Before,
              {"index.htm"},
              3,
              {"taken from the saved project", "\none (index.htm)"}},
          Row{"a picture that was saved",
              Saved::Before,
              {"media\\a.gif"},
              3,
              {"taken from the saved project", "\nmedia/a.gif"}},
          Row{"one of each kind",
              Saved::Before,
              {"index.htm", "three.htm"},
              2,
              {"taken from", "\none (index.htm)", "could not be recovered:\n\nthree (three.htm)"}},
          Row{"every page",
              Saved::Before,
              {"index.htm", "two.htm", "three.htm"},
              0,
              {"None of the pages of project 'Shop' is left", "as it was saved last"}},
          Row{"every page, never saved",
              Saved::Never,
              {"index.htm", "two.htm", "three.htm"},
              -1,
              {"None of the pages", "it was never saved"}}}) {
        SCOPED_TRACE(row.name);
        RunningProject test;
        test.project.Name = "Shop";
        test.folder.Put("source\\a.gif", "GIF89a");
        test.Insert("one", "<img src=a.gif>");
        test.Insert("two");
        const std::string file = row.saved == Saved::Before ? test.SaveAs("shop.pwp") : "";
        test.project.FindPage("W0001P0002")->Title = "unsaved";
        test.Insert("three");
        test.Tick();
        for (const std::string& name : row.gone) {
            const std::string path = BuildPath(test.frame.settings.PreviewFolder, name);
            ASSERT_EQ(test.files->RemoveFile(path), FileError::None) << name;
        }
        test.Crash();
        const RecoverableProject lost = FindRecoverable(test.frame).at(0);
        test.dialogs.ExpectMessage(Answer::Ok, row.told.front());
        EXPECT_EQ(RecoverProject(test.context, test.run, lost), row.pages >= 0);
        for (const char* text : row.told)
            EXPECT_THAT(test.dialogs.Messages().back().text, testing::HasSubstr(text));
        if (row.pages < 0) {
            EXPECT_EQ(FindRecoverable(test.frame).size(), 1u) << "still there, to be thrown away";
            continue;
        }
        EXPECT_EQ(test.project.PageCount(), row.pages ? row.pages : 2);
        EXPECT_EQ(test.project.IsDirty, row.pages > 0);
        EXPECT_EQ(test.frame.settings.ProjectFilename, file);
        if (const Page* page = test.project.FindPage("W0001P0001")) {
            EXPECT_THAT(test.Text(page->Filename), testing::HasSubstr("<img"));
            EXPECT_EQ(test.Text(test.frame.settings.MediaFolder + "\\a.gif"), "GIF89a");
        }
        EXPECT_FALSE(test.files->Stat(BuildPath(test.run->Path(), "~pwsaved")).exists);
        EXPECT_TRUE(FindRecoverable(test.frame).empty());
        test.SaveAs("again.pwp");
    }
}

TEST(Recovery, GivesBackNothingThatWasGivenUp) {
    RunningProject test;
    test.Insert("one");
    test.project.IsDirty = true;
    test.Tick();
    ASSERT_TRUE(FileExists(*test.files, JournalRecordPath(test.run->Path())));
    // The answer was No: the clock goes on until the window is gone.
    EXPECT_TRUE(JournalClear(test.context));
    test.project.IsDirty = true;
    test.Tick();
    EXPECT_FALSE(FileExists(*test.files, JournalRecordPath(test.run->Path())));

    // A journal that can not be removed keeps its files when another project is opened.
    InitNewProject(test.context);
    test.Insert("two");
    const std::string file = test.SaveAs("two.pwp");
    const std::string record = JournalRecordPath(test.run->Path());
    ASSERT_TRUE(MakeFolder(*test.files, record)) << "no file that could be removed";
    const std::string page = test.project.PageIndex().Item(1)->Item->Filename;
    EXPECT_FALSE(OpenProject(test.context, file, Silent::Yes));
    EXPECT_TRUE(FileExists(*test.files, page));
}

TEST(Recovery, DoesNotSweepARecordThatTheDiskFailsToRead) {
    RunningProject test;
    test.Insert("one");
    test.Tick();
    test.Crash();
    const std::string record = JournalRecordPath(test.lost);
    const std::string text = test.Text(record);
    ASSERT_EQ(test.files->RemoveFile(record), FileError::None);
    ASSERT_TRUE(MakeFolder(*test.files, record)) << "a folder can not be read as a file";
    SweepAbandonedRuns(test.frame);
    ASSERT_EQ(test.files->RemoveFolder(record), FileError::None);
    ASSERT_TRUE(WriteTextFile(*test.files, text, record));
    EXPECT_EQ(FindRecoverable(test.frame).size(), 1u);
}

TEST(Recovery, KeepsWhatItCannotRecoverNow) {
    RunningProject test;
    test.Insert("one");
    test.Tick();
    test.Crash();
    const RecoverableProject lost = FindRecoverable(test.frame).at(0);
    Page* mine = test.Insert("mine");
    const std::string tree = JournalTreePath(lost.folder);
    const std::string bytes = test.Text(tree);
    ASSERT_TRUE(WriteTextFile(*test.files, "damaged", tree));
    test.dialogs.ExpectMessage(Answer::Ok, "can not be recovered now.");
    EXPECT_FALSE(RecoverProject(test.context, test.run, lost));
    EXPECT_TRUE(FileExists(*test.files, mine->Filename));
    ASSERT_TRUE(WriteTextFile(*test.files, bytes, tree));
    {
        const auto other = RunFolder::TakeOver(*test.files, lost.folder);
        test.dialogs.ExpectMessage(Answer::Ok, "Another program");
        EXPECT_FALSE(RecoverProject(test.context, test.run, lost));
        EXPECT_FALSE(DiscardRecoverable(test.frame, lost));
    }
    SweepAbandonedRuns(test.frame);
    EXPECT_EQ(FindRecoverable(test.frame).size(), 1u);
}

TEST(frmRecover, DoesWhatTheUserWants) {
    RunningProject test;
    EXPECT_FALSE(OfferRecovery(test.context, test.run)) << "nothing to ask about";
    for (const char* name : {"First", "Second"}) {
        test.Insert("page");
        test.project.Name = name;
        test.Tick();
        test.Crash();
    }
    const auto show = [&](const std::function<void(frmRecover&)>& act) {
        test.dialogs.ExpectDialog(
            "frmRecover", [act](Dialog& dialog) { act(dynamic_cast<frmRecover&>(dialog)); });
        return OfferRecovery(test.context, test.run);
    };
    EXPECT_FALSE(show([](frmRecover& form) {
        EXPECT_EQ(form.lvwRecover.Count(), 2);
        EXPECT_EQ(form.lvwRecover.Row(0).cells[1], "(never saved)");
        form.cmdLater.UserClick();
        EXPECT_FALSE(form.IsOpen());
    }));
    EXPECT_EQ(FindRecoverable(test.frame).size(), 2u) << "decided later";

    const auto rowOf = [](frmRecover& form, const std::string& name) {
        return form.lvwRecover.Row(0).cells[0] == name ? 0 : 1;
    };
    test.dialogs.ExpectMessage(Answer::No, "'First' will be lost for good.");
    test.dialogs.ExpectMessage(Answer::Yes, "'First' will be lost for good.");
    EXPECT_TRUE(show([&](frmRecover& form) {
        form.lvwRecover.UserSelect(rowOf(form, "First"));
        form.cmdDiscard.UserClick();
        EXPECT_EQ(form.lvwRecover.Count(), 2);
        form.lvwRecover.UserSelect(rowOf(form, "First"));
        form.cmdDiscard.UserClick();
        EXPECT_EQ(form.lvwRecover.Count(), 1);
        form.cmdRecover.UserClick();
        EXPECT_FALSE(form.IsOpen());
    }));
    EXPECT_EQ(test.project.Name, "Second");
    EXPECT_TRUE(FindRecoverable(test.frame).empty());
}

/** What a killed child has told about its last whole step. */
struct Told {
    int step = -1;
    int pages = 2;
    char typedInto[32] = "";  ///< key of a page that now says "step" and the number; or ""
};

/** Edits and saves without end; tells through the pipe what must not be lost any more. */
[[noreturn]] void EditUntilKilled(RunningProject& test, unsigned seed, int report) {
    std::mt19937 random(seed);
    const auto roll = [&](int below) { return int(random() % unsigned(below)); };
    for (int step = 0;; ++step) {
        const PageIndex& pages = test.project.PageIndex();
        Page* page = pages.Item(1 + roll(pages.Count()))->Item;
        Told told;
        switch (roll(6)) {
            case 0:
                test.Insert("page" + std::to_string(step));
                break;
            case 1:
                if (pages.Count() > 2) {
                    RemoveProjectItem(test.context, std::string(page->Key()));
                    test.project.IsDirty = true;
                }
                break;
            case 2:
                if (!SaveProject(test.context, Proceed::Save, Silent::Yes)) ::_exit(3);
                break;
            default:
                if (!test.workspace.Find(page->Key()))
                    test.workspace.ShowPage(page->Key(), page->Name, page->Filename, 0);
                test.Type(*page, "step " + std::to_string(step) + ".");
                test.project.IsDirty = true;
                page->Key().copy(told.typedInto, sizeof told.typedInto - 1);
        }
        test.Tick();
        told.step = step;
        told.pages = pages.Count();
        if (::write(report, &told, sizeof told) != sizeof told) ::_exit(4);
    }
}

/** The project is whole, and lacks at most the step during which the program was killed. */
void Check(RunningProject& test, const Told& told) {
    for (const PageIndexEntry& entry : test.project.PageIndex())
        EXPECT_NE(test.Text(entry.Item->Filename).find("</html>"), std::string::npos);
    EXPECT_LE(std::abs(test.project.PageCount() - told.pages), 1);
    const Page* page = test.project.FindPage(told.typedInto);
    if (!page) {
        EXPECT_TRUE(!*told.typedInto || test.project.PageCount() < told.pages);
        return;
    }
    const std::string text = test.Text(page->Filename);
    const auto says = [&](int step) {
        return text.find("step " + std::to_string(step) + ".") != std::string::npos;
    };
    EXPECT_TRUE(says(told.step) || says(told.step + 1)) << text;
}

/** Lets a child edit until it has told of some steps and a moment longer; returns the last. */
Told KillWhileEditing(RunningProject& test, unsigned seed) {
    int pipe[2];
    EXPECT_EQ(::pipe(pipe), 0);
    const pid_t child = ::fork();
    if (child == 0) EditUntilKilled(test, seed, pipe[1]);
    ::close(pipe[1]);
    Told told;
    for (unsigned steps = seed % 7; steps > 0; --steps)
        EXPECT_EQ(::read(pipe[0], &told, sizeof told), ssize_t(sizeof told));
    ::usleep(seed * 7919 % 12000);
    ::kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status)) << WEXITSTATUS(status);
    while (::read(pipe[0], &told, sizeof told) == ssize_t(sizeof told))
        continue;
    ::close(pipe[0]);
    return told;
}

TEST(Recovery, SurvivesBeingKilledAnywhere) {
    int recovered = 0;
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(seed);
        RunningProject test;
        test.Insert("one");
        test.Insert("two");
        const std::string file = test.SaveAs("one.pwp");
        const Told told = KillWhileEditing(test, seed);
        test.Crash();

        ASSERT_TRUE(OpenProject(test.context, file, Silent::Yes)) << test.LastLogged();
        const auto found = FindRecoverable(test.frame);
        if (!found.empty()) {
            InitNewProject(test.context);
            ASSERT_TRUE(RecoverProject(test.context, test.run, found[0])) << test.LastLogged();
            EXPECT_EQ(test.frame.settings.ProjectFilename, file);
            ++recovered;
        }
        Check(test, told);
        EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::Yes)) << test.LastLogged();
        if (::testing::Test::HasFailure()) return;
    }
    EXPECT_GT(recovered, 50) << "the crashes came too early to tell anything";
}

}  // namespace
}  // namespace pw
