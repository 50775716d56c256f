#pragma once
// A workspace without a screen: no page is open, and the status goes to a function.
#include <functional>
#include <string>
#include <vector>

#include "project/Workspace.h"

namespace pw {

class HeadlessWorkspace : public Workspace {
  public:
    std::function<void(const std::string&)> onStatus;
    std::function<void(int)> onProgress;
    std::function<void(bool)> onShowProgress;

    void ShowStatus(const std::string& text) override {
        if (onStatus) onStatus(text);
    }
    void ShowProgress(bool visible) override {
        if (onShowProgress) onShowProgress(visible);
    }
    void SetProgress(int value) override {
        if (onProgress) onProgress(value);
    }
    void ShowBusyPointer(bool) override {}

    std::vector<OpenPage*> OpenPages() override { return {}; }
    OpenPage* FindOpenPage(const std::string&) override { return nullptr; }
    std::string CurrentPageKey() const override { return {}; }
    void ShowPage(const std::string&, const std::string&, const std::string&, int) override {}
    void CloseAllPages(bool) override {}

    std::string SelectedProjectNode() const override { return selected_; }
    void SelectProjectNode(const std::string& key) override { selected_ = key; }
    void RefillProjectExplorer() override {}
    void UpdatePageExplorer(const std::string&) override {}
    void RefreshTasks() override {}
    void ResetUI() override {}
    void RefreshCaption() override {}
    bool IsForeground() const override { return false; }
    void ApplyDefaultFont(const std::string&, int) override {}
    void ResetForNewProject() override { selected_.clear(); }

  private:
    std::string selected_;
};

}  // namespace pw
