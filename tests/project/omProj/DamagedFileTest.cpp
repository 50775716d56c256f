// Project files that are broken, foreign, or made to do harm, each bred from a good one.
#include <sqlite3.h>

#include <filesystem>
#include <random>

#include "project/omProj/Format.h"
#include "support/SampleProject.h"

namespace pw {
namespace {

using test::FillSampleProject;
using test::ProjectPrinter;
using test::TemporaryFolder;

/** A good file's bytes; rows of the tables below change them. */
class DamagedProjectFile : public ::testing::Test {
  protected:
    DamagedProjectFile() {
        const TemporaryFolder work;
        Project project(*files);
        FillSampleProject(project, work);
        EXPECT_EQ(project.Save(home.Path("good.pwp")), ProjectResult::Success);
        good = home.Get("good.pwp");
    }

    void Run(const std::string& sql) {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(home.Native("bad.pwp").c_str(), &database), SQLITE_OK);
        char* error = nullptr;
        EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK)
            << sql << ": " << (error ? error : "");
        sqlite3_free(error);
        sqlite3_close(database);
    }

    /** Loads bad.pwp and checks that nothing was touched unless it went well. */
    ProjectResult LoadBad(std::string* message = nullptr) {
        const TemporaryFolder outside;
        std::filesystem::create_directories(outside.Native("work"));
        Project project(*files);
        project.WorkingFolder = outside.Path("work");
        project.Name = "as before";
        const ProjectResult result = project.Load(home.Path("bad.pwp"));
        if (message) *message = project.LastMessage();
        if (result != ProjectResult::Success) {
            EXPECT_TRUE(project.Name == "as before" || project.Name.empty());
            EXPECT_EQ(project.WebSites().Count(), 0);
            EXPECT_FALSE(project.LastMessage().empty());
            for (const auto& entry :
                 std::filesystem::recursive_directory_iterator(outside.Native("work")))
                EXPECT_TRUE(entry.is_directory()) << "left behind: " << entry.path();
        }
        int around = 0;
        for (const auto& entry : std::filesystem::directory_iterator(outside.Native()))
            around += entry.path().filename() == "work" ? 0 : 1;
        EXPECT_EQ(around, 0) << "something was written outside the working folder";
        EXPECT_FALSE(home.Has("bad.pwp-wal"));
        EXPECT_FALSE(home.Has("bad.pwp-shm"));
        return result;
    }

    std::unique_ptr<FileSystem> files = MakePosixFileSystem();
    TemporaryFolder home;
    std::string good;
};

