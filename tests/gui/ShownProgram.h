#pragma once
// The program itself with real windows, over the files and settings of a test: a second one over
// the same context is the next start.
#include <gtest/gtest.h>
#include <QTest>

#include <memory>
#include <string>

#include "mainwindow/Program.h"
#include "mainwindow/frmDocument.h"
#include "platform/qt/MainWindow.h"
#include "platform/qt/QtClipboard.h"
#include "platform/qt/QtMessageLoop.h"
#include "platform/qt/editor/EditorView.h"
#include "support/TestContext.h"
#include "support/TestPlaces.h"

namespace pw::test {

struct ShownProgram {
    /** `file` as named on the command line. Without a host of its own, dialogs are the test's. */
    explicit ShownProgram(TestContext& outer, const std::string& file = "", int skillLevel = 2,
                          DialogHost* dialogs = nullptr) {
        EXPECT_TRUE(SetRegText(*outer.hive, "General", "First Name", "Ann"));
        EXPECT_TRUE(SetRegText(*outer.hive, "General", "User E-mail", "ann@example.org"));
        EXPECT_TRUE(SetRegNumber(*outer.hive, "Other", "Skill Level", skillLevel));
        Places places = outer.frame.places;
        places.programFolder = DataFolder();
        ProgramParts parts;
        parts.makeWindow = [this]() -> MainWindowSurface& { return window; };
        parts.bindWindow = [this](frmMDIMain& controls) {
            MainWindowActions actions;
            actions.explorerClosed = [&controls](int tool) { controls.picExplorer_Closed(tool); };
            actions.paneFocused = [&controls](int pane) { controls.PaneFocused(Pane(pane)); };
            actions.panelPressed = [&controls](int panel) { controls.sbrMain_PanelClick(panel); };
            window.bind(controls, controls.barMain, std::move(actions));
        };
        const FrameContext& frame = outer.frame;
        program = std::make_unique<Program>(
            World{frame.files, frame.hive, frame.clock, frame.system, loop,
                  dialogs ? *dialogs : frame.dialogs, clipboard, frame.launcher},
            places, std::move(parts));
        EXPECT_EQ(program->Start(file), StartupResult::Running);
        Settle();
    }
    ~ShownProgram() {
        program->Shutdown();
        window.unbind();
        program.reset();
        // The browser engine wants its pages gone before the program ends.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    ShownProgram(const ShownProgram&) = delete;
    ShownProgram& operator=(const ShownProgram&) = delete;

    static std::string DataFolder() {
        return GetParentFolder(GetParentFolder(FromNativePath(kTestData))) + "\\data";
    }

    /** Until the page in front can be looked at. */
    void Settle() {
        const auto idle = [this] {
            const frmDocument* page = Main().Context().CurrentDocument();
            return !page || !page->docDHTMLEditor.Busy();
        };
        EXPECT_TRUE(QTest::qWaitFor(idle, 20000));
        QTest::qWait(400);
    }
    frmMDIMain& Main() { return program->Window(); }
    /** The page in front. */
    frmDocument& Page() { return *Main().Context().CurrentDocument(); }
    dom::Document& Document() { return Page().Document(); }
    EditorView& View() { return dynamic_cast<EditorView&>(*Page().Surface().Editor()); }
    /** What takes the keys in the page. */
    QWidget* Keyboard() { return View().view()->focusProxy(); }
    /** Presses a command that must be possible now. */
    void Press(int tool) {
        EXPECT_TRUE(Main().barMain.IsEnabled(tool)) << "tool " << tool;
        Main().barMain.Click(tool);
        Settle();
    }
    /** Opens the page of that node of the project explorer. */
    void PressNode(const std::string& key) {
        TreeView& tree = Main().tvwProjectExplorer;
        tree.MouseDown(false);
        tree.UserSelect(key);
        tree.MouseUp(false);
        Settle();
    }

    QtMessageLoop loop;
    QtClipboard clipboard;
    MainWindow window{makeEditor};
    std::unique_ptr<Program> program;
};

}  // namespace pw::test
