#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "project/omProj/Format.h"
#include "support/SampleProject.h"

namespace pw {
namespace {

using test::AddPage;
using test::FillSampleProject;
using test::ProjectPrinter;
using test::TemporaryFolder;

class ProjectFile : public ::testing::Test {
  protected:
    /** Files below a folder, with their sizes, in order. */
    static std::string Listing(const TemporaryFolder& folder) {
        std::vector<std::string> lines;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Native())) {
            const std::string name = entry.path().string().substr(folder.Native().size() + 1);
            lines.push_back(entry.is_directory() ? name + "/"
                                                 : name + " " + std::to_string(entry.file_size()));
        }
        std::sort(lines.begin(), lines.end());
        std::string all;
        for (const std::string& line : lines)
            all += line + "\n";
        return all;
    }
    static std::int64_t Inode(const std::string& native) {
        struct stat info = {};
        return stat(native.c_str(), &info) == 0 ? static_cast<std::int64_t>(info.st_ino) : 0;
    }

    std::unique_ptr<FileSystem> files = MakePosixFileSystem();
    TemporaryFolder work;
    TemporaryFolder other;
    TemporaryFolder home;
    Project project{*files};
    Project loaded{*files};
};

TEST_F(ProjectFile, KeepsEveryFieldAndEveryFile) {
    FillSampleProject(project, work);
    work.Put("stray.htm", "not of the project");
    work.Put("media\\stray.gif", "neither");
    const std::string before = ProjectPrinter::Print(project);
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success) << project.LastMessage();
    EXPECT_FALSE(project.IsDirty);
    EXPECT_EQ(Listing(home), "a.pwp " + std::to_string(project.ProjectSize()) + "\n");

    loaded.WorkingFolder = other.Path();
    ASSERT_EQ(loaded.Load(home.Path("a.pwp")), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_EQ(ProjectPrinter::Print(loaded), before);
    EXPECT_EQ(
        Listing(other),
        "index.htm 12\nmedia/\nmedia/tmp1.jpg 0\nnews/\nnews/old/\nnews/old/a.htm 100000\n"
        "news/old/media/\nnews/old/media/b.gif 3\nstyle.css 4\ntmp1.htm 15\n~pwthumb.jpg 4\n");
    EXPECT_EQ(other.Get("index.htm"), "<p>index</p>");
    EXPECT_FALSE(loaded.IsLoaded) << "the client says when";
    EXPECT_FALSE(loaded.IsDirty);
    EXPECT_EQ(loaded.ProjectSize(), project.ProjectSize());
    EXPECT_EQ(loaded.FormatVersion(), kFormatVersion);
    const Page* old = loaded.FindPage("W0001F0001F0001P0001");
    ASSERT_TRUE(old);
    EXPECT_TRUE(old->IsOpenAtSave());
    EXPECT_FALSE(old->IsOpen) << "no window is open yet";
    EXPECT_FALSE(loaded.FindPage("W0001P0001")->IsOpenAtSave());
    EXPECT_EQ(loaded.Check(home.Path("a.pwp")), ProjectResult::Success);
}

/** Makes a file one of the format in which attachments did not know where they came from. */
void MakeFormat2(const std::string& native) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(native.c_str(), &database), SQLITE_OK);
    std::string sql =
        "CREATE TEMP TABLE kept AS SELECT * FROM attachment;"
        "ALTER TABLE kept DROP COLUMN origin; DROP TABLE attachment;";
    for (const TableDefinition& table : TablesOfFormat(2))
        if (table.name == "attachment") sql += table.sql + ";";
    sql += "INSERT INTO attachment SELECT * FROM kept; PRAGMA user_version=2";
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
}

