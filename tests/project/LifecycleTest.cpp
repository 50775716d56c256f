#include "project/Lifecycle.h"

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include "project/Journal.h"
#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(InitNewProject, StartsFromNothing) {
    TestProject test;
    test.frame.settings.Firstname = "Ann";
    test.frame.settings.Lastname = " Lee ";
    test.frame.settings.UserCompany = "Ann & Co";
    test.frame.settings.UserEmail = "ann@example.com";
    const std::string page = test.Insert("old")->Filename;
    test.frame.settings.ProjectFilename = "\\x.pwp";
    InitNewProject(test.context);

    const Project& project = test.project;
    EXPECT_FALSE(project.IsLoaded);
    EXPECT_FALSE(project.IsDirty);
    EXPECT_EQ(project.Name, kNewProjectName);
    EXPECT_EQ(project.ProjectId.size(), 36u);
    EXPECT_EQ(project.AuthorName, "Ann Lee");
    EXPECT_EQ(project.CompanyName, "Ann & Co");
    EXPECT_TRUE(project.EmailPublishStatus);
    EXPECT_EQ(project.Created, test.clock.now);
    EXPECT_EQ(project.CreatedBy, test.system->ComputerName() + "\\" + test.system->UserName());
    EXPECT_EQ(project.WorkingFolder, test.frame.settings.PreviewFolder);
    EXPECT_EQ(project.PageCount(), 0);
    EXPECT_EQ(test.project.WebSites().Item(1)->Name, "Web Site");
    EXPECT_EQ(test.frame.settings.ProjectFilename, "");
    EXPECT_FALSE(FileExists(*test.files, page)) << "no page of the former project is published";
    EXPECT_EQ(test.workspace.Count("ResetForNewProject"), 1);
    EXPECT_EQ(test.workspace.Count("CloseAllPages discard"), 1);

    test.frame.settings.Firstname = test.frame.settings.Lastname = "";
    InitNewProject(test.context);
    EXPECT_EQ(project.AuthorName, test.system->UserName());
}

TEST(SaveAndOpen, BringsEverythingBack) {
    TestProject test;
    test.folder.Put("source\\a.gif", "GIF89a picture");
    Page* first = test.Insert("first", "<img src=a.gif>");
    test.Insert("second");
    test.project.Name = "Shop";
    const std::string path = test.SaveAs("sites\\new\\shop.pwp");  // folders are made
    EXPECT_FALSE(test.project.IsDirty);
    EXPECT_FALSE(FileExists(*test.files, BackupPath(path)));
    const std::string text = test.Text(first->Filename);

    InitNewProject(test.context);
    EXPECT_TRUE(OpenProject(test.context, path, Silent::No));
    EXPECT_EQ(test.project.Name, "Shop");
    EXPECT_TRUE(test.project.IsLoaded);
    EXPECT_FALSE(test.project.IsDirty);
    EXPECT_EQ(test.project.PageCount(), 2);
    EXPECT_EQ(test.frame.settings.ProjectFilename, path);
    first = test.project.FindPage("W0001P0001");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(test.Text(first->Filename), text);
    EXPECT_EQ(test.Text(test.frame.settings.MediaFolder + "\\a.gif"), "GIF89a picture");
    EXPECT_EQ(MainWindowCaption(test.context), test.frame.applicationTitle + " - Shop");
    InitNewProject(test.context);
    EXPECT_EQ(MainWindowCaption(test.context), test.frame.applicationTitle);
}

TEST(SaveProject, WritesWhatTheOpenPagesShow) {
    TestProject test;
    Page* page = test.Insert("one", "<p>old</p>", {}, ShowInsertedPage::Yes);
    test.SaveAs("one.pwp");
    auto& document = *test.workspace.Find(page->Key())->document;
    document.setInnerHTML(*document.body(), "<p>new</p>");
    EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::No));
    EXPECT_NE(test.Text(page->Filename).find("<p>new</p>"), std::string::npos);
    EXPECT_FALSE(page->IsDirty);
    EXPECT_FALSE(document.isDirty());
    EXPECT_FALSE(page->IsOpen) << "only the file remembers it";
    EXPECT_EQ(test.workspace.Count("ShowStatus Saving project 'one.pwp'..."), 2);
    EXPECT_EQ(test.workspace.calls.back(), "ShowBusyPointer off");

    // A page whose text can't be written: nothing is saved, and the user hears which page it is.
    document.setInnerHTML(*document.body(), "<p>newer</p>");
    const std::string file = page->Filename;
    page->Filename = test.frame.settings.MediaFolder;
    test.dialogs.ExpectMessage(Answer::Ok, "can not be saved.\n\nPlease try again.\n\nPage 'one'");
    EXPECT_FALSE(SaveProject(test.context, Proceed::Save, Silent::No));
    EXPECT_TRUE(test.project.IsDirty);
    page->Filename = file;
    EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::No));
}

