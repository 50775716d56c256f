#pragma once
#include <QWidget>

class QListWidget;
class QLabel;

namespace pw {

/** What an empty window shows: what to do first, and the projects opened last. */
class WelcomePage : public QWidget {
    Q_OBJECT
  public:
    explicit WelcomePage(QWidget* parent = nullptr);
    /** Native paths, the last one first. */
    void setRecentProjects(const QStringList& paths);

  signals:
    void newProject();
    void openProject();
    void openRecent(const QString& path);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void showColors();
    QLabel* subtitle_ = nullptr;
    QLabel* recentHeading_ = nullptr;
    QListWidget* recent_ = nullptr;
};

}  // namespace pw
