#include "platform/headless/HeadlessDialogHost.h"

#include <ostream>

#include "platform/HandlerLevel.h"
#include "platform/controls/Dialog.h"

namespace pw {

namespace {

/** Takes the first of a queue, or the stand-in when it is empty. */
template <typename T>
std::optional<T> Take(std::deque<T>& queue) {
    if (queue.empty()) return std::nullopt;
    T first = std::move(queue.front());
    queue.pop_front();
    return first;
}

/** Counts a question for as long as it is up. */
class CountedUp {
  public:
    explicit CountedUp(int& count) : count_(count) { ++count_; }
    ~CountedUp() { --count_; }
    CountedUp(const CountedUp&) = delete;
    CountedUp& operator=(const CountedUp&) = delete;

  private:
    int& count_;
};

}  // namespace

Answer DefaultAnswer(const Message& message) {
    const bool asksYes =
        message.buttons == Buttons::YesNo || message.buttons == Buttons::YesNoCancel;
    return asksYes && message.byDefault == Answer::Ok ? Answer::Yes : message.byDefault;
}

Answer CancelAnswer(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok:
            return Answer::Ok;
        case Buttons::YesNo:
            return Answer::No;
        default:
            return Answer::Cancel;
    }
}

void HeadlessDialogHost::ExpectMessage(Answer answer, std::string text) {
    scriptedMessages_.push_back({answer, std::move(text)});
}

void HeadlessDialogHost::ExpectDialog(std::string form, std::function<void(Dialog&)> act) {
    dialogs_.push_back({std::move(form), std::move(act)});
}

std::size_t HeadlessDialogHost::Pending() const {
    return scriptedMessages_.size() + dialogs_.size() + files_.size() + folders_.size() +
           colors_.size();
}

void HeadlessDialogHost::ShowModal(Dialog& dialog) {
    const CountedUp up(open_);
    dialog.SetFaults(Faults());
    dialog.SetOpen(true);
    dialog.Form_Load();
    if (!dialogs_.empty() && dialogs_.front().form == dialog.FormName()) {
        const auto scripted = Take(dialogs_);
        const EventRound round;
        if (scripted->act) scripted->act(dialog);
    } else {
        onUnscripted_("dialog " + dialog.FormName() + " '" + dialog.Title() + "'");
    }
    if (dialog.IsOpen()) dialog.Close();
    dialog.Form_Unload();
}

void HeadlessDialogHost::Show(Dialog& dialog) {
    if (dialog.IsOpen()) return;
    dialog.SetFaults(Faults());
    dialog.SetOpen(true);
    dialog.onClose = [&dialog] {
        dialog.onClose = nullptr;
        dialog.Form_Unload();
    };
    dialog.Form_Load();
    if (dialogs_.empty() || dialogs_.front().form != dialog.FormName()) return;
    const auto scripted = Take(dialogs_);
    const EventRound round;
    if (scripted->act) scripted->act(dialog);
}

Answer HeadlessDialogHost::MsgBox(const Message& message) {
    messages_.push_back(message);
    const bool expected = !scriptedMessages_.empty() &&
                          message.text.find(scriptedMessages_.front().text) != std::string::npos;
    if (expected) return Take(scriptedMessages_)->answer;
    onUnscripted_("message '" + message.title + "': " + message.text);
    return CancelAnswer(message.buttons);
}

std::string HeadlessDialogHost::TakeFile(const FileQuestion& question, const char* kind) {
    fileQuestions_.push_back(question);
    if (auto file = Take(files_)) return *file;
    onUnscripted_(std::string(kind) + " '" + question.title + "'");
    return "";
}

std::string HeadlessDialogHost::OpenFile(const FileQuestion& question) {
    return TakeFile(question, "file to open");
}

std::string HeadlessDialogHost::SaveFile(const FileQuestion& question) {
    return TakeFile(question, "file to save");
}

std::string HeadlessDialogHost::BrowseFolder(const std::string& title, const std::string&) {
    if (auto folder = Take(folders_)) return *folder;
    onUnscripted_("folder '" + title + "'");
    return "";
}

std::optional<Color> HeadlessDialogHost::PickColor(const std::string& title, Color) {
    if (auto color = Take(colors_)) return *color;
    onUnscripted_("colour '" + title + "'");
    return std::nullopt;
}

void PrintingDialogHost::ShowModal(Dialog& dialog) {
    out_ << "The question '" << dialog.Title()
         << "' needs the desktop program; it was cancelled.\n";
}

Answer PrintingDialogHost::MsgBox(const Message& message) {
    out_ << message.text << "\n";
    return DefaultAnswer(message);
}

}  // namespace pw
