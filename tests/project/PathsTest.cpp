#include "project/Paths.h"

#include "platform/Text.h"
#include "project/Folders.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(ProjectPaths, LeadFromAPageToAFile) {
    TestProject test;
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    ASSERT_TRUE(folder);
    const std::string top = test.Insert("top")->Key();
    const std::string deep = test.Insert("deep", "", Container(*folder))->Key();
    const std::string root = test.frame.settings.PreviewFolder;
    const std::string url = "file://" + ReplaceAll(root, "\\", "/");

    const struct {
        const char* name;
        std::string file;
        std::string key;
        std::string link;
    } cases[] = {
        {"a picture, from the top", root + "\\media\\a.gif", top, "media/a.gif"},
        {"a picture, from a folder", root + "\\media\\a.gif", deep, "../media/a.gif"},
        {"a picture of the folder", root + "\\Docs\\media\\a.gif", deep, "../Docs/media/a.gif"},
        {"a page of the same folder", root + "\\Docs\\b.htm", deep, "b.htm"},
        {"the same folder in other letters", root + "\\DOCS\\b.htm", deep, "b.htm"},
        {"a page of a folder, from the top", root + "\\Docs\\b.htm", top, "Docs/b.htm"},
        {"an address of a file", url + "/media/a%20b.gif", deep, "../media/a b.gif"},
        {"outside of the project", "\\home\\ann\\a.gif", top, "/home/ann/a.gif"},
        {"a folder that only begins alike", root + "x\\a.gif", top,
         ReplaceAll(root, "\\", "/") + "x/a.gif"},
        {"an unknown page", root + "\\media\\a.gif", "W0001P0099",
         ReplaceAll(root, "\\", "/") + "/media/a.gif"},
        {"a link", "media/a.gif", deep, "media/a.gif"},
        {"a link from the root of a site", "/media/a.gif", deep, "/media/a.gif"},
        {"an address of the web", "http://example.org/a\\b", deep, "http://example.org/a\\b"},
        {"data", "data:image/gif;base64,R0lG", deep, "data:image/gif;base64,R0lG"},
        {"nothing", "", deep, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(GetVirtualPath(test.context, c.file, c.key), c.link) << c.name;
}

TEST(ProjectPaths, KnowTheFoldersOfItems) {
    TestProject test;
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    Folder* below = AddFolder(test.context, Container(*folder), {"Old"});
    ASSERT_TRUE(below);
    const std::string root = test.frame.settings.PreviewFolder;
    const std::string page = test.Insert("deep", "", Container(*below))->Key();
    EXPECT_EQ(GetPageFolder(test.context, page), root + "\\Docs\\Old");
    EXPECT_EQ(GetPageFolder(test.context, folder->Key()), root + "\\Docs");
    EXPECT_EQ(GetMediaFolder(test.context, page), root + "\\Docs\\Old\\media");
    for (const char* key : {"W0001", "", "R", "W0001P0009", "garbage"})
        EXPECT_EQ(GetMediaFolder(test.context, key), root + "\\media") << key;
}

TEST(ProjectPaths, ResolveReferencesAgainstTheFolderOfThePage) {
    TestProject test;
    const std::string base = test.folder.Path("site");
    test.folder.Put("site\\a b.gif", "x");
    EXPECT_EQ(ResolvePath(test.context, "a%20b.gif?1", base), base + "\\a b.gif");
    EXPECT_EQ(ResolvePath(test.context, "no.gif", base + "\\"), base + "\\no.gif");
    EXPECT_EQ(ResolvePath(test.context, "FILE:///x/a.gif", base), "\\x\\a.gif");
    EXPECT_EQ(ResolvePath(test.context, "http://example.org/a.gif", base), "");
}

}  // namespace
}  // namespace pw
