// Pictures of the windows and dialogs for people to look at. Does nothing unless the variable
// PAGEWICK_SCREENSHOTS names a folder; scripts/screenshots sets it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMenu>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include "platform/qt/CommandBarView.h"
#include "platform/qt/DocumentWindow.h"
#include "platform/qt/FormBinder.h"
#include "platform/qt/MainWindow.h"
#include "platform/qt/QtDialogHost.h"
#include "platform/qt/Theme.h"

namespace pw {
namespace {

/** A small project, so that there is something to see. */
struct Sample : ControlOwner {
    TreeView tvwProjectExplorer{this, "tvwProjectExplorer"};
    TreeView tvwPageExplorer{this, "tvwPageExplorer"};
    ListView lvwTasks{this, "lvwTasks"};
    ControlArray<Label, 3> sbrMain{this, "sbrMain"};
    ProgressBar prgProgress{this, "prgProgress"};
    CommandBar bar;

    void add(TreeView& tree, const char* parent, const char* key, const char* text, int image,
             int open = 0) {
        TreeNode node;
        node.key = key;
        node.text = text;
        node.image = image;
        node.expandedImage = open;
        node.expanded = true;
        tree.Add(parent, node);
    }

    Sample() {
        add(tvwProjectExplorer, "", "W", "Shop", 1);
        add(tvwProjectExplorer, "W", "S", "Web Site", 2);
        add(tvwProjectExplorer, "S", "1", "Shop Home Page", 10);
        add(tvwProjectExplorer, "S", "2", "About us", 5);
        add(tvwProjectExplorer, "S", "F", "articles", 7, 8);
        add(tvwProjectExplorer, "F", "3", "Autumn", 5);
        add(tvwProjectExplorer, "F", "4", "Frame page", 6);
        tvwProjectExplorer.SetSelected("1");
        struct Element {
            const char* key;
            const char* text;
            int image;
        };
        add(tvwPageExplorer, "", "B", "<BODY>", 23);
        for (const Element& element : {Element{"a", "index.htm", 44}, Element{"b", "logo.gif", 41},
                                       Element{"c", "<TABLE>", 50}, Element{"d", "<TR>", 51},
                                       Element{"e", "<FORM>", 28}, Element{"f", "email", 35},
                                       Element{"g", "agree", 31}, Element{"h", "<HR>", 43},
                                       Element{"i", "Merge Variable Title", 20},
                                       Element{"j", "JavaScript", 49}, Element{"k", "DIV", 27}}) {
            add(tvwPageExplorer, "B", element.key, element.text, element.image);
        }
        lvwTasks.SetColumns({{"Task", 260}, {"Priority", 90}, {"Status", 120}, {"Due", 100}});
        for (int i = 0; i < 3; ++i) {
            ListRow row;
            row.key = std::to_string(i);
            row.image = i == 1 ? 12 : 11;
            row.cells = {"Write the page about us", "Normal", i == 1 ? "Completed" : "Not started",
                         "24.12.2026"};
            lvwTasks.Add(row);
        }
        sbrMain[0].SetCaption("For Help, press F1");
        sbrMain[1].SetCaption("12KB");
        sbrMain[1].tag = "59";
        sbrMain[2].SetCaption("3 seconds over 56K modem (12KB)");
        sbrMain[2].tag = "58";
        prgProgress.SetValue(40);
        makeBar();
    }

    void makeBar();
};

struct Command {
    int number;
    const char* caption;
    const char* icon;
    const char* shortcut;
};

void Sample::makeBar() {
    Tool block;
    block.number = 401;
    block.kind = ToolKind::Combo;
    block.items = {"Normal", "Heading 1", "Heading 2"};
    block.text = "Normal";
    bar.AddTool(block);
    std::vector<BandItem> format{{BandItem::Kind::Tool, 401, "Block Format", ""}};
    std::vector<BandItem> standard;
    const auto add = [this](std::vector<BandItem>& items, const Command& command) {
        Tool tool;
        tool.number = command.number;
        tool.icon = command.icon;
        tool.shortcut = command.shortcut;
        tool.checked = command.number == 404;
        tool.enabled = command.number != 102;
        bar.AddTool(tool);
        items.push_back({BandItem::Kind::Tool, command.number, command.caption, ""});
    };
    for (const Command& command :
         {Command{2, "&New Page...", "document-new", "Ctrl+N"},
          Command{6, "&Open Project...", "document-open", "Ctrl+O"},
          Command{7, "Sa&ve Project", "document-save", "Ctrl+S"},
          Command{101, "U&ndo", "edit-undo", "Ctrl+Z"}, Command{102, "&Redo", "edit-redo", ""}}) {
        add(standard, command);
    }
    for (const Command& command : {Command{404, "&Bold", "format-text-bold", "Ctrl+B"},
                                   Command{405, "&Italic", "format-text-italic", "Ctrl+I"},
                                   Command{409, "Align &Left", "format-justify-left", ""}}) {
        add(format, command);
    }
    using Kind = BandItem::Kind;
    bar.AddBand({"mnuMain", "", BandKind::Menu,
                 {{Kind::SubBand, 0, "&File", "mnuFile"}, {Kind::SubBand, 0, "F&ormat", "mnuFormat"}}});
    bar.AddBand({"mnuFile", "&File", BandKind::Menu, standard});
    bar.AddBand({"mnuFormat", "F&ormat", BandKind::Menu, format});
    bar.AddBand({"Standard", "Standard", BandKind::Toolbar, standard});
    bar.AddBand({"Format", "Format", BandKind::Toolbar, format});
}

const char* const samplePage =
    "<!DOCTYPE html>\r\n<html>\r\n<head>\r\n<title>Shop</title>\r\n<style>\r\n"
    "p { color: navy; }\r\n</style>\r\n</head>\r\n<body bgcolor=\"#ffffff\">\r\n"
    "<!-- The banner\r\n     of the shop -->\r\n"
    "<h1 align=center>Welcome to the <b>Shop</b></h1>\r\n"
    "<p>Tea &amp; <a href=\"coffee.htm\" target='_top'>coffee</a></p>\r\n"
    "<hr noshade>\r\n</body>\r\n</html>\r\n";

class Album {
  public:
    Album(QString folder, QString scheme) : folder_(std::move(folder)), scheme_(std::move(scheme)) {}
    void keep(QWidget& window, const QString& name) const {
        window.show();
        QTest::qWait(150);
        const QString file = QStringLiteral("%1/%2-%3.png").arg(folder_, name, scheme_);
        EXPECT_TRUE(window.grab().save(file)) << file.toStdString();
    }

