#include "project/PublishHTML.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "project/DroppedFiles.h"
#include "project/MergeVariables.h"
#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;
using testing::HasSubstr;

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

TEST(PublishAsHTML, LeavesOutWhatNoPageRefersToAnyMore) {
    TestProject test;
    test.project.Name = "Shop";
    test.folder.Put("source\\gone.gif", "GIF89a");
    test.Insert("index", "<a type=omMerge name='Project Pages'>7</a>");
    const std::string open = test.Insert("open", "<p>x</p>", {}, ShowInsertedPage::Yes)->Key();
    const std::string removed = test.Insert("removed", "<img src=gone.gif>")->Key();
    const TakenFiles taken =
        TakeFiles(test.context, open, {test.folder.Put("in\\dropped.gif", "GIF89a")});
    auto& document = *test.workspace.Find(open)->document;
    document.setInnerHTML(*document.body(),
                          "<p>" + VariableMarkup("Project Pages", "3") + taken.html);
    const auto publish = [&] {
        const PublishResult result = PublishAsHTML(test.context, test.folder.Path("www"));
        EXPECT_TRUE(result.published) << result.reason;
        std::string names;
        for (const char* name : {"gone.gif", "dropped.gif"})
            if (FileExists(*test.files, result.folder + "\\media\\" + name)) names += name;
        EXPECT_TRUE(DeleteFolder(*test.files, result.folder + "\\media"));
        return names;
    };
    EXPECT_EQ(publish(), "gone.gifdropped.gif");
    RemoveProjectItem(test.context, removed);
    document.setInnerHTML(*document.body(), "<p>" + VariableMarkup("Project Pages", "3"));
    EXPECT_EQ(publish(), "");
    for (const char* page : {"index.htm", "open.htm"})
        EXPECT_THAT(test.Text(test.folder.Path("www\\Shop\\") + page), HasSubstr(">2</"))
            << page << " tells how many pages there are";
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
    test.project.Name = "Tea Shop";
    Page* page = test.Insert("one");
    const std::string target = test.folder.Path("www\\Tea Shop");
    const std::string done =
        "The project has been successfully published as HTML to folder:\n\n" + ToNativePath(target);
    const std::string failed = "could not be published as HTML.\n\nPlease try again.";
    const auto ask = [&](const std::string& folder, Answer answer, const std::string& text) {
        test.dialogs.ExpectFolder(folder);
        if (!folder.empty()) test.dialogs.ExpectMessage(answer, text);
        AskAndPublishAsHTML(test.context);
        return test.dialogs.Messages().empty() ? Message{} : test.dialogs.Messages().back();
    };
    ask("", Answer::Ok, "");
    EXPECT_EQ(ask(test.folder.Path("www"), Answer::Ok, done).icon, Icon::Information);
    EXPECT_EQ(ask(test.frame.runFolder, Answer::Ok, failed).title, "Publish as HTML");
    EXPECT_TRUE(test.launcher.urls.empty());

    ASSERT_EQ(test.files->Write(page->Filename,
                                "<title>One</title><a href=no.htm>x</a><a href=index.htm#no>y</a>"
                                "<a href=http://a.org/>z</a>"),
              FileError::None);
    const Message message = ask(test.folder.Path("www"), Answer::Action, done);
    EXPECT_EQ(message.action, "&Open");
    EXPECT_EQ(message.icon, Icon::Exclamation);
    EXPECT_THAT(message.text, HasSubstr("These links lead nowhere: 'no.htm (one)' and "
                                        "'index.htm#no (one)'."));
    ASSERT_EQ(test.launcher.urls.size(), 1u);
    EXPECT_THAT(test.launcher.urls[0], testing::EndsWith("/www/Tea%20Shop/index.htm"));

    test.launcher.works = false;
    test.dialogs.ExpectFolder(test.folder.Path("www"));
    test.dialogs.ExpectMessage(Answer::Action, done);
    test.dialogs.ExpectMessage(Answer::Ok, ToNativePath(target));
    AskAndPublishAsHTML(test.context);
}

}  // namespace
}  // namespace pw
