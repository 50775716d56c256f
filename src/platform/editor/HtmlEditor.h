#pragma once
// The editing control of a page: a document with its file, its base address and its commands. With
// a surface the user sees it and types into it; without one it is a parser with the same members,
// as the hidden parser and the command line use it.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/EditorSurface.h"
#include "platform/FileSystem.h"
#include "platform/MessageLoop.h"
#include "platform/dom/Document.h"
#include "platform/editor/CleanMarkup.h"

namespace pw {

/** Numbers of the editing commands. */
enum EditorCommand {
    DECMD_BOLD = 5000,
    DECMD_COPY = 5002,
    DECMD_CUT = 5003,
    DECMD_DELETE = 5004,
    DECMD_DELETECELLS = 5005,
    DECMD_DELETECOLS = 5006,
    DECMD_DELETEROWS = 5007,
    DECMD_FINDTEXT = 5008,
    DECMD_FONT = 5009,
    DECMD_GETBACKCOLOR = 5010,
    DECMD_GETBLOCKFMT = 5011,
    DECMD_GETBLOCKFMTNAMES = 5012,
    DECMD_GETFONTNAME = 5013,
    DECMD_GETFONTSIZE = 5014,
    DECMD_GETFORECOLOR = 5015,
    DECMD_HYPERLINK = 5016,
    DECMD_IMAGE = 5017,
    DECMD_INDENT = 5018,
    DECMD_INSERTCELL = 5019,
    DECMD_INSERTCOL = 5020,
    DECMD_INSERTROW = 5021,
    DECMD_INSERTTABLE = 5022,
    DECMD_ITALIC = 5023,
    DECMD_JUSTIFYCENTER = 5024,
    DECMD_JUSTIFYLEFT = 5025,
    DECMD_JUSTIFYRIGHT = 5026,
    DECMD_LOCK_ELEMENT = 5027,
    DECMD_MAKE_ABSOLUTE = 5028,
    DECMD_MERGECELLS = 5029,
    DECMD_ORDERLIST = 5030,
    DECMD_OUTDENT = 5031,
    DECMD_PASTE = 5032,
    DECMD_REDO = 5033,
    DECMD_REMOVEFORMAT = 5034,
    DECMD_SELECTALL = 5035,
    DECMD_SEND_BACKWARD = 5036,
    DECMD_BRING_FORWARD = 5037,
    DECMD_SEND_BELOW_TEXT = 5038,
    DECMD_BRING_ABOVE_TEXT = 5039,
    DECMD_SEND_TO_BACK = 5040,
    DECMD_BRING_TO_FRONT = 5041,
    DECMD_SETBACKCOLOR = 5042,
    DECMD_SETBLOCKFMT = 5043,
    DECMD_SETFONTNAME = 5044,
    DECMD_SETFONTSIZE = 5045,
    DECMD_SETFORECOLOR = 5046,
    DECMD_SPLITCELL = 5047,
    DECMD_UNDERLINE = 5048,
    DECMD_UNDO = 5049,
    DECMD_UNLINK = 5050,
    DECMD_UNORDERLIST = 5051,
};

class Clipboard;
struct InsertTableParam;

class HtmlEditor {
  public:
    /** The surface, if any, must outlive the editor. */
    HtmlEditor(FileSystem& files, MessageLoop& loop, Clipboard* clipboard = nullptr,
               EditorSurface* surface = nullptr);
    ~HtmlEditor();

    /** Loads a file. A missing or unreadable one leaves an empty document and answers false; so
     * does one that cannot be a page, with the reason in LastError. */
    bool LoadDocument(const std::string& path);
    /** Writes the document to a file, durably when told; 0 is success, else a FileError. */
    [[nodiscard]] int SaveDocument(const std::string& path,
                                   Durability durability = Durability::Lazy);
    void NewDocument();
    std::string DocumentHTML();
    /** Replaces the document; what stands in both keeps its nodes and bytes. One undo step. Answers
     *  false, with the reason in LastError and nothing changed, for what cannot be a page. */
    bool SetDocumentHTML(const std::string& html);
    /** As a fresh document without history, as a load does. */
    bool LoadHTML(const std::string& html, const dom::Encoding& encoding = {});
    /** What relative references start from: a folder with backslashes and a final one, or an
     *  address. */
    const std::string& BaseURL() const { return baseUrl_; }
    void SetBaseURL(const std::string& url);
    const std::string& CurrentDocumentPath() const { return path_; }
    std::string DocumentTitle();
    bool Busy() const;
    /** Waits until nothing is due: afterwards the document is what the user sees. */
    void WaitUntilReady();
    bool IsDirty();
    void MarkClean();
    dom::Document& DOM() { return *document_; }
    const std::string& LastError() const { return lastError_; }