  private:
    QString folder_;
    QString scheme_;
};

void keepMainWindow(const Album& album) {
    Sample sample;
    MainWindow window;
    window.bind(sample, sample.bar, {});
    window.resize(1200, 780);
    window.SetCaption("Pagewick");
    window.ShowWelcome(true, {"\\home\\ann\\Documents\\Shop.pwp", "\\home\\ann\\Club.pwp"});
    album.keep(window, "welcome");
    window.ShowWelcome(false, {});
    window.SetCaption("Pagewick - Shop");
    const auto page = window.CreateDocument();
    page->SetCaption("Shop Home Page [index.htm]");
    page->Source().SetText(samplePage, {0x800000, 0x0000A0, 0x008000, 0xFFFFFF});
    page->SetViewTabs(3, View::Html);
    page->ShowView(View::Html);
    album.keep(window, "source");
    page->ShowPreview(samplePage, "file:///tmp/");
    page->SetViewTabs(3, View::Preview);
    page->ShowView(View::Preview);
    window.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !page->Browser()->Busy(); }, 10000));
    QTest::qWait(500);
    album.keep(window, "preview");
    const auto second = window.CreateDocument();
    second->SetCaption("About us [about.htm]");
    window.Arrange(Arrangement::TileHorizontally);
    album.keep(window, "tiled");
    window.Arrange(Arrangement::Cascade);
    album.keep(window, "cascade");
    QMenu* menu = window.bars()->menu("mnuFile");
    menu->popup(window.mapToGlobal(QPoint(4, 30)));
    album.keep(*menu, "menu");
    menu->close();
}

void keepForms(const Album& album) {
    for (const QString& name : formNames()) {
        QDialog dialog;
        auto* layout = new QVBoxLayout(&dialog);
        layout->setContentsMargins(0, 0, 0, 0);
        QWidget* form = loadForm(name).release();
        const QSize size = form->size();
        layout->addWidget(form);
        dialog.resize(size);
        auto* tabs = form->findChild<QTabWidget*>();
        for (int page = 0; page < (tabs ? tabs->count() : 1); ++page) {
            if (tabs) tabs->setCurrentIndex(page);
            album.keep(dialog, tabs ? QStringLiteral("%1-%2").arg(name).arg(page) : name);
        }
    }
}

void keepMessage(const Album& album) {
    QtDialogHost host;
    QTimer::singleShot(200, qApp, [&] {
        QWidget* box = QApplication::activeModalWidget();
        album.keep(*box, "message");
        static_cast<QDialog*>(box)->reject();
    });
    EXPECT_EQ(host.MsgBox({"Any changes made to this project will be lost by exiting.\n\nDo you "
                           "want to save project 'Shop'?",
                           "Exit", Icon::Question, Buttons::YesNoCancel}),
              Answer::Cancel);
}

TEST(Screenshots, AreKept) {
    const QString folder = qEnvironmentVariable("PAGEWICK_SCREENSHOTS");
    if (folder.isEmpty()) GTEST_SKIP() << "no folder for them is named";
    ASSERT_TRUE(QDir().mkpath(folder));
    Theme theme(*qApp, ColorScheme::Light);
    for (const ColorScheme scheme : {ColorScheme::Light, ColorScheme::Dark}) {
        theme.setScheme(scheme);
        const Album album(folder, scheme == ColorScheme::Dark ? "dark" : "light");
        keepMainWindow(album);
        keepForms(album);
        keepMessage(album);
    }
    theme.setScheme(ColorScheme::Light);
}

}  // namespace
}  // namespace pw