TEST(SaveProject, AsksForANameOnlyWhenItMay) {
    TestProject test;
    test.Insert("one");
    test.project.Name = "Shop";
    EXPECT_FALSE(SaveProject(test.context, Proceed::Save, Silent::Yes));
    test.dialogs.ExpectFile("");
    EXPECT_FALSE(SaveProject(test.context, Proceed::Save, Silent::No));
    EXPECT_EQ(test.frame.settings.ProjectFilename, "");
    EXPECT_TRUE(FolderExists(test.frame.files, test.frame.settings.ProjectsFolder))
        << "the first project needs a place to be saved in";
    const FileQuestion question = test.dialogs.FileQuestions().back();
    EXPECT_EQ(question.title, "Save Project As");
    EXPECT_EQ(question.filter, "Projects (*.pwp)|*.pwp");
    EXPECT_EQ(question.initialPath, test.frame.settings.ProjectsFolder + "\\Shop");

    test.dialogs.ExpectFile(test.folder.Path("chosen"));
    EXPECT_TRUE(SaveProject(test.context, Proceed::NameOnly, Silent::No));
    EXPECT_EQ(test.frame.settings.ProjectFilename, test.folder.Path("chosen.pwp"));
    EXPECT_FALSE(test.folder.Has("chosen.pwp"));
    EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::No));
    EXPECT_TRUE(test.folder.Has("chosen.pwp"));
}

TEST(SaveProjectAs, RestoresTheFormerName) {
    TestProject test;
    const Page* page = test.Insert("one", "<a type=omMerge name='Project Filename'></a>");
    const auto shown = [&] {
        const auto document = dom::Document::parse(test.Text(page->Filename));
        return document->innerText(*document->tags("A").at(0));
    };
    const std::string first = test.SaveAs("first.pwp");
    EXPECT_EQ(shown(), "first.pwp") << "the first save tells the pages";

    test.dialogs.ExpectFile("");
    EXPECT_FALSE(SaveProjectAs(test.context));
    EXPECT_EQ(test.frame.settings.ProjectFilename, first) << "cancelled";

    test.folder.Put("file", "no folder");
    test.dialogs.ExpectFile(test.folder.Path("file\\x.pwp"));
    test.dialogs.ExpectMessage(Answer::Ok, "Project 'x.pwp' can not be saved.");
    EXPECT_FALSE(SaveProjectAs(test.context));
    EXPECT_EQ(test.frame.settings.ProjectFilename, first) << "failed";
    EXPECT_EQ(shown(), "first.pwp");

    test.dialogs.ExpectFile(test.frame.settings.PreviewFolder + "\\x.pwp");
    test.dialogs.ExpectMessage(Answer::Ok, "the program's own");
    EXPECT_FALSE(SaveProjectAs(test.context)) << "the scratch area is emptied";

    test.dialogs.ExpectFile(test.folder.Path("second.pwp"));
    EXPECT_TRUE(SaveProjectAs(test.context));
    EXPECT_EQ(test.frame.settings.ProjectFilename, test.folder.Path("second.pwp"));
    EXPECT_EQ(shown(), "second.pwp");
    EXPECT_TRUE(OpenProject(test.context, first, Silent::No)) << "the first file is free again";
}

