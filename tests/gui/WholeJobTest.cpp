// The whole job of the program on a real site: make a project, take the site in, edit a page with
// the keyboard, keep it, and publish it.
#include <gtest/gtest.h>

#include "gui/ShownProgram.h"
#include "mainwindow/Explorers.h"
#include "project/AddFiles.h"
#include "project/Pages.h"
#include "support/LinkCheck.h"

namespace pw {
namespace {

namespace fs = std::filesystem;

const fs::path kManual = "/usr/share/doc/apache2-doc/manual/en";

constexpr int kNewProject = 3;
constexpr int kOpen = 6;
constexpr int kSave = 7;
constexpr int kPublish = 17;
constexpr int kCloseAll = 904;

/** Every file of a site, by its path in it; the program's own files beside them do not count. */
std::map<std::string, std::string> FilesBelow(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && !entry.path().filename().string().starts_with("~pw"))
            files[fs::relative(entry.path(), folder).string()] = test::ReadNative(entry.path());
    return files;
}

/** The page with the values of its references taken out: what adding a page must leave alone. */
std::string WithoutReferences(const std::string& page) {
    std::string rest;
    std::size_t from = 0;
    while (from < page.size()) {
        std::size_t at = page.size();
        for (const char* name : {" href=\"", " src=\""})
            at = std::min(at, std::min(page.find(name, from), page.size()));
        const std::size_t value = at == page.size() ? at : page.find('"', at) + 1;
        rest.append(page, from, value - from);
        from = std::min(page.find('"', value), page.size());
    }
    return rest;
}

struct WholeJobTest : testing::Test {
    test::TestContext outer;
    test::ShownProgram shown{outer};
    fs::path Scratch() { return ToNativePath(shown.program->Frame().settings.PreviewFolder); }
    Page* PageOf(const std::string& file) {
        for (const PageIndexEntry& entry : shown.program->TheProject().PageIndex())
            if (GetFileName(entry.Item->Filename) == file) return entry.Item;
        return nullptr;
    }
    /** Waits until the page in front has these bytes. */
    void ExpectPage(const std::string& bytes, const char* when) {
        const auto now = [&] {
            shown.Page().WaitUntilReady();
            return shown.Page().Document().bytes();
        };
        EXPECT_TRUE(QTest::qWaitFor([&] { return now() == bytes; }, 5000)) << when;
    }
    /** Puts the caret behind the page's heading, as a press of the mouse would. */
    void CaretBehindHeading() {
        dom::Document& document = shown.Page().Document();
        dom::Node* text = document.tags("h1").at(0)->firstChild();
        ASSERT_TRUE(text && text->isText());
        document.collapse({text, text->data().size()});
        shown.Page().WaitUntilReady();
    }
};

TEST_F(WholeJobTest, ASiteGoesInIsEditedKeptAndComesOut) {
    if (!fs::exists(kManual)) GTEST_SKIP() << "needs the package apache2-doc";
    MainContext& context = shown.Main().Context();
    shown.Press(kNewProject);

    // 1. The site goes in, with its pictures and style sheets.
    AddFilesRequest request;
    request.paths = {FromNativePath(kManual.string())};
    request.withFilesFrom = {FromNativePath(kManual.parent_path().string())};
    const AddFilesResult added = AddFiles(context.project, request);
    EXPECT_TRUE(added.problems.empty());
    context.model.IsDirty = true;
    RefillProjectExplorer(context);
    auto stored = FilesBelow(Scratch());
    // Each page but for its references, with its folder, leads to its new place.
    std::map<std::string, fs::path> places;
    for (const auto& [path, bytes] : stored)
        places[fs::path(path).parent_path().string() + "|" + WithoutReferences(bytes)] = path;
    const auto sources = test::PagesBelow(kManual);
    EXPECT_EQ(added.pageKeys.size(), sources.size());
    std::map<fs::path, fs::path> placeOf;
    for (const fs::path& source : sources) {
        const std::string folder = fs::relative(source, kManual).parent_path().string();
        const auto at = places.find(folder + "|" + WithoutReferences(test::ReadNative(source)));
        ASSERT_NE(at, places.end()) << source << " changed in more than its references";
        placeOf[source] = at->second;
    }

    // 2. A page is edited in the view, with the keys of the keyboard.
    const Page* edited = PageOf("caching.htm");
    ASSERT_TRUE(edited);
    const std::string key = edited->Key();
    shown.PressNode(key);
    ASSERT_EQ(context.CurrentPageKey, key);
    const std::string before = stored.at("caching.htm");
    const std::size_t at = before.find("</h1>");
    ASSERT_NE(at, std::string::npos);
    std::string after = before;
    after.insert(at, " in short");
    CaretBehindHeading();
    shown.View().SetFocus();
    QTest::keyClicks(shown.Keyboard(), " in short");
    ExpectPage(after, "typed");
    QTest::keyClick(shown.Keyboard(), Qt::Key_Z, Qt::ControlModifier);
    ExpectPage(before, "undone");
    QTest::keyClick(shown.Keyboard(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    ExpectPage(after, "done again");

    // 3. It is saved, closed and opened again: nothing else has changed.
    const std::string project = outer.folder.Path("manual.pwp");
    outer.dialogs.ExpectFile(project);
    shown.Press(kSave);
    EXPECT_FALSE(context.model.IsDirty);
    shown.Press(kCloseAll);
    shown.Press(kNewProject);
    ASSERT_FALSE(fs::exists(Scratch() / "caching.htm"));
    outer.dialogs.ExpectMessage(Answer::No, "lost by opening");
    outer.dialogs.ExpectFile(project);
    shown.Press(kOpen);
    stored["caching.htm"] = after;
    const auto reopened = FilesBelow(Scratch());
    for (const auto& [path, bytes] : stored) {
        const auto found = reopened.find(path);
        if (found == reopened.end())
            ADD_FAILURE() << path << " is lost";
        else
            EXPECT_TRUE(found->second == bytes) << path << " has changed";
    }
    for (const auto& [path, bytes] : reopened)
        EXPECT_TRUE(stored.count(path)) << path << " is new";

    // 4. It is published, and its links stand.
    outer.dialogs.ExpectFolder(outer.folder.Path("out"));
    outer.dialogs.ExpectMessage(Answer::Ok, "successfully published as HTML");
    shown.Press(kPublish);
    const fs::path site = fs::path(outer.folder.Native("out")) / context.model.Name;
    EXPECT_TRUE(FilesBelow(site) == reopened) << "what is published is what is kept";
    int followed = 0;
    for (const fs::path& source : sources) {
        const auto was = test::LocalLinks(source);
        const auto is = test::LocalLinks(site / placeOf[source]);
        ASSERT_EQ(was.size(), is.size()) << source;
        for (std::size_t i = 0; i < was.size(); ++i) {
            const bool leadsOut = IsPageFilename(was[i].target.string()) &&
                                  !was[i].target.string().starts_with(kManual.string() + "/");
            if (!was[i].exists || leadsOut) continue;
            ++followed;
            EXPECT_TRUE(is[i].exists) << source << ": " << is[i].value;
        }
    }
    EXPECT_GT(followed, 10000);
}

}  // namespace
}  // namespace pw
