#pragma once
// The program with its real windows, for the benches.
#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "BenchBasics.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/Program.h"
#include "mainwindow/frmDocument.h"
#include "platform/headless/HeadlessDialogHost.h"
#include "platform/headless/MemoryClipboard.h"
#include "platform/qt/MainWindow.h"
#include "platform/qt/QtMessageLoop.h"
#include "platform/qt/editor/EditorView.h"

namespace pw::bench {

template <typename Condition>
void waitFor(Condition condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < 30000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

/** The program with real windows in a profile of its own, and a page open in it. */
struct OpenProgram {
    /** Both as the system writes them. */
    OpenProgram(const std::string& profile, const std::string& file) {
        if (!SetRegText(*hive, "General", "First Name", "Ann") ||
            !SetRegText(*hive, "General", "User E-mail", "ann@example.org") ||
            !SetRegNumber(*hive, "Other", "Skill Level", 2))
            std::abort();
        ProgramParts parts;
        parts.makeWindow = [this]() -> MainWindowSurface& { return window; };
        parts.bindWindow = [this](frmMDIMain& controls) {
            window.bind(controls, controls.barMain, {});
        };
        program = std::make_unique<Program>(
            World{*files, *hive, *clock, *system, loop, dialogs, clipboard, *launcher},
            FindPlaces(profile), std::move(parts));
        if (program->Start(FromNativePath(file)) != StartupResult::Running) std::abort();
        window.showNormal();
        window.resize(1200, 800);
        waitFor([this] { return !document().docDHTMLEditor.Busy(); });
    }
    ~OpenProgram() {
        program->Shutdown();
        window.unbind();
        program.reset();
    }
    OpenProgram(const OpenProgram&) = delete;
    OpenProgram& operator=(const OpenProgram&) = delete;

    frmDocument& document() { return *program->Window().Context().CurrentDocument(); }

    std::unique_ptr<FileSystem> files = MakePosixFileSystem();
    std::unique_ptr<SettingsHive> hive = MakeMemoryHive();
    std::unique_ptr<Clock> clock = MakeSystemClock();
    std::unique_ptr<SystemInfo> system = MakeSystemInfo();
    std::unique_ptr<Launcher> launcher = MakeLauncher();
    HeadlessDialogHost dialogs{
        [](const std::string& question) { std::fprintf(stderr, "asked: %s\n", question.c_str()); }};
    MemoryClipboard clipboard;
    QtMessageLoop loop;
    MainWindow window{makeEditor};
    std::unique_ptr<Program> program;
};

}  // namespace pw::bench
