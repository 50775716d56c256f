#include "project/FileUses.h"

#include "project/Attachments.h"
#include "project/DroppedFiles.h"
#include "project/Folders.h"
#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

struct FileUsesTest : testing::Test {
    void Write(const std::string& name, const std::string& text) {
        ASSERT_TRUE(MakeFolder(*test.files, GetParentFolder(Path(name))));
        ASSERT_EQ(test.files->Write(Path(name), text), FileError::None);
    }
    std::string Path(const std::string& name) const {
        return BuildPath(test.frame.settings.PreviewFolder, name);
    }
    test::TestProject test;
};

TEST_F(FileUsesTest, FindsEveryWayOfReferringToAFile) {
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    Page* top = test.Insert("top");
    Page* deep = test.Insert("deep", "", Container(*folder));
    Write("media\\s.css", "@import 'more.css'; p { background: url(../Docs/media/x.gif) }");
    Write("media\\more.css", "p { background: url(\"a.gif\") }");
    const std::string picture = Path("media\\a.gif");
    struct Row {
        const char* name;
        const char* html;
        bool isUsed;
        bool fromFolder = false;
    };
    const Row rows[] = {
        {"nothing", "<p>media/a.gif</p><!-- <img src=media/a.gif> -->", false},
        {"another folder's", "<img src=media/a.gif>", false, true},
        {"another name", "<img src=media/ba.gif><img src=media/A.GIF>", false},
        {"on another host", "<img src=http://a.org/media/a.gif><img src=//media/a.gif>", false},
        {"picture", "<img src=media/a.gif>", true},
        {"escaped", "<img src='./media/%61&#46;gif?x=1#y'>", true},
        {"from a folder", "<img src=../media/a.gif>", true, true},
        {"from the root", "<img src=/media/a.gif>", true, true},
        {"from a base", "<base href='../media/'><img src=a.gif>", true, true},
        {"link", "<a href=media/a.gif>x</a>", true},
        {"one of a list", "<img srcset='b.gif 1x,media/a.gif 2x'>", true},
        {"style attribute", "<p style='background:url(media/a.gif)'>", true},
        {"style element", "<style>p{background:url(media/a.gif)}</style>", true},
        {"style sheet of a style sheet", "<link rel=stylesheet href=media/s.css>", true},
        {"handler", "<a onmouseover=\"i.src='media/a.gif'\">x</a>", true},
        {"script", "<script>load('media/a.gif')</script>", true},
        {"page in an attribute", "<iframe srcdoc=\"<img src='media/a.gif'>\"></iframe>", true},
        {"parameter", "<object><param value=media/a.gif></object>", true},
        {"without frames",
         "<frameset cols=*><frame src=a.htm><noframes><img src=media/a.gif></noframes></frameset>",
         true},
    };
    for (const Row& row : rows) {
        Write("index.htm", row.fromFolder ? "" : row.html);
        Write("Docs\\deep.htm", row.fromFolder ? row.html : "");
        EXPECT_EQ(FilesInUse(test.context).contains(picture), row.isUsed) << row.name;
    }
    EXPECT_EQ(top->Filename, Path("index.htm"));
    EXPECT_EQ(deep->Filename, Path("Docs\\deep.htm"));

    // A window may be ahead of its file.
    Write("index.htm", "<p>x</p>");
    test.workspace.ShowPage(top->Key(), "", top->Filename, 0);
    auto& document = *test.workspace.Find(top->Key())->document;
    ASSERT_TRUE(document.body());
    document.setInnerHTML(*document.body(), "<img src=media/a.gif>");
    EXPECT_TRUE(FilesInUse(test.context).contains(picture));
    EXPECT_FALSE(FilesInUse(test.context, top->Key()).contains(picture));
}

TEST_F(FileUsesTest, WhatTheProgramPlacedIsSavedWhileItIsReferredTo) {
    const std::string key = test.Insert("a", "<p>x</p>", {}, ShowInsertedPage::Yes)->Key();
    Page* page = GetPage(test.context, key);
    Page* other = test.Insert("b");
    test.folder.Put("in\\chosen.pdf", "1");
    AddSystemAttachment(test.context, test.folder.Path("in\\chosen.pdf"), *page);
    const TakenFiles taken =
        TakeFiles(test.context, key,
                  {test.folder.Put("in\\a.gif", "GIF89a"), test.folder.Put("in\\b.pdf", "%PDF")});
    ASSERT_TRUE(taken.problems.empty());
    auto& document = *test.workspace.Find(key)->document;
    document.setInnerHTML(*document.body(), taken.html);
    const auto saved = [&] {
        test.SaveAs("one.pwp");
        Project loaded{*test.files};
        loaded.WorkingFolder = test.folder.Path("loaded");
        EXPECT_TRUE(DeleteFolder(*test.files, loaded.WorkingFolder));
        EXPECT_TRUE(MakeFolder(*test.files, loaded.WorkingFolder));
        EXPECT_EQ(loaded.Load(test.frame.settings.ProjectFilename), ProjectResult::Success);
        std::string names;
        for (const char* name : {"a.gif", "b.pdf", "chosen.pdf"})
            if (FileExists(*test.files, loaded.WorkingFolder + "\\media\\" + name))
                names += std::string(name) + " ";
        return names;
    };
    EXPECT_EQ(saved(), "a.gif b.pdf chosen.pdf ");
    ASSERT_TRUE(document.undo());
    EXPECT_EQ(saved(), "chosen.pdf ");
    ASSERT_TRUE(document.redo());
    EXPECT_EQ(saved(), "a.gif b.pdf chosen.pdf ") << "the files wait for a redo";
    ASSERT_TRUE(document.undo());
    ASSERT_EQ(test.files->Write(other->Filename, "<a href=media/b.pdf>x</a>"), FileError::None);
    EXPECT_EQ(saved(), "b.pdf chosen.pdf ") << "any page will do";
    // What the user adds himself stays from then on.
    AddSystemAttachment(test.context, Path("media\\a.gif"), *page);
    EXPECT_EQ(saved(), "a.gif b.pdf chosen.pdf ");
}

}  // namespace
}  // namespace pw
