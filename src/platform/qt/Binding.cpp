#include "platform/qt/Binding.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QProgressBar>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>

#include "platform/qt/ColorButton.h"
#include "platform/qt/ImageList.h"
#include "platform/qt/QtText.h"
#include "platform/qt/StatusPanel.h"

namespace pw {

Binding::Binding(Control& control, QWidget& widget) : control_(control), widget_(&widget) {
    control_.SetObserver(this);
}

Binding::~Binding() {
    control_.SetObserver(nullptr);
}

void Binding::ControlChanged(Control&, Aspect aspect) {
    if (!widget_) return;
    ++showing_;
    showCommon(aspect);
    show(aspect);
    --showing_;
}

void Binding::showAll() {
    ++showing_;
    widget_->setEnabled(control_.Enabled());
    widget_->setVisible(control_.Visible());
    if (!control_.toolTip.empty()) widget_->setToolTip(toQt(control_.toolTip));
    if (!control_.Caption().empty()) showCaption(toQt(control_.Caption()));
    for (const Aspect aspect : {Aspect::Range, Aspect::Items, Aspect::Text, Aspect::Selection,
                                Aspect::Checked, Aspect::Value, Aspect::Color, Aspect::Picture}) {
        show(aspect);
    }
    --showing_;
}

void Binding::showCommon(Aspect aspect) {
    if (!control_.toolTip.empty()) widget_->setToolTip(toQt(control_.toolTip));
    switch (aspect) {
        case Aspect::Enabled:
            widget_->setEnabled(control_.Enabled());
            break;
        case Aspect::Visible:
            widget_->setVisible(control_.Visible());
            break;
        case Aspect::Caption:
            if (!control_.Caption().empty() || control_.Kind() == ControlKind::Label) {
                showCaption(toQt(control_.Caption()));
            }
            break;
        case Aspect::Focus:
            widget_->setFocus(Qt::OtherFocusReason);
            break;
        default:
            break;
    }
}

void Binding::showCaption(const QString& caption) {
    if (auto* button = qobject_cast<QAbstractButton*>(widget_)) button->setText(caption);
    if (auto* group = qobject_cast<QGroupBox*>(widget_)) group->setTitle(caption);
}

namespace {

/** Labels, and the panels of the status bar. */
class LabelBinding : public Binding {
  public:
    LabelBinding(Control& control, QWidget& widget) : Binding(control, widget), control_(control) {
        label_ = qobject_cast<QLabel*>(&widget);
        panel_ = qobject_cast<StatusPanel*>(&widget);
        if (label_) label_->setTextFormat(Qt::PlainText);
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QLabel*>(&widget) || qobject_cast<const StatusPanel*>(&widget);
    }

  protected:
    void show(Aspect) override {
        if (panel_) panel_->setImage(QString::fromStdString(control_.tag).toInt());
    }
    void showCaption(const QString& caption) override {
        if (panel_) panel_->setText(caption);
        // A label without a buddy shows its "&" marks.
        if (label_) label_->setText(label_->buddy() ? caption : withoutMnemonic(caption));
    }

  private:
    Control& control_;
    QLabel* label_ = nullptr;
    StatusPanel* panel_ = nullptr;
};

class FrameBinding : public Binding {
  public:
    using Binding::Binding;
    static bool fits(const QWidget&) { return true; }

  protected:
    void show(Aspect) override {}
};

class ButtonBinding : public Binding {
  public:
    ButtonBinding(Control& control, QWidget& widget) : Binding(control, widget) {
        auto* button = qobject_cast<QAbstractButton*>(&widget);
        auto& model = static_cast<Button&>(control);
        connect(button, &QAbstractButton::clicked, this, [&model] { model.UserClick(); });
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QAbstractButton*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect) override {}
};

class CheckBinding : public Binding {
  public:
    CheckBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<CheckBox&>(control)),
          button_(qobject_cast<QAbstractButton*>(&widget)) {
        button_->setCheckable(true);
        connect(button_, &QAbstractButton::clicked, this, [this](bool checked) {
            model_.UserSetChecked(checked);
            button_->setChecked(model_.Checked());
        });
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QCheckBox*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect) override { button_->setChecked(model_.Checked()); }

