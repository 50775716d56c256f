#include "editing/frmPage.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "project/Attachments.h"
#include "project/Folders.h"
#include "project/Links.h"
#include "project/frmNameValue.h"
#include "support/TestProject.h"

namespace pw {
namespace {

struct PageProperties : test::TestProject {
    PageProperties() {
        home = Insert("home");
        page = Insert("about",
                      "<p>Some words</p><a href=\"about.htm\">self</a><img src=\"none.gif\">");
        workspace.calls.clear();
    }

    void Edit(Page& which, std::function<void(frmPage&)> act) {
        dialogs.ExpectDialog("frmPage", [act = std::move(act)](Dialog& dialog) {
            act(static_cast<frmPage&>(dialog));
        });
        ShowPageProperties(context, which.Key());
    }
    /** Does `act`, presses OK, and expects the dialog to close. */
    void Confirm(Page& which, std::function<void(frmPage&)> act) {
        Edit(which, [act = std::move(act)](frmPage& dialog) {
            act(dialog);
            dialog.cmdOK.UserClick();
            EXPECT_FALSE(dialog.IsOpen());
        });
    }
    /** The prompt for a meta tag: checks what it shows and answers. */
    void ExpectEntry(const std::string& title, const std::string& shown, const std::string& name,
                     const std::string& content) {
        dialogs.ExpectDialog("frmNameValue", [=](Dialog& dialog) {
            auto& prompt = static_cast<frmNameValue&>(dialog);
            EXPECT_EQ(prompt.Title(), title);
            EXPECT_EQ(prompt.lblValue.Caption(), "&Content");
            EXPECT_EQ(prompt.txtName.Text(), shown);
            prompt.txtName.UserSetText(name);
            prompt.txtValue.UserSetText(content);
            prompt.cmdOK.UserClick();
        });
    }
    dom::Document& Document() { return workspace.Find(page->Key())->Document(); }