TEST_F(DamagedProjectFile, BytesThatAreNotAProject) {
    using Bytes = std::string;
    struct Row {
        const char* name;
        std::function<Bytes(Bytes)> change;
        ProjectResult result;
    };
    const auto poke = [](std::size_t at, const std::string& with) {
        return [=](Bytes bytes) { return bytes.replace(at, with.size(), with); };
    };
    const Row rows[] = {
        {"empty", [](Bytes) { return Bytes(); }, ProjectResult::NotAProject},
        {"text", [](Bytes) { return Bytes(5000, 'x'); }, ProjectResult::NotAProject},
        {"first bytes alone", [](Bytes b) { return b.substr(0, 60); }, ProjectResult::Damaged},
        {"first page alone", [](Bytes b) { return b.substr(0, 4096); }, ProjectResult::Damaged},
        {"half", [](Bytes b) { return b.substr(0, b.size() / 2); }, ProjectResult::Damaged},
        {"last page cut", [](Bytes b) { return b.substr(0, b.size() - 4096); },
         ProjectResult::Damaged},
        {"of another program", poke(68, "abcd"), ProjectResult::NotAProject},
        {"older", poke(60, Bytes("\0\0\0\1", 4)), ProjectResult::OlderFormat},
        {"newer", poke(60, Bytes("\0\0\0\4", 4)), ProjectResult::NewerFormat},
        {"far newer", poke(60, Bytes("\xFF\xFF\xFF\xFF", 4)), ProjectResult::NewerFormat},
        {"keeps a log", poke(18, Bytes("\2\2", 2)), ProjectResult::Damaged},
        {"schema overwritten", poke(100, Bytes(3000, '\xAA')), ProjectResult::Damaged},
        {"zeros inside", poke(4096, Bytes(40'000, '\0')), ProjectResult::Damaged},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        home.Put("bad.pwp", row.change(good));
        EXPECT_EQ(LoadBad(), row.result);
    }
    std::filesystem::remove(home.Native("bad.pwp"));
    EXPECT_EQ(LoadBad(), ProjectResult::NotFound);
    std::filesystem::create_directory(home.Native("bad.pwp"));
    EXPECT_EQ(LoadBad(), ProjectResult::NotAProject);
}

TEST_F(DamagedProjectFile, TablesThatLie) {
    struct Row {
        const char* name;
        const char* sql;
        ProjectResult result;
    };
    constexpr auto hostile = ProjectResult::HostileContent;
    constexpr auto damaged = ProjectResult::Damaged;
    const Row rows[] = {
        // Names that lead elsewhere.
        {"climbs", "UPDATE file SET name='../evil.htm' WHERE id=1", hostile},
        {"climbs inside", "UPDATE file SET name='news/../../evil.htm' WHERE id=1", hostile},
        {"absolute", "UPDATE file SET name='/tmp/pw-evil.htm' WHERE id=1", hostile},
        {"backslashes", "UPDATE file SET name='news\\..\\..\\evil.htm' WHERE id=1", hostile},
        {"drive letter", "UPDATE file SET name='C:evil.htm' WHERE id=1", hostile},
        {"dots and blanks", "UPDATE file SET name='.. /evil.htm' WHERE id=1", hostile},
        {"empty part", "UPDATE file SET name='news//evil.htm' WHERE id=1", hostile},
        {"control character", "UPDATE file SET name='a'||char(10)||'.htm' WHERE id=1", hostile},
        {"no name", "UPDATE file SET name='' WHERE id=1", hostile},
        {"long name", "UPDATE file SET name=printf('%.*c',300,'n') WHERE id=1", hostile},
        {"page climbs", "UPDATE page SET filename='../evil.htm'", hostile},
        {"page path climbs", "UPDATE page SET path='..\\evil'", hostile},
        {"attachment climbs", "UPDATE attachment SET filename='../../etc/passwd'", hostile},
        {"thumbnail climbs", "UPDATE header SET value='../x' WHERE name='thumbnail'", hostile},
        {"folder climbs", "UPDATE folder SET working_folder='/../evil'", hostile},
        {"folder name climbs", "UPDATE folder SET folder_name='../evil'", hostile},
        // Names that fall together.
        {"differ in case", "UPDATE file SET name='INDEX.htm' WHERE name='style.css'", hostile},
        {"twice", "UPDATE file SET name='index.htm' WHERE name='style.css'", hostile},
        {"file as folder", "UPDATE file SET name='index.htm/x' WHERE name='style.css'", hostile},
        {"folder as file", "UPDATE folder SET working_folder='/index.htm'", hostile},
        // Sizes and counts.
        {"huge file", "UPDATE file SET size=9000000000000000000 WHERE id=1", hostile},
        {"more than the file", "UPDATE file SET size=3000000000 WHERE id=1", hostile},
        {"negative size", "UPDATE file SET size=-1 WHERE id=1", hostile},
        {"wrong size", "UPDATE file SET size=size+1 WHERE id=1", damaged},
        {"huge count", "UPDATE header SET value=4000000000 WHERE name='page_count'", damaged},
        {"wrong count", "UPDATE header SET value=7 WHERE name='page_count'", damaged},
        {"file count", "UPDATE header SET value=1 WHERE name='file_count'", damaged},
        // Contents.
        {"changed content", "UPDATE content SET bytes=zeroblob(length(bytes))", damaged},
        {"missing content", "DELETE FROM content WHERE id=(SELECT max(id) FROM content)", damaged},
        {"content of nothing", "INSERT INTO content VALUES(99999999,x'00')", damaged},
        {"page without its file",
         "DELETE FROM content; DELETE FROM file; "
         "UPDATE header SET value=0 WHERE name='file_count'",
         damaged},
        // The tree.
        {"its own parent", "UPDATE folder SET key='W0001F0009F0009' WHERE key='W0001F0001'",
         damaged},
        {"no parent", "UPDATE page SET key='W0007P0001' WHERE key='W0001P0001'", damaged},
        {"no key", "UPDATE page SET key='P' WHERE key='W0001P0001'", damaged},
        {"empty key", "UPDATE page SET key='' WHERE key='W0001P0001'", damaged},
        {"number zero", "UPDATE site SET key='W0000'", damaged},
        {"counter behind", "UPDATE site SET next_page=1", damaged},
        {"counter beyond", "UPDATE folder SET next_folder=20000", damaged},
        {"counter huge", "UPDATE folder SET next_folder=1<<62", damaged},
        {"attachment of nobody", "UPDATE attachment SET owner='W0001P0404' WHERE owner='T'",
         damaged},
        {"field of no form", "UPDATE form_field SET form=5", damaged},
        {"endless depth",
         "INSERT INTO folder SELECT key||replace(printf('%.*c',80,'x'),'x','F0001'),next_page,"
         "next_folder,working_folder,name,description,folder_name,container_kind,expanded "
         "FROM folder WHERE key='W0001F0001'",
         damaged},
        // The header.
        {"no name in the header", "DELETE FROM header WHERE name='name'", damaged},
        {"number for a name", "UPDATE header SET value=1 WHERE name='name'", damaged},
        {"text for a number", "UPDATE header SET value='x' WHERE name='version_major'", damaged},
        {"blob for a name", "UPDATE header SET value=x'00' WHERE name='name'", damaged},
        // What does not belong into a project.
        {"trigger", "CREATE TRIGGER t AFTER INSERT ON page BEGIN DELETE FROM page; END", damaged},
        {"view for a table", "DROP TABLE add_in; CREATE VIEW add_in AS SELECT 1 AS position",
         damaged},
        {"more tables", "CREATE TABLE more(x)", damaged},
        {"fewer tables", "DROP TABLE task", damaged},
        {"wrong types",
         "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET sql=replace(sql,'STRICT, ','') "
         "WHERE name='page'; PRAGMA writable_schema=RESET; UPDATE page SET title=x'00ff'; "
         "PRAGMA writable_schema=ON; UPDATE sqlite_schema "
         "SET sql=replace(sql,'WITHOUT','STRICT, WITHOUT') WHERE name='page'",
         damaged},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        home.Put("bad.pwp", good);
        Run(row.sql);
        EXPECT_EQ(LoadBad(), row.result);
    }
}

TEST_F(DamagedProjectFile, FlippedBitsEndInAProjectOrAMessage) {
    std::mt19937 random(4711);
    int opened = 0;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        std::string bytes = good;
        // Half of them hit the tables, which are the smaller part of the file.
        const std::size_t reach = round % 2 ? bytes.size() : 60'000;
        for (int flips = round % 4 + 1; flips > 0; --flips)
            bytes[random() % reach] ^= static_cast<char>(1 << random() % 8);
        home.Put("bad.pwp", bytes);
        opened += LoadBad() == ProjectResult::Success ? 1 : 0;
    }
    EXPECT_GT(opened, 0) << "gaps and single letters do not make a project unreadable";
}

TEST_F(DamagedProjectFile, IsWrittenAnewWithEverything) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const TemporaryFolder work;
        const TemporaryFolder other;
        Project project(*files);
        project.WorkingFolder = work.Path();
        home.Put("bad.pwp", good);
        ASSERT_EQ(project.Load(home.Path("bad.pwp")), ProjectResult::Success);
        project.Name = "changed";
        const std::string wanted = ProjectPrinter::Print(project);
        std::string bytes = good;
        switch (round % 4) {
            case 0:
                bytes.resize(random() % bytes.size());
                break;
            case 1:
                bytes.replace(100 + random() % 50'000, 2000, std::string(2000, '\0'));
                break;
            default:
                for (int flips = 0; flips < 3; ++flips)
                    bytes[random() % 60'000] ^= static_cast<char>(1 << random() % 8);
        }
        home.Put("bad.pwp", bytes);
        ASSERT_EQ(project.Save(home.Path("bad.pwp")), ProjectResult::Success)
            << project.LastMessage();
        Project loaded(*files);
        loaded.WorkingFolder = other.Path();
        ASSERT_EQ(loaded.Load(home.Path("bad.pwp")), ProjectResult::Success)
            << loaded.LastMessage();
        EXPECT_EQ(ProjectPrinter::Print(loaded), wanted);
        for (const char* name : {"index.htm", "style.css", "news\\old\\a.htm", "~pwthumb.jpg"})
            EXPECT_EQ(other.Get(name), work.Get(name)) << name;
    }
}

/** Values that SQL put into the file behind the checksums of their rows. */
TEST_F(DamagedProjectFile, WhatOthersPutIntoTheFileIsNotTakenForWhatWasSaved) {
    const TemporaryFolder work;
    const TemporaryFolder other;
    Project project(*files);
    project.WorkingFolder = work.Path();
    home.Put("bad.pwp", good);
    ASSERT_EQ(project.Load(home.Path("bad.pwp")), ProjectResult::Success);
    const std::string wanted = ProjectPrinter::Print(project);
    Run("UPDATE page SET title='theirs'; DELETE FROM task; UPDATE site SET name='theirs'; "
        "UPDATE content SET bytes=zeroblob(length(bytes)); DELETE FROM merge_variable");
    ASSERT_EQ(project.Save(home.Path("bad.pwp")), ProjectResult::Success) << project.LastMessage();
    Project loaded(*files);
    loaded.WorkingFolder = other.Path();
    ASSERT_EQ(loaded.Load(home.Path("bad.pwp")), ProjectResult::Success) << loaded.LastMessage();
    EXPECT_EQ(ProjectPrinter::Print(loaded), wanted);
    EXPECT_EQ(other.Get("index.htm"), "<p>index</p>");
}

TEST_F(DamagedProjectFile, ALogBesideASoundProjectIsNotRead) {
    // A log of another state of the same file, whole, so that the library would believe it.
    home.Put("logged.pwp", good);
    std::string log;
    {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(home.Native("logged.pwp").c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database,
                               "PRAGMA journal_mode=WAL; UPDATE header SET value='theirs' "
                               "WHERE name='name'",
                               nullptr, nullptr, nullptr),
                  SQLITE_OK);
        log = home.Get("logged.pwp-wal");
        sqlite3_close(database);
    }
    ASSERT_GT(log.size(), 4096u);
    struct Row {
        const char* name;
        std::string log;
    };
    for (const Row& row : {Row{"whole", log}, Row{"torn", log.substr(0, log.size() / 2)},
                           Row{"text", "no log"}, Row{"empty", ""}}) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder work;
        home.Put("site.pwp", good);
        home.Put("site.pwp-wal", row.log);
        Project project(*files);
        project.WorkingFolder = work.Path();
        ASSERT_EQ(project.Load(home.Path("site.pwp")), ProjectResult::Success)
            << project.LastMessage();
        EXPECT_NE(project.Name, "theirs");
        project.Description = "saved beside it";
        ASSERT_EQ(project.Save(home.Path("site.pwp")), ProjectResult::Success);
        EXPECT_EQ(project.Check(home.Path("site.pwp")), ProjectResult::Success);
        EXPECT_EQ(home.Get("site.pwp-wal"), row.log) << "a stranger's file is left alone";
        EXPECT_FALSE(home.Has("site.pwp-shm"));
    }
}

