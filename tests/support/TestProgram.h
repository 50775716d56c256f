#pragma once
// The whole program over memory surfaces and real files: `TestProgram program;` starts it in a
// fresh profile, and `program.bar().Click(7)` saves.
#include <filesystem>
#include <memory>
#include <string>

#include "mainwindow/MemorySurfaces.h"
#include "mainwindow/Program.h"
#include "mainwindow/frmDocument.h"
#include "platform/controls/Dialog.h"
#include "support/TestContext.h"
#include "support/TestPlaces.h"

namespace pw::test {

struct TestProgram {
    /** `file` as named on the command line. */
    explicit TestProgram(const std::string& file = "", int skillLevel = 2) {
        HiveBatch batch(*outer.hive);
        EXPECT_TRUE(SetRegText(*outer.hive, "General", "First Name", "Ann"));
        EXPECT_TRUE(SetRegText(*outer.hive, "General", "User E-mail", "ann@example.org"));
        EXPECT_TRUE(SetRegNumber(*outer.hive, "Other", "Skill Level", skillLevel));
        Places places = outer.frame.places;
        const std::filesystem::path tests = PAGEWICK_TEST_DATA;
        const auto data = tests.parent_path().parent_path() / "data";
        places.programFolder = FromNativePath(data.string());
        ProgramParts parts;
        parts.makeWindow = [this]() -> MainWindowSurface& { return surface; };
        parts.endProcess = [this] { ended = true; };
        const FrameContext& frame = outer.frame;
        program = std::make_unique<Program>(
            World{frame.files, frame.hive, frame.clock, frame.system, frame.loop, frame.dialogs,
                  frame.clipboard, frame.launcher},
            places, std::move(parts));
        result = program->Start(file);
    }
    ~TestProgram() {
        if (!ended) program->Shutdown();
        Settle();
    }

    /** Lets what is due happen. */
    void Settle() { outer.frame.loop.ProcessEvents(); }

    FrameContext& frame() { return program->Frame(); }
    Project& project() { return program->TheProject(); }
    frmMDIMain& window() { return program->Window(); }
    MainContext& context() { return window().Context(); }
    CommandBar& bar() { return window().barMain; }
    HeadlessDialogHost& dialogs() { return outer.dialogs; }
    /** Presses a command that must be possible now. */
    void Press(int tool) {
        EXPECT_TRUE(bar().IsEnabled(tool)) << "tool " << tool;
        bar().Click(tool);
        Settle();
    }
    /** A press of the left button on a node of the project explorer. */
    void PressNode(const std::string& key) {
        TreeView& tree = window().tvwProjectExplorer;
        tree.MouseDown(false);
        tree.UserSelect(key);
        tree.MouseUp(false);
        Settle();
    }
    /** The page in front. */
    frmDocument& page() { return *context().CurrentDocument(); }
    MemoryDocument& pageSurface() { return static_cast<MemoryDocument&>(page().Surface()); }

    TestContext outer;
    MemoryMainWindow surface;
    bool ended = false;
    std::unique_ptr<Program> program;
    StartupResult result = StartupResult::Ended;
};

}  // namespace pw::test
