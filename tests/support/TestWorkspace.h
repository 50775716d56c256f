#pragma once
// A workspace without a screen for tests: it writes down what it is told and can hold open pages.
// A page opened by ShowPage is read from its file; its document is edited through Document().
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/FileSystem.h"
#include "project/Workspace.h"

namespace pw::test {

class TestWorkspace;

class TestOpenPage : public OpenPage {
  public:
    TestOpenPage(TestWorkspace& workspace, std::string key, std::string filename);

    const std::string& PageKey() const override { return key; }
    int CurrentViewState() const override { return viewState; }
    void SetToNormalEditMode() override { viewState = 1; }
    bool TakeOverEdits() override {
        ++takeOvers;
        return true;
    }
    void ShowChanges() override {}
    dom::Document& Document() override { return *document; }
    std::string UpdateHTML() override { return document->html(); }
    bool SetHTML(const std::string& html) override { return document->setHtml(html); }
    const std::string& BaseURL() const override { return baseUrl; }
    bool IsDirty() override { return document->isDirty(); }
    void MarkClean() override { document->markClean(); }
    bool Capture(const std::string& path) override;
    void RefreshCaption() override { ++captions; }
    bool CloseWindow() override;

    std::string key;
    std::string filename;
    std::string baseUrl;
    std::unique_ptr<dom::Document> document;
    int viewState = 1;
    int takeOvers = 0;
    int captions = 0;
    bool refusesToClose = false;

  private:
    TestWorkspace& workspace_;
};

class TestWorkspace : public Workspace {
  public:
    explicit TestWorkspace(FileSystem& files) : files(files) {}

    FileSystem& files;
    /** Every call that shows or changes something, such as "ShowStatus Saving …", in order. */
    std::vector<std::string> calls;
    std::vector<std::unique_ptr<TestOpenPage>> pages;
    std::string currentPageKey;
    std::string selectedNode;
    bool foreground = false;
    /** What Capture writes in place of a picture; "" makes it fail. */
    std::string picture = "picture";
    int progress = 0;

    /** How often a call that begins with `start` was made. */
    int Count(const std::string& start) const {
        return int(std::count_if(calls.begin(), calls.end(), [&](const std::string& call) {
            return call.compare(0, start.size(), start) == 0;
        }));
    }
    TestOpenPage* Find(const std::string& key) const {
        for (const auto& page : pages) {
            if (page->key == key) return page.get();
        }
        return nullptr;
    }

    void ShowStatus(const std::string& text) override { Note("ShowStatus", text); }
    void ShowProgress(bool visible) override { Note("ShowProgress", visible ? "on" : "off"); }
    void SetProgress(int value) override { progress = value; }
    void ShowBusyPointer(bool busy) override { Note("ShowBusyPointer", busy ? "on" : "off"); }

    std::vector<OpenPage*> OpenPages() override {
        std::vector<OpenPage*> open;
        for (const auto& page : pages)
            open.push_back(page.get());
        return open;
    }
    OpenPage* FindOpenPage(const std::string& key) override { return Find(key); }
    std::string CurrentPageKey() const override { return currentPageKey; }
    void ShowPage(const std::string& key, const std::string& title, const std::string& filename,
                  int pageType) override {
        Note("ShowPage", key + "|" + title + "|" + filename + "|" + std::to_string(pageType));
        if (!Find(key)) pages.push_back(std::make_unique<TestOpenPage>(*this, key, filename));
        currentPageKey = key;
    }
    void CloseAllPages(bool discard) override {
        Note("CloseAllPages", discard ? "discard" : "keep");
        if (discard) {
            pages.clear();
        } else {
            while (!pages.empty())
                pages.back()->CloseWindow();
        }
        currentPageKey.clear();
    }

    std::string SelectedProjectNode() const override { return selectedNode; }
    void SelectProjectNode(const std::string& key) override {
        Note("SelectProjectNode", key);
        selectedNode = key;
    }
    void RefillProjectExplorer() override { Note("RefillProjectExplorer"); }
    void UpdatePageExplorer(const std::string& key) override { Note("UpdatePageExplorer", key); }
    void RefreshTasks() override { Note("RefreshTasks"); }
    void ResetUI() override { Note("ResetUI"); }
    void RefreshCaption() override { Note("RefreshCaption"); }
    bool IsForeground() const override { return foreground; }
    void ApplyDefaultFont(const std::string& font, int size) override {
        Note("ApplyDefaultFont", font + "|" + std::to_string(size));
    }
    void ResetForNewProject() override { Note("ResetForNewProject"); }

    void Note(const std::string& what, const std::string& about = {}) {
        calls.push_back(about.empty() ? what : what + " " + about);
    }
};

inline TestOpenPage::TestOpenPage(TestWorkspace& workspace, std::string pageKey, std::string path)
    : key(std::move(pageKey)), filename(std::move(path)), workspace_(workspace) {
    std::string bytes;
    if (workspace.files.Read(filename, bytes) == FileError::None)
        document = dom::Document::parse(bytes);
    if (!document) document = std::make_unique<dom::Document>();
    baseUrl = filename.substr(0, filename.find_last_of('\\') + 1);
}

inline bool TestOpenPage::Capture(const std::string& path) {
    return !workspace_.picture.empty() &&
           workspace_.files.Write(path, workspace_.picture) == FileError::None;
}

inline bool TestOpenPage::CloseWindow() {
    if (refusesToClose) return false;
    workspace_.Note("CloseWindow", key);
    if (workspace_.files.Write(filename, document->bytes()) != FileError::None)
        workspace_.Note("CloseWindow failed", key);
    if (workspace_.currentPageKey == key) workspace_.currentPageKey.clear();
    auto& pages = workspace_.pages;
    pages.erase(std::find_if(pages.begin(), pages.end(),
                             [this](const auto& page) { return page.get() == this; }));
    return true;
}

}  // namespace pw::test
