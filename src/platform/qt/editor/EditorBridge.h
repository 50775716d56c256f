#pragma once
// What the view's scripts call; docs/editor-protocol.md tells what each call means. It only passes
// on: the slots have the names of the protocol.
#include <QObject>
#include <QString>

namespace pw {

class EditorBridge : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

  public slots:
    void ready(int token) { emit isReady(token); }
    void batch(const QString& json) { emit hasBatch(json); }
    void state(const QString& json) { emit hasState(json); }
    void applied(int message) { emit hasApplied(message); }
    void lost(int message) { emit isLost(message); }
    void styled() { emit isStyled(); }
    void synced(int token, int keys) { emit hasSynced(token, keys); }
    void executed(int token, bool done) { emit hasExecuted(token, done); }
    void mouse(const QString& what, double node) { emit mouseMoved(what, qint64(node)); }
    void key(int code, bool alt, bool control, bool shift) {
        emit keyReleased(code, alt, control, shift);
    }
    void command(const QString& name) { emit commandAsked(name); }
    void dropped(const QString& html, const QString& text) { emit markupDropped(html, text); }
    void focused() { emit hasFocus(); }
    void placed(double node, const QString& json) { emit isPlaced(qint64(node), json); }
    void freePlace(int token, const QString& json) { emit hasFreePlace(token, json); }

  signals:
    void isReady(int token);
    void hasBatch(const QString& json);
    void hasState(const QString& json);
    void hasApplied(int message);
    void isLost(int message);
    void isStyled();
    void hasSynced(int token, int keys);
    void hasExecuted(int token, bool done);
    void mouseMoved(const QString& what, qint64 node);
    void keyReleased(int code, bool alt, bool control, bool shift);
    void commandAsked(const QString& name);
    void markupDropped(const QString& html, const QString& text);
    void hasFocus();
    void isPlaced(qint64 node, const QString& json);
    void hasFreePlace(int token, const QString& json);
};

}  // namespace pw
