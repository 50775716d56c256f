#include "project/PublishHTML.h"

#include <unistd.h>

#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(PublishAsHTML, CopiesTheSiteAndNothingElse) {
    TestProject test;
    test.project.Name = "Tea: Shop?";
    test.folder.Put("source\\a.gif", "GIF89a");
    Page* page = test.Insert("one", "<img src=a.gif>", {}, ShowInsertedPage::Yes);
    const std::string removed = test.Insert("removed")->Key();
    Folder* folder = test.project.WebSites().Item(1)->Sections().Add();
    folder->WorkingFolder = "sub";
    ASSERT_TRUE(MakeFolder(*test.files, test.frame.settings.PreviewFolder + "\\sub\\media"));
    const std::string deep = GetFileName(test.Insert("deep", "", Container(*folder))->Filename);
    RemoveProjectItem(test.context, removed);
    test.workspace.foreground = true;
    test.SaveAs("one.pwp");  // makes a thumbnail
    auto& document = *test.workspace.Find(page->Key())->document;
    document.setInnerHTML(*document.body(), "<p>typed just now</p>");

    const PublishResult result = PublishAsHTML(test.context, test.folder.Path("www\\here"));
    EXPECT_TRUE(result.published) << result.reason;
    EXPECT_EQ(result.folder, test.folder.Path("www\\here\\Tea_ Shop_"));
    const std::string first = result.folder + "\\" + GetFileName(page->Filename);
    EXPECT_NE(test.Text(first).find("typed just now"), std::string::npos);
    EXPECT_EQ(test.Text(result.folder + "\\media\\a.gif"), "GIF89a");
    EXPECT_TRUE(FileExists(*test.files, result.folder + "\\sub\\" + deep));
    std::vector<FolderEntry> entries;
    ASSERT_EQ(test.files->List(result.folder, entries), FileError::None);
    EXPECT_EQ(entries.size(), 3u) << "the page, its media, the folder";

    EXPECT_TRUE(WriteTextFile(*test.files, "the user's", result.folder + "\\own.txt"));
    EXPECT_TRUE(PublishAsHTML(test.context, test.folder.Path("www\\here")).published);
    EXPECT_EQ(test.Text(result.folder + "\\own.txt"), "the user's");
}

TEST(PublishAsHTML, RefusesPlacesThatItWouldDamage) {
    TestProject test;
    test.project.Name = "Shop";
    Page* page = test.Insert("one");
    const std::string used = test.folder.Put("elsewhere\\Shop\\a.gif", "x");
    page->Attachments().Add(used);
    test.folder.Put("taken\\Shop", "a file");
    ASSERT_EQ(::symlink(ToNativePath(test.frame.settings.MediaFolder).c_str(),
                        ToNativePath(test.folder.Path("link")).c_str()),
              0);
    struct Row {
        const char* name;
        std::string folder;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {"the scratch area", test.frame.settings.PreviewFolder, "works in that folder"},
        {"a new folder in it", test.frame.runFolder + "\\a\\b", "works in that folder"},
        {"a link to it", test.folder.Path("link"), "works in that folder"},
        {"files of the project", test.folder.Path("elsewhere"), "uses files in that folder"},
        {"a file in the way", test.folder.Path("taken"), "is a file"},
        {"no folder", "", "needs a name"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const PublishResult result = PublishAsHTML(test.context, row.folder);
        EXPECT_FALSE(result.published);
        EXPECT_NE(result.reason.find(row.reason), std::string::npos) << result.reason;
    }
    EXPECT_EQ(test.Text(used), "x");
    test.project.Name = " .. ";
    EXPECT_FALSE(PublishAsHTML(test.context, test.folder.Path("www")).published);
    EXPECT_FALSE(test.folder.Has("www"));
}

TEST(AskAndPublishAsHTML, SaysWhatCameOfIt) {
    TestProject test;
    test.project.Name = "Shop";
    test.Insert("one");
    test.dialogs.ExpectFolder("");
    AskAndPublishAsHTML(test.context);
    test.dialogs.ExpectFolder(test.folder.Path("www"));
    test.dialogs.ExpectMessage(
        Answer::Ok, "The project has been successfully published as HTML to folder:\n\n" +
                        test.folder.Path("www\\Shop"));
    AskAndPublishAsHTML(test.context);
    test.dialogs.ExpectFolder(test.frame.runFolder);
    test.dialogs.ExpectMessage(Answer::Ok, "could not be published as HTML.\n\nPlease try again.");
    AskAndPublishAsHTML(test.context);
    EXPECT_EQ(test.dialogs.Messages().back().title, "Publish as HTML");
}

}  // namespace
}  // namespace pw
