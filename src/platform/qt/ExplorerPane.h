#pragma once
#include <QFrame>
#include <QLabel>
#include <QToolButton>

namespace pw {

/** One explorer with its heading and the box that closes it. */
class ExplorerPane : public QFrame {
    Q_OBJECT
  public:
    /** Takes the content as its child. `name` is that of the pane's control. */
    ExplorerPane(const QString& name, const QString& title, QWidget* content,
                 QWidget* parent = nullptr);

  signals:
    void closePressed();
};

}  // namespace pw
