#pragma once
// Questions to the user: modal dialogs, message boxes, the system's file dialogs.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pw {

class Dialog;
class FaultSink;

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Icon { None, Information, Exclamation, Stop, Question };
enum class Answer { Ok = 1, Cancel = 2, Yes = 6, No = 7, Action = 8 };

struct Message {
    std::string text;  ///< line breaks are "\n"
    std::string title;
    Icon icon = Icon::None;
    Buttons buttons = Buttons::Ok;
    Answer byDefault = Answer::Ok;  ///< with YesNo and YesNoCancel, Ok stands for Yes
    /** Caption of one more button, which answers `Action`; "" for none. */
    std::string action;
};

struct FileQuestion {
    std::string title;
    std::string filter;            ///< "Projects (*.pwp)|*.pwp", pairs of text and pattern
    std::string initialPath;       ///< folder, or folder and name; backslashes
    std::string defaultExtension;  ///< without the dot
    /** Of the file that is saved: a name may have this extension beside those of the filter. */
    std::string ownExtension;
};

/** 0x00BBGGRR, the platform's order. */
using Color = std::uint32_t;

class DialogHost {
  public:
    virtual ~DialogHost() = default;
    /** Shows it over the main window until it is closed. */
    virtual void ShowModal(Dialog& dialog) = 0;
    /** Shows it beside the main window, which goes on working; brings it to the front when it is
     *  open already. Returns at once: the dialog must be closed before it dies. */
    virtual void Show(Dialog& dialog) = 0;
    virtual Answer MsgBox(const Message& message) = 0;
    /** "" when cancelled. */
    virtual std::string OpenFile(const FileQuestion& question) = 0;
    /** As it was typed or chosen: neither the extension is added nor is an existing file asked
     *  about. AskSaveFile does both. */
    virtual std::string SaveFile(const FileQuestion& question) = 0;
    virtual std::string BrowseFolder(const std::string& title, const std::string& initial) = 0;
    virtual std::optional<Color> PickColor(const std::string& title, Color initial) = 0;
    /** True while any modal dialog or message is up. */
    virtual bool IsModalOpen() const = 0;

    /** Where the dialogs report what their handlers could not do; none at first. */
    void SetFaults(FaultSink* faults) { faults_ = faults; }
    FaultSink* Faults() const { return faults_; }

  private:
    FaultSink* faults_ = nullptr;
};

}  // namespace pw
