#pragma once
// The view that shows a page's document and lets the user type into it. The headless build has
// none: an HtmlEditor works without a surface, and then formatting commands are not available.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw {

/** State of an editing command: the numbers are those of QueryStatus. */
enum class CommandState { NotSupported = 0, Disabled = 1, Enabled = 3, Latched = 7 };

struct KeyPress {
    int keyCode = 0;  ///< virtual key: 112 is F1, 13 Enter, 16 Shift
    bool alt = false;
    bool control = false;
    bool shift = false;
};

/** Place and size of an object in CSS pixels, those parts that are meant. The place is relative to
 *  the next positioned element around it, or to the page. */
struct Placement {
    std::optional<int> left, top, width, height;
};

class EditorSurface {
  public:
    virtual ~EditorSurface() = default;

    /** Shows the document, which must outlive the surface or be replaced by another Show. */
    virtual void Show(dom::Document& document, const std::string& baseUrl) = 0;
    /** Lets go of the document, which is about to go. */
    virtual void Clear() {}
    /** True while the view loads or a batch of the user's changes is due. */
    virtual bool Busy() const = 0;
    /** Takes over what is due; returns when the document and the view agree. */
    virtual void Flush() = 0;
    /** State of an execCommand at the selection, from the view's last report: no round trip. */
    virtual CommandState QueryState(const std::string& command) const = 0;
    /** Value of a command at the selection ("fontName", "fontSize", "formatBlock"). */
    virtual std::string QueryValue(const std::string& command) const = 0;
    /** Runs an execCommand in the view; its changes come back as one undo step. One command is the
     *  surface's own: "pasteImage" raises imagePasted when the clipboard holds a picture. */
    virtual bool Execute(const std::string& command, const std::string& argument) = 0;
    virtual void SetFocus() = 0;
    virtual void ScrollIntoView(const dom::Node& element) = 0;
    /** Scrolls until the start of the selection is seen, with some of what is around it. */
    virtual void ScrollToSelection() {}
    virtual void SetGrid(int x, int y) = 0;
    virtual void SetShowBorders(bool show) = 0;
    virtual void SetShowTags(bool show) = 0;
    virtual void SetSnapToGrid(bool snap) = 0;
    /** Where the element would have to be put to stand, taken out of the text, where it stands now;
     *  with a size where it would change. None when the view does not show it. */
    virtual std::optional<Placement> FreePlaceOf(const dom::Node&) { return std::nullopt; }
    /** Shows which cells of a table a command would act on; replaces those marked before. */
    virtual void MarkCells(const std::vector<dom::Node*>&) {}
    /** Draws the whole view anew from the document. */
    virtual void Refresh() = 0;
    /** A JPEG of what is visible, at a path with backslashes. */
    virtual bool Capture(const std::string& path) = 0;

    struct Events {
        std::function<void()> loaded;   ///< a Show is complete
        std::function<void()> changed;  ///< the document or the selection changed
        std::function<void()> styled;   ///< a style sheet has come, and the states are others
        std::function<void(dom::Node* hit)> mouseDown;
        std::function<void()> mouseUp;
        std::function<void()> mouseOver;
        std::function<void()> contextMenu;
        std::function<void(const KeyPress&)> keyUp;
        std::function<void()> doubleClick;
        std::function<void()> focused;
        /** The user asked for a command with a key or menu of the view's own: "undo", "redo",
         *  "cut", "copy" or "paste". The view itself does none of them. */
        std::function<void(const std::string& name)> command;
        /** Markup or text from elsewhere was dropped; the caret stands where. Not yet cleaned. */
        std::function<void(const std::string& html, const std::string& text)> dropped;
        /** Files were dropped; paths with backslashes. The caret stands where. */
        std::function<void(const std::vector<std::string>& paths)> filesDropped;
        /** A picture without a file was pasted: the bytes of a PNG. */
        std::function<void(const std::string& png)> imagePasted;
        /** The user has moved or resized an object: the program changes the document. */
        std::function<void(dom::Node& object, const Placement& placement)> placed;
        /** Preview only: a link was clicked. True lets the navigation go on. */
        std::function<bool(const std::string& href, const std::string& parentHref)> clicked;
    };
    Events events;
};

}  // namespace pw