TEST_F(ProjectFile, LeavesOutWhatNothingRefersTo) {
    FillSampleProject(project, work);
    Page* page = project.FindPage("W0001P0001");
    ASSERT_TRUE(page);
    const auto add = [&](const char* name, int origin, int state) {
        Attachment* file = page->Attachments().Add(work.Put(name, "GIF"));
        file->Origin = origin;
        file->State = state;
    };
    add("chosen.gif", AttachmentOrigin::Chosen, AttachmentState::Stale);
    add("used.gif", AttachmentOrigin::Placed, AttachmentState::InUse);
    add("unused.gif", AttachmentOrigin::Placed, AttachmentState::Stale);
    const std::string file = home.Path("a.pwp");
    const auto stored = [&](const std::string& name) {
        const Page* saved = loaded.FindPage("W0001P0001");
        const bool listed = saved && saved->Attachments().Find(other.Path(name));
        EXPECT_EQ(listed, std::filesystem::exists(other.Native(name))) << name;
        return listed;
    };
    loaded.WorkingFolder = other.Path();
    ASSERT_EQ(project.Save(file), ProjectResult::Success) << project.LastMessage();
    ASSERT_EQ(loaded.Load(file), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_TRUE(stored("chosen.gif") && stored("used.gif"));
    EXPECT_FALSE(stored("unused.gif"));
    EXPECT_TRUE(page->Attachments().Find(work.Path("unused.gif"))) << "for a redo";

    // The journal stands beside the files, where a redo finds them.
    ASSERT_EQ(project.SaveTree(home.Path("tree")), ProjectResult::Success);
    Project recovered{*files};
    recovered.WorkingFolder = work.Path();
    ASSERT_EQ(recovered.LoadTree(home.Path("tree")), ProjectResult::Success);
    EXPECT_TRUE(recovered.FindPage("W0001P0001")->Attachments().Find(work.Path("unused.gif")));
}

TEST_F(ProjectFile, ReadsTheFormerFormatAndWritesItAnew) {
    FillSampleProject(project, work);
    Page* page = project.FindPage("W0001P0001");
    page->Attachments().Add(work.Put("placed.gif", "GIF"))->Origin = AttachmentOrigin::Placed;
    page->Attachments().Find(work.Path("placed.gif"))->State = AttachmentState::InUse;
    const std::string file = home.Path("a.pwp");
    ASSERT_EQ(project.Save(file), ProjectResult::Success);
    MakeFormat2(home.Native("a.pwp"));

    loaded.WorkingFolder = other.Path();
    ASSERT_EQ(loaded.Load(file), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_EQ(loaded.FormatVersion(), 2);
    const Page* old = loaded.FindPage("W0001P0001");
    EXPECT_EQ(old->Attachments().Find(other.Path("placed.gif"))->Origin, AttachmentOrigin::Chosen);
    ASSERT_EQ(loaded.Save(file), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_EQ(loaded.FormatVersion(), kFormatVersion);
    EXPECT_EQ(loaded.Check(file), ProjectResult::Success) << loaded.LastMessage();
}

TEST_F(ProjectFile, SavesInPlaceWhatChanged) {
    FillSampleProject(project, work);
    const std::string file = home.Path("a.pwp");
    ASSERT_EQ(project.Save(file), ProjectResult::Success);
    const std::int64_t inode = Inode(home.Native("a.pwp"));

    // Everything that can change: fields, lists, items that come and go, files.
    project.Name = "renamed";
    WebSite* site = project.WebSites().Item(1);
    site->Pages().Item(1)->Title = "other";
    site->Pages().Item(1)->MetaTags().Add()->Name = "robots";
    work.Put("index.htm", "<p>longer than it was before</p>");
    AddPage(site->Pages(), work, "new.htm", "<p>new</p>");
    Folder* inner = site->Sections().Item(1)->Sections().Item(1);
    inner->Pages().Item(1)->Attachments().Remove(1);
    site->Sections().Add()->Name = "more";
    project.Tasks().Clear();
    ASSERT_EQ(project.Save(file), ProjectResult::Success) << project.LastMessage();
    EXPECT_EQ(Inode(home.Native("a.pwp")), inode) << "the same file, changed in place";
    EXPECT_EQ(Listing(home), "a.pwp " + std::to_string(project.ProjectSize()) + "\n");

    loaded.WorkingFolder = other.Path();
    ASSERT_EQ(loaded.Load(file), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_EQ(ProjectPrinter::Print(loaded), ProjectPrinter::Print(project));
    EXPECT_EQ(other.Get("index.htm"), "<p>longer than it was before</p>");
    EXPECT_EQ(other.Get("new.htm"), "<p>new</p>");
    EXPECT_FALSE(other.Has("news\\old\\media\\b.gif")) << "no item names it any more";

    // A page that went takes its rows and its file along.
    site->Pages().Remove("P0001");
    project.CreateDefaultTemplate();
    ASSERT_EQ(project.Save(file), ProjectResult::Success);
    TemporaryFolder third;
    loaded.WorkingFolder = third.Path();
    ASSERT_EQ(loaded.Load(file), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_EQ(ProjectPrinter::Print(loaded), ProjectPrinter::Print(project));
    EXPECT_FALSE(third.Has("index.htm"));
    EXPECT_FALSE(third.Has("tmp1.htm"));
}

TEST_F(ProjectFile, DoesNotWriteUnchangedFilesAgain) {
    project.WorkingFolder = work.Path();
    project.ProjectId = "{1}";
    WebSite* site = project.WebSites().Add();
    for (int number = 1; number <= 40; ++number)
        AddPage(site->Pages(), work, "p" + std::to_string(number) + ".htm", std::string(9000, 'a'));
    // The clock of the disk has to move on before the times of files can be trusted.
    const auto past = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    for (const auto& entry : std::filesystem::directory_iterator(work.Native()))
        std::filesystem::last_write_time(entry, past);
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    // A page whose file changed behind the times and sizes is not looked at: it was not read.
    work.Put("p7.htm", std::string(9000, 'b'));
    std::filesystem::last_write_time(work.Native("p7.htm"), past);
    work.Put("p8.htm", std::string(9000, 'c'));
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    loaded.WorkingFolder = other.Path();
    ASSERT_EQ(loaded.Load(home.Path("a.pwp")), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_EQ(other.Get("p7.htm"), std::string(9000, 'a'));
    EXPECT_EQ(other.Get("p8.htm"), std::string(9000, 'c'));
    EXPECT_EQ(std::filesystem::last_write_time(other.Native("p9.htm")), past)
        << "a loaded file has the time by which the next save knows it";
}

TEST_F(ProjectFile, NeverGivesAKeyOutTwice) {
    FillSampleProject(project, work);
    WebSite* site = project.WebSites().Item(1);
    const std::string removed = site->Pages().Add()->Key();
    ASSERT_TRUE(site->Pages().Remove(removed));
    site->Sections().Add();
    site->Sections().Remove(2);
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    loaded.WorkingFolder = other.Path();
    ASSERT_EQ(loaded.Load(home.Path("a.pwp")), ProjectResult::Success);
    site = loaded.WebSites().Item(1);
    EXPECT_FALSE(site->Pages().Item(removed));
    EXPECT_EQ(site->Pages().Add()->Key(), "W0001P0004");
    EXPECT_EQ(site->Sections().Add()->Key(), "W0001F0003");
    EXPECT_EQ(loaded.FindPage("W0001F0001F0001P0001")->Attachments().Add("x")->Id(), 3);
}

TEST_F(ProjectFile, HeaderAloneIsReadWithoutTouchingAnything) {
    FillSampleProject(project, work);
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    for (const int mode : {LoadMode::Header, LoadMode::HeaderPreview}) {
        loaded.Clear();
        loaded.WorkingFolder = other.Path();
        loaded.LoadMode = mode;
        ASSERT_EQ(loaded.Load(home.Path("a.pwp")), ProjectResult::Success);
        EXPECT_EQ(loaded.Name, project.Name);
        EXPECT_EQ(loaded.VersionBuild, project.VersionBuild);
        EXPECT_EQ(loaded.Modified, project.Modified);
        EXPECT_EQ(loaded.PageCount(), 2);
        EXPECT_EQ(loaded.ThumbnailImage(), mode == LoadMode::Header ? "" : "JPEG");
        EXPECT_EQ(loaded.WebSites().Count(), 0);
        EXPECT_EQ(Listing(other), "");
    }
}

TEST_F(ProjectFile, SaysWhyItCanNotSave) {
    struct Row {
        const char* name;
        void (*spoil)(Project& project, const TemporaryFolder& work);
        ProjectResult result;
        const char* mentions;
    };
    const Row rows[] = {
        {"page file gone",
         [](Project&, const TemporaryFolder& work) {
             std::filesystem::remove(work.Native("index.htm"));
         },
         ProjectResult::MissingFile, "index.htm"},
        {"page file is a folder",
         [](Project&, const TemporaryFolder& work) {
             std::filesystem::remove(work.Native("index.htm"));
             std::filesystem::create_directory(work.Native("index.htm"));
         },
         ProjectResult::MissingFile, "it is a folder"},
        {"media is a link out of the folder",
         [](Project&, const TemporaryFolder& work) {
             std::filesystem::remove(work.Native("style.css"));
             std::filesystem::create_symlink("/etc/passwd", work.Native("style.css"));
         },
         ProjectResult::IOError, "it is a link"},
        {"page outside",
         [](Project& project, const TemporaryFolder&) {
             project.WebSites().Item(1)->Pages().Item(1)->Filename = "\\etc\\passwd";
         },
         ProjectResult::OutsideFolder, "/etc/passwd"},
        {"page climbs out",
         [](Project& project, const TemporaryFolder& work) {
             project.WebSites().Item(1)->Pages().Item(1)->Filename = work.Path("..\\a.htm");
         },
         ProjectResult::BadName, "a.htm"},
        {"names that differ in case",
         [](Project& project, const TemporaryFolder& work) {
             project.Attachments().Add(work.Put("STYLE.css", "x"));
         },
         ProjectResult::NamesCollide, "STYLE.css"},
        {"folder without a lawful name",
         [](Project& project, const TemporaryFolder&) {
             project.WebSites().Item(1)->Sections().Item(1)->WorkingFolder = "\\..\\x";
         },
         ProjectResult::BadName, "folder"},
        {"no working folder",
         [](Project& project, const TemporaryFolder&) {
             for (Page& page : project.WebSites().Item(1)->Pages())
                 page.Filename = "\\nowhere\\at\\all\\a.htm";
             project.WorkingFolder = "\\nowhere\\at\\all";
             project.WebSites().Item(1)->Sections().Remove(1);
             project.CreateDefaultTemplate();
         },
         ProjectResult::NoWorkingFolder, "folder"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        Project spoiled(*files);
        FillSampleProject(spoiled, folder);
        const std::string file = home.Path("s.pwp");
        home.Put("s.pwp", "what was there");
        row.spoil(spoiled, folder);
        EXPECT_EQ(spoiled.Save(file), row.result);
        EXPECT_EQ(spoiled.LastResult(), row.result);
        EXPECT_NE(spoiled.LastMessage().find(row.mentions), std::string::npos)
            << spoiled.LastMessage();
        EXPECT_TRUE(spoiled.IsDirty);
        EXPECT_EQ(Listing(home), "s.pwp 14\n") << "what was there stands, and nothing else";
    }
}

TEST_F(ProjectFile, ReplacesAnyFileUnderANewName) {
    FillSampleProject(project, work);
    home.Put("text.pwp", "no project at all");
    home.Put("text.pwp-journal", "left over");
    ASSERT_EQ(project.Save(home.Path("text.pwp")), ProjectResult::Success) << project.LastMessage();
    EXPECT_FALSE(home.Has("text.pwp-journal")) << "it would be played into the new file";
    EXPECT_EQ(loaded.Check(home.Path("text.pwp")), ProjectResult::Success);
    // The own file, overwritten by somebody else, is replaced whole.
    home.Put("text.pwp", "gone");
    ASSERT_EQ(project.Save(home.Path("text.pwp")), ProjectResult::Success);
    EXPECT_EQ(loaded.Check(home.Path("text.pwp")), ProjectResult::Success);
    // A link to it stays a link.
    std::filesystem::create_symlink(home.Native("text.pwp"), home.Native("link.pwp"));
    project.Name = "through a link";
    ASSERT_EQ(project.Save(home.Path("link.pwp")), ProjectResult::Success);
    EXPECT_TRUE(std::filesystem::is_symlink(home.Native("link.pwp")));
    loaded.LoadMode = LoadMode::Header;
    ASSERT_EQ(loaded.Load(home.Path("text.pwp")), ProjectResult::Success);
    EXPECT_EQ(loaded.Name, "through a link");
}

TEST_F(ProjectFile, LeavesAnEarlierSafetyCopyAlone) {
    FillSampleProject(project, work);
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    home.Put("a.~pw", "of an earlier save");
    std::string logged;
    project.LogMessage = [&](const std::string&, const std::string& message) { logged += message; };
    bool standing = false;
    project.RaiseProgress = true;
    project.Name = "changed";
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    EXPECT_EQ(home.Get("a.~pw"), "of an earlier save");
    EXPECT_NE(logged.find("a.~pw"), std::string::npos);

    // Without one in the way, a whole copy of the old state stands beside the file meanwhile.
    std::filesystem::remove(home.Native("a.~pw"));
    project.Name = "changed again";
    work.Put("index.htm", "<p>changed too</p>");
    project.ProjectProgressChanged = [&](int value) {
        if (value == 0 || value == 100) return;
        Project copy(*files);
        copy.LoadMode = LoadMode::Header;
        standing =
            copy.Load(home.Path("a.~pw")) == ProjectResult::Success && copy.Name == "changed";
        EXPECT_TRUE(project.Busy());
        EXPECT_EQ(project.Save(home.Path("b.pwp")), ProjectResult::InUse);
    };
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    EXPECT_TRUE(standing);
    EXPECT_FALSE(project.Busy());
    EXPECT_FALSE(home.Has("a.~pw"));
}

TEST_F(ProjectFile, ASafetyCopyOfADeadProgramGoesAfterTheNextGoodSave) {
    FillSampleProject(project, work);
    const std::string file = home.Path("a.pwp");
    ASSERT_EQ(project.Save(file), ProjectResult::Success);
    const pid_t child = fork();
    if (child == 0) {
        project.RaiseProgress = true;
        project.ProjectProgressChanged = [](int value) {
            if (value > 0) ::_exit(7);
        };
        work.Put("index.htm", "<p>never saved</p>");
        static_cast<void>(project.Save(file));
        ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(WEXITSTATUS(status), 7);
    const std::string left = home.Get("a.~pw");
    ASSERT_NE(left, "(missing)");
    home.Put(".a.pwp.copy", "not finished");
    home.Put(".~pw" + std::to_string(child) + "-4", "of the dead program");
    home.Put(".~pw" + std::to_string(getpid()) + "-4", "of one that lives");
    home.Put(".~pwnotes-4", "of the user");
    // It can be opened as it is, should it be needed.
    EXPECT_EQ(loaded.Check(home.Path("a.~pw")), ProjectResult::Success) << loaded.LastMessage();

    // A save that fails keeps it: it may be the last whole copy.
    std::filesystem::rename(work.Native("index.htm"), work.Native("away"));
    ASSERT_EQ(project.Save(file), ProjectResult::MissingFile);
    EXPECT_EQ(home.Get("a.~pw"), left);
    std::filesystem::rename(work.Native("away"), work.Native("index.htm"));
    ASSERT_EQ(project.Save(file), ProjectResult::Success) << project.LastMessage();
    EXPECT_EQ(Listing(home), ".~pw" + std::to_string(getpid()) + "-4 17\n" +
                                 ".~pwnotes-4 11\na.pwp " + std::to_string(project.ProjectSize()) +
                                 "\n");
}

TEST_F(ProjectFile, NeverThrowsAJournalAway) {
    FillSampleProject(project, work);
    const std::string file = home.Path("a.pwp");
    const std::string journal = "what mends a project that was moved away";
    home.Put("a.pwp-journal", journal);
    loaded.WorkingFolder = other.Path();
    EXPECT_EQ(loaded.Load(file), ProjectResult::NotFound);
    EXPECT_EQ(home.Get("a.pwp-journal"), journal);
    for (const char* kept : {"a.pwp-journal.old", "a.pwp-journal.old2"}) {
        home.Put("a.pwp-journal", journal);
        std::filesystem::remove(home.Native("a.pwp"));
        std::string logged;
        project.LogMessage = [&](const std::string&, const std::string& text) { logged += text; };
        ASSERT_EQ(project.Save(file), ProjectResult::Success) << project.LastMessage();
        EXPECT_FALSE(home.Has("a.pwp-journal")) << "it would be played into the new file";
        EXPECT_EQ(home.Get(kept), journal);
        EXPECT_NE(logged.find(kept), std::string::npos) << logged;
    }
    EXPECT_EQ(loaded.Load(file), ProjectResult::Success);
}

TEST_F(ProjectFile, JournalGoesOnWhereAProgramEnded) {
    FillSampleProject(project, work);
    const std::string file = home.Path("a.pwp");
    ASSERT_EQ(project.Save(file), ProjectResult::Success);
    project.Name = "edited since";
    project.IsDirty = true;
    AddPage(project.WebSites().Item(1)->Pages(), work, "late.htm", "late");
    ASSERT_EQ(project.SaveTree(home.Path("journal")), ProjectResult::Success)
        << project.LastMessage();
    EXPECT_TRUE(project.IsDirty);

    loaded.WorkingFolder = work.Path();
    ASSERT_EQ(loaded.LoadTree(home.Path("journal")), ProjectResult::Success)
        << loaded.LastMessage();
    EXPECT_EQ(ProjectPrinter::Print(loaded), ProjectPrinter::Print(project));
    const std::int64_t inode = Inode(home.Native("a.pwp"));
    ASSERT_EQ(loaded.Save(file), ProjectResult::Success);
    EXPECT_EQ(Inode(home.Native("a.pwp")), inode) << "it knows its project file";
    EXPECT_EQ(loaded.Check(file), ProjectResult::Success);
    EXPECT_EQ(loaded.Load(home.Path("journal")), ProjectResult::NotAProject);
    EXPECT_EQ(loaded.LoadTree(file), ProjectResult::NotAProject);
}

TEST_F(ProjectFile, ClearsAndLoadsAgain) {
    FillSampleProject(project, work);
    ASSERT_EQ(project.Save(home.Path("a.pwp")), ProjectResult::Success);
    const std::string before = ProjectPrinter::Print(project);
    project.IsLoaded = true;
    project.Clear();
    EXPECT_FALSE(project.IsLoaded);
    EXPECT_EQ(project.WebSites().Count() + project.PageIndex().Count() + project.PageCount(), 0);
    EXPECT_EQ(project.WorkingFolder, work.Path());
    EXPECT_EQ(project.NextPageNumber, 1);
    ASSERT_EQ(project.Load(home.Path("a.pwp")), ProjectResult::Success);
    EXPECT_EQ(ProjectPrinter::Print(project), before);
    Page* page = project.WebSites().Item(1)->Pages().Add();
    EXPECT_EQ(page->Number, project.NextPageNumber) << "the tree belongs to this object";
}

}  // namespace
}  // namespace pw