    int SnapToGridX() const { return gridX_; }
    int SnapToGridY() const { return gridY_; }
    void SetSnapToGrid(int x, int y);
    bool SnapToGrid() const { return snap_; }
    void SetSnapToGridOn(bool on);
    bool ShowBorders() const { return borders_; }
    void SetShowBorders(bool show);
    bool ShowDetails() const { return details_; }
    void SetShowDetails(bool show);

    /** Disabled for every command that cannot run now, for whatever reason. */
    CommandState QueryStatus(int command);
    /** Runs a command with its argument; the value of a "get" command is the result, the names of
     *  DECMD_GETBLOCKFMTNAMES one a line. Font sizes are "1" to "7"; colours are "#rrggbb" or, as
     *  an argument, also a number 0x00BBGGRR. Does nothing when the command cannot run. "Get"
     *  commands, like QueryStatus, answer from what the view has reported: call WaitUntilReady
     *  before them where the user may have done something since. */
    std::string ExecCommand(int command, const std::string& argument = {});
    /** What DECMD_INSERTTABLE does: a new table in place of the selected text, one undo step. Does
     *  nothing when the command cannot run. */
    void InsertTable(const InsertTableParam& param);
    /** Puts markup from outside in place of the selection, without its scripts; plain text when
     *  there is no markup. One undo step. */
    void InsertForeign(const std::string& html, const std::string& text);
    /** Puts markup in place of the selection, or of an object that is selected as a whole; at the
     *  end of a page without a caret. One undo step. */
    void InsertMarkup(const std::string& markup);
    void SetFocus();
    void Refresh();
    EditorSurface* Surface() const { return surface_; }

    /** Raises DisplayChanged when the present event is done, once for any number of changes. */
    void DisplayChangedSoon();

    // Events, called on the user-interface thread; handlers may re-enter.
    std::function<void()> DocumentComplete;
    std::function<void()> DisplayChanged;
    /** Files were dropped or pasted: paths with backslashes. They are to stand at the selection. */
    std::function<void(const std::vector<std::string>& files)> FilesBrought;
    /** A picture without a file was pasted: the bytes of a PNG. It is to stand at the selection. */
    std::function<void(const std::string& png)> PictureBrought;
    /** What becomes of references in pasted markup that mean something on this machine. */
    AddressAdopter ForeignAddresses;
    /** Brings what an undo or redo has brought back up to date; see dom::Document::setUpkeep. */
    std::function<void(dom::Document&)> Upkeep;
    // Told at once, in the midst of edits: the handlers take note and do nothing else.
    std::function<void(const dom::Change&)> PrimitiveApplied;
    std::function<void()> DocumentReplaced;  ///< by another one, or from its root on

  private:
    class Watcher;

    void ReplaceDocument(std::unique_ptr<dom::Document> document);
    void ListenToSurface();
    void MarkCells();
    void Post(std::function<void()> task);
    std::string SurfaceBase() const;
    bool HasSelection() const;
    void Copy();
    void Paste();
    void LeaveObject();
    void SelectAll();
    std::vector<dom::Node*> LinksInSelection() const;
    void Unlink();
    std::string BlockFormat() const;
    void SetBlockFormat(const std::string& name);
    dom::Node* ListAtCaret() const;
    void RenameListAtCaret(std::string_view tag);

    FileSystem& files_;
    MessageLoop& loop_;
    Clipboard* clipboard_;
    EditorSurface* surface_;
    std::unique_ptr<Watcher> watcher_;
    std::unique_ptr<dom::Document> document_;
    /** The document before this one: a handler further up may still hold a node of it. */
    std::unique_ptr<dom::Document> retired_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    bool displayChangedDue_ = false;
    std::vector<dom::Node*> markedCells_;  ///< in the view
    std::string baseUrl_;
    std::string path_;
    std::string lastError_;
    int gridX_ = 50;
    int gridY_ = 50;
    bool snap_ = false;
    bool borders_ = false;
    bool details_ = false;
};

}  // namespace pw
