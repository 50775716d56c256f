#include "platform/qt/FormBinder.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTabBar>
#include <QTextEdit>
#include <QUiLoader>

#include "platform/qt/ColorButton.h"
#include "platform/qt/QtText.h"

// The forms lie in a static library, which drops resources that nobody asks for.
static void bringResources() {
    Q_INIT_RESOURCE(forms);
}

namespace pw {

namespace {

const QString formFolder = QStringLiteral(":/forms");

/** Knows the widgets of ours that forms use. */
class FormLoader : public QUiLoader {
  public:
    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
        if (className != QLatin1String("ColorButton")) {
            return QUiLoader::createWidget(className, parent, name);
        }
        auto* button = new ColorButton(parent);
        button->setObjectName(name);
        return button;
    }
};

/** Widgets that a user works with, and so must have a control behind them. */
bool isWorking(const QWidget& widget) {
    return qobject_cast<const QAbstractButton*>(&widget) ||
           qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QTextEdit*>(&widget) ||
           qobject_cast<const QPlainTextEdit*>(&widget) ||
           qobject_cast<const QComboBox*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(&widget) ||
           qobject_cast<const QAbstractItemView*>(&widget) ||
           qobject_cast<const QAbstractSlider*>(&widget) ||
           qobject_cast<const QProgressBar*>(&widget);
}

}  // namespace

QString BindingReport::text() const {
    QStringList lines;
    for (const QString& name : controlsWithoutWidget)
        lines << QStringLiteral("no widget for the control ") + name;
    for (const QString& name : widgetsWithoutControl)
        lines << QStringLiteral("no control for the widget ") + name;
    for (const QString& name : wrongKind)
        lines << QStringLiteral("the widget cannot show the control ") + name;
    return lines.join(QLatin1Char('\n'));
}

std::unique_ptr<QWidget> loadForm(const QString& name, QWidget* parent) {
    bringResources();
    QFile file(formFolder + QLatin1Char('/') + name + QStringLiteral(".ui"));
    if (!file.open(QIODevice::ReadOnly)) return nullptr;
    FormLoader loader;
    return std::unique_ptr<QWidget>(loader.load(&file, parent));
}

QIcon programIcon() {
    bringResources();
    return QIcon(formFolder + QStringLiteral("/pagewick.svg"));
}

QStringList formNames() {
    bringResources();
    QStringList names;
    for (const QString& file : QDir(formFolder).entryList({QStringLiteral("*.ui")})) {
        names << file.chopped(3);
    }
    return names;
}

FormBinder::FormBinder(ControlOwner& owner, QWidget& form) {
    for (Control* control : owner.Controls()) {
        const QString name = toQt(control->Name());
        auto* widget = form.findChild<QWidget*>(name);
        if (!widget) {
            report_.controlsWithoutWidget << name;
            continue;
        }
        if (auto binding = makeBinding(*control, *widget)) {
            bindings_.push_back(std::move(binding));
        } else {
            report_.wrongKind << name;
        }
    }
    // Shown when all are tied: a value may move others.
    for (const auto& binding : bindings_)
        binding->showAll();
    findStrays(owner, form);
}

void FormBinder::findStrays(const ControlOwner& owner, const QWidget& parent) {
    for (const QObject* child : parent.children()) {
        const auto* widget = qobject_cast<const QWidget*>(child);
        if (!widget) continue;
        // Widgets of Qt's own inside others, such as the buttons of a tab bar.
        const bool internal = widget->objectName().isEmpty() ||
                              widget->objectName().startsWith(u"qt_") ||
                              qobject_cast<const QTabBar*>(&parent);
        if (isWorking(*widget)) {
            if (!internal && !owner.Find(fromQt(widget->objectName()))) {
                report_.widgetsWithoutControl << widget->objectName();
            }
        } else {
            findStrays(owner, *widget);
        }
    }
}

}  // namespace pw
