// The language of the desktop decides how numbers and dates look on the screen, and nothing else.
#include <sqlite3.h>

#include <clocale>

#include "platform/Text.h"
#include "project/MergeVariables.h"
#include "project/PublishHTML.h"
#include "support/LinkCheck.h"
#include "support/TestProject.h"

namespace pw {
namespace {

namespace fs = std::filesystem;

/** German while it lives, with decimal commas; as a toolkit does it at the start of a program. */
class GermanDesktop {
  public:
    explicit GermanDesktop(const test::TemporaryFolder& folder) {
        const std::string locales = folder.Native("locales");
        fs::create_directories(locales);
        const std::string make = "localedef -i de_DE -f UTF-8 '" + locales + "/de_DE.UTF-8'";
        std::ignore = std::system((make + " >/dev/null 2>&1").c_str());
        ::setenv("LOCPATH", locales.c_str(), 1);
        isThere_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    }
    ~GermanDesktop() {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LOCPATH");
    }
    bool IsThere() const { return isThere_; }

  private:
    bool isThere_ = false;
};

/** All rows of a project file. The times of the files, which it keeps once they are some seconds
 *  old, are those of this very run. */
std::string RowsOf(const fs::path& file) {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    const auto query = [&](const std::string& sql, const auto& take) {
        sqlite3_stmt* rows = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(database, sql.c_str(), -1, &rows, nullptr), SQLITE_OK) << sql;
        while (sqlite3_step(rows) == SQLITE_ROW)
            take(rows);
        sqlite3_finalize(rows);
    };
    const auto bytes = [](sqlite3_stmt* row, int column) {
        const auto* text = static_cast<const char*>(sqlite3_column_blob(row, column));
        return std::string(text ? text : "", std::size_t(sqlite3_column_bytes(row, column)));
    };
    std::vector<std::string> tables;
    query("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name",
          [&](sqlite3_stmt* row) { tables.push_back(bytes(row, 0)); });
    std::string all;
    for (const auto& table : tables) {
        query("SELECT * FROM " + table, [&](sqlite3_stmt* row) {
            all += "\n" + table;
            for (int i = 0; i < sqlite3_column_count(row); ++i) {
                const std::string name = sqlite3_column_name(row, i);
                if (table != "file" || name != "modified") all += " " + name + "=" + bytes(row, i);
            }
        });
    }
    sqlite3_close(database);
    return all;
}

/** Every file that a project writes, by its path: saved, with variables in its pages, published. */
std::map<std::string, std::string> WrittenFiles() {
    test::TestProject test;
    Project& project = test.project;
    project.ProjectId = "{id}";
    project.Name = "Shop";
    project.Created = MakeDate(2026, 1, 31, 13, 45, 30);
    project.Modified = project.Created + 0.1234567;
    std::string variables;
    UpdateProjectMergeVariables(test.context);
    for (const MergeVariable& variable : project.MergeVariables())
        if (!variable.Name.starts_with("Project Size"))
            variables += "<p><a type=omMerge name=\"" + variable.Name + "\">x</a></p>\n";
    test.Insert("home", variables);
    Page* page = test.Insert("second", "<p style='width: 12.5px'>1,234.5</p>" + variables);
    page->Modified = page->Created + 0.5;
    Task* task = project.Tasks().Add("{task}");
    task->Name = "Check";
    task->CompleteBy = project.Created + 14.25;
    test.SaveAs("out\\shop.pwp");
    UpdateProjectMergeVariables(test.context);
    EXPECT_TRUE(UpdateMergeVariablesInPages(test.context).notUpdated.empty());
    test.SaveAs("out\\shop.pwp");
    const auto published = PublishAsHTML(test.context, test.folder.Path("out\\site"));
    EXPECT_TRUE(published.published) << published.reason;

    std::map<std::string, std::string> written;
    const fs::path out = test.folder.Native("out");
    for (const auto& entry : fs::recursive_directory_iterator(out))
        if (entry.is_regular_file())
            written[fs::relative(entry.path(), out)] = entry.path().extension() == ".pwp"
                                                           ? RowsOf(entry.path())
                                                           : test::ReadNative(entry.path());
    return written;
}

TEST(Locale, ChangesNothingThatIsWritten) {
    const auto plain = WrittenFiles();
    const test::TemporaryFolder folder;
    const GermanDesktop german(folder);
    if (!german.IsThere()) GTEST_SKIP() << "needs the package locales";
    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 0.5);
    ASSERT_STREQ(text, "0,5");
    EXPECT_EQ(Val("1.5"), 1.5);

    const auto inGerman = WrittenFiles();
    ASSERT_GE(plain.size(), 3u);
    ASSERT_EQ(inGerman.size(), plain.size());
    for (const auto& [path, bytes] : plain)
        EXPECT_TRUE(inGerman.count(path) && inGerman.at(path) == bytes) << path;
    EXPECT_THAT(plain.at("shop.pwp"), testing::HasSubstr("=" + std::string("46053.5732")));
    EXPECT_THAT(plain.at("site/Shop/second.htm"), testing::HasSubstr(">20260131</a>"));
}

}  // namespace
}  // namespace pw
