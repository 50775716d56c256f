#include "project/Pages.h"

#include "project/Folders.h"
#include "project/FramesetMask.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(Pages, AreFoundByTheirKeys) {
    TestProject test;
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    Page* page = test.Insert("a", "", Container(*folder));
    const std::string image = test.folder.Put("b.gif", "x");
    Attachment* attachment = page->Attachments().Add(image);
    const ProjectContext& c = test.context;

    EXPECT_EQ(GetProjectItem(c, page->Key()).page, page);
    EXPECT_EQ(GetProjectItem(c, folder->Key()).folder, folder);
    EXPECT_EQ(GetProjectItem(c, attachment->Key()).attachment, attachment);
    EXPECT_EQ(GetFolder(c, page->Key()), folder);
    EXPECT_EQ(GetWebSite(c, page->Key()), test.project.WebSites().Item(1));
    EXPECT_EQ(GetContainer(c, page->Key()).folder, folder);
    EXPECT_EQ(GetContainer(c, "").site, test.project.WebSites().Item(1));
    for (const char* key :
         {"", "W0002", "W0001P0001", "W0001F0001F0001", "W0001F0001P0001P0001", "P0001", "R", "W00",
          "W0001F0001P", "W0001W0001", "\xff\xff\xff\xff\xff"})
        EXPECT_FALSE(GetProjectItem(c, key)) << key;
    for (const char* key : {"", "W0001", "P0001", "W0001P0001"})
        EXPECT_EQ(GetFolder(c, key), nullptr) << key;
}

TEST(Pages, HaveOneDefaultInEachFolder) {
    TestProject test;
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    Page* first = test.Insert("first");
    Page* second = test.Insert("second");
    Page* deep = test.Insert("deep", "", Container(*folder));
    EXPECT_EQ(GetDefaultPage(test.context, second->Key()), first);
    EXPECT_EQ(GetDefaultPage(test.context, deep->Key()), nullptr);
    SetDefaultPage(test.context, *second);
    SetDefaultPage(test.context, *deep);
    EXPECT_EQ(GetDefaultPage(test.context, first->Key()), second);
    EXPECT_FALSE(first->IsDefault);
    EXPECT_EQ(GetDefaultPage(test.context, folder->Key()), deep);
}

TEST(Pages, AreRemovedWithTheirWindowsAndWithAllBelowThem) {
    TestProject test;
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    Folder* below = AddFolder(test.context, Container(*folder), {"Old"});
    const std::string top = test.Insert("top")->Key();
    const std::string deep =
        test.Insert("deep", "", Container(*below), ShowInsertedPage::Yes)->Key();
    const std::string file = GetPage(test.context, deep)->Filename;
    const std::string folderKey = folder->Key();
    ASSERT_TRUE(test.workspace.Find(deep));

    EXPECT_TRUE(RemoveProjectItem(test.context, folderKey));
    EXPECT_FALSE(test.workspace.Find(deep));
    EXPECT_FALSE(GetProjectItem(test.context, folderKey));
    EXPECT_EQ(test.project.PageCount(), 1);
    EXPECT_TRUE(FileExists(*test.files, file)) << "files go with the scratch area only";

    RemovedItem removed;
    EXPECT_TRUE(RemoveProjectItem(test.context, top, &removed));
    ASSERT_TRUE(removed.page);
    EXPECT_EQ(removed.page->Name, "top");
    for (const auto& key : {top, std::string("W0009"), std::string()})
        EXPECT_FALSE(RemoveProjectItem(test.context, key)) << key;
}

