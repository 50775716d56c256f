#include "frame/Paths.h"

#include "support/TestContext.h"

namespace pw {
namespace {

using test::TestContext;

TEST(Paths, TakesPathsApart) {
    struct Row {
        const char* path;
        const char* name;
        const char* base;
        const char* extension;
        const char* parent;
        const char* root;
    };
    for (const Row& row :
         {Row{"\\home\\ann\\a.b.html", "a.b.html", "a.b", "html", "\\home\\ann", "\\"},
          Row{"\\home\\ann\\", "ann", "ann", "", "\\home", "\\"},
          Row{"\\a", "a", "a", "", "\\", "\\"}, Row{"\\", "", "", "", "", "\\"},
          Row{"C:\\site\\x.gif", "x.gif", "x", "gif", "C:\\site", "C:\\"},
          Row{"C:\\x", "x", "x", "", "C:\\", "C:\\"},
          Row{"media/a.gif", "a.gif", "a", "gif", "media", "\\"},
          Row{".hidden", ".hidden", "", "hidden", "", "\\"}, Row{"", "", "", "", "", ""}}) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(GetFileName(row.path), row.name);
        EXPECT_EQ(GetBaseName(row.path), row.base);
        EXPECT_EQ(GetExtension(row.path), row.extension);
        EXPECT_EQ(GetParentFolder(row.path), row.parent);
        EXPECT_EQ(GetDriveRoot(row.path), row.root);
    }
    EXPECT_EQ(BuildPath("\\a\\", "\\b"), "\\a\\b");
    EXPECT_EQ(BuildPath("\\a", "b"), "\\a\\b");
    EXPECT_EQ(BuildPath("\\", "b"), "\\b");
    EXPECT_EQ(BuildPath("", "b"), "b");
}

TEST(Paths, KnowsWhatLiesInAFolder) {
    EXPECT_TRUE(IsInFolder("\\a\\B\\c", "\\A\\b"));
    EXPECT_TRUE(IsInFolder("\\a", "\\a\\"));
    EXPECT_TRUE(IsInFolder("\\a", "\\"));
    EXPECT_FALSE(IsInFolder("\\ab", "\\a"));
    EXPECT_FALSE(IsInFolder("\\a", ""));
}

TEST(Paths, TurnsAddressesIntoPaths) {
    for (const auto& [url, path] : std::vector<std::pair<std::string, std::string>>{
             {"file:///home/ann/a.gif", "\\home\\ann\\a.gif"},
             {"FILE:///C:/site/a.gif", "C:\\site\\a.gif"},
             {"file://server/a", "server\\a"},
             {"/home/ann", "\\home\\ann"},
             {"media/a.gif", "media\\a.gif"},
             {"/", "\\"}})
        EXPECT_EQ(URLToPath(url), path) << url;
}

TEST(Paths, ResolvesLinksForComparison) {
    struct Row {
        const char* folder;
        const char* relative;
        const char* full;
    };
    for (const Row& row :
         {Row{"\\w\\site", "a.html", "/w/site/a.html"},
          Row{"\\w\\site\\", "../media/ a.gif ", "/w/media/a.gif"},
          Row{"\\w\\site", "x/y/../../b.html", "/w/site/b.html"},
          Row{"\\w", "../../../b.html", "/b.html"}, Row{"\\w", "./b.html", "/w/b.html"},
          Row{"\\w", "http://h/x/../y.html", "://h/y.html"}}) {
        SCOPED_TRACE(row.relative);
        EXPECT_EQ(ResolveRelativePath(row.folder, row.relative), row.full);
    }
}

TEST(FileTools, DeletesFilesAndEmptiesFolders) {
    TestContext test;
    FileSystem& files = *test.files;
    test.folder.Put("s\\a.html", "a");
    test.folder.Put("s\\sub\\b.html", "b");
    EXPECT_TRUE(DeleteFile(files, test.folder.Path("s\\none.html")));
    EXPECT_TRUE(DeleteFile(files, test.folder.Path("s\\*.*")));
    EXPECT_TRUE(FolderExists(files, test.folder.Path("s")));
    EXPECT_FALSE(test.folder.Has("s\\sub")) << "no page of a former project stays";
    EXPECT_TRUE(DeleteFile(files, test.folder.Path("none\\*.*")));
    EXPECT_FALSE(DeleteFile(files, test.folder.Path("s"))) << "a folder is no file";
    EXPECT_TRUE(DeleteFolder(files, test.folder.Path("s")));
    EXPECT_TRUE(DeleteFolder(files, test.folder.Path("s")));
}

TEST(FileTools, CopiesAndRenames) {
    TestContext test;
    FileSystem& files = *test.files;
    const std::string a = test.folder.Put("a.html", "a");
    EXPECT_FALSE(CopyFileToFolder(files, a, test.folder.Path("none")));
    EXPECT_TRUE(MakeFolder(files, test.folder.Path("to")));
    EXPECT_TRUE(CopyFileToFolder(files, a, test.folder.Path("to")));
    EXPECT_EQ(test.folder.Get("to\\a.html"), "a");
    EXPECT_EQ(GetFileSize(files, a), 1);
    EXPECT_EQ(GetFileSize(files, test.folder.Path()), 0);
    for (const char* name : {"", ".", "..", "b\\c", "../b", "TO"})
        EXPECT_FALSE(RenameFile(files, a, name)) << name;
    EXPECT_FALSE(RenameFolder(files, a, "b.html")) << "a file is no folder";
    EXPECT_TRUE(RenameFile(files, a, "b.html"));
    EXPECT_TRUE(RenameFolder(files, test.folder.Path("to"), "media"));
    EXPECT_EQ(test.folder.Get("media\\a.html"), "a");
    EXPECT_TRUE(WriteTextFile(files, "1", test.folder.Path("t"), WriteMode::Append));
    EXPECT_TRUE(WriteTextFile(files, "2", test.folder.Path("t"), WriteMode::Append));
    EXPECT_EQ(ReadTextFile(files, test.folder.Path("t")), "12");
    EXPECT_TRUE(WriteTextFile(files, "3", test.folder.Path("t")));
    EXPECT_EQ(ReadTextFile(files, test.folder.Path("t")), "3");
}

TEST(FileTools, FindsFreeNames) {
    TestContext test;
    test.folder.Put("m\\A.GIF", "");
    test.folder.Put("m\\a2.gif", "");
    test.folder.Put("m\\readme", "");
    const auto free = [&](const char* name) {
        return FreeName(*test.files, test.folder.Path("m"), name);
    };
    EXPECT_EQ(free("a.gif"), "a3.gif");
    EXPECT_EQ(free("b.gif"), "b.gif");
    EXPECT_EQ(free("README"), "README2");
}

}  // namespace
}  // namespace pw
