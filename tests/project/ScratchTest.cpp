#include "project/Scratch.h"

#include <unistd.h>

#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(Scratch, FoldersLieInTheRunFolder) {
    TestProject test;
    const Settings& settings = test.frame.settings;
    EXPECT_EQ(settings.WorkingFolder, test.frame.runFolder + "\\~pw");
    EXPECT_EQ(settings.PreviewFolder, settings.WorkingFolder + "\\preview");
    EXPECT_EQ(settings.MediaFolder, settings.PreviewFolder + "\\media");
    EXPECT_EQ(settings.ThemePreviewFolder, settings.WorkingFolder + "\\themes");
    for (const auto& folder : {settings.MediaFolder, settings.ThemePreviewFolder})
        EXPECT_TRUE(FolderExists(*test.files, folder)) << folder;

    test.frame.runFolder.clear();
    EXPECT_FALSE(CreateWorkingFolders(test.frame)) << "never in a place that all programs share";
}

TEST(Scratch, ClearingEmptiesTheFoldersAndSweepsTemporaryFiles) {
    TestProject test;
    const Settings& settings = test.frame.settings;
    const auto put = [&](const std::string& path) {
        ASSERT_TRUE(MakeFolder(*test.files, GetParentFolder(path)));
        ASSERT_TRUE(WriteTextFile(*test.files, "x", path));
    };
    const std::vector<std::string> swept = {
        settings.PreviewFolder + "\\page.htm", settings.PreviewFolder + "\\sub\\media\\a.gif",
        settings.MediaFolder + "\\a.gif", settings.WorkingFolder + "\\stray\\b",
        test.frame.runFolder + "\\~pwpicture.jpg"};
    const std::string lock = test.frame.runFolder + "\\lock";
    const std::string journal = test.frame.runFolder + "\\journal\\record";
    for (const std::string& path : swept)
        put(path);
    put(lock);
    put(journal);

    EXPECT_TRUE(ClearWorkingFolders(test.frame, ScratchFolders::Keep));
    for (const std::string& path : swept)
        EXPECT_FALSE(FileExists(*test.files, path)) << path;
    EXPECT_FALSE(FolderExists(*test.files, settings.PreviewFolder + "\\sub"));
    EXPECT_TRUE(FolderExists(*test.files, settings.MediaFolder));
    EXPECT_TRUE(FolderExists(*test.files, settings.ThemePreviewFolder));

    EXPECT_TRUE(ClearWorkingFolders(test.frame, ScratchFolders::Remove));
    EXPECT_FALSE(FolderExists(*test.files, settings.WorkingFolder));
    EXPECT_TRUE(FileExists(*test.files, lock));
    EXPECT_TRUE(FileExists(*test.files, journal));
}

TEST(Scratch, NoFileOutsideTheRunFolderIsDeleted) {
    TestProject test;
    const std::string outside = test.folder.Put("outside\\keep.gif", "x");
    const std::string twin = test.frame.runFolder + "x\\keep.gif";  // a name that begins alike
    ASSERT_TRUE(MakeFolder(*test.files, GetParentFolder(twin)));
    ASSERT_TRUE(WriteTextFile(*test.files, "x", twin));
    const std::string preview = test.frame.settings.PreviewFolder;
    ASSERT_EQ(::symlink(ToNativePath(test.folder.Path("outside")).c_str(),
                        ToNativePath(preview + "\\link").c_str()),
              0);
    Page* page = test.Insert("one");
    const std::string inside = page->Filename;
    page->Attachments().Add(outside);
    page->Attachments().Add(twin);
    page->Attachments().Add(preview + "\\link\\keep.gif");
    page->Attachments().Add(preview + "\\..\\..\\..\\..\\..\\outside\\keep.gif");
    test.project.Attachments().Add(outside);
    test.project.ThumbnailFilename = outside;
    test.project.CreateDefaultTemplate()->Filename = outside;
    for (const char* path : {"..", "", ".", "..\\..\\..\\..\\..\\outside", "link"})
        test.project.WebSites().Item(1)->Sections().Add()->WorkingFolder = path;

    DeleteProjectFiles(test.frame, test.project);
    EXPECT_TRUE(FileExists(*test.files, outside));
    EXPECT_TRUE(FileExists(*test.files, twin));
    EXPECT_FALSE(FileExists(*test.files, inside));
    EXPECT_TRUE(FolderExists(*test.files, preview)) << "only what the project names goes";
    EXPECT_EQ(test.project.PageCount(), 0);

    test.frame.settings.MediaFolder = test.folder.Path("outside");
    EXPECT_TRUE(ClearWorkingFolders(test.frame, ScratchFolders::Remove));
    EXPECT_TRUE(FileExists(*test.files, outside));
}

}  // namespace
}  // namespace pw