TEST_F(DamagedProjectFile, AWrongSizeIsNotToldAsAWrongName) {
    home.Put("bad.pwp", good);
    Run("UPDATE file SET size=3000000000 WHERE name='style.css'");
    std::string message;
    EXPECT_EQ(LoadBad(&message), ProjectResult::HostileContent);
    EXPECT_NE(message.find("a size for 'style.css'"), std::string::npos) << message;
    EXPECT_EQ(message.find("names"), std::string::npos) << message;
}

TEST_F(DamagedProjectFile, ALinkInTheWorkingFolderIsNotFollowed) {
    const TemporaryFolder work;
    const TemporaryFolder target;
    target.Put("index.htm", "precious");
    std::filesystem::create_directory_symlink(target.Native(), work.Native("news"));
    std::filesystem::create_symlink(target.Native("index.htm"), work.Native("index.htm"));
    Project project(*files);
    project.WorkingFolder = work.Path();
    EXPECT_NE(project.Load(home.Path("good.pwp")), ProjectResult::Success);
    EXPECT_EQ(target.Get("index.htm"), "precious");
    EXPECT_FALSE(target.Has("old"));
    // A link in place of a file is replaced by the file.
    std::filesystem::remove(work.Native("news"));
    EXPECT_EQ(project.Load(home.Path("good.pwp")), ProjectResult::Success);
    EXPECT_EQ(target.Get("index.htm"), "precious");
    EXPECT_EQ(work.Get("index.htm"), "<p>index</p>");
}

}  // namespace
}  // namespace pw
