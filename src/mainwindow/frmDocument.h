#pragma once
// One open page. It stands in three views: the document in the editor, its text in the source box,
// and a copy in the preview, of which only the one that is up is looked at by the user. The class
// keeps them in step: it is the state machine of the views, and nothing else decides what a page's
// text is.
//
// In normal view the document in the editor is the truth. In HTML view it is the source box from
// the first key on, until another tab is pressed and the text is taken over. The preview is a copy;
// nothing ever comes back from it.
#include <memory>
#include <set>
#include <string>

#include "mainwindow/Context.h"
#include "mainwindow/SourceText.h"
#include "mainwindow/Surfaces.h"
#include "platform/editor/HtmlEditor.h"
#include "project/Workspace.h"

namespace pw {

class Page;

/** What a press on the strip of view tabs means. */
enum class TabPress { Nothing, Normal, Html, Preview };
/** `x` in the strip's own units; `tabs` is 2 or 3. */
TabPress TabAt(int x, int tabs);

class frmDocument : public OpenPage {
  public:
    /** Makes the window, empty and not yet in front. */
    frmDocument(MainContext& context, std::string key);
    ~frmDocument() override;

    // --- OpenPage -------------------------------------------------------------------------------
    const std::string& PageKey() const override { return key_; }
    int CurrentViewState() const override { return int(state_); }
    void SetToNormalEditMode() override;
    bool TakeOverEdits() override;
    std::string SourceProblem() const override { return sourceProblem_; }
    void ShowChanges() override;
    dom::Document& Document() override { return docDHTMLEditor.DOM(); }
    std::string UpdateHTML() override;
    bool SetHTML(const std::string& html) override;
    const std::string& BaseURL() const override { return docDHTMLEditor.BaseURL(); }
    bool IsDirty() override;
    void MarkClean() override;
    bool Capture(const std::string& path) override;
    void RefreshCaption() override;
    bool CloseWindow() override;

    // --- State ----------------------------------------------------------------------------------
    View State() const { return state_; }
    const std::string& Caption() const { return caption_; }
    /** The source box holds typed text that the editor has not taken over. */
    bool HasPendingSource() const { return sourceTyped_; }
    DocumentSurface& Surface() { return *surface_; }
    /** Numbers of the elements whose nodes stand open in the page explorer. */
    std::set<dom::NodeId> ExpandedNodes;

  private:
    std::unique_ptr<DocumentSurface> surface_;  // the editors use it: it goes after them

  public:
    HtmlEditor docDHTMLEditor;
    HtmlEditor docBrowser;  ///< parser of frame pages

    /** Until the document is what the user sees. Handlers of other events run meanwhile; the page
     *  does not close before the wait is over. */
    void WaitUntilReady();

    /** Lets the user print the view that is up. False when it failed. The page does not close
     * before it is over. */
    bool Print();

    // --- What ShowPage does ---------------------------------------------------------------------
    /** Loads the page's file; false, with an empty document, when it cannot be read. */
    bool Load(const std::string& path, int pageType);
    void BringToFront() { surface_->BringToFront(); }
    /** Shows the frames as they are on the disk now. */
    void ReloadFrames();
    void UpdatePicViewTab();
    /** Gives the keyboard to the view that is up. */
    void FocusView();
    /** Writes the page to the scratch area (unless told to discard it) and takes it out of the list
     *  of open documents. False when it must stay open. */
    enum class Closing { Write, Discard };
    bool Form_Unload(Closing closing);

    // --- Events ---------------------------------------------------------------------------------
    void Form_Activate();
    void picViewTab_MouseUp(int x);
    void PressTab(TabPress press);
    void txtHTML_Change();
    void docDHTMLEditor_DocumentComplete();
    void docDHTMLEditor_DisplayChanged();
    void docDHTMLEditor_ShowContextMenu();
    void docDHTMLEditor_onkeyup(const KeyPress& key);
    void docDHTMLEditor_GotFocus();
    void m_docEvents_onmousedown(dom::Node* hit);
    void m_docEvents_onkeyup();
    void m_docEvents_onmouseup();
    void m_docEvents_ondblclick();
    /** True lets the browser follow the link. */
    bool m_docBrowserEvents_onclick(const std::string& href, const std::string& parentHref);
    /** A press in any of the three views ends the reign of an explorer. */
    void LeaveOtherPanes();

    /** Recolours the source box where it is up. */
    void ColorCodeHTML();
    void ApplyGrid();
    /** Marks the project when the editor holds changes. */
    void MarkChanges();

  private:
    void ConnectSurface();
    /** False, with the reason in `sourceProblem_`, when the typed text can't be a page. */
    bool TakeOverSource();
    void TellSourceProblem();
    void AdoptTitle();
    /** Shows a title that was changed, undone or redone in the explorer and in the caption. */
    void FollowTitle();
    void AdoptPageType(int pageType);
    /** Undo and redo can turn a page into a frame page and back as well. */
    void FollowPageType();
    void ToHtml();
    void ToPreview();
    void ToNormal(bool sourceWasTyped);
    void HitElement(dom::Node* element);
    bool WritePage(Page& page);
    Page* FindPage() const;
    bool IsFramePage() const;
    int TabCount() const;
    SourceColors Colors() const;

    MainContext& context_;
    std::string key_;
    std::string caption_;
    std::string lastTitle_;  ///< of the document, when it was last looked at
    View state_ = View::Normal;
    SourceText source_;  ///< what the source box was given, for taking its text over
    bool sourceTyped_ = false;
    std::string refusedSource_;    ///< what the source box held when it was refused
    std::string sourceProblem_;    ///< why
    bool pageTypeVaries_ = false;  ///< typed source has made another kind of page of it
    std::size_t elementCount_ = 0;
    bool mouseHit_ = false;
    bool refreshExplorer_ = true;
    std::uint64_t explorerRevision_ = 0;  ///< of the document when the explorer was last built
    bool closed_ = false;
    int waiting_ = 0;  // waits within each other
};

}  // namespace pw
