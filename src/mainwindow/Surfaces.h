#pragma once
// The screen's side of the main window and of a page's window. The skin implements these; the
// headless build and most tests use MemorySurfaces. All logic stays on this side of them.
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/DialogHost.h"
#include "platform/EditorSurface.h"
#include "platform/SourceBox.h"
#include "project/Workspace.h"

namespace pw {

enum class View {
    Normal = ViewState::Normal,
    Html = ViewState::Html,
    Preview = ViewState::Preview
};

/** The window of one open page: three stacked views and the strip of view tabs. */
class DocumentSurface {
  public:
    virtual ~DocumentSurface() = default;
    virtual EditorSurface* Editor() = 0;   ///< none without a browser engine
    virtual EditorSurface* Browser() = 0;  ///< the preview
    virtual SourceBox& Source() = 0;
    virtual void SetCaption(const std::string& caption) = 0;
    virtual void SetIcon(int image) = 0;
    /** Which of the views is seen. */
    virtual void ShowView(View view) = 0;
    /** Two tabs (normal, preview) or three, and which is down. */
    virtual void SetViewTabs(int count, View selected) = 0;
    /** Shows HTML in the preview, scripts running; `baseUrl` resolves its references. */
    virtual void ShowPreview(const std::string& html, const std::string& baseUrl) = 0;
    /** Asks the user for a printer and prints the view that is seen; nothing that the editor draws
     *  over the page comes with it. Returns when it is done. False when it could not be printed; a
     *  user who thinks better of it is no failure. */
    virtual bool Print(const std::string& title) = 0;
    virtual void BringToFront() = 0;
    virtual bool IsVisible() const = 0;

    struct Events {
        std::function<void()> activated;
        std::function<bool()> closing;  ///< the user closes it; false keeps it
        std::function<void(View)> tabPressed;
        std::function<void()> sourceTyped;
        std::function<void()> sourceMouseDown;
        std::function<void()> previewMouseDown;
    };
    Events events;
};

enum class Arrangement { Cascade = 0, TileHorizontally = 1, TileVertically = 2 };

struct WindowGeometry {
    int left = 0;  ///< twips, 15 to a pixel
    int top = 0;
    int width = 0;
    int height = 0;
};

class MainWindowSurface {
  public:
    virtual ~MainWindowSurface() = default;
    virtual std::unique_ptr<DocumentSurface> CreateDocument() = 0;
    virtual void SetCaption(const std::string& caption) = 0;
    virtual void Arrange(Arrangement how) = 0;
    virtual bool IsForeground() const = 0;
    virtual bool IsMinimised() const = 0;
    virtual bool IsMaximised() const = 0;
    virtual WindowGeometry Geometry() const = 0;
    virtual void SetGeometry(const WindowGeometry& geometry) = 0;
    virtual void Maximise() = 0;
    virtual WindowGeometry Screen() const = 0;  ///< left and top are 0
    virtual void Show() = 0;
    virtual void Hide() = 0;
    virtual void Close() = 0;  ///< as if the user had closed it
    virtual void SetBusyPointer(bool busy) = 0;
    /** The page of an empty window: what to do first, and the projects opened last. */
    virtual void ShowWelcome(bool show, const std::vector<std::string>& recentProjects) = 0;
    virtual std::vector<std::string> FontNames() const = 0;
    /** Calls `tick` every so many milliseconds; 0 stops. */
    virtual void SetAutoSaveTimer(int milliseconds, std::function<void()> tick) = 0;

    struct Events {
        std::function<bool()> queryUnload;  ///< false keeps it open
        std::function<void()> unload;
        std::function<void()> newProject;  ///< buttons of the welcome page
        std::function<void()> openProject;
        std::function<void(const std::string& path)> openRecent;
        std::function<void()> idle;  ///< a few seconds without input: time for the journal
    };
    Events events;
};

}  // namespace pw
