#include "platform/qt/CommandBarView.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenuBar>
#include <QToolButton>

#include "platform/qt/QtText.h"

namespace pw {

namespace {

/** Where a tool button says which tool it is. */
constexpr const char* numberProperty = "toolNumber";

/** The place for a menu that comes up by itself: the pointer, or what is selected in the widget
 *  with the keyboard when the pointer is elsewhere. */
QPoint popupPlace() {
    const QPoint pointer = QCursor::pos();
    const QWidget* focus = QApplication::focusWidget();
    if (!focus || focus->rect().contains(focus->mapFromGlobal(pointer))) return pointer;
    QRect around = focus->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    if (const auto* view = qobject_cast<const QAbstractItemView*>(focus)) {
        around = view->visualRect(view->currentIndex());
        return view->viewport()->mapToGlobal(around.bottomLeft() + QPoint(16, 0));
    }
    return focus->mapToGlobal(around.bottomLeft());
}

}  // namespace

CommandBarView::CommandBarView(CommandBar& bar, QMainWindow& window)
    : QObject(&window), bar_(bar), window_(window) {
    bar_.SetObserver(this);
}

CommandBarView::~CommandBarView() {
    bar_.SetObserver(nullptr);
}

void CommandBarView::build(const std::string& menuBar) {
    const Band* const top = bar_.FindBand(menuBar);
    for (const std::string& name : bar_.BandNames()) {
        const Band& band = *bar_.FindBand(name);
        if (&band == top) continue;
        if (band.kind == BandKind::Toolbar) {
            if (!toolBars_.contains(name)) toolBars_[name] = makeToolBar(band);
        } else if (!menus_.contains(name)) {
            menus_[name] = makeMenu(band);
        }
    }
    // Filled when all of them are there, since bands name each other.
    for (const auto& [name, menu] : menus_)
        fillMenu(*menu, *bar_.FindBand(name));
    if (top) {
        QMenuBar& shown = *window_.menuBar();
        shown.clear();
        for (const BandItem& item : top->items) {
            QMenu* sub = menu(item.subBand);
            if (!sub) continue;
            if (!item.caption.empty()) sub->setTitle(toQt(item.caption));
            shown.addMenu(sub);
        }
    }
    for (const auto& [number, made] : actions_)
        showTool(*bar_.FindTool(number));
}

QAction* CommandBarView::action(int number) const {
    const auto found = actions_.find(number);
    return found == actions_.end() ? nullptr : found->second;
}

QMenu* CommandBarView::menu(const std::string& band) const {
    const auto found = menus_.find(band);
    return found == menus_.end() ? nullptr : found->second;
}

QToolBar* CommandBarView::toolBar(const std::string& band) const {
    const auto found = toolBars_.find(band);
    return found == toolBars_.end() ? nullptr : found->second;
}

QComboBox* CommandBarView::comboBox(int number) const {
    const auto found = combos_.find(number);
    return found == combos_.end() ? nullptr : found->second;
}

// --- Actions ------------------------------------------------------------------------------------

QAction* CommandBarView::makeAction(const Tool& tool) {
    if (QAction* known = action(tool.number)) return known;
    auto* made = new QAction(this);
    const int number = tool.number;
    actions_[number] = made;
    made->setMenuRole(QAction::NoRole);
    made->setObjectName(QStringLiteral("tool_%1").arg(number));
    made->setCheckable(tool.checkable);
    if (!tool.icon.empty()) made->setIcon(QIcon::fromTheme(toQt(tool.icon)));
    if (!tool.shortcut.empty()) made->setShortcut(QKeySequence(toQt(tool.shortcut)));
    connect(made, &QAction::triggered, this, [this, number] {
        bar_.Click(number);
        // The model alone says what is checked; a click by itself changes nothing.
        if (const Tool* clicked = bar_.FindTool(number)) showTool(*clicked);
    });
    window_.addAction(made);
    showTool(tool);
    return made;
}

void CommandBarView::showTool(const Tool& tool) {
    if (QComboBox* combo = comboBox(tool.number)) {
        const QSignalBlocker quiet(combo);
        QStringList items;
        for (const std::string& item : tool.items)
            items << toQt(item);
        if (combo->count() != items.size() || combo->property("items").toStringList() != items) {
            combo->clear();
            combo->addItems(items);
            combo->setProperty("items", items);
        }
        combo->setCurrentIndex(combo->findText(toQt(tool.text), Qt::MatchFixedString));
        if (combo->isEditable()) {
            combo->setEditText(toQt(tool.text));
            combo->lineEdit()->setCursorPosition(0);
        }
        combo->setEnabled(bar_.IsEnabled(tool.number));
    }
    QAction* shown = action(tool.number);
    if (!shown) return;
    if (tool.checked && !shown->isCheckable()) shown->setCheckable(true);
    shown->setChecked(tool.checked);
    shown->setEnabled(bar_.IsEnabled(tool.number));
    shown->setVisible(tool.visible);
    showCaption(tool, *shown);
}

void CommandBarView::showCaption(const Tool& tool, QAction& shown) {
    const std::string caption = bar_.Caption(tool.number);
    std::string onToolBar = caption;
    for (const auto& [name, toolBar] : toolBars_) {
        for (const BandItem& item : bar_.FindBand(name)->items) {
            if (item.kind == BandItem::Kind::Tool && item.number == tool.number) {
                onToolBar = item.caption;
            }
        }
    }
    QString tip = withoutMnemonic(toQt(onToolBar));
    while (tip.endsWith(QLatin1Char('.')))
        tip.chop(1);
    shown.setText(toQt(caption));
    shown.setIconText(tip);
    const QString keys = shown.shortcut().toString(QKeySequence::NativeText);
    if (!keys.isEmpty()) tip += QStringLiteral(" (") + keys + QLatin1Char(')');
    shown.setToolTip(tip);
}

void CommandBarView::refreshEnabled() {
    for (const auto& [number, shown] : actions_)
        shown->setEnabled(bar_.IsEnabled(number));
    for (const auto& [number, combo] : combos_)
        combo->setEnabled(bar_.IsEnabled(number));
}

// --- Menus --------------------------------------------------------------------------------------

QMenu* CommandBarView::makeMenu(const Band& band) {
    auto* made = new QMenu(toQt(band.caption), &window_);
    made->setObjectName(toQt(band.name));
    made->setToolTipsVisible(false);
    const std::string name = band.name;
    connect(made, &QMenu::aboutToShow, this, [this, name] {
        bar_.OpenBand(name);
        if (const Band* opening = bar_.FindBand(name)) captionItems(*opening);
    });
    connect(made, &QMenu::aboutToHide, this, [this] { pointerOn(0); });
    connect(made, &QMenu::hovered, this, [this](const QAction* hovered) {
        for (const auto& [number, action] : actions_) {
            if (action == hovered) return pointerOn(number);
        }
    });
    return made;
}

void CommandBarView::fillMenu(QMenu& menu, const Band& band) {
    menu.clear();
    for (const BandItem& item : band.items) {
        switch (item.kind) {
            case BandItem::Kind::Separator:
                menu.addSeparator();
                break;
            case BandItem::Kind::SubBand:
                if (QMenu* sub = this->menu(item.subBand)) {
                    if (!item.caption.empty()) sub->setTitle(toQt(item.caption));
                    const Tool* tool = bar_.FindTool(item.number);
                    if (tool) sub->setIcon(QIcon::fromTheme(toQt(tool->icon)));
                    menu.addMenu(sub);
                }
                break;
            case BandItem::Kind::Tool:
                if (const Tool* tool = bar_.FindTool(item.number)) {
                    menu.addAction(makeAction(*tool));
                }
                break;
        }
    }
    menu.menuAction()->setVisible(band.visible);
    captionItems(band);
}

void CommandBarView::captionItems(const Band& band) {
    for (const BandItem& item : band.items) {
        QAction* shown = item.kind == BandItem::Kind::Tool ? action(item.number) : nullptr;
        if (shown) shown->setText(toQt(item.caption));
    }
}

void CommandBarView::popUpAt(const std::string& band, const QPoint& place) {
    if (QMenu* popup = menu(band)) popup->popup(place);
}

void CommandBarView::PopUp(const Band& band) {
    popUpAt(band.name, popupPlace());
}

// --- Toolbars -----------------------------------------------------------------------------------

QToolBar* CommandBarView::makeToolBar(const Band& band) {
    auto* made = new QToolBar(toQt(band.caption.empty() ? band.name : band.caption), &window_);
    made->setObjectName(toQt(band.name));
    made->setToolButtonStyle(Qt::ToolButtonIconOnly);
    made->setFloatable(false);
    made->setIconSize(QSize(22, 22));
    fillToolBar(*made, band);
    made->setVisible(band.visible);
    window_.addToolBar(made);
    return made;
}

void CommandBarView::fillToolBar(QToolBar& toolBar, const Band& band) {
    toolBar.clear();
    for (const BandItem& item : band.items) {
        if (item.kind == BandItem::Kind::Separator) toolBar.addSeparator();
        const Tool* tool = item.kind == BandItem::Kind::Tool ? bar_.FindTool(item.number) : nullptr;
        if (!tool) continue;
        const QString caption = withoutMnemonic(toQt(item.caption));
        if (tool->kind == ToolKind::Combo) {
            QComboBox* combo = makeComboBox(*tool, toolBar);
            combo->setAccessibleName(caption);
            combo->setToolTip(caption);
            toolBar.addWidget(combo);
            showTool(*tool);
            continue;
        }
        QAction* shown = makeAction(*tool);
        toolBar.addAction(shown);
        QWidget* button = toolBar.widgetForAction(shown);
        button->setAccessibleName(caption);
        button->setProperty(numberProperty, item.number);
        button->setFocusPolicy(Qt::TabFocus);
        button->installEventFilter(this);
    }
    toolBar.setEnabled(band.enabled);
}

QComboBox* CommandBarView::makeComboBox(const Tool& tool, QToolBar& parent) {
    auto* combo = new QComboBox(&parent);
    const int number = tool.number;
    combos_[number] = combo;
    combo->setObjectName(QStringLiteral("tool_%1").arg(number));
    combo->setEditable(tool.editable);
    combo->setInsertPolicy(QComboBox::NoInsert);
    // The lists come later, and a toolbar that moves is a nuisance.
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(tool.editable ? 14 : 8);
    combo->setMaxVisibleItems(20);
    combo->setProperty(numberProperty, number);
    combo->installEventFilter(this);
    connect(combo, &QComboBox::textActivated, this,
            [this, number](const QString& text) { bar_.ChooseCombo(number, fromQt(text)); });
    if (QLineEdit* line = combo->lineEdit()) {
        connect(line, &QLineEdit::returnPressed, this,
                [this, number, line] { bar_.ChooseCombo(number, fromQt(line->text())); });
    }
    return combo;
}

QMenu* CommandBarView::makeToolBarMenu(QToolBar* pressed, const std::string& listBand) {
    auto* made = new QMenu(&window_);
    if (pressed) {
        const std::string name = fromQt(pressed->objectName());
        made->addAction(tr("Hide %1 Toolbar").arg(pressed->windowTitle()), this,
                        [this, name] { bar_.CloseToolbar(name); });
    }
    if (const QMenu* list = menu(listBand)) {
        bar_.OpenBand(listBand);
        made->addSeparator();
        made->addActions(list->actions());
    }
    return made;
}

bool CommandBarView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Enter || event->type() == QEvent::FocusIn) {
        pointerOn(watched->property(numberProperty).toInt());
    } else if (event->type() == QEvent::Leave || event->type() == QEvent::FocusOut) {
        pointerOn(0);
    }
    return false;
}

void CommandBarView::pointerOn(int number) {
    // A button and the menus that its tool stands on all tell of it.
    if (number == pointedAt_) return;
    pointedAt_ = number;
    if (number != 0) {
        bar_.PointerEnters(number);
    } else {
        bar_.PointerLeaves();
    }
}

// --- What the model tells -----------------------------------------------------------------------

void CommandBarView::ToolChanged(const Tool& tool) {
    showTool(tool);
}

void CommandBarView::BandChanged(const Band& band) {
    if (QMenu* changed = menu(band.name)) fillMenu(*changed, band);
    if (QToolBar* changed = toolBar(band.name)) {
        QList<int> shown;
        for (const QAction* action : changed->actions()) {
            shown << (action->isSeparator() ? 0
                                            : changed->widgetForAction(const_cast<QAction*>(action))
                                                  ->property(numberProperty)
                                                  .toInt());
        }
        QList<int> wanted;
        for (const BandItem& item : band.items)
            wanted << (item.kind == BandItem::Kind::Tool ? item.number : 0);
        if (shown != wanted) fillToolBar(*changed, band);
        changed->setEnabled(band.enabled);
        changed->setVisible(band.visible);
    }
    refreshEnabled();
}

}  // namespace pw
