#include "project/Journal.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

struct JournalTest : ::testing::Test {
    dom::Document& Document(const Page& page) { return *test.workspace.Find(page.Key())->document; }
    void Type(const Page& page, const std::string& html) {
        Document(page).setInnerHTML(*Document(page).body(), html);
    }
    void TickAfter(double seconds) {
        test.clock.seconds += seconds;
        JournalTick(test.context);
    }
    bool HasRecord() { return FileExists(*test.files, JournalRecordPath(test.frame.runFolder)); }
    /** Tells whether a file was written since the last question about it. The answer sets its time
     *  back, since two writes can follow each other faster than the disk's clock ticks. */
    bool Written(const std::string& path) {
        const bool changed = test.files->Stat(path).modified != 0;
        const timespec past[2] = {};
        EXPECT_EQ(::utimensat(AT_FDCWD, ToNativePath(path).c_str(), past, 0), 0) << path;
        return changed;
    }
    std::string TreePath() { return JournalTreePath(test.frame.runFolder); }

    TestProject test;
};

TEST_F(JournalTest, WritesWhenTheTypingPausesAndAtTheLatestAfterTenSeconds) {
    Page* page = test.Insert("one", "<p>old</p>", {}, ShowInsertedPage::Yes);
    test.SaveAs("one.pwp");
    test.clock.seconds = 100;
    JournalTick(test.context);
    Written(page->Filename);
    Type(*page, "<p>typed</p>");
    TickAfter(1);
    TickAfter(1);
    EXPECT_FALSE(Written(page->Filename));
    TickAfter(1);
    EXPECT_TRUE(Written(page->Filename));
    EXPECT_NE(test.Text(page->Filename).find("typed"), std::string::npos);
    EXPECT_TRUE(HasRecord());

    int writes = 0;
    for (int second = 0; second < 22; ++second) {
        Type(*page, "<p>" + std::to_string(second) + "</p>");
        TickAfter(1);
        writes += Written(page->Filename);
    }
    EXPECT_EQ(writes, 2);
}

TEST_F(JournalTest, WritesNothingWhenNothingChanged) {
    Page* page = test.Insert("one", "<p>old</p>", {}, ShowInsertedPage::Yes);
    test.SaveAs("one.pwp");
    for (int i = 0; i < 3; ++i)
        TickAfter(5);
    EXPECT_FALSE(HasRecord());

    Type(*page, "<p>typed</p>");
    for (int i = 0; i < 3; ++i)
        TickAfter(5);
    const std::string record = JournalRecordPath(test.frame.runFolder);
    for (const std::string& path : {page->Filename, record, TreePath()})
        EXPECT_TRUE(Written(path)) << path;
    for (int i = 0; i < 3; ++i)
        TickAfter(5);
    for (const std::string& path : {page->Filename, record, TreePath()})
        EXPECT_FALSE(Written(path)) << path;

    // The text of a page is no reason to write the tree.
    Type(*page, "<p>more words than before</p>");
    for (int i = 0; i < 3; ++i)
        TickAfter(5);
    EXPECT_TRUE(Written(page->Filename));
    EXPECT_FALSE(Written(TreePath()));

    test.SaveAs("one.pwp");
    EXPECT_FALSE(HasRecord()) << "nothing to lose";
}

TEST_F(JournalTest, FollowsAnUndoBehindWhatItHasWritten) {
    Page* page = test.Insert("one", "<p>old</p>", {}, ShowInsertedPage::Yes);
    test.SaveAs("one.pwp");
    const std::string saved = test.Text(page->Filename);
    TickAfter(1);
    Type(*page, "<p>typed</p>");
    for (int i = 0; i < 3; ++i)
        TickAfter(2);
    EXPECT_NE(test.Text(page->Filename), saved);
    EXPECT_TRUE(Document(*page).undo());
    EXPECT_FALSE(Document(*page).isDirty());
    EXPECT_TRUE(UpdateOpenPageProperties(test.context));
    EXPECT_EQ(test.Text(page->Filename), saved);
}

TEST_F(JournalTest, NoticesEveryChangeOfTheTree) {
    for (int i = 0; i < 3; ++i)
        test.Insert("page" + std::to_string(i));
    WebSite* site = test.project.WebSites().Item(1);
    Folder* folder = site->Sections().Add();
    const auto page = [&](int index) { return test.project.PageIndex().Item(index)->Item; };
    struct Row {
        const char* name;
        std::function<void()> change;
    };
    const std::vector<Row> rows = {
        {"project's name", [&] { test.project.Name = "x"; }},
        {"company", [&] { test.project.CompanyCity = "Kyoto"; }},
        {"title of a page", [&] { page(2)->Name = "x"; }},
        {"default page", [&] { page(3)->IsDefault = true; }},
        {"attachment", [&] { page(1)->Attachments().Add("\\a"); }},
        {"new page", [&] { site->Pages().Add(); }},
        {"removed page", [&] { site->Pages().Remove(1); }},
        {"name of a folder", [&] { folder->Name = "x"; }},
        {"new folder", [&] { folder->Sections().Add(); }},
        {"variable", [&] { test.project.MergeVariables().Add()->Name = "x"; }},
        {"task", [&] { test.project.Tasks().Add("x"); }},
        {"template", [&] { test.project.CreateDefaultTemplate(); }}};
    TreeWatch watch;
    for (const Row& row : rows) {
        watch.Take(test.project);
        EXPECT_FALSE(watch.Changed(test.project, {}));
        row.change();
        EXPECT_TRUE(watch.Changed(test.project, {})) << row.name;
    }
    watch.Take(test.project);
    page(1)->WordCount = 5;
    EXPECT_FALSE(watch.Changed(test.project, {})) << "counted anew when it is recovered";
}

TEST_F(JournalTest, LooksAtFewPagesOfALargeProjectAtATime) {
    Pages& pages = test.project.WebSites().Item(1)->Pages();
    for (int i = 0; i < 1000; ++i)
        pages.Add();
    TreeWatch watch;
    watch.Take(test.project);
    pages.Item(900)->Name = "changed";
    EXPECT_TRUE(watch.Changed(test.project, {pages.Item(900)->Key()})) << "at once where likely";
    int looks = 1;
    while (!watch.Changed(test.project, {}))
        ASSERT_LT(++looks, 20);
    EXPECT_EQ(looks, 5);
}

TEST_F(JournalTest, GivesUpForAWhileWhereItCannotWrite) {
    test.Insert("one");
    test.frame.runFolder = test.folder.Put("file", "");
    const int logged = test.frame.errorLog.Count();
    for (int i = 0; i < 20; ++i)
        TickAfter(1);
    EXPECT_EQ(test.frame.errorLog.Count(), logged + 1);
}

TEST(JournalRecord, SurvivesEveryName) {
    JournalRecord record;
    record.projectFile = "\\home\\a=b\\100%\nend\n.pwp";
    record.projectName = "Tea \xE2\x82\xAC\r\n";
    record.savingTo = "\\x";
    record.editedPages = {"W0001P0001", "W0001F0001P0002"};
    const std::string text = WriteRecord(record);
    JournalRecord read;
    ASSERT_TRUE(ReadRecord(text, read));
    EXPECT_EQ(read.projectFile, record.projectFile);
    EXPECT_EQ(read.projectName, record.projectName);
    EXPECT_EQ(read.editedPages, record.editedPages);
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_FALSE(ReadRecord(text.substr(0, length), read)) << length;
}

}  // namespace
}  // namespace pw
