#pragma once
// The main window's surfaces without a screen: they remember what they were told, and a script or a
// test does what a user would do. Windows are in front, and become active, in turn, as on a screen.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mainwindow/Surfaces.h"

namespace pw {

class MemorySourceBox : public SourceBox {
  public:
    explicit MemorySourceBox(DocumentSurface& owner) : owner_(owner) {}
    /** What the user does: the box then holds this text. */
    void UserType(const std::string& text);

    std::string Text() const override { return text_; }
    void SetText(const std::string& text, const SourceColors& with) override;
    void Recolor(const SourceColors& with) override { colors = with; }
    std::size_t SelStart() const override { return start_; }
    std::size_t SelLength() const override { return length_; }
    void Select(std::size_t start, std::size_t length) override;
    void ReplaceSelection(const std::string& text) override;
    void Undo() override;
    void Redo() override;
    void Cut() override;
    void Copy() override;
    void Paste() override;
    bool CanUndo() const override { return !undo_.empty(); }
    bool CanRedo() const override { return !redo_.empty(); }
    void SetFocus() override {}

    SourceColors colors;

  private:
    void Become(std::string text);

    DocumentSurface& owner_;
    std::string text_;
    std::string clipboard_;
    std::size_t start_ = 0;
    std::size_t length_ = 0;
    std::vector<std::string> undo_;
    std::vector<std::string> redo_;
};

class MemoryMainWindow;

class MemoryDocument : public DocumentSurface {
  public:
    explicit MemoryDocument(MemoryMainWindow& window) : source(*this), window_(window) {}
    ~MemoryDocument() override;

    EditorSurface* Editor() override { return editor.get(); }
    EditorSurface* Browser() override { return nullptr; }
    SourceBox& Source() override { return source; }
    void SetCaption(const std::string& text) override { caption = text; }
    void SetIcon(int image) override { icon = image; }
    void ShowView(View shown) override { view = shown; }
    void SetViewTabs(int count, View selected) override {
        tabs = count;
        tab = selected;
    }
    void ShowPreview(const std::string& html, const std::string& baseUrl) override {
        preview = html;
        previewBase = baseUrl;
    }
    bool Print(const std::string& title) override {
        printed.push_back(title);
        if (whilePrinting) whilePrinting();
        return !printerFails;
    }
    void BringToFront() override;
    bool IsVisible() const override { return visible_; }

    std::unique_ptr<EditorSurface> editor;
    MemorySourceBox source;
    std::string caption;
    int icon = 0;
    View view = View::Normal;
    int tabs = 0;
    View tab = View::Normal;
    std::string preview;
    std::string previewBase;
    std::vector<std::string> printed;  ///< titles, in their order
    std::function<void()> whilePrinting;
    bool printerFails = false;

  private:
    MemoryMainWindow& window_;
    bool visible_ = false;
};

class MemoryMainWindow : public MainWindowSurface {
  public:
    std::unique_ptr<DocumentSurface> CreateDocument() override;
    void SetCaption(const std::string& text) override { caption = text; }
    void Arrange(Arrangement how) override { arrangement = how; }
    bool IsForeground() const override { return foreground; }
    bool IsMinimised() const override { return minimised; }
    bool IsMaximised() const override { return maximised; }
    WindowGeometry Geometry() const override { return geometry; }
    void SetGeometry(const WindowGeometry& next) override { geometry = next; }
    void Maximise() override { maximised = true; }
    WindowGeometry Screen() const override { return {0, 0, 19200, 14400}; }
    void Show() override { visible = true; }
    void Hide() override { visible = false; }
    void Close() override;
    void SetBusyPointer(bool busy) override { busyPointer = busy; }
    void ShowWelcome(bool show, const std::vector<std::string>& recentProjects) override {
        welcome = show;
        recent = recentProjects;
    }
    std::vector<std::string> FontNames() const override { return {"Arial", "Verdana"}; }
    void SetAutoSaveTimer(int milliseconds, std::function<void()> tick) override {
        timerInterval = milliseconds;
        timer = std::move(tick);
    }

    /** For pages opened later, which otherwise have no view to edit in. */
    std::function<std::unique_ptr<EditorSurface>()> makeEditor;
    std::string caption;
    bool foreground = false;
    bool minimised = false;
    bool maximised = false;
    bool visible = false;
    bool busyPointer = false;
    bool welcome = false;
    bool closed = false;
    std::vector<std::string> recent;
    WindowGeometry geometry{300, 300, 15000, 11000};
    Arrangement arrangement = Arrangement::Cascade;
    int timerInterval = 0;
    std::function<void()> timer;
    /** In the order in which they were made. */
    std::vector<MemoryDocument*> documents;
    MemoryDocument* front = nullptr;
};

}  // namespace pw