TEST(Pages, CountWhatAVisitorLoads) {
    TestProject test;
    test.folder.Put("source\\a.gif", "GIF89a" + std::string(94, 'a'));
    test.folder.Put("source\\back.gif", "GIF89a" + std::string(994, 'b'));
    Page* page = test.Insert("a",
                             "<img src=a.gif><img src=A.GIF><img src=a.gif><img src=no.gif>"
                             "<p>one two</p>",
                             {}, ShowInsertedPage::Yes);
    auto* open = test.workspace.Find(page->Key());
    open->document->setAttribute(*open->document->body(), "background", "media/a.gif");
    const auto html = std::int64_t(open->document->html().size());
    EXPECT_EQ(CalculatePageSize(test.context, page->Key()), html + 200);
    EXPECT_EQ(CalculatePageSize(test.context, ""), 0);
    EXPECT_EQ(CalculatePageSize(test.context, "W0001P0099"), 0);

    ComputePageStatistics(test.context, open->document.get(), page);
    EXPECT_EQ(page->WordCount, 2);
    EXPECT_EQ(page->Images, 4);
    EXPECT_EQ(page->TotalSize, html + 200);
    EXPECT_EQ(page->Modified, test.clock.now);
    ComputePageStatistics(test.context, nullptr, page);
    ComputePageStatistics(test.context, open->document.get(), nullptr);
}

TEST(Pages, AreWrittenFromTheirWindows) {
    TestProject test;
    Page* page = test.Insert("a", "<p>text</p>", {}, ShowInsertedPage::Yes);
    auto* open = test.workspace.Find(page->Key());
    open->document->setTitle("new");
    EXPECT_TRUE(SavePageFile(test.context, *page));
    EXPECT_EQ(test.Text(page->Filename), open->document->html());

    page->Filename.clear();
    EXPECT_TRUE(SavePageFile(test.context, *page));
    EXPECT_EQ(GetFileName(page->Filename), "page_1.htm");

    std::string reason;
    page->Filename = test.folder.Path("missing\\a.htm");
    EXPECT_FALSE(SavePageFile(test.context, *page, &reason));
    EXPECT_THAT(reason, testing::HasSubstr("can not be saved"));

    page->PageType = PageType::Frames;
    page->Filename = test.frame.settings.PreviewFolder + "\\frames.htm";
    const std::string frames =
        "<html><frameset><frame src=a.htm><noframes><body>x</body></noframes></frameset></html>";
    open->document = dom::Document::parseText(CommentFrameset(frames));
    EXPECT_TRUE(SavePageFile(test.context, *page));
    EXPECT_EQ(test.Text(page->Filename), frames);
}

TEST(Pages, TakeMarkupAtTheirEnd) {
    TestProject test;
    Page* closed = test.Insert("closed");
    Page* open = test.Insert("open", "<p>text</p>", {}, ShowInsertedPage::Yes);
    for (Page* page : {closed, open}) {
        EXPECT_TRUE(InsertHTMLAtBottom(test.context, page->Key(), "<hr>"));
        EXPECT_THAT(test.Text(page->Filename), testing::HasSubstr("<p>text</p><hr></body>"));
    }
    EXPECT_FALSE(InsertHTMLAtBottom(test.context, "W0001P0099", "<hr>"));
    for (Page* page : {closed, open}) {
        const std::string before = test.Text(page->Filename);
        for (const char* lost :
             {"", "</body>", "<td>x", "<!-- x", "<body class=x>x", "<frameset><frame></frameset>"})
            EXPECT_FALSE(InsertHTMLAtBottom(test.context, page->Key(), lost)) << lost;
        EXPECT_EQ(test.Text(page->Filename), before);
        for (const char* kept :
             {"<p>unclosed", "<table><tr><td>x</table>", "a &lt; b", "<script>f()", "<!-- x -->"})
            EXPECT_TRUE(InsertHTMLAtBottom(test.context, page->Key(), kept)) << kept;
    }
}

TEST(Pages, NumberTheirFiles) {
    TestProject test;
    test.folder.Put("n\\page_1.htm", "");
    test.folder.Put("n\\PAGE_2.HTM", "");
    test.folder.Put("n\\page_4.htm", "");
    EXPECT_EQ(GetUniqueFilename(*test.files, "page_", "htm", test.folder.Path("n")), 3);
    EXPECT_EQ(GetUniqueFilename(*test.files, "page_", "htm", test.folder.Path("none")), 1);
}

}  // namespace
}  // namespace pw