TEST(SaveProject, LeavesACopyOfAnEarlierSaveAlone) {
    TestProject test;
    test.Insert("one");
    const std::string path = test.SaveAs("one.pwp");
    const std::string copy = BackupPath(path);
    EXPECT_EQ(copy, test.folder.Path("one.~pw"));
    ASSERT_TRUE(WriteTextFile(*test.files, "from long ago", copy));
    const int logged = test.frame.errorLog.Count();
    test.project.Name = "Changed";
    EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::No));
    EXPECT_EQ(test.Text(copy), "from long ago");
    EXPECT_EQ(test.frame.errorLog.Count(), logged + 1) << test.LastLogged();
    EXPECT_TRUE(OpenProject(test.context, path, Silent::No));
    EXPECT_EQ(test.project.Name, "Changed");
}

/** Changes a project file with SQL. */
void Sql(const std::string& path, const std::string& statement) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(ToNativePath(path).c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

TEST(OpenProject, FailsWithAReasonAndKeepsWhatIsOpen) {
    TestProject test;
    test.Insert("one");
    const std::string good = test.SaveAs("good.pwp");
    const std::string bytes = test.folder.Get("good.pwp");
    test.folder.Put("text.pwp", "just a text");
    test.folder.Put("empty.pwp", "");
    test.folder.Put("cut.pwp", bytes.substr(0, bytes.size() / 3));
    test.folder.Put("newer.pwp", bytes);
    Sql(test.folder.Path("newer.pwp"), "PRAGMA user_version = 999");
    test.folder.Put("folder.pwp\\file", "");
    InitNewProject(test.context);
    test.Insert("open");
    const std::string open = test.SaveAs("open.pwp");

    struct Row {
        const char* name;
        ProjectResult why;
    };
    for (const Row& row :
         {Row{"text.pwp", ProjectResult::NotAProject}, Row{"empty.pwp", ProjectResult::NotAProject},
          Row{"cut.pwp", ProjectResult::Damaged}, Row{"newer.pwp", ProjectResult::NewerFormat}}) {
        SCOPED_TRACE(row.name);
        test.dialogs.ExpectMessage(Answer::Ok, "Project '" + std::string(row.name) +
                                                   "' can not be opened.\n\nPlease try again.\n\n");
        EXPECT_FALSE(OpenProject(test.context, test.folder.Path(row.name), Silent::No));
        EXPECT_EQ(test.dialogs.Messages().back().title, "Open Project");
        EXPECT_FALSE(OpenProject(test.context, test.folder.Path(row.name), Silent::Yes));
        EXPECT_EQ(test.frame.settings.ProjectFilename, open);
        EXPECT_EQ(test.project.PageCount(), 1);
        EXPECT_TRUE(FileExists(*test.files, test.project.FindPage("W0001P0001")->Filename));
    }
    const std::string missing = test.folder.Path("missing.pwp");
    test.dialogs.ExpectMessage(Answer::Ok, "Project file '" + ToNativePath(missing) +
                                               "' does not exist.\n\nPlease choose another "
                                               "project and try again.");
    EXPECT_FALSE(OpenProject(test.context, missing, Silent::No));
    EXPECT_FALSE(OpenProject(test.context, test.folder.Path("folder.pwp"), Silent::Yes));
    EXPECT_EQ(test.frame.settings.ProjectFilename, open);
    EXPECT_EQ(test.workspace.calls.back(), "ShowStatus For Help, press F1");
    EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::No)) << "it can still be saved";
}

TEST(OpenProject, OffersAWholeCopyOfADamagedFile) {
    TestProject test;
    test.Insert("one");
    const std::string path = test.SaveAs("one.pwp");
    const std::string whole = test.folder.Get("one.pwp");
    const std::string damaged = whole.substr(0, whole.size() / 3);
    InitNewProject(test.context);
    test.folder.Put("one.pwp", damaged);

    test.folder.Put("one.~pw", "not whole either");
    test.dialogs.ExpectMessage(Answer::Ok, "can not be opened.");
    EXPECT_FALSE(OpenProject(test.context, path, Silent::No));

    test.folder.Put("one.~pw", whole);
    test.dialogs.ExpectMessage(Answer::No, "'one.~pw', is whole");
    EXPECT_FALSE(OpenProject(test.context, path, Silent::No));
    EXPECT_FALSE(OpenProject(test.context, path, Silent::Yes));

    test.dialogs.ExpectMessage(Answer::Yes, "'one.~pw', is whole");
    EXPECT_TRUE(OpenProject(test.context, path, Silent::No));
    EXPECT_EQ(test.project.PageCount(), 1);
    EXPECT_TRUE(test.project.IsDirty);
    EXPECT_EQ(test.frame.settings.ProjectFilename, "") << "a save asks first";
    EXPECT_EQ(test.folder.Get("one.pwp"), damaged);
}

