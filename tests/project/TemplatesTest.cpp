#include "project/Templates.h"

#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(CreatePageImage, NeedsTheWindowInFrontAndAPage) {
    TestProject test;
    const std::string path = test.folder.Put("picture.jpg", "former");
    struct Row {
        const char* name;
        bool foreground, page;
        const char* picture;
        const char* after;
    };
    for (const Row& row : {Row{"behind another window", false, true, "new", "former"},
                           Row{"no page", true, false, "new", "former"},
                           Row{"the picture fails", true, true, "", "former"},
                           Row{"all well", true, true, "new", "new"}}) {
        SCOPED_TRACE(row.name);
        if (row.page && test.workspace.pages.empty())
            test.Insert("one", "x", {}, ShowInsertedPage::Yes);
        if (!row.page) test.workspace.CloseAllPages(true);
        test.workspace.foreground = row.foreground;
        test.workspace.picture = row.picture;
        EXPECT_EQ(CreatePageImage(test.context, path), std::string(row.after) == "new");
        EXPECT_EQ(test.Text(path), row.after);
    }
}

TEST(CreateThumbnail, NamesItAfterTheProjectOnce) {
    TestProject test;
    test.Insert("one", "x", {}, ShowInsertedPage::Yes);
    test.workspace.foreground = true;
    EXPECT_TRUE(CreateThumbnail(test.context));
    const std::string path =
        test.frame.settings.PreviewFolder + "\\~pw" + test.project.ProjectId + ".jpg";
    EXPECT_EQ(test.project.ThumbnailFilename, path);
    EXPECT_EQ(test.Text(path), "picture");
    const std::string other = test.frame.settings.PreviewFolder + "\\mine.jpg";
    ASSERT_TRUE(WriteTextFile(*test.files, "old", other));
    test.project.ThumbnailFilename = other;
    EXPECT_TRUE(CreateThumbnail(test.context));
    EXPECT_EQ(test.Text(other), "picture") << "a file that is there is refreshed";

    // A save makes one only where there is none, and goes on without.
    test.workspace.picture = "later";
    test.SaveAs("one.pwp");
    EXPECT_EQ(test.Text(other), "picture");
    test.project.ThumbnailFilename.clear();
    test.workspace.foreground = false;
    test.SaveAs("one.pwp");
}

TEST(SetDefaultTemplate, FillsThePageOutsideTheTree) {
    TestProject test;
    EXPECT_FALSE(SetDefaultTemplate(test.context)) << "no page is open";
    test.folder.Put("source\\a.gif", "GIF89a");
    Folder* folder = test.project.WebSites().Item(1)->Sections().Add();
    folder->WorkingFolder = "sub";
    ASSERT_TRUE(MakeFolder(*test.files, test.frame.settings.PreviewFolder + "\\sub\\media"));
    test.Insert("Look", "<img src=a.gif>", Container(*folder), ShowInsertedPage::Yes);
    test.workspace.foreground = true;
    EXPECT_TRUE(SetDefaultTemplate(test.context));

    Page* page = test.project.DefaultTemplate();
    ASSERT_NE(page, nullptr);
    const Settings& settings = test.frame.settings;
    const std::string name = "tmp" + test.project.ProjectId;
    EXPECT_EQ(page->Filename, settings.PreviewFolder + "\\" + name + ".htm");
    EXPECT_EQ(page->Name, "Look");
    EXPECT_EQ(test.project.PageCount(), 1);
    EXPECT_NE(test.Text(page->Filename).find("media/a.gif"), std::string::npos);
    EXPECT_EQ(test.Text(settings.MediaFolder + "\\a.gif"), "GIF89a");
    const Attachment* picture = page->Attachments().Item(1);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->Filename(), settings.MediaFolder + "\\" + name + ".jpg");
    EXPECT_EQ(picture->Kind, AttachmentKind::TemplateThumbnail);
    EXPECT_EQ(picture->State, AttachmentState::InUse);

    // It travels with the project.
    const std::string file = test.SaveAs("one.pwp");
    InitNewProject(test.context);
    ASSERT_TRUE(OpenProject(test.context, file, Silent::No));
    page = test.project.DefaultTemplate();
    ASSERT_NE(page, nullptr);
    EXPECT_NE(test.Text(page->Filename).find("media/a.gif"), std::string::npos);
    EXPECT_EQ(page->Attachments().Count(), 2);
}

}  // namespace
}  // namespace pw
