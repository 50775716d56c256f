#include "project/Folders.h"

#include "platform/Text.h"
#include "project/EditPage.h"
#include "project/FramesetMask.h"
#include "project/frmFolder.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(Folders, AreMadeOnDiskUnderFreeNames) {
    TestProject test;
    const std::string root = test.frame.settings.PreviewFolder;
    std::string reason;
    Folder* images = AddFolder(test.context, {}, {" Images ", "about"}, &reason);
    ASSERT_TRUE(images) << reason;
    EXPECT_EQ(images->Name, "Images");
    EXPECT_EQ(images->WorkingFolder, "Images");
    Folder* below = AddFolder(test.context, Container(*images), {"Images"}, &reason);
    ASSERT_TRUE(below) << reason;
    EXPECT_EQ(below->WorkingFolder, "Images\\Images");
    EXPECT_TRUE(images->Expanded);
    EXPECT_TRUE(FolderExists(*test.files, root + "\\Images\\Images\\media"));

    std::string existing;
    EXPECT_FALSE(IsOKToAddFolder(test.context, "IMAGES", "W0001", &existing));
    EXPECT_EQ(existing, images->Key());
    EXPECT_TRUE(IsOKToAddFolder(test.context, "Other", "W0001"));
    EXPECT_FALSE(IsOKToAddFolder(test.context, "", "W0001"));

    for (const char* name :
         {"", "  ", "images", "a\\b", "a/b", "..", ".", "a.", "a\nb", "Media", "a:b", "\xff"}) {
        reason.clear();
        EXPECT_FALSE(AddFolder(test.context, {}, {name}, &reason)) << name;
        EXPECT_NE(reason, "") << name;
    }
    EXPECT_EQ(test.project.WebSites().Item(1)->Sections().Count(), 1);
}

TEST(Folders, TakeEverythingBelowAlongWhenRenamed) {
    TestProject test;
    const std::string root = test.frame.settings.PreviewFolder;
    test.folder.Put("source\\a.gif", "GIF89a1");
    Folder* docs = AddFolder(test.context, {}, {"Docs"});
    Folder* old = AddFolder(test.context, Container(*docs), {"Old"});
    Page* page = test.Insert("deep", "<img src=a.gif>", Container(*old), ShowInsertedPage::Yes);
    Page* other = test.Insert("other");
    other->Attachments().Add(root + "\\Docs\\Old\\media\\a.gif");
    Folder* docs2 = AddFolder(test.context, {}, {"Docs2"});
    std::string reason;

    ASSERT_TRUE(RenameFolderOnDisk(test.context, *docs, "Texts", &reason)) << reason;
    EXPECT_EQ(docs->Name, "Texts");
    EXPECT_EQ(old->WorkingFolder, "Texts\\Old");
    EXPECT_EQ(page->Filename, root + "\\Texts\\Old\\deep.htm");
    EXPECT_EQ(page->Attachments().Item(1)->Filename(), root + "\\Texts\\Old\\media\\a.gif");
    EXPECT_EQ(other->Attachments().Item(1)->Filename(), root + "\\Texts\\Old\\media\\a.gif");
    EXPECT_EQ(docs2->WorkingFolder, "Docs2");
    EXPECT_TRUE(FileExists(*test.files, page->Filename));
    EXPECT_FALSE(FolderExists(*test.files, root + "\\Docs"));
    EXPECT_EQ(test.workspace.Find(page->Key())->filename, page->Filename);

    EXPECT_TRUE(RenameFolderOnDisk(test.context, *docs, "TEXTS", &reason)) << reason;
    EXPECT_EQ(page->Filename, root + "\\TEXTS\\Old\\deep.htm");

    test.folder.Put("x", "");
    ASSERT_EQ(test.files->Write(root + "\\stray", ""), FileError::None);
    for (const char* name : {"docs2", "Stray", "a\\b", ""}) {
        reason.clear();
        EXPECT_FALSE(RenameFolderOnDisk(test.context, *docs, name, &reason)) << name;
        EXPECT_NE(reason, "") << name;
        EXPECT_EQ(docs->Name, "TEXTS");
    }
}

