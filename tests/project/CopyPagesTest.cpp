#include "project/CopyPages.h"

#include <gmock/gmock.h>

#include "project/Attachments.h"
#include "project/Folders.h"
#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using testing::HasSubstr;

struct CopiedPages : testing::Test {
    /** "name origin" of each attachment. */
    static std::vector<std::string> Listed(const Page& page) {
        std::vector<std::string> lines;
        for (const Attachment& file : page.Attachments())
            lines.push_back(GetFileName(file.Filename()) + " " + std::to_string(file.Origin));
        return lines;
    }
    test::TestProject test;
    std::string reason;
};

TEST_F(CopiedPages, KeepNameLinksAndFilesWhenCutAndPasted) {
    test.folder.Put("source\\a.gif", "GIF89a");
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    Page* home = test.Insert("home", "<a href=About.html>x</a>");
    Page* page = test.Insert("about", "<img src=a.gif><a href=media/list.pdf>x</a>");
    ASSERT_TRUE(
        RenameFile(*test.files, page->Filename, "About.html"));  // as a page that was taken in
    page->Filename = BuildPath(GetParentFolder(page->Filename), "About.html");
    page->Description = "what it is";
    const auto add = [&](const char* name, int origin) {
        const std::string file = test.folder.Put(std::string("out\\") + name, name);
        ASSERT_TRUE(AddSystemAttachment(test.context, file, *page, origin));
    };
    add("list.pdf", AttachmentOrigin::Placed);
    add("chosen.zip", AttachmentOrigin::Chosen);

    struct Row {
        const char* name;
        std::string target;
        std::string folder;
        const char* link;
    };
    std::string key = page->Key();
    for (const Row& row : {Row{"into the same folder", home->Key(), "", "media/list.pdf"},
                           Row{"into another one", folder->Key(), "\\Docs", "../media/list.pdf"}}) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(CutPage(test.context, key, &reason)) << reason;
        Page* moved = PastePage(test.context, row.target, &reason);
        ASSERT_TRUE(moved) << reason;
        const std::string& root = test.frame.settings.PreviewFolder;
        EXPECT_EQ(moved->Filename, root + row.folder + "\\About.html");
        EXPECT_THAT(test.Text(moved->Filename), HasSubstr(row.link));
        for (const std::string& file :
             {row.folder + "\\media\\a.gif", std::string("\\media\\list.pdf"),
              std::string("\\media\\chosen.zip")})
            EXPECT_TRUE(FileExists(*test.files, root + file)) << file;
        EXPECT_EQ(FileExists(*test.files, root + "\\media\\a.gif"), row.folder.empty())
            << "what the page no longer uses goes";
        EXPECT_THAT(Listed(*moved),
                    testing::UnorderedElementsAre("a.gif 0", "list.pdf 1", "chosen.zip 0"));
        EXPECT_EQ(moved->Description, "what it is");
        EXPECT_FALSE(moved->IsDefault);
        key = moved->Key();
    }
    // The home page comes back as what it was.
    ASSERT_TRUE(CutPage(test.context, std::string(home->Key()), &reason)) << reason;
    Page* back = PastePage(test.context, "W0001", &reason);
    ASSERT_TRUE(back) << reason;
    EXPECT_TRUE(back->IsDefault);
    EXPECT_EQ(GetFileName(back->Filename), "index.htm");
    Page* again = PastePage(test.context, "W0001", &reason);
    ASSERT_TRUE(again) << reason;
    EXPECT_FALSE(again->IsDefault) << "there is one";
}

}  // namespace
}  // namespace pw