    Page* home;  ///< index.htm, the default page
    Page* page;
};

TEST(frmPage, OKWithoutChangesLeavesEverythingAsItWas) {
    PageProperties test;
    test.project.IsDirty = false;
    const std::string before = test.Text(test.page->Filename);
    test.Confirm(*test.page, [](frmPage&) {});
    EXPECT_EQ(test.workspace.Count("ShowPage"), 1);
    EXPECT_EQ(test.Document().bytes(), before);
    EXPECT_FALSE(test.Document().canUndo());
    EXPECT_FALSE(test.project.IsDirty);
    EXPECT_FALSE(test.page->IsDirty);
}

TEST(frmPage, WritesWhatWasChangedInOneStep) {
    PageProperties test;
    const std::string sky = test.folder.Put("sky pic.gif", "GIF89a");
    const std::string song = test.folder.Put("song.mid", "MThd");
    const std::string before = test.Text(test.page->Filename);
    test.dialogs.ExpectColor(Color{0x0000FF});
    test.Confirm(*test.page, [&](frmPage& dialog) {
        dialog.txtTitle.UserSetText("Who are we?");
        dialog.txtDesc.UserSetText("First\r\nsecond");
        dialog.txtKeywords.UserSetText("a, b");
        dialog.optColor[kTextColor].UserClick();
        EXPECT_FALSE(dialog.txtSource[0].Enabled());
        dialog.chkBackground[0].UserSetChecked(true);
        dialog.txtSource[0].UserSetText(ToNativePath(sky));
        dialog.chkWatermark.UserSetChecked(true);
        dialog.chkBackground[1].UserSetChecked(true);
        test.dialogs.ExpectDialog("frmSource", [&](Dialog& dialog) {
            EXPECT_EQ(dialog.Title(), "Background Sound Source");
            static_cast<TextBox*>(dialog.Find("txtURL"))->UserSetText(ToNativePath(song));
            static_cast<Button*>(dialog.Find("cmdOK"))->UserClick();
        });
        dialog.cmdBrowse[1].UserClick();
        dialog.txtLoop.UserSetText("2x");
        dialog.chkMargin[kLeftMargin].UserSetChecked(true);
        dialog.txtMargin[kLeftMargin].UserSetText("8");
    });
    const std::string after = test.Document().html();
    for (const char* part :
         {"<title>Who are we?</title>", "text=\"#ff0000\"", "background=\"media/sky_pic.gif\"",
          "bgproperties=\"fixed\"", "<bgsound src=\"media/song.mid\" loop=\"2\"></head>",
          "leftmargin=\"8\"", "<img src=\"media/none.gif\">"})
        EXPECT_NE(after.find(part), std::string::npos) << part << " in " << after;
    EXPECT_EQ(after.find("bgcolor"), std::string::npos);
    EXPECT_EQ(test.page->Name, "Who are we?");
    EXPECT_EQ(test.page->Title, "Who are we?");
    EXPECT_EQ(test.page->Description, "First\r\nsecond");
    EXPECT_EQ(test.page->Keywords, "a, b");
    EXPECT_EQ(test.page->Attachments().Count(), 2);
    EXPECT_TRUE(test.project.IsDirty);
    EXPECT_EQ(test.workspace.Count("UpdatePageExplorer"), 1);

    test.Confirm(*test.page, [&](frmPage& dialog) {
        EXPECT_EQ(dialog.txtSource[0].Text(), "media/sky_pic.gif");
        EXPECT_EQ(dialog.txtLoop.Text(), "2");
        dialog.chkBackground[1].UserSetChecked(false);
    });
    EXPECT_EQ(test.Document().html().find("bgsound"), std::string::npos);
    test.Document().undo();
    EXPECT_EQ(test.Document().html(), after);
    test.Document().undo();
    EXPECT_EQ(test.Document().html(), before);
}

TEST(frmPage, RefusesWhatCanNotBe) {
    PageProperties test;
    test.Insert("taken");
    const std::string scan = test.folder.Put("scan.tif", "II");
    struct Row {
        const char* name;
        std::function<void(frmPage&)> act;
        const char* refusal;
        int tab;
    };
    const Row rows[] = {
        {"a name that another page has",
         [](frmPage& dialog) { dialog.txtFileName.UserSetText("Taken.HTM"); },
         "A page already exists with the filename Taken.HTM.\n\nPlease select another name and "
         "try again.",
         0},
        {"a name that no file has", [](frmPage& dialog) { dialog.txtFileName.SetText("a/b.htm"); },
         "A file name can not contain", 0},
        {"a hidden file", [](frmPage& dialog) { dialog.txtFileName.UserSetText(".htm"); },
         "can not begin", 0},
        {"a picture that is not there",
         [](frmPage& dialog) {
             dialog.chkBackground[0].UserSetChecked(true);
             dialog.txtSource[0].UserSetText("media/none.gif");
         },
         "There is no file 'none.gif'", 1},
        {"a picture for print",
         [&](frmPage& dialog) {
             dialog.chkBackground[0].UserSetChecked(true);
             dialog.txtSource[0].UserSetText(ToNativePath(scan));
         },
         "can not show pictures", 1},
    };
    for (const Row& row : rows) {
        test.dialogs.ExpectMessage(Answer::Ok, row.refusal);
        test.Edit(*test.page, [&](frmPage& dialog) {
            dialog.txtTitle.UserSetText("other");
            dialog.tabPage.UserSelect(4);
            row.act(dialog);
            dialog.cmdOK.UserClick();
            EXPECT_TRUE(dialog.IsOpen()) << row.name;
            EXPECT_EQ(dialog.tabPage.Selected(), row.tab) << row.name;
            dialog.cmdCancel.UserClick();
        });
        EXPECT_EQ(test.page->Name, "about") << row.name;
        EXPECT_FALSE(test.Document().canUndo()) << row.name;
    }
    test.Edit(*test.page, [](frmPage& dialog) {
        dialog.txtFileName.UserSetText("a:b*.htm");
        EXPECT_EQ(dialog.txtFileName.Text(), "ab.htm") << "keys of no file name";
        dialog.txtTitle.UserSetText(" ");
        EXPECT_FALSE(dialog.cmdOK.Enabled());
    });
}

TEST(frmPage, RenamesTheFileAndTheLinksToIt) {
    PageProperties test;
    const Page* other = test.Insert("other", "<a href=\"about.htm\">x</a>");
    const std::string folder = GetParentFolder(test.page->Filename);
    test.Confirm(*test.page, [](frmPage& dialog) { dialog.txtFileName.UserSetText(" contact "); });
    EXPECT_EQ(test.page->Filename, folder + "\\contact.htm");
    EXPECT_TRUE(FileExists(*test.files, test.page->Filename));
    EXPECT_FALSE(FileExists(*test.files, folder + "\\about.htm"));
    EXPECT_NE(test.Text(other->Filename).find("href=\"contact.htm\""), std::string::npos);
    EXPECT_NE(test.Document().html().find("href=\"contact.htm\""), std::string::npos);
    test.Confirm(*test.page,
                 [](frmPage& dialog) { dialog.txtFileName.UserSetText("Contact.htm"); });
    EXPECT_EQ(GetFileName(test.page->Filename), "Contact.htm") << "only another spelling";
}

TEST(frmPage, TheDefaultPageMovesAside) {
    struct Row {
        const char* name;
        bool open;
        bool inFolder;
        const char* typed;
        const char* title;
    };
    const Row rows[] = {
        {"closed, top level", false, false, "", "Home Page"},
        {"open, in a folder", true, true, "", "Deep Home Page"},
        {"with a title of the user's", false, false, "Welcome", "Welcome"},
    };
    for (const Row& row : rows) {
        PageProperties test;
        Container where = GetContainer(test.context, "");
        if (row.inFolder) where = Container(*AddFolder(test.context, where, {"Deep", "", 1}));
        Page* former = row.inFolder ? test.Insert("first", "<p>first</p>", where) : test.home;
        const std::string name = former->Name;
        if (row.inFolder) {
            std::string reason;
            ASSERT_TRUE(RenamePage(test.context, *former, "index.htm", &reason)) << reason;
            SetDefaultPage(test.context, *former);
        }
        ASSERT_TRUE(former->IsDefault) << row.name;
        Page* next = test.Insert("next", "<a href=\"index.htm\">back</a>", where);
        if (row.open) test.workspace.ShowPage(former->Key(), "", former->Filename, 0);
        test.Confirm(*next, [&](frmPage& dialog) {
            EXPECT_EQ(dialog.lblDefault.Caption(), name);
            dialog.chkDefaultPage.UserSetChecked(true);
            EXPECT_EQ(dialog.txtFileName.Text(), "index.htm");
            dialog.chkDefaultPage.UserSetChecked(false);
            EXPECT_EQ(dialog.txtFileName.Text(), "next.htm");
            dialog.chkDefaultPage.UserSetChecked(true);
            if (*row.typed) dialog.txtTitle.UserSetText(row.typed);
        });
        EXPECT_EQ(GetFileName(next->Filename), "index.htm") << row.name;
        EXPECT_EQ(next->Name, row.title) << row.name;
        EXPECT_TRUE(next->IsDefault) << row.name;
        EXPECT_EQ(GetFileName(former->Filename), "page_1.htm") << row.name;
        EXPECT_EQ(former->Name, "Page 1") << row.name;
        EXPECT_FALSE(former->IsDefault) << row.name;
        const auto formerText = row.open ? test.workspace.Find(former->Key())->Document().html()
                                         : test.Text(former->Filename);
        EXPECT_NE(formerText.find("<title>Page 1</title>"), std::string::npos) << row.name;
        const std::string text = test.workspace.Find(next->Key())->Document().html();
        EXPECT_NE(text.find("href=\"page_1.htm\""), std::string::npos) << row.name << text;
        EXPECT_NE(text.find("<title>" + std::string(row.title)), std::string::npos) << row.name;
    }
    PageProperties test;
    test.Confirm(*test.home, [](frmPage& dialog) { dialog.chkDefaultPage.UserSetChecked(false); });
    EXPECT_FALSE(test.home->IsDefault);
    test.Edit(*test.page, [](frmPage& dialog) {
        EXPECT_EQ(dialog.lblDefault.Caption(), "No default page selected.");
    });
}

TEST(frmPage, ChangesMetaTagsOnOK) {
    PageProperties test;
    test.Edit(*test.page, [](frmPage&) {});
    dom::Document& document = test.Document();
    document.insertAdjacentHTML(*document.head(), "beforeEnd",
                                "<meta charset=utf-8><META NAME=Generator content=us>"
                                "<meta name=robots content=all>"
                                "<meta http-equiv=refresh content=5>");
    const std::string before = document.html();
    test.Edit(*test.page, [&](frmPage& dialog) {
        test.ExpectEntry("User Meta Tag", "", "author", "Ann");
        test.ExpectEntry("User Meta Tag", "robots", "robots", "none");
        test.ExpectEntry("HTTP-EQUIV Meta Tag", "refresh", "expires", "5");
        const auto rows = [](const ListView& list) {
            std::string text;
            for (int i = 0; i < list.Count(); ++i)
                text += list.Row(i).cells[0] + "=" + list.Row(i).cells[1] + " ";
            return text;
        };
        EXPECT_EQ(rows(dialog.lvwMetaTags[0]), "robots=all ");
        EXPECT_EQ(rows(dialog.lvwMetaTags[1]), "refresh=5 ");
        EXPECT_FALSE(dialog.cmdMetaTags[1].Enabled());
        dialog.cmdMetaTags[0].UserClick();
        dialog.lvwMetaTags[0].UserSelect(0);
        dialog.cmdMetaTags[1].UserClick();
        EXPECT_EQ(rows(dialog.lvwMetaTags[0]), "robots=none author=Ann ");
        dialog.tabMetaTags.UserSelect(1);
        EXPECT_FALSE(dialog.cmdMetaTags[2].Enabled());
        dialog.lvwMetaTags[1].UserSelect(0);
        dialog.lvwMetaTags[1].DblClick();
        EXPECT_EQ(rows(dialog.lvwMetaTags[1]), "expires=5 ");
        EXPECT_EQ(dialog.lvwMetaTags[1].Selected(), 0) << "still";
        test.dialogs.ExpectMessage(Answer::No, "remove this meta tag?");
        dialog.cmdMetaTags[2].UserClick();
        EXPECT_EQ(rows(dialog.lvwMetaTags[1]), "expires=5 ");
        test.dialogs.ExpectMessage(Answer::Yes, "remove this meta tag?");
        dialog.cmdMetaTags[2].UserClick();
        EXPECT_EQ(rows(dialog.lvwMetaTags[1]), "");
        EXPECT_EQ(document.html(), before);
        dialog.cmdOK.UserClick();
    });
    const std::string html = document.html();
    EXPECT_NE(html.find("<meta charset=utf-8><META NAME=Generator content=us>"
                        "<meta name=robots content=none>"
                        "<meta name=\"author\" content=\"Ann\">"),
              std::string::npos)
        << html;
    EXPECT_EQ(html.find("http-equiv"), std::string::npos);
    EXPECT_TRUE(document.undo());
    EXPECT_EQ(document.html(), before) << "one step";
}

TEST(frmPage, CancelAndRefusalLeaveNoTrace) {
    PageProperties test;
    Page* other = test.Insert("other", "<a href=\"about.htm#deep\">x</a>");
    test.Edit(*test.page, [](frmPage&) {});
    const std::string paper = test.folder.Put("paper.pdf", "%PDF");
    const std::string sky = test.folder.Put("sky.gif", "GIF89a");
    const std::string song = test.folder.Put("song.mid", "MThd");
    const std::string media = GetParentFolder(test.page->Filename) + "\\media";
    const std::string own = media + "\\own.txt";
    ASSERT_EQ(test.files->Write(own, "x"), FileError::None);
    ASSERT_NE(AddSystemAttachment(test.context, own, *test.page), nullptr);
    const std::string html = test.Document().html();
    const std::string link = test.Text(other->Filename);
    const std::string file = test.page->Filename;
    const auto fill = [&](frmPage& dialog, const char* name) {
        dialog.txtTitle.UserSetText("Other");
        dialog.txtFileName.UserSetText(name);
        test.ExpectEntry("User Meta Tag", "", "author", "Ann");
        dialog.cmdMetaTags[0].UserClick();
        test.dialogs.ExpectMessage(Answer::Yes, "remove this attachment?");
        dialog.lvwAttachments.UserSelect(0);
        dialog.cmdAttachments[1].UserClick();
        test.dialogs.ExpectFile(paper);
        dialog.cmdAttachments[0].UserClick();
        for (int i = 0; i < 2; ++i)
            dialog.chkBackground[std::size_t(i)].UserSetChecked(true);
        dialog.txtSource[0].UserSetText(ToNativePath(sky));
        dialog.txtSource[1].UserSetText(ToNativePath(song));
    };
    struct Row {
        const char* name;
        const char* fileName;
        std::function<void(frmPage&)> end;
    };
    const Row rows[] = {
        {"cancelled", "fresh.htm", [](frmPage& dialog) { dialog.cmdCancel.UserClick(); }},
        {"a name that is taken", "other.htm",
         [&](frmPage& dialog) {
             test.dialogs.ExpectMessage(Answer::Ok, "already exists");
             dialog.cmdOK.UserClick();
         }},
        {"an attachment that is gone", "fresh.htm",
         [&](frmPage& dialog) {
             test.dialogs.ExpectMessage(Answer::Ok, "can not be copied");
             std::filesystem::remove(ToNativePath(paper));
             dialog.cmdOK.UserClick();
             test.folder.Put("paper.pdf", "%PDF");
         }},
        {"a file that can't be renamed", "fresh.htm",
         [&](frmPage& dialog) {
             test.dialogs.ExpectMessage(Answer::Ok, "can not be renamed");
             std::filesystem::remove(ToNativePath(file));
             dialog.cmdOK.UserClick();
             EXPECT_EQ(test.files->Write(file, html), FileError::None);
         }},
    };
    for (const Row& row : rows) {
        test.Edit(*test.page, [&](frmPage& dialog) {
            fill(dialog, row.fileName);
            row.end(dialog);
        });
        EXPECT_EQ(test.page->Filename, file) << row.name;
        EXPECT_EQ(test.page->Name, "about") << row.name;
        EXPECT_EQ(test.Document().html(), html) << row.name;
        EXPECT_FALSE(test.Document().canUndo()) << row.name;
        EXPECT_EQ(test.Text(other->Filename), link) << row.name;
        ASSERT_EQ(test.page->Attachments().Count(), 1) << row.name;
        EXPECT_EQ(test.page->Attachments().Item(1)->Filename(), own) << row.name;
        std::vector<FolderEntry> entries;
        ASSERT_EQ(test.files->List(media, entries), FileError::None);
        EXPECT_EQ(entries.size(), 1u) << row.name << ": copied files stay";
    }
    test.Confirm(*test.page, [&](frmPage& dialog) { fill(dialog, "fresh.htm"); });
    EXPECT_EQ(GetFileName(test.page->Filename), "fresh.htm");
    EXPECT_EQ(test.page->Attachments().Count(), 3);
    EXPECT_NE(test.Document().html().find("author"), std::string::npos);
}

TEST(frmPage, TheDefaultPageComesBackWhenItsNameCanNotBeGiven) {
    PageProperties test;
    const std::string page = test.page->Filename;
    const std::string home = test.home->Filename;
    const std::string title = test.home->Name;
    test.Edit(*test.page, [&](frmPage& dialog) {
        dialog.chkDefaultPage.UserSetChecked(true);
        std::filesystem::remove(ToNativePath(page));
        test.dialogs.ExpectMessage(Answer::Ok, "can not be renamed");
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.IsOpen());
        EXPECT_EQ(dialog.txtTitle.Text(), "about");
    });
    EXPECT_EQ(test.home->Filename, home);
    EXPECT_EQ(test.home->Name, title);
    EXPECT_TRUE(test.home->IsDefault);
    EXPECT_TRUE(FileExists(*test.files, home));
    EXPECT_FALSE(test.page->IsDefault);
}

TEST(frmPage, AddsAndRemovesAttachments) {
    PageProperties test;
    const std::string paper = test.folder.Put("paper.pdf", std::string(2048, 'x'));
    test.Edit(*test.page, [&](frmPage& dialog) {
        test.dialogs.ExpectFile(paper);
        dialog.cmdAttachments[0].UserClick();
        EXPECT_EQ(test.dialogs.FileQuestions().back().title, "Add Attachment");
        ASSERT_EQ(dialog.lvwAttachments.Count(), 1);
        EXPECT_EQ(dialog.lvwAttachments.Row(0).cells,
                  (std::vector<std::string>{"paper.pdf", "2KB", "PDF file"}));
        test.dialogs.ExpectFile("\\x\\Applet.CLASS");
        test.dialogs.ExpectMessage(Answer::Ok, "belongs to an applet");
        dialog.cmdAttachments[0].UserClick();
        test.dialogs.ExpectFile("\\x\\none.pdf");
        test.dialogs.ExpectMessage(Answer::Ok, "can not be copied");
        dialog.cmdAttachments[0].UserClick();
        EXPECT_EQ(dialog.lvwAttachments.Count(), 1);
        EXPECT_EQ(test.page->Attachments().Count(), 0) << "not before OK";
        dialog.cmdOK.UserClick();
    });
    ASSERT_EQ(test.page->Attachments().Count(), 1);
    EXPECT_TRUE(FileExists(*test.files, test.page->Attachments().Item(1)->Filename()));
    test.Edit(*test.page, [&](frmPage& dialog) {
        EXPECT_FALSE(dialog.cmdAttachments[1].Enabled());
        dialog.lvwAttachments.UserSelect(0);
        test.dialogs.ExpectMessage(Answer::Yes, "remove this attachment?");
        dialog.cmdAttachments[1].UserClick();
        EXPECT_EQ(test.dialogs.Messages().back().title, "Remove Attachment");
        EXPECT_EQ(dialog.lvwAttachments.Count(), 0);
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(test.page->Attachments().Count(), 0);
}

TEST(frmPage, WritesWhatIsUnsavedBeforeItIsShown) {
    PageProperties test;
    test.Edit(*test.page, [](frmPage&) {});
    test.Document().setAttribute(*test.Document().body(), "id", "unsaved");
    test.Edit(*test.page, [&](frmPage&) {
        EXPECT_NE(test.Text(test.page->Filename).find("unsaved"), std::string::npos);
    });
    const std::string folder = GetParentFolder(test.page->Filename);
    test.page->Filename = folder + "\\nowhere\\about.htm";
    test.dialogs.ExpectMessage(Answer::Ok, "can not be saved");
    ShowPageProperties(test.context, test.page->Key());
}

TEST(frmPage, TellsWhatThePageIs) {
    PageProperties test;
    test.page->Created = MakeDate(2026, 1, 2, 3, 4, 5);
    test.page->CreatedBy = "machine\\ann";
    test.Edit(*test.page, [&](frmPage& dialog) {
        std::string values;
        for (std::size_t i = 0; i < dialog.lblSummaryVal.size(); ++i)
            values += dialog.lblSummaryVal[i].Caption() + "|";
        EXPECT_NE(values.find("byte(s)|"), std::string::npos) << values;
        EXPECT_NE(values.find("|1/2/2026 3:04:05 AM|machine\\ann|"), std::string::npos) << values;
        EXPECT_EQ(dialog.cboPageStyle.Text(), "Normal HTML page");
        EXPECT_FALSE(dialog.cmdSetFrameStyle.Enabled());
    });
}

}  // namespace
}  // namespace pw