TEST(OpenProject, RefusesAFileThatAnotherProgramHasOpen) {
    TestProject test;
    test.Insert("one");
    const std::string path = test.SaveAs("one.pwp");
    InitNewProject(test.context);
    int ready[2], done[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(done), 0);
    const pid_t other = ::fork();
    if (other == 0) {
        std::unique_ptr<ProjectLock> lock;
        ProjectLock::Acquire(path, test.frame.places.lockFolder, lock);
        char byte = lock ? 'y' : 'n';
        if (::write(ready[1], &byte, 1) != 1 || ::read(done[0], &byte, 1) != 1) ::_exit(1);
        lock.reset();
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'y');
    const std::string holder = "(process " + std::to_string(other) + ")";
    test.dialogs.ExpectMessage(Answer::Ok, holder);
    EXPECT_FALSE(OpenProject(test.context, path, Silent::No));
    EXPECT_EQ(test.frame.settings.ProjectFilename, "");
    const std::string before = test.folder.Get("one.pwp");
    test.Insert("mine");
    test.dialogs.ExpectFile(path);
    test.dialogs.ExpectMessage(Answer::Yes, "already exists");
    test.dialogs.ExpectMessage(Answer::Ok, holder);
    EXPECT_FALSE(SaveProject(test.context, Proceed::Save, Silent::No));
    EXPECT_EQ(test.frame.settings.ProjectFilename, "");
    EXPECT_EQ(test.folder.Get("one.pwp"), before);
    ASSERT_EQ(::write(done[1], &byte, 1), 1);
    ASSERT_EQ(::waitpid(other, nullptr, 0), other);
    EXPECT_TRUE(OpenProject(test.context, path, Silent::No));
    for (const int end : {ready[0], ready[1], done[0], done[1]})
        ::close(end);
}

TEST(OpenProject, KeepsTheLockOfAProjectThatIsOpenAlready) {
    enum class Opens { Yes, NotAny };
    struct Row {
        const char* name;
        std::function<std::string(TestProject&, const std::string& path)> again;
        Opens opens;
    };
    for (const Row& row :
         {Row{"by its path", [](TestProject&, const std::string&path) { return path; }, Opens::Yes},
          Row{"by a link to it",
              [](TestProject&test, const std::string&) {
                  std::filesystem::create_symlink("one.pwp", test.folder.Native("link.pwp"));
                  return test.folder.Path("link.pwp");
              },
              Opens::Yes},
          Row{"by a second name of the file",
              [](TestProject&test, const std::string&) {
                  std::filesystem::create_hard_link(test.folder.Native("one.pwp"),
                                                    test.folder.Native("second.pwp"));
                  return test.folder.Path("second.pwp");
              },
              Opens::Yes},
          Row{"but it was damaged meanwhile",
              [](TestProject&test, const std::string&path) {
                  test.folder.Put("one.pwp", "no project any more");
                  return path;
              },
              Opens::NotAny},
          Row{"but another was wanted, which can't be opened",
              [](TestProject&test, const std::string&) {
                  return test.folder.Put("bad.pwp", "no project");
              },
              Opens::NotAny}}) {
        SCOPED_TRACE(row.name);
        TestProject test;
        test.Insert("one");
        const std::string path = test.SaveAs("one.pwp");
        const std::string again = row.again(test, path);
        EXPECT_EQ(OpenProject(test.context, again, Silent::Yes), row.opens == Opens::Yes);
        EXPECT_EQ(OpenProject(test.context, again, Silent::Yes), row.opens == Opens::Yes);
        const std::string open = test.frame.settings.ProjectFilename;
        EXPECT_EQ(open, row.opens == Opens::Yes ? again : path);
        for (const std::string& name : {path, open}) {
            std::unique_ptr<ProjectLock> other;
            EXPECT_EQ(ProjectLock::Acquire(name, test.frame.places.lockFolder, other),
                      LockOutcome::Held)
                << name;
        }
        InitNewProject(test.context);
        std::unique_ptr<ProjectLock> other;
        EXPECT_EQ(ProjectLock::Acquire(path, test.frame.places.lockFolder, other),
                  LockOutcome::Locked);
    }
}

