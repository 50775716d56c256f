// The desktop program: the core's Program with real files and real windows.
#include <QtWebEngineCore/qtwebenginecoreglobal.h>
#include <unistd.h>
#include <QCommandLineParser>
#include <QTextStream>
#include <QTimer>

#include <csignal>
#include <memory>

#include "frame/FunctionLibrary.h"
#include "frame/Help.h"
#include "mainwindow/Program.h"
#include "mainwindow/frmDocument.h"
#include "platform/qt/Application.h"
#include "platform/qt/MainWindow.h"
#include "platform/qt/PagePicture.h"
#include "platform/qt/QtClipboard.h"
#include "platform/qt/QtDialogHost.h"
#include "platform/qt/QtMessageLoop.h"
#include "platform/qt/QtText.h"
#include "platform/qt/Splash.h"
#include "platform/qt/Theme.h"
#include "platform/qt/editor/EditorView.h"

namespace {

using namespace pw;

struct Arguments {
    std::string profile;
    QString file;
    QString picture;  ///< take a picture of `file` and end
};

Arguments readArguments(const QApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription("Makes web sites for people who know no HTML.");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption profile(
        "profile", "Keep settings, projects and temporary files in <DIR>, apart from your own.",
        "DIR");
    const QCommandLineOption picture(
        "picture", "Write a picture of the page <PAGE> into the file named behind it, and end.",
        "PAGE");
    parser.addOptions({profile, picture});
    parser.addPositionalArgument("FILE", "A project (.pwp) or a page (.htm, .html) to open.",
                                 "[FILE]");
    parser.process(application);
    Arguments arguments;
    arguments.profile = parser.value(profile).toLocal8Bit().toStdString();
    arguments.file = parser.positionalArguments().value(0);
    if (parser.isSet(picture)) {
        arguments.picture = arguments.file;
        arguments.file = parser.value(picture);
    }
    return arguments;
}

/** Prints "ready" when the first page can be typed into, for those who measure the start. */
class ReadyReport : public QTimer {
  public:
    explicit ReadyReport(Program& program) : program_(program) {
        connect(this, &QTimer::timeout, this, [this] {
            const frmDocument* page = program_.Window().Context().CurrentDocument();
            if (!page || page->docDHTMLEditor.Busy()) return;
            stop();
            QTextStream(stdout) << "ready" << Qt::endl;
        });
        start(0);
    }

  private:
    Program& program_;
};

int run(Application& application, const Arguments& arguments) {
    const Theme theme(application);
    const auto files = MakePosixFileSystem();
    const auto clock = MakeSystemClock();
    const auto system = MakeSystemInfo();
    const auto launcher = MakeLauncher();
    QtMessageLoop loop;
    QtClipboard clipboard;
    QtDialogHost dialogs;

    const Places places = FindPlaces(arguments.profile);
    MachineTable machine;
    machine.engineVersion = qWebEngineChromiumVersion();
    std::string hiveMessage;
    const auto hive = MakeFileHive(ToNativePath(BuildPath(places.configFolder, kSettingsFile)),
                                   &hiveMessage, machine);
    if (!hiveMessage.empty()) dialogs.MsgBox({hiveMessage, kApplicationTitle, Icon::Exclamation});

    std::unique_ptr<MainWindow> window;
    ProgramParts parts;
    parts.makeWindow = [&]() -> MainWindowSurface& {
        window = std::make_unique<MainWindow>(makeEditor);
        dialogs.setParent(window.get());
        return *window;
    };
    std::unique_ptr<Program> program;
    parts.bindWindow = [&](frmMDIMain& controls) {
        MainWindowActions actions;
        actions.explorerClosed = [&controls](int tool) { controls.picExplorer_Closed(tool); };
        actions.paneFocused = [&controls](int pane) { controls.PaneFocused(Pane(pane)); };
        actions.panelPressed = [&controls](int panel) { controls.sbrMain_PanelClick(panel); };
        actions.help = [&program](int topic) { ShowHelp(program->Frame(), topic); };
        dialogs.setHelp(actions.help);
        window->bind(controls, controls.barMain, std::move(actions));
    };
    parts.makeSplash = [](FrameContext& context) { return std::make_unique<Splash>(context); };
    bool ended = false;
    parts.endProcess = [&ended] {
        ended = true;
        QCoreApplication::quit();
    };
    program = std::make_unique<Program>(
        World{*files, *hive, *clock, *system, loop, dialogs, clipboard, *launcher}, places,
        std::move(parts));

    application.onFault = [&program](Application::Fault fault) {
        FaultReport& faults = program->Frame().faults;
        if (fault == Application::Fault::Told) {
            faults.HandlerFailed("Application.", "notify");
        } else {
            faults.Log("Application.", "notify");
        }
    };
    const std::string file = arguments.file.isEmpty()
                                 ? ""
                                 : FromNativeArgument(arguments.file.toLocal8Bit().toStdString());
    int result = 1;
    if (program->Start(file) == StartupResult::Running) {
        std::unique_ptr<ReadyReport> report;
        if (qEnvironmentVariableIsSet("PAGEWICK_REPORT_READY")) {
            report = std::make_unique<ReadyReport>(*program);
        }
        result = ended ? 0 : QApplication::exec();
    }
    // The window draws the program's controls: it lets go of them before they die.
    if (window) window->unbind();
    application.onFault = nullptr;
    program.reset();
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    // A limit on the size of files comes as the error of a call as well, which is told.
    std::signal(SIGXFSZ, SIG_IGN);
    // The browser engine refuses to start its sandbox as root.
    if (geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    Application application(argc, argv);
    QApplication::setApplicationName("Pagewick");
    QApplication::setApplicationVersion(QString::fromStdString(GetVersionString()));
    QApplication::setDesktopFileName("pagewick");
    QApplication::setQuitOnLastWindowClosed(false);
    const Arguments arguments = readArguments(application);
    if (!arguments.picture.isEmpty()) {
        if (takePagePicture(arguments.file, arguments.picture)) return 0;
        QTextStream(stderr) << "No picture of '" << arguments.file << "' could be written to '"
                            << arguments.picture << "'." << Qt::endl;
        return 1;
    }
    try {
        return run(application, arguments);
    } catch (const std::exception& failure) {
        application.onFault = nullptr;
        QTextStream(stderr) << "Pagewick can not go on: " << failure.what() << Qt::endl;
        return 1;
    }
}