TEST(Folders, AreFollowedByAllReferencesThroughThem) {
    TestProject test;
    const std::string root = test.frame.settings.PreviewFolder;
    Page* home = test.Insert("home");
    Folder* docs = AddFolder(test.context, {}, {"Docs"});
    Folder* old = AddFolder(test.context, Container(*docs), {"Old"});
    Page* inside = test.Insert("inside", "", Container(*old));
    Page* frames = test.Insert("frames");
    frames->PageType = PageType::Frames;
    const std::string sheet = root + "\\media\\a.css";
    const struct {
        std::string file;
        const char* text;  ///< with "^" for the name of the folder
    } rows[] = {
        {home->Filename,
         "<html><head><link rel=stylesheet href=^/media/x.css><script src=^/media/x.js></script>"
         "<style>p { background: url(^/media/a.gif) }</style></head>"
         "<body background='^/media/b.gif'><a href=\"^/Old/inside.htm?x#y\">1</a><a "
         "href=\"^/\">2</a>"
         "<a href=/^/gone.htm>3</a><img src=^/a.gif srcset='^/a.gif 1x, ^/b.gif 2x'>"
         "<p style=\"background: url('^/c.gif')\">docs/x docs</p><svg><image href=^/x.svg />"
         "</svg><!-- <a href=docs/x> --><a href=Docs2/x.htm>4</a><a href=http://docs/x>5</a>"
         "<param name=x value=docs><param name=y value=^/y.swf></body></html>"},
        {inside->Filename,
         "<html><head></head><body><a href=inside.htm#x>1</a><a href=../../index.htm>2</a>"
         "<a href=\"../../^/Old/inside.htm#x\">3</a><img src=media/a.gif></body></html>"},
        {frames->Filename,
         "<html><head></head>\n<frameset cols=\"*,*\"><frame src=^/Old/inside.htm#x>\n"
         "<frame src=other.htm></frameset>\n<noframes><body><a href=^/x.htm>1</a></body></noframes>"
         "\n</html>\n"},
        {sheet, "@import '../^/media/x.css'; p { background: url(../^/a.gif#x) } /* docs/x */"},
    };
    const auto text = [](const char* pattern, const char* name) {
        return ReplaceAll(pattern, "^", name);
    };
    for (const auto& row : rows)
        ASSERT_EQ(test.files->Write(row.file, text(row.text, "Docs")), FileError::None);
    test.workspace.ShowPage(frames->Key(), "", frames->Filename, frames->PageType);
    auto& open = *test.workspace.Find(frames->Key());
    ASSERT_TRUE(open.SetHTML(CommentFrameset(text(rows[2].text, "Docs"))));
    open.document->clearHistory();

    std::string reason;
    ASSERT_TRUE(RenameFolderOnDisk(test.context, *docs, "Texts", &reason)) << reason;
    EXPECT_EQ(reason, "");
    EXPECT_EQ(UncommentFrameset(open.document->html()), text(rows[2].text, "Texts"));
    EXPECT_FALSE(open.document->canUndo());
    for (const auto& row : rows) {
        const std::string file = ReplaceAll(row.file, "\\Docs\\", "\\Texts\\");
        if (file == frames->Filename) continue;
        EXPECT_EQ(test.Text(file), text(row.text, "Texts"));
    }

    // What an undo brings back later follows too.
    open.document->setUpkeep(
        [&](dom::Document& document) { BringUpToDate(test.context, frames->Key(), document); });
    dom::Node* link = open.document->links().at(0);
    open.document->removeNode(*link);
    EXPECT_EQ(UncommentFrameset(open.document->html()).find("/x.htm"), std::string::npos);
    ASSERT_TRUE(RenameFolderOnDisk(test.context, *docs, "Papers", &reason)) << reason;
    ASSERT_TRUE(open.document->undo());
    EXPECT_EQ(UncommentFrameset(open.document->html()), text(rows[2].text, "Papers"));
}

TEST(Folders, AreInsertedThroughTheDialog) {
    TestProject test;
    test.workspace.selectedNode = "W0001";
    test.dialogs.ExpectDialog("frmFolder", [](Dialog& dialog) {
        auto& form = static_cast<frmFolder&>(dialog);
        EXPECT_FALSE(form.cmdOK.Enabled());
        EXPECT_FALSE(form.fraContainer.Visible());
        form.txtName.UserSetText("  ");
        EXPECT_FALSE(form.cmdOK.Enabled());
        form.txtName.UserSetText(" News ");
        form.txtDesc.UserSetText("what is new");
        form.cmdOK.UserClick();
    });
    Folder* folder = InsertFolder(test.context);
    ASSERT_TRUE(folder);
    EXPECT_EQ(folder->Name, "News");
    EXPECT_EQ(folder->Description, "what is new");
    EXPECT_EQ(test.workspace.selectedNode, folder->Key());

    test.dialogs.ExpectMessage(Answer::Ok, "This folder name already exist.");
    test.dialogs.ExpectDialog("frmFolder", [](Dialog& dialog) {
        auto& form = static_cast<frmFolder&>(dialog);
        form.txtName.UserSetText("NEWS");
        form.cmdOK.UserClick();
        EXPECT_FALSE(form.Accepted());
        form.cmdCancel.UserClick();
    });
    test.workspace.selectedNode = "W0001";
    EXPECT_FALSE(InsertFolder(test.context));
}

TEST(Folders, AreRenamedThroughTheirProperties) {
    TestProject test;
    Folder* folder = AddFolder(test.context, {}, {"News", "old"});
    const auto edit = [](const std::string& name) {
        return [name](Dialog& dialog) {
            auto& form = static_cast<frmFolder&>(dialog);
            EXPECT_EQ(form.Title(), "Folder");
            form.txtName.UserSetText(name);
            form.txtDesc.UserSetText("new");
            form.cmdOK.UserClick();
        };
    };
    test.dialogs.ExpectDialog("frmFolder", edit("Texts"));
    test.dialogs.ExpectMessage(Answer::No, "Changing the folder name may break links");
    EditFolderProperties(test.context, folder->Key());
    EXPECT_EQ(folder->Name, "News");

    test.dialogs.ExpectDialog("frmFolder", edit("News"));
    EditFolderProperties(test.context, folder->Key());
    EXPECT_EQ(folder->Description, "new");

    test.dialogs.ExpectDialog("frmFolder", edit("Texts"));
    test.dialogs.ExpectMessage(Answer::Yes);
    EditFolderProperties(test.context, folder->Key());
    EXPECT_EQ(folder->WorkingFolder, "Texts");

    const std::string inTheWay = test.frame.settings.PreviewFolder + "\\Taken";
    ASSERT_EQ(test.files->MakeFolder(inTheWay), FileError::None);
    test.dialogs.ExpectMessage(Answer::Yes);
    test.dialogs.ExpectMessage(Answer::Ok, "'Taken' already exists here");
    test.dialogs.ExpectDialog("frmFolder", [&](Dialog& dialog) {
        edit("Taken")(dialog);
        EXPECT_TRUE(dialog.IsOpen()) << "nothing of it was done";
    });
    EditFolderProperties(test.context, folder->Key());
    EXPECT_EQ(folder->WorkingFolder, "Texts");
}

}  // namespace
}  // namespace pw