TEST(OpenProject, ReopensTheFirstPageOfTheTopLevelOnly) {
    struct Row {
        const char* name;
        const char* current;  ///< key of the page that was in front
        bool reopened;
    };
    for (const Row& row : {Row{"the first page", "W0001P0001", true},
                           Row{"another page of the top level", "W0001P0002", false},
                           Row{"the first page of the first folder", "W0001F0001P0001", false},
                           Row{"none", "", false}}) {
        SCOPED_TRACE(row.name);
        TestProject test;
        test.Insert("one");
        test.Insert("two");
        Folder* folder = test.project.WebSites().Item(1)->Sections().Add();
        folder->Name = folder->FolderName = "sub";
        folder->WorkingFolder = "sub";
        ASSERT_TRUE(MakeFolder(*test.files, test.frame.settings.PreviewFolder + "\\sub\\media"));
        test.Insert("three", "", Container(*folder));
        if (const Page* page = test.project.FindPage(row.current))
            test.workspace.ShowPage(page->Key(), page->Name, page->Filename, page->PageType);
        const std::string path = test.SaveAs("one.pwp");
        InitNewProject(test.context);
        test.workspace.calls.clear();
        ASSERT_TRUE(OpenProject(test.context, path, Silent::No));
        EXPECT_EQ(test.workspace.Count("ShowPage"), row.reopened ? 1 : 0);
        EXPECT_EQ(test.workspace.Count("SelectProjectNode W0001P0001"), row.reopened ? 1 : 0);
        EXPECT_EQ(test.workspace.currentPageKey, row.reopened ? row.current : "");
    }
}

TEST(OpenHTMLAsProject, TakesItsNameFromTheFile) {
    TestProject test;
    const std::string file =
        test.folder.Put("Tea Shop.HTML", "<html><title>Tea</title><body>x</body></html>");
    EXPECT_TRUE(OpenHTMLAsProject(test.context, file));
    EXPECT_EQ(test.project.Name, "Tea Shop");
    EXPECT_TRUE(test.project.IsLoaded);
    EXPECT_TRUE(test.project.IsDirty);
    EXPECT_EQ(test.workspace.currentPageKey, "W0001P0001");

    test.folder.Put(".keys\\id", "GIF89a");
    const std::string page = test.folder.Put(
        "in\\b.htm", "<title>b</title><a href=c.pdf>c</a><img src=../d.gif><img src=../.keys/id>");
    test.folder.Put("in\\c.pdf", "%PDF");
    test.folder.Put("d.gif", "GIF89a");
    for (const Answer answer : {Answer::No, Answer::Yes}) {
        test.dialogs.ExpectMessage(answer, ToNativePath(test.folder.Path("in\\c.pdf")) + "\n" +
                                               ToNativePath(test.folder.Path("d.gif")) + "\n\n");
        test.dialogs.ExpectMessage(Answer::Ok, "'../.keys/id' in 'b.htm' was left out");
        EXPECT_TRUE(OpenHTMLAsProject(test.context, page));
        const bool isAgreed = answer == Answer::Yes;
        const auto* open = test.workspace.Find("W0001P0001");
        ASSERT_TRUE(open);
        EXPECT_EQ(open->document->html(),
                  std::string("<title>b</title>") +
                      (isAgreed ? "<a href=media/c.pdf>c</a><img src=media/d.gif>"
                                : "<a href=c.pdf>c</a><img src=../d.gif>") +
                      "<img src=../.keys/id>");
        EXPECT_EQ(GetPage(test.context, "W0001P0001")->Attachments().Count(), isAgreed ? 2 : 0);
    }

    test.dialogs.ExpectMessage(Answer::Ok, "Page 'none.htm' can not be opened.");
    EXPECT_FALSE(OpenHTMLAsProject(test.context, test.folder.Path("none.htm")));
    EXPECT_FALSE(test.project.IsLoaded);
}

}  // namespace
}  // namespace pw
