#pragma once
// Dialog hosts without a screen.
#include <deque>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/DialogHost.h"

namespace pw {

/**
 * Answers from a script. Each question takes the first answer of its kind; one that nobody scripted
 * goes to `onUnscripted` with a description and is then cancelled.
 */
class HeadlessDialogHost : public DialogHost {
  public:
    explicit HeadlessDialogHost(std::function<void(const std::string&)> onUnscripted)
        : onUnscripted_(std::move(onUnscripted)) {}

    /** The next message box. With a text, that box must hold it, or it counts as unscripted. */
    void ExpectMessage(Answer answer, std::string text = "");
    /** The next dialog of this form: `act` presses its controls. A modal one left open is closed.
     */
    void ExpectDialog(std::string form, std::function<void(Dialog&)> act);
    void ExpectFile(std::string path) { files_.push_back(std::move(path)); }  ///< open and save
    void ExpectFolder(std::string path) { folders_.push_back(std::move(path)); }
    void ExpectColor(std::optional<Color> color) { colors_.push_back(color); }
    /** Scripted answers that no question has taken yet. */
    std::size_t Pending() const;
    /** Every message box so far, oldest first. */
    const std::vector<Message>& Messages() const { return messages_; }
    const std::vector<FileQuestion>& FileQuestions() const { return fileQuestions_; }

    void ShowModal(Dialog& dialog) override;
    /** Waits for no answer, and so needs no script: the test has the dialog in its hands. */
    void Show(Dialog& dialog) override;
    Answer MsgBox(const Message& message) override;
    std::string OpenFile(const FileQuestion& question) override;
    std::string SaveFile(const FileQuestion& question) override;
    std::string BrowseFolder(const std::string& title, const std::string& initial) override;
    std::optional<Color> PickColor(const std::string& title, Color initial) override;
    bool IsModalOpen() const override { return open_ > 0; }

  private:
    struct ScriptedMessage {
        Answer answer;
        std::string text;
    };
    struct ScriptedDialog {
        std::string form;
        std::function<void(Dialog&)> act;
    };

    std::string TakeFile(const FileQuestion& question, const char* kind);

    std::function<void(const std::string&)> onUnscripted_;
    std::deque<ScriptedMessage> scriptedMessages_;
    std::deque<ScriptedDialog> dialogs_;
    std::deque<std::string> files_;
    std::deque<std::string> folders_;
    std::deque<std::optional<Color>> colors_;
    std::vector<Message> messages_;
    std::vector<FileQuestion> fileQuestions_;
    int open_ = 0;  ///< modal ones
};

/**
 * For a program without a window: prints messages to a stream and answers the default. Questions
 * that only a person can answer are cancelled.
 */
class PrintingDialogHost : public DialogHost {
  public:
    explicit PrintingDialogHost(std::ostream& out) : out_(out) {}

    void ShowModal(Dialog& dialog) override;
    void Show(Dialog& dialog) override { ShowModal(dialog); }
    Answer MsgBox(const Message& message) override;
    std::string OpenFile(const FileQuestion&) override { return ""; }
    std::string SaveFile(const FileQuestion&) override { return ""; }
    std::string BrowseFolder(const std::string&, const std::string&) override { return ""; }
    std::optional<Color> PickColor(const std::string&, Color) override { return std::nullopt; }
    bool IsModalOpen() const override { return false; }

  private:
    std::ostream& out_;
};

/** The answer of a box's default button, with Ok standing for Yes where there is no OK button. */
Answer DefaultAnswer(const Message& message);
/** The answer that leaves things as they are: Cancel where there is one, else No, else Ok. */
Answer CancelAnswer(Buttons buttons);

}  // namespace pw
