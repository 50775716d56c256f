#pragma once
// What the benches with windows share.
#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "frame/FunctionLibrary.h"
#include "mainwindow/Program.h"
#include "mainwindow/frmDocument.h"
#include "platform/headless/HeadlessDialogHost.h"
#include "platform/headless/MemoryClipboard.h"
#include "platform/qt/MainWindow.h"
#include "platform/qt/QtMessageLoop.h"
#include "platform/qt/editor/EditorView.h"

namespace pw::bench {

inline double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/** A page like those of a manual: headings, paragraphs, links, lists. Of that many bytes or a few
 *  more. */
inline std::string manualPage(std::size_t size) {
    std::string html = "<!DOCTYPE html>\n<html><head><title>Manual</title></head><body>\n";
    for (int i = 0; html.size() < size; ++i) {
        const std::string n = std::to_string(i);
        html += "<h2>Section " + n + "</h2>\n<p class=\"intro\">This section tells how <b>part " +
                n + "</b> is set up, and what <a href=\"p" + n +
                ".htm\">the other parts</a> expect of it.</p>\n<!-- " + n +
                " -->\n<ul>\n<li>one item</li>\n<li>and <i>another</i></li>\n</ul>\n";
    }
    return html + "</body></html>\n";
}

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
    MainWindow window{[](QWidget* parent) {
        auto* view = new EditorView(parent);
        return EditorParts{view, view};
    }};
    std::unique_ptr<Program> program;
};

}  // namespace pw::bench
