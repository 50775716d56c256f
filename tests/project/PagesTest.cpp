#include "project/Pages.h"

#include "project/Folders.h"
#include "project/FramesetMask.h"
#include "project/PageNames.h"
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
    EXPECT_FALSE(FileExists(*test.files, file));

    std::string reason;
    test.workspace.ShowPage(top, "top", GetPage(test.context, top)->Filename, 0);
    test.workspace.Find(top)->refusesToClose = true;
    EXPECT_FALSE(RemoveProjectItem(test.context, top, nullptr, &reason));
    EXPECT_NE(reason.find("'top' is still open"), std::string::npos) << reason;
    EXPECT_TRUE(FileExists(*test.files, GetPage(test.context, top)->Filename));
    test.workspace.Find(top)->refusesToClose = false;

    RemovedItem removed;
    EXPECT_TRUE(RemoveProjectItem(test.context, top, &removed));
    ASSERT_TRUE(removed.page);
    EXPECT_TRUE(FileExists(*test.files, removed.aside + "\\index.htm"));
    EXPECT_EQ(removed.page->Name, "top");
    for (const auto& key : {top, std::string("W0009"), std::string()})
        EXPECT_FALSE(RemoveProjectItem(test.context, key)) << key;
}

struct RemovedPages : testing::Test {
    std::string Path(const std::string& name) const {
        return BuildPath(test.frame.settings.PreviewFolder, name);
    }
    bool Stands(const std::string& name) const { return FileExists(*test.files, Path(name)); }
    void Put(const std::string& name) {
        ASSERT_TRUE(MakeFolder(*test.files, GetParentFolder(Path(name))));
        ASSERT_EQ(test.files->Write(Path(name), "x"), FileError::None);
    }
    TestProject test;
};

TEST_F(RemovedPages, TakeTheirFilesAlongButNotThoseOfOthers) {
    for (const char* file : {"own.gif", "listed.gif", "linked.pdf", "styled.gif", "twice.gif"})
        Put(std::string("media\\") + file);
    Put("Docs\\media\\deep.gif");
    Put("Docs\\media\\lent.gif");
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    Page* home = test.Insert("home");
    Page* other = test.Insert("other");
    ASSERT_EQ(test.files->Write(other->Filename,
                                "<a href='media/linked%2Epdf'>x</a>"
                                "<p style='background: url(media/styled.gif)'>"
                                "<img src=Docs/media/lent.gif>"),
              FileError::None);
    for (const char* file : {"own.gif", "listed.gif", "linked.pdf", "styled.gif"})
        home->Attachments().Add(Path(std::string("media\\") + file));
    other->Attachments().Add(Path("media\\listed.gif"));
    Page* deep = test.Insert("deep", "", Container(*folder));
    deep->Attachments().Add(Path("Docs\\media\\deep.gif"));
    deep->Attachments().Add(Path("media\\twice.gif"));
    test.project.Attachments().Add(Path("media\\twice.gif"));

    ASSERT_TRUE(home->IsDefault);
    RemovedItem removed;
    ASSERT_TRUE(RemoveProjectItem(test.context, home->Key(), &removed));
    EXPECT_FALSE(Stands("index.htm") || Stands("media\\own.gif"));
    EXPECT_TRUE(FileExists(*test.files, removed.aside + "\\media\\own.gif"));
    for (const char* file : {"listed.gif", "linked.pdf", "styled.gif"}) {
        EXPECT_TRUE(Stands(std::string("media\\") + file)) << file;
        EXPECT_TRUE(other->Attachments().Find(Path(std::string("media\\") + file)))
            << file << " is saved with the page that refers to it";
    }
    EXPECT_EQ(GetFileName(test.Insert("again")->Filename), "index.htm");

    const std::string folderKey = folder->Key();
    ASSERT_TRUE(RemoveProjectItem(test.context, folderKey, &removed));
    EXPECT_FALSE(Stands("Docs\\deep.htm") || Stands("Docs\\media\\deep.gif"));
    EXPECT_TRUE(FileExists(*test.files, removed.aside + "\\Docs\\deep.htm"));
    EXPECT_TRUE(Stands("Docs\\media\\lent.gif") && Stands("media\\twice.gif"));
}

TEST_F(RemovedPages, LeaveTheirNamesToOthers) {
    Folder* first = AddFolder(test.context, {}, {"News"});
    Folder* second = AddFolder(test.context, {}, {"Old"});
    test.Insert("a", "", Container(*first));
    const std::string gone = test.Insert("first")->Key();
    Page* next = test.Insert("next");
    std::string reason;
    ASSERT_TRUE(RemoveProjectItem(test.context, gone));
    EXPECT_FALSE(IsPageNameTaken(test.context, *next, "index.htm"));
    ASSERT_TRUE(RemoveProjectItem(test.context, std::string(first->Key())));
    EXPECT_TRUE(RenameFolderOnDisk(test.context, *second, "News", &reason)) << reason;

    // A removal that fails half-way leaves everything as it was.
    Page* blocked = test.Insert("b", "", Container(*second));
    test.project.IsDirty = false;
    const std::string wall = BuildPath(test.frame.settings.WorkingFolder, "removed\\3");
    ASSERT_EQ(test.files->Write(wall + ".txt", "x"), FileError::None);
    ASSERT_TRUE(DeleteFolder(*test.files, GetParentFolder(wall)));
    ASSERT_EQ(test.files->Write(GetParentFolder(wall), "a file in the way"), FileError::None);
    EXPECT_FALSE(RemoveProjectItem(test.context, std::string(second->Key()), nullptr, &reason));
    EXPECT_NE(reason.find("can not be moved aside"), std::string::npos) << reason;
    EXPECT_EQ(GetProjectItem(test.context, blocked->Key()).page, blocked);
    EXPECT_TRUE(FileExists(*test.files, blocked->Filename));
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
