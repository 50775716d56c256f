#include "platform/qt/QtDialogHost.h"

#include <QApplication>
#include <QColorDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

#include "platform/HandlerLevel.h"
#include "platform/controls/Dialog.h"
#include "platform/qt/ColorButton.h"
#include "platform/qt/DialogForm.h"
#include "platform/qt/QtText.h"

namespace pw {

namespace {

/** Counts the questions that are up. */
class Up {
  public:
    explicit Up(int& count) : count_(count) { ++count_; }
    ~Up() { --count_; }
    Up(const Up&) = delete;
    Up& operator=(const Up&) = delete;

  private:
    int& count_;
};

/** A question of the system's own: it has no handlers of ours, but lets events through. */
struct SystemQuestion {
    explicit SystemQuestion(int& count) : up(count) {}
    Up up;
    EventRound round;
};

/** Without a desktop there is no dialog of the desktop's to use. */
bool ownDialogs() {
    return QGuiApplication::platformName() == QLatin1String("offscreen");
}

struct ButtonSet {
    Buttons buttons;
    QMessageBox::StandardButtons shown;
    QMessageBox::StandardButton first;
};

constexpr ButtonSet buttonSets[] = {
    {Buttons::Ok, QMessageBox::Ok, QMessageBox::Ok},
    {Buttons::OkCancel, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok},
    {Buttons::YesNo, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes},
    {Buttons::YesNoCancel, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
     QMessageBox::Yes},
};

QMessageBox::Icon boxIcon(Icon icon) {
    switch (icon) {
        case Icon::Information:
            return QMessageBox::Information;
        case Icon::Exclamation:
            return QMessageBox::Warning;
        case Icon::Stop:
            return QMessageBox::Critical;
        case Icon::Question:
            return QMessageBox::Question;
        case Icon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton defaultButton(Answer answer, const ButtonSet& set) {
    switch (answer) {
        case Answer::Cancel:
            return QMessageBox::Cancel;
        case Answer::No:
            return QMessageBox::No;
        case Answer::Ok:
        case Answer::Yes:
        case Answer::Action:
            break;
    }
    return set.first;
}

Answer answerOf(int button, const ButtonSet& set) {
    switch (button) {
        case QMessageBox::Ok:
            return Answer::Ok;
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        default:
            break;
    }
    // Closed by its frame: the answer that changes least.
    if (set.shown & QMessageBox::Cancel) return Answer::Cancel;
    return set.shown & QMessageBox::No ? Answer::No : Answer::Ok;
}

/** What opening and saving have in common. */
void prepare(QFileDialog& dialog, const FileQuestion& question) {
    dialog.setWindowTitle(toQt(question.title));
    dialog.setOption(QFileDialog::DontUseNativeDialog, ownDialogs());
    const QStringList filters = nameFilters(question.filter);
    if (!filters.isEmpty()) dialog.setNameFilters(filters);
    if (question.initialPath.empty()) return;
    const QFileInfo initial(toNativeQt(question.initialPath));
    const QString folder = initial.isDir() ? initial.filePath() : initial.path();
    // For a folder that is not there Qt would take the one that the program was started in.
    dialog.setDirectory(QFileInfo(folder).isDir() ? folder : QDir::homePath());
    if (!initial.isDir()) dialog.selectFile(initial.fileName());
}

std::string chosenFile(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return fromNativeQt(dialog.selectedFiles().constFirst());
}

}  // namespace

QStringList nameFilters(const std::string& filter) {
    const QStringList parts = toQt(filter).split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        patterns.replace(QLatin1String("*.*"), QLatin1String("*"));
        // The text may tell the patterns itself; Qt reads them from the last brackets.
        QString text = parts[i];
        const qsizetype bracket = text.lastIndexOf(QLatin1Char('('));
        if (bracket > 0 && text.endsWith(QLatin1Char(')'))) text.truncate(bracket);
        filters << text.trimmed() + QStringLiteral(" (") + patterns.simplified() + QLatin1Char(')');
    }
    return filters;
}

QtDialogHost::QtDialogHost(QWidget* parent) : parent_(parent) {}
QtDialogHost::~QtDialogHost() = default;

QWidget* QtDialogHost::owner() const {
    // Over the dialog that asks, if one is up.
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    QWidget* active = QApplication::activeWindow();
    for (const auto& form : shown_) {
        if (form->isShownIn(active)) return active;
    }
    return parent_ && parent_->isVisible() ? parent_ : nullptr;
}

void QtDialogHost::ShowModal(Dialog& dialog) {
    dialog.SetFaults(Faults());
    const Up up(open_);
    DialogForm form(dialog, owner(), help_);
    form.run();
}

void QtDialogHost::Show(Dialog& dialog) {
    const auto isOfDialog = [&dialog](const auto& form) { return &form->dialog() == &dialog; };
    const auto open = std::find_if(shown_.begin(), shown_.end(), isOfDialog);
    if (open != shown_.end()) return (*open)->bringToFront();
    dialog.SetFaults(Faults());
    QWidget* main = parent_ && parent_->isVisible() ? parent_ : nullptr;
    DialogForm& form = *shown_.emplace_back(std::make_unique<DialogForm>(dialog, main, help_));
    form.show([this, isOfDialog] { std::erase_if(shown_, isOfDialog); });
}

Answer QtDialogHost::MsgBox(const Message& message) {
    const SystemQuestion asked(open_);
    const ButtonSet* set = &buttonSets[0];
    for (const ButtonSet& candidate : buttonSets) {
        if (candidate.buttons == message.buttons) set = &candidate;
    }
    QMessageBox box(owner());
    box.setWindowTitle(toQt(message.title));
    box.setTextFormat(Qt::PlainText);
    box.setText(toQt(message.text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    box.setIcon(boxIcon(message.icon));
    box.setStandardButtons(set->shown);
    box.setDefaultButton(defaultButton(message.byDefault, *set));
    if (set->shown & QMessageBox::Cancel) {
        box.setEscapeButton(QMessageBox::Cancel);
    } else if (set->shown & QMessageBox::No) {
        box.setEscapeButton(QMessageBox::No);
    }
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    const QPushButton* action = message.action.empty()
                                    ? nullptr
                                    : box.addButton(toQt(message.action), QMessageBox::ActionRole);
    // With more than one button Qt no longer knows which one the frame stands for.
    if (action && set->shown == QMessageBox::Ok) box.setEscapeButton(QMessageBox::Ok);
    const int button = box.exec();
    return action && box.clickedButton() == action ? Answer::Action : answerOf(button, *set);
}

std::string QtDialogHost::OpenFile(const FileQuestion& question) {
    const SystemQuestion asked(open_);
    QFileDialog dialog(owner());
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    prepare(dialog, question);
    dialog.setDefaultSuffix(toQt(question.defaultExtension));
    return chosenFile(dialog);
}

std::string QtDialogHost::SaveFile(const FileQuestion& question) {
    const SystemQuestion asked(open_);
    QFileDialog dialog(owner());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // What is asked about is the name that will be written, which is not yet known here.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    prepare(dialog, question);
    return chosenFile(dialog);
}

std::string QtDialogHost::BrowseFolder(const std::string& title, const std::string& initial) {
    const SystemQuestion asked(open_);
    QFileDialog dialog(owner());
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setOption(QFileDialog::DontUseNativeDialog, ownDialogs());
    dialog.setWindowTitle(toQt(title));
    if (!initial.empty()) dialog.setDirectory(toNativeQt(initial));
    return chosenFile(dialog);
}

std::optional<Color> QtDialogHost::PickColor(const std::string& title, Color initial) {
    const SystemQuestion asked(open_);
    QColorDialog dialog(toQColor(initial), owner());
    dialog.setWindowTitle(toQt(title));
    dialog.setOption(QColorDialog::DontUseNativeDialog, ownDialogs());
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return fromQColor(dialog.currentColor());
}

bool QtDialogHost::IsModalOpen() const {
    return open_ > 0 || QApplication::activeModalWidget() != nullptr;
}

}  // namespace pw