  private:
    CheckBox& model_;
    QAbstractButton* button_;
};

/** The model says who excludes whom; a button group of Qt's gives the arrow keys their way. */
class OptionBinding : public Binding {
  public:
    OptionBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<OptionButton&>(control)),
          button_(qobject_cast<QRadioButton*>(&widget)) {
        const QString name = QStringLiteral("group of ") + toQt(model_.group);
        auto* group = widget.window()->findChild<QButtonGroup*>(name);
        if (!group) {
            group = new QButtonGroup(widget.window());
            group->setObjectName(name);
        }
        group->addButton(button_);
        group_ = group;
        connect(button_, &QAbstractButton::clicked, this, [this] { model_.UserClick(); });
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QRadioButton*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect) override {
        group_->setExclusive(false);
        button_->setChecked(model_.Checked());
        group_->setExclusive(true);
    }

  private:
    OptionButton& model_;
    QRadioButton* button_;
    QButtonGroup* group_ = nullptr;
};

class ComboBinding : public Binding {
  public:
    ComboBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<ComboBox&>(control)),
          combo_(qobject_cast<QComboBox*>(&widget)) {
        combo_->setEditable(model_.Editable());
        combo_->setInsertPolicy(QComboBox::NoInsert);
        connect(combo_, &QComboBox::activated, this, [this](int index) {
            if (!showing()) model_.UserSelect(index);
        });
        if (QLineEdit* line = combo_->lineEdit()) {
            combo_->setCompleter(nullptr);
            connect(line, &QLineEdit::textEdited, this, [this](const QString& text) {
                typing_ = true;
                model_.UserSetText(fromQt(text));
                typing_ = false;
            });
        }
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QComboBox*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect aspect) override {
        if (typing_) return;  // what is typed stays as it is under the caret
        if (aspect == Aspect::Focus && combo_->lineEdit()) combo_->lineEdit()->selectAll();
        const QSignalBlocker quiet(combo_);
        if (aspect == Aspect::Items) {
            QStringList items;
            for (const std::string& item : model_.Items())
                items << toQt(item);
            combo_->clear();
            combo_->addItems(items);
        }
        if (aspect == Aspect::Items || aspect == Aspect::Selection) {
            combo_->setCurrentIndex(model_.ListIndex());
            if (model_.Editable()) combo_->setEditText(toQt(model_.Text()));
        }
    }

  private:
    ComboBox& model_;
    QComboBox* combo_;
    bool typing_ = false;
};

class UpDownBinding : public Binding {
  public:
    UpDownBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<UpDown&>(control)),
          box_(qobject_cast<QSpinBox*>(&widget)) {
        connect(box_, &QSpinBox::valueChanged, this, [this](int value) {
            if (!showing()) model_.SetValue(value);
        });
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QSpinBox*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect) override {
        box_->setRange(model_.minimum, model_.maximum);
        box_->setValue(model_.Value());
    }

  private:
    UpDown& model_;
    QSpinBox* box_;
};

/** The first date that the widget knows stands for none, and is shown as an empty field. It lies
 *  before any that a task can have: each other day is shown as it is, and only the user changes it.
 */
class DateBinding : public Binding {
  public:
    DateBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<DatePicker&>(control)),
          box_(qobject_cast<QDateEdit*>(&widget)) {
        box_->setDateRange(noDay(), QDate(9999, 12, 31));
        box_->setSpecialValueText(QStringLiteral(" "));
        // A year of two digits could be of any century.
        QString format = box_->displayFormat();
        if (!format.contains(QLatin1String("yyyy")))
            box_->setDisplayFormat(format.replace(QLatin1String("yy"), QLatin1String("yyyy")));
        if (QCalendarWidget* calendar = box_->calendarWidget()) calendar->installEventFilter(this);
        connect(box_, &QDateEdit::dateChanged, this, [this](QDate date) {
            if (showing()) return;
            // From no day at all a step leads to today.
            if (model_.Value() == 0 && date.year() < 1000) date = QDate::currentDate();
            model_.SetValue(date == noDay() ? 0.0 : double(dayZero().daysTo(date)));
        });
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QDateEdit*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect) override {
        const double first = double(dayZero().daysTo(noDay().addDays(1)));
        const double last = double(dayZero().daysTo(box_->maximumDate()));
        const double day = qBound(first, model_.Value(), last);
        box_->setDate(model_.Value() == 0 ? noDay() : dayZero().addDays(qint64(day)));
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && model_.Value() == 0) {
            const QDate today = QDate::currentDate();
            box_->calendarWidget()->setCurrentPage(today.year(), today.month());
        }
        return Binding::eventFilter(watched, event);
    }

  private:
    static QDate dayZero() { return {1899, 12, 30}; }
    static QDate noDay() { return {100, 1, 1}; }
    DatePicker& model_;
    QDateEdit* box_;
};

class ProgressBinding : public Binding {
  public:
    ProgressBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<ProgressBar&>(control)),
          bar_(qobject_cast<QProgressBar*>(&widget)) {
        bar_->setRange(0, 100);
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QProgressBar*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect) override { bar_->setValue(model_.Value()); }

  private:
    ProgressBar& model_;
    QProgressBar* bar_;
};

