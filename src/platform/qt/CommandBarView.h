#pragma once
// Menus, toolbars and shortcuts of a window, made from the command bar and kept in step with it.
#include <QAction>
#include <QComboBox>
#include <QMainWindow>
#include <QMenu>
#include <QToolBar>

#include <map>

#include "platform/controls/CommandBar.h"

namespace pw {

/** There is one action for each tool, whichever bands it stands on. What it is called on a band is
 *  set when the band opens; on toolbars it is a picture with a tool tip. */
class CommandBarView : public QObject, public CommandBarObserver {
    Q_OBJECT
  public:
    /** Both must outlive it. */
    CommandBarView(CommandBar& bar, QMainWindow& window);
    ~CommandBarView() override;

    /** Makes what stands on the bar now: to be called when its bands are complete. `menuBar` is the
     *  band whose sub-bands are the menu bar. */
    void build(const std::string& menuBar);

    /** None for what does not exist. */
    QAction* action(int number) const;
    QMenu* menu(const std::string& band) const;
    QToolBar* toolBar(const std::string& band) const;
    QComboBox* comboBox(int number) const;
    /** Opens a menu or popup band at a place of the screen. */
    void popUpAt(const std::string& band, const QPoint& place);
    /** What a right click on a toolbar offers: to hide it, and the menu of all of them. The caller
     *  owns the menu. */
    QMenu* makeToolBarMenu(QToolBar* pressed, const std::string& listBand);

    void ToolChanged(const Tool& tool) override;
    void BandChanged(const Band& band) override;
    void PopUp(const Band& band) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QAction* makeAction(const Tool& tool);
    void showTool(const Tool& tool);
    void showCaption(const Tool& tool, QAction& shown);
    QMenu* makeMenu(const Band& band);
    void fillMenu(QMenu& menu, const Band& band);
    void captionItems(const Band& band);
    QToolBar* makeToolBar(const Band& band);
    void fillToolBar(QToolBar& toolBar, const Band& band);
    QComboBox* makeComboBox(const Tool& tool, QToolBar& parent);
    void refreshEnabled();
    void pointerOn(int number);  ///< 0: on none

    CommandBar& bar_;
    QMainWindow& window_;
    int pointedAt_ = 0;
    std::map<int, QAction*> actions_;
    std::map<int, QComboBox*> combos_;
    std::map<std::string, QMenu*> menus_;
    std::map<std::string, QToolBar*> toolBars_;
};

}  // namespace pw
