#pragma once
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

#include "platform/DialogHost.h"

namespace pw {

class DialogForm;

/** Asks the user with real windows. `parent` is the main window, and may be none at start-up. */
class QtDialogHost : public DialogHost {
  public:
    explicit QtDialogHost(QWidget* parent = nullptr);
    ~QtDialogHost() override;
    void setParent(QWidget* parent) { parent_ = parent; }
    /** F1 in a dialog calls it with the dialog's topic. */
    void setHelp(std::function<void(int topic)> help) { help_ = std::move(help); }

    void ShowModal(Dialog& dialog) override;
    void Show(Dialog& dialog) override;
    Answer MsgBox(const Message& message) override;
    std::string OpenFile(const FileQuestion& question) override;
    std::string SaveFile(const FileQuestion& question) override;
    std::string BrowseFolder(const std::string& title, const std::string& initial) override;
    std::optional<Color> PickColor(const std::string& title, Color initial) override;
    bool IsModalOpen() const override;

  private:
    QWidget* owner() const;
    QWidget* parent_;
    std::function<void(int)> help_;
    int open_ = 0;                                    ///< modal ones
    std::vector<std::unique_ptr<DialogForm>> shown_;  ///< beside the main window
};

/** "Projects (*.pwp)|*.pwp|All (*.*)|*.*" as the file dialog of Qt wants it. */
QStringList nameFilters(const std::string& filter);

}  // namespace pw