class ColorBinding : public Binding {
  public:
    ColorBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<ColorBox&>(control)),
          button_(qobject_cast<ColorButton*>(&widget)) {
        connect(button_, &QAbstractButton::clicked, this, [this] { model_.UserClick(); });
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const ColorButton*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect) override { button_->setColor(model_.Value()); }

  private:
    ColorBox& model_;
    ColorButton* button_;
};

class PictureBinding : public Binding {
  public:
    PictureBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<PictureBox&>(control)),
          label_(qobject_cast<QLabel*>(&widget)) {}
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QLabel*>(&widget) != nullptr;
    }

  protected:
    void show(Aspect aspect) override {
        if (aspect != Aspect::Picture && aspect != Aspect::Caption) return;
        const QSize room = label_->minimumSize().expandedTo(QSize(32, 32));
        const qreal ratio = label_->devicePixelRatioF();
        QPixmap picture;
        if (!model_.Filename().empty()) {
            picture.load(toNativeQt(model_.Filename()));
        } else if (const int image = QString::fromStdString(model_.tag).toInt()) {
            picture = imageIcon(image).pixmap(room, ratio);
        }
        const QSize target = room * ratio;
        if (picture.width() > target.width() || picture.height() > target.height()) {
            picture = picture.scaled(target, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            picture.setDevicePixelRatio(ratio);
        }
        // A form's own picture stays when the model names none.
        if (!picture.isNull() || !model_.Filename().empty()) label_->setPixmap(picture);
    }

  private:
    PictureBox& model_;
    QLabel* label_;
};

class TabBinding : public Binding {
  public:
    TabBinding(Control& control, QWidget& widget)
        : Binding(control, widget),
          model_(static_cast<TabStrip&>(control)),
          tabs_(qobject_cast<QTabWidget*>(&widget)),
          bar_(tabs_ ? tabs_->tabBar() : qobject_cast<QTabBar*>(&widget)) {
        connect(bar_, &QTabBar::currentChanged, this, [this](int index) {
            if (!showing()) model_.UserSelect(index);
        });
    }
    static bool fits(const QWidget& widget) {
        return qobject_cast<const QTabWidget*>(&widget) || qobject_cast<const QTabBar*>(&widget);
    }

  protected:
    void show(Aspect) override {
        // Through the tab widget, so that the page turns with the tab.
        if (tabs_) {
            tabs_->setCurrentIndex(model_.Selected());
        } else {
            bar_->setCurrentIndex(model_.Selected());
        }
    }

  private:
    TabStrip& model_;
    QTabWidget* tabs_;
    QTabBar* bar_;
};

template <typename B>
std::unique_ptr<Binding> makeIfFits(Control& control, QWidget& widget) {
    if (!B::fits(widget)) return nullptr;
    return std::make_unique<B>(control, widget);
}

}  // namespace

std::unique_ptr<Binding> makeBinding(Control& control, QWidget& widget) {
    switch (control.Kind()) {
        case ControlKind::Label:
            return makeIfFits<LabelBinding>(control, widget);
        case ControlKind::TextBox:
            return makeTextBinding(control, widget);
        case ControlKind::CheckBox:
            return makeIfFits<CheckBinding>(control, widget);
        case ControlKind::OptionButton:
            return makeIfFits<OptionBinding>(control, widget);
        case ControlKind::ComboBox:
            return makeIfFits<ComboBinding>(control, widget);
        case ControlKind::ListBox:
        case ControlKind::ListView:
            return makeListBinding(control, widget);
        case ControlKind::TreeView:
            return makeTreeBinding(control, widget);
        case ControlKind::Button:
            return makeIfFits<ButtonBinding>(control, widget);
        case ControlKind::TabStrip:
            return makeIfFits<TabBinding>(control, widget);
        case ControlKind::ProgressBar:
            return makeIfFits<ProgressBinding>(control, widget);
        case ControlKind::ColorBox:
            return makeIfFits<ColorBinding>(control, widget);
        case ControlKind::Picture:
            return makeIfFits<PictureBinding>(control, widget);
        case ControlKind::Frame:
            return makeIfFits<FrameBinding>(control, widget);
        case ControlKind::UpDown:
            return makeIfFits<UpDownBinding>(control, widget);
        case ControlKind::DatePicker:
            return makeIfFits<DateBinding>(control, widget);
        case ControlKind::Splitter:
            return makeSplitterBinding(control, widget);
    }
    return nullptr;
}

}  // namespace pw
