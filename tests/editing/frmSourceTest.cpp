#include "editing/frmSource.h"

#include <gtest/gtest.h>

#include "project/Folders.h"
#include "project/Paths.h"
#include "support/TestProject.h"

namespace pw {
namespace {

struct Source : test::TestProject {
    Source() {
        frame.settings.IEFilename = "\\usr\\bin\\browser";
        picture = folder.Put("source\\media\\a.gif", "GIF89a");
    }

    /** Shows the dialog, does `act` in it, and answers what it results in; "-" when cancelled. */
    std::string Ask(SourceMode mode, const std::string& value,
                    std::function<void(frmSource&)> act) {
        dialogs.ExpectDialog("frmSource", [act = std::move(act)](Dialog& dialog) {
            act(static_cast<frmSource&>(dialog));
        });
        return AskSource(context, mode, workspace.currentPageKey, value).value_or("-");
    }
    Page* Show(Page* page) {
        workspace.ShowPage(page->Key(), page->Name, page->Filename, page->PageType);
        return page;
    }

    std::string picture;
};

std::string Names(const ListView& list) {
    std::string names;
    for (int i = 0; i < list.Count(); ++i)
        names += (i ? " " : "") + list.Row(i).cells[0];
    return names;
}

TEST(frmSource, OffersWhatTheOpenPagesUse) {
    Source test;
    const std::string body =
        "<img src='media/a.gif'><img dynsrc='film.avi'><object codebase='x.ocx'></object>"
        "<object data='y.bin'></object><table background='t.gif'><tr><td background='c.gif'>"
        "</td></tr></table><img src='http://example.org/b.png'>";
    Page* page = test.Insert("one", body);
    test.Show(page);
    dom::Document& document = test.workspace.Find(page->Key())->Document();
    document.setAttribute(*document.body(), "background", "sky.gif");
    document.insertAdjacentHTML(*document.body(), "afterBegin", "<bgsound src=song.mid>");
    test.Show(test.Insert("two", "<img src='media/a.gif'><img src='c.gif'>"));
    struct Row {
        SourceMode mode;
        const char* title;
        const char* label;
        const char* fileTitle;
        const char* names;
    };
    const Row rows[] = {
        {SourceMode::Image, "Image Source", "&Images on open pages:", "Select Image File",
         "a.gif b.png c.gif"},
        {SourceMode::Video, "Video Source", "&Videos on open pages:", "Select Video File",
         "film.avi"},
        {SourceMode::ActiveX, "ActiveX Source",
         "&ActiveX objects on open pages:", "Select ActiveX File", "x.ocx y.bin"},
        {SourceMode::BackgroundImage, "Background Image Source",
         "&Background images on open pages:", "Select Background Image File",
         "sky.gif t.gif c.gif"},
        {SourceMode::Sound, "Background Sound Source",
         "&Background sounds on open pages:", "Select Background Sound File", "song.mid"},
    };
    for (const Row& row : rows) {
        test.dialogs.ExpectFile("");
        test.Ask(row.mode, "", [&](frmSource& dialog) {
            EXPECT_EQ(dialog.Title(), row.title);
            EXPECT_EQ(dialog.lblURL.Caption(), row.label);
            EXPECT_EQ(Names(dialog.lvwURL), row.names) << row.title;
            dialog.cmdBrowse[0].UserClick();
            dialog.cmdCancel.UserClick();
        });
        EXPECT_EQ(test.dialogs.FileQuestions().back().title, row.fileTitle);
    }
}

TEST(frmSource, AnswersTheFileOfARow) {
    Source test;
    Folder* folder = AddFolder(test.context, GetContainer(test.context, ""), {"Deep", "", 1});
    ASSERT_TRUE(folder);
    test.Show(test.Insert("one", "<img src='media/a.gif'>", Container(*folder)));
    test.Show(test.Insert("two"));
    const std::string file = GetPageFolder(test.context, folder->Key()) + "\\media\\a.gif";
    EXPECT_EQ(test.Ask(SourceMode::Image, "",
                       [&](frmSource& dialog) {
                           ASSERT_EQ(dialog.lvwURL.Count(), 1);
                           EXPECT_EQ(dialog.lvwURL.Row(0).cells,
                                     (std::vector<std::string>{"a.gif", "Deep", "one"}));
                           EXPECT_FALSE(dialog.cmdOK.Enabled());
                           dialog.lvwURL.UserSelect(0);
                           EXPECT_EQ(dialog.txtURL.Text(), "Deep/media/a.gif");
                           EXPECT_EQ(dialog.txtURL.tag, file);
                           dialog.lvwURL.DblClick();
                       }),
              file);
}

TEST(frmSource, TakesWhatCanBeUsed) {
    Source test;
    test.Show(test.Insert("one", "<img src='media/a.gif'>"));
    const std::string media = GetPageFolder(test.context, "") + "\\media\\a.gif";
    const std::string scan = test.folder.Put("scan.TIF", "II");
    const std::string native = ToNativePath(test.picture);
    struct Row {
        const char* name;
        std::string typed;
        const char* refusal;
        std::string result;
    };
    const Row rows[] = {
        {"an address", " http://example.org/a.gif ", "", "http://example.org/a.gif"},
        {"a file of the page", "media/a.gif", "", media},
        {"a path", native, "", test.picture},
        {"an address of a file", "file://" + native, "", test.picture},
        {"a path of another system", "C:\\a.gif", "There is no file 'a.gif'", "-"},
        {"no file", "media/none.gif", "There is no file 'none.gif'", "-"},
        {"a picture for print", ToNativePath(scan), "can not show pictures", "-"},
    };
    for (const Row& row : rows) {
        if (*row.refusal) test.dialogs.ExpectMessage(Answer::Ok, row.refusal);
        EXPECT_EQ(test.Ask(SourceMode::Image, "",
                           [&](frmSource& dialog) {
                               dialog.txtURL.UserSetText(row.typed);
                               dialog.cmdOK.UserClick();
                               EXPECT_EQ(dialog.IsOpen(), *row.refusal != 0) << row.name;
                               if (dialog.IsOpen()) dialog.cmdCancel.UserClick();
                           }),
                  row.result)
            << row.name;
    }
}

TEST(frmSource, BrowsesFilesAndTheWebWithoutAnOpenPage) {
    Source test;
    test.dialogs.ExpectFile(test.picture);
    EXPECT_EQ(test.Ask(SourceMode::Image, "",
                       [&](frmSource& dialog) {
                           EXPECT_EQ(dialog.lvwURL.Count(), 0);
                           dialog.cmdBrowse[0].UserClick();
                           EXPECT_EQ(dialog.txtURL.Text(), ToNativePath(test.picture));
                           dialog.cmdOK.UserClick();
                       }),
              test.picture);
    const std::string address = "https://example.org/b.gif";
    EXPECT_EQ(test.Ask(SourceMode::Image, "http://example.org/",
                       [&](frmSource& dialog) {
                           test.clipboard.Set("a word or two", "");
                           test.dialogs.ExpectMessage(Answer::Ok, "copy its address");
                           test.dialogs.ExpectMessage(Answer::Ok, "does not hold the address");
                           dialog.cmdBrowse[1].UserClick();
                           test.clipboard.Set(" " + address + "\n", "");
                           test.dialogs.ExpectMessage(Answer::Cancel, "copy its address");
                           dialog.cmdBrowse[1].UserClick();
                           EXPECT_EQ(dialog.txtURL.Text(), "http://example.org/");
                           test.dialogs.ExpectMessage(Answer::Ok, "copy its address");
                           dialog.cmdBrowse[1].UserClick();
                           dialog.cmdOK.UserClick();
                       }),
              address);
    ASSERT_EQ(test.launcher.started.size(), 3u);
    EXPECT_EQ(test.launcher.started[0].second, "http://example.org/");
    test.launcher.works = false;
    test.Ask(SourceMode::Image, "", [&](frmSource& dialog) {
        test.dialogs.ExpectMessage(Answer::Ok, "can not be started");
        dialog.cmdBrowse[1].UserClick();
        dialog.cmdCancel.UserClick();
    });
}

}  // namespace
}  // namespace pw
