#include "platform/qt/editor/EditorPage.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QWebEngineScriptCollection>
#include <QWebEngineSettings>

// The resources of a static library are left out of the program unless somebody asks for them.
static void loadEditorScripts() {
    Q_INIT_RESOURCE(editor);
}

namespace pw {

// --- The page -----------------------------------------------------------------------------------

EditorPage::EditorPage(QObject* parent) : QWebEnginePage(parent) {
    settings()->setAttribute(QWebEngineSettings::JavascriptEnabled, false);
    settings()->setAttribute(QWebEngineSettings::PluginsEnabled, false);
    settings()->setAttribute(QWebEngineSettings::AutoLoadIconsForPage, false);
    QWebEngineScript script;
    script.setName(QStringLiteral("editor"));
    script.setWorldId(world);
    script.setInjectionPoint(QWebEngineScript::DocumentReady);
    script.setRunsOnSubFrames(false);
    script.setSourceCode(scriptText());
    scripts().insert(script);
}

const QString& EditorPage::scriptText() {
    static const QString source = [] {
        loadEditorScripts();
        QString text;
        for (const char* name : {"editor.js", "units.js", "input.js", "chrome.js"}) {
            QFile file(QStringLiteral(":/editor/") + QLatin1String(name));
            if (!file.open(QIODevice::ReadOnly)) qFatal("The editor's script %s is missing", name);
            text += QString::fromUtf8(file.readAll());
        }
        return text + QStringLiteral("\npw.begin();\n");
    }();
    return source;
}

bool EditorPage::acceptNavigationRequest(const QUrl&, NavigationType type, bool mainFrame) {
    if (mainFrame) return allowed;
    return type != NavigationTypeLinkClicked && type != NavigationTypeFormSubmitted;
}

void EditorPage::javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level,
                                          const QString& message, int line, const QString& source) {
    if (level == ErrorMessageLevel)
        qWarning("%s:%d %s", qPrintable(source), line, qPrintable(message));
}

// --- The browser widget -------------------------------------------------------------------------

void EditorWebView::dropEvent(QDropEvent* event) {
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) paths << url.toLocalFile();
    if (paths.isEmpty()) {
        QWebEngineView::dropEvent(event);
        return;
    }
    event->acceptProposedAction();
    // The page never sees this drop: its drag ends here, and with it the caret that follows it.
    QDragLeaveEvent leave;
    dragLeaveEvent(&leave);
    emit filesDropped(event->position().toPoint(), paths);
}

void EditorWebView::contextMenuEvent(QContextMenuEvent* event) {
    // The page reports it, with what was hit; the browser's own menu has no place here.
    event->accept();
}

}  // namespace pw
