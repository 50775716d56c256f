#include "mainwindow/frmDocument.h"

#include <iterator>
#include <utility>

#include "editing/ElementRecognition.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/ElementDialogs.h"
#include "mainwindow/Explorers.h"
#include "mainwindow/PageDrops.h"
#include "mainwindow/Pictures.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/EditPage.h"
#include "project/FramesetMask.h"
#include "project/Lifecycle.h"
#include "project/PageCleaning.h"
#include "project/Pages.h"

namespace pw {

namespace {

constexpr const char* kModule = "Document.";

// --- The strip of view tabs ---------------------------------------------------------------------

struct TabStretch {
    int from;
    int to;
    TabPress three;
    TabPress two;
};
constexpr TabStretch kTabs[] = {
    {0, 809, TabPress::Normal, TabPress::Normal},
    {944, 1559, TabPress::Html, TabPress::Preview},
    {1560, 2400, TabPress::Preview, TabPress::Nothing},
};
constexpr int kNormalTab = 10;
constexpr int kSecondTab = 1000;
constexpr int kThirdTab = 2000;

View ViewOf(TabPress press) {
    return press == TabPress::Html      ? View::Html
           : press == TabPress::Preview ? View::Preview
                                        : View::Normal;
}

}  // namespace

TabPress TabAt(int x, int tabs) {
    for (const TabStretch& stretch : kTabs) {
        if (x >= stretch.from && x <= stretch.to) return tabs == 3 ? stretch.three : stretch.two;
    }
    return TabPress::Nothing;
}

// --- Life ---------------------------------------------------------------------------------------

frmDocument::frmDocument(MainContext& context, std::string key)
    : surface_(context.window.Surface().CreateDocument()),
      docDHTMLEditor(context.frame.files, context.frame.loop, &context.frame.clipboard,
                     surface_->Editor()),
      docBrowser(context.frame.files, context.frame.loop),
      context_(context),
      key_(std::move(key)) {
    docDHTMLEditor.Upkeep = [this](dom::Document& document) {
        BringUpToDate(context_.project, key_, document);
    };
    ConnectSurface();
    ConnectPageDrops(context, *this);
    ApplyGrid();
    UpdatePicViewTab();
    surface_->ShowView(View::Normal);
}

frmDocument::~frmDocument() {
    context_.ForgetElementOf(this);
}

void frmDocument::ConnectSurface() {
    DocumentSurface::Events& window = surface_->events;
    window.activated = [this] { Form_Activate(); };
    window.closing = [this] { return Form_Unload(Closing::Write); };
    window.tabPressed = [this](View view) {
        const int preview = TabCount() == 3 ? kThirdTab : kSecondTab;
        picViewTab_MouseUp(view == View::Normal ? kNormalTab
                           : view == View::Html ? kSecondTab
                                                : preview);
    };
    window.sourceTyped = [this] { txtHTML_Change(); };
    window.sourceMouseDown = [this] { LeaveOtherPanes(); };
    window.previewMouseDown = [this] { LeaveOtherPanes(); };

    docDHTMLEditor.DocumentComplete = [this] { docDHTMLEditor_DocumentComplete(); };
    docDHTMLEditor.DisplayChanged = [this] { docDHTMLEditor_DisplayChanged(); };
    if (EditorSurface* editor = surface_->Editor()) {
        EditorSurface::Events& events = editor->events;
        events.mouseDown = [this](dom::Node* hit) {
            LeaveOtherPanes();
            m_docEvents_onmousedown(hit);
        };
        events.mouseUp = [this] { m_docEvents_onmouseup(); };
        events.styled = [this] { UpdateDocumentUI(context_, key_); };
        events.doubleClick = [this] { m_docEvents_ondblclick(); };
        events.mouseOver = [this] { context_.window.ResetStatus(); };
        events.contextMenu = [this] { docDHTMLEditor_ShowContextMenu(); };
        events.keyUp = [this](const KeyPress& key) {
            m_docEvents_onkeyup();
            docDHTMLEditor_onkeyup(key);
        };
        events.focused = [this] { docDHTMLEditor_GotFocus(); };
    }
    if (EditorSurface* browser = surface_->Browser()) {
        browser->events.clicked = [this](const std::string& href, const std::string& parentHref) {
            return m_docBrowserEvents_onclick(href, parentHref);
        };
    }
}

Page* frmDocument::FindPage() const {
    return GetPage(context_.project, key_);
}

bool frmDocument::IsFramePage() const {
    const Page* page = FindPage();
    return page && page->PageType == PageType::Frames;
}

int frmDocument::TabCount() const {
    return context_.frame.settings.SkillLevel == 0 ? 2 : 3;
}

SourceColors frmDocument::Colors() const {
    const Settings& settings = context_.frame.settings;
    return {settings.HTMLTagColor, settings.HTMLPropertyColor, settings.HTMLValueColor,
            settings.HTMLBackgroundColor};
}

bool frmDocument::Load(const std::string& path, int pageType) {
    context_.ForgetElementOf(this);
    bool loaded = false;
    if (pageType == PageType::Frames) {
        loaded = docBrowser.LoadDocument(path) &&
                 docDHTMLEditor.LoadHTML(CommentFrameset(docBrowser.DocumentHTML()),
                                         docBrowser.DOM().encoding());
        docDHTMLEditor.SetBaseURL(docBrowser.BaseURL());
    } else {
        loaded = docDHTMLEditor.LoadDocument(path);
    }
    WaitUntilReady();
    lastTitle_ = Document().title();
    return loaded;
}

void frmDocument::ReloadFrames() {
    // The file can have got another name since it was loaded.
    if (const Page* page = FindPage()) static_cast<void>(docBrowser.LoadDocument(page->Filename));
    if (state_ == View::Preview) ToPreview();
}

void frmDocument::WaitUntilReady() {
    ++waiting_;
    docDHTMLEditor.WaitUntilReady();
    --waiting_;
}

bool frmDocument::Print() {
    WaitUntilReady();
    ++waiting_;
    const bool printed = surface_->Print(Document().title());
    --waiting_;
    return printed;
}

bool frmDocument::Form_Unload(Closing closing) {
    if (closed_) return true;
    if (waiting_ > 0) {
        context_.window.CloseLater(key_);
        return false;
    }
    return TrapAndTell(context_.frame.faults, kModule, "Form_Unload", false, [&] {
        if (context_.model.Busy()) return false;
        const BusyPointer pointer(context_.window);
        Page* page = FindPage();
        if (closing == Closing::Write) {
            if (!TakeOverEdits()) {
                TellSourceProblem();
                return false;
            }
            if (page && !WritePage(*page)) return false;
        }
        if (page) page->IsOpen = false;
        closed_ = true;
        context_.ForgetElementOf(this);
        context_.window.DocumentClosed(*this);
        return true;
    });
}

bool frmDocument::WritePage(Page& page) {
    const bool isEdited = IsDirty();
    if (isEdited) UpdateHTML();
    ComputePageStatistics(context_.project, &Document(), &page);
    SaveAttachments(context_.project, Document(), BaseURL(), page);
    if (isEdited) {
        // Closing is not saving: the project file learns of it with the next save.
        context_.model.IsDirty = true;
        page.IsDirty = true;
    }
    std::string reason;
    if (SavePageFile(context_.project, page, &reason)) return true;
    context_.frame.dialogs.MsgBox({"Page '" + page.Name + "' can not be written and stays open. " +
                                       reason + "\n\nPlease try again.",
                                   context_.frame.brand.FormCaption(), Icon::Stop, Buttons::Ok});
    return false;
}

// --- Text ---------------------------------------------------------------------------------------

std::string frmDocument::UpdateHTML() {
    WaitUntilReady();
    return pw::UpdateHTML(context_.project, Document(), key_);
}

bool frmDocument::SetHTML(const std::string& html) {
    WaitUntilReady();
    // It knows nothing of what was typed meanwhile, and would take its place.
    if (sourceTyped_) return false;
    const std::string base = docDHTMLEditor.BaseURL();
    if (!docDHTMLEditor.SetDocumentHTML(html)) return false;
    docDHTMLEditor.SetBaseURL(base);
    WaitUntilReady();
    ShowChanges();
    return true;
}

void frmDocument::ShowChanges() {
    MarkChanges();
    if (state_ == View::Html && !sourceTyped_) ToHtml();
    if (state_ == View::Preview) ToPreview();
}

bool frmDocument::IsDirty() {
    return sourceTyped_ || docDHTMLEditor.IsDirty();
}

void frmDocument::MarkClean() {
    docDHTMLEditor.MarkClean();
}

bool frmDocument::TakeOverEdits() {
    WaitUntilReady();
    if (state_ != View::Html || !sourceTyped_) return true;
    if (!TakeOverSource()) return false;
    sourceTyped_ = false;
    return true;
}

namespace {

/** As the page that the text would be; text that can't be one is of no kind. */
bool HoldsFrames(const std::string& html) {
    if (FindNoCase(html, "<frameset") == std::string::npos) return false;
    const auto page = dom::Document::parseText(html);
    return page && !page->frames().empty();
}

}  // namespace

bool frmDocument::TakeOverSource() {
    const std::string shown = surface_->Source().Text();
    // Who asks again and again, such as the journal, costs nothing while nobody corrects it.
    if (!sourceProblem_.empty() && shown == refusedSource_) return false;
    std::string text = source_.TakeBack(shown);
    const bool isFrames = HoldsFrames(text);
    if (isFrames) text = CommentFrameset(text);
    const std::string base = docDHTMLEditor.BaseURL();
    if (!docDHTMLEditor.SetDocumentHTML(text)) {
        const Page* page = FindPage();
        sourceProblem_ = "The changed HTML of page " + QuoteSingle(page ? page->Name : caption_) +
                         " can not be used. " + docDHTMLEditor.LastError() +
                         "\n\nPlease correct it in the HTML view and try again.";
        refusedSource_ = shown;
        return false;
    }
    sourceProblem_.clear();
    refusedSource_.clear();
    docDHTMLEditor.SetBaseURL(base);
    WaitUntilReady();
    AdoptTitle();
    const int pageType = isFrames ? PageType::Frames : PageType::Ordinary;
    if (isFrames != IsFramePage()) {
        pageTypeVaries_ = true;
        AdoptPageType(pageType);
    }
    return true;
}

void frmDocument::TellSourceProblem() {
    context_.frame.dialogs.MsgBox(
        {sourceProblem_, context_.frame.brand.FormCaption(), Icon::Exclamation, Buttons::Ok});
}

void frmDocument::AdoptPageType(int pageType) {
    Page* page = FindPage();
    if (!page || page->PageType == pageType) return;
    page->PageType = pageType;
    page->IsDirty = true;
    context_.model.IsDirty = true;
    context_.window.RefillProjectExplorer();
}

void frmDocument::FollowPageType() {
    if (!pageTypeVaries_) return;
    const std::string html = Document().html();
    const bool isMasked = UncommentFrameset(html) != html;
    AdoptPageType(isMasked ? PageType::Frames : PageType::Ordinary);
}

void frmDocument::AdoptTitle() {
    Page* page = FindPage();
    const std::string title = Document().title();
    lastTitle_ = title;
    if (!page) return;
    page->Title = title;
    // A page without a title keeps the name by which the user knows it.
    if (title.empty() || page->Name == title) return;
    page->Name = title;
    TreeView& tree = context_.window.tvwProjectExplorer;
    if (TreeNode* node = tree.Find(key_)) tree.SetNodeText(*node, title);
    RefreshCaption();
}

void frmDocument::FollowTitle() {
    if (Document().title() != lastTitle_) AdoptTitle();
}

void frmDocument::RefreshCaption() {
    const Page* page = FindPage();
    if (!page) return;
    const std::string title = page->Name.empty() ? page->Title : page->Name;
    const std::string file = GetFileName(page->Filename);
    caption_ = file.empty() ? title : title + " [" + file + "]";
    surface_->SetCaption(caption_);
}

bool frmDocument::Capture(const std::string& path) {
    EditorSurface* seen = state_ == View::Preview ? surface_->Browser() : surface_->Editor();
    return seen && seen->Capture(path);
}

bool frmDocument::CloseWindow() {
    return Form_Unload(Closing::Write);
}

// --- Views --------------------------------------------------------------------------------------

void frmDocument::UpdatePicViewTab() {
    surface_->SetViewTabs(TabCount(), state_);
}

void frmDocument::FocusView() {
    if (state_ == View::Normal) docDHTMLEditor.SetFocus();
    if (state_ == View::Html) surface_->Source().SetFocus();
}

void frmDocument::SetToNormalEditMode() {
    picViewTab_MouseUp(kNormalTab);
}

void frmDocument::picViewTab_MouseUp(int x) {
    TrapAndTell(context_.frame.faults, kModule, "picViewTab_MouseUp", [&] {
        PressTab(TabAt(x, TabCount()));
        constexpr int kEndOfFirstTab = 809;
        if (x >= kEndOfFirstTab) context_.window.tvwPageExplorer.SetSelected("");
        ResetUI(context_);
    });
}

void frmDocument::PressTab(TabPress press) {
    const BusyPointer pointer(context_.window);
    WaitUntilReady();
    // 1. What was typed as source is taken over whichever tab it was, the HTML tab among them.
    const bool sourceWasTyped = state_ == View::Html && sourceTyped_;
    if (sourceWasTyped) {
        if (!TakeOverSource()) return TellSourceProblem();
    }
    // 2. A press beside the tabs, and one on the tab that is down, leave the view.
    if (press == TabPress::Nothing || ViewOf(press) == state_) return;
    // 3. The view itself.
    switch (press) {
        case TabPress::Html:
            ToHtml();
            break;
        case TabPress::Preview:
            ToPreview();
            break;
        case TabPress::Normal:
            ToNormal(sourceWasTyped);
            break;
        case TabPress::Nothing:
            break;
    }
    sourceTyped_ = false;
}

void frmDocument::ToHtml() {
    state_ = View::Html;
    WaitUntilReady();
    CleanPage(context_.project, Document(), key_);
    const std::string html = Document().html();
    source_ = SourceText(IsFramePage() ? UncommentFrameset(html) : html);
    UpdatePicViewTab();
    surface_->Source().SetText(source_.Shown(), Colors());
    surface_->ShowView(View::Html);
    surface_->Source().SetFocus();
}

void frmDocument::ToPreview() {
    state_ = View::Preview;
    std::string html = UpdateHTML();
    if (IsFramePage()) html = UncommentFrameset(html);
    UpdatePicViewTab();
    surface_->ShowPreview(html, BaseURL());
    surface_->ShowView(View::Preview);
}

void frmDocument::ToNormal(bool sourceWasTyped) {
    state_ = View::Normal;
    UpdatePicViewTab();
    surface_->ShowView(View::Normal);
    docDHTMLEditor.SetFocus();
    if (sourceWasTyped) UpdatePageExplorer(context_, key_);
}

void frmDocument::ColorCodeHTML() {
    if (state_ == View::Html) surface_->Source().Recolor(Colors());
}

void frmDocument::ApplyGrid() {
    const Settings& settings = context_.frame.settings;
    docDHTMLEditor.SetSnapToGrid(settings.GridHorizontal, settings.GridVertical);
}

// --- Events -------------------------------------------------------------------------------------

void frmDocument::MarkChanges() {
    if (!IsDirty()) return;
    context_.model.IsDirty = true;
    if (Page* page = FindPage()) page->IsDirty = true;
}

void frmDocument::txtHTML_Change() {
    sourceTyped_ = true;
    MarkChanges();
}

void frmDocument::LeaveOtherPanes() {
    if (context_.ContextPane == Pane::Page && context_.CommandFocus == Pane::Page) return;
    context_.ContextPane = Pane::Page;
    context_.CommandFocus = Pane::Page;
    SetContextMenu(context_, ContextMenu::Prepare);
}

void frmDocument::Form_Activate() {
    Trap(context_.frame.errorLog, kModule, "Form_Activate", [&] {
        if (closed_) return;
        context_.CurrentPageKey = key_;
        context_.window.NoteActivation(key_);
        LeaveOtherPanes();
        const Page* page = FindPage();
        surface_->SetIcon(page && page->IsDirty ? kPictureChangedWindow : kPictureWindow);
        const bool settled = !docDHTMLEditor.Busy() && !context_.ClosingProject;
        if (!settled || !surface_->IsVisible()) return;
        UpdatePageExplorer(context_, key_);
        ApplyGrid();
        context_.window.tvwProjectExplorer.SetSelected(key_);
        ResetUI(context_);
    });
}

void frmDocument::docDHTMLEditor_GotFocus() {
    LeaveOtherPanes();
    if (context_.window.tvwProjectExplorer.Find(key_))
        context_.window.tvwProjectExplorer.SetSelected(key_);
}

void frmDocument::docDHTMLEditor_DocumentComplete() {
    Trap(context_.frame.errorLog, kModule, "docDHTMLEditor_DocumentComplete",
         [&] { InitDHTMLFormats(context_); });
}

void frmDocument::docDHTMLEditor_ShowContextMenu() {
    context_.ContextPane = Pane::Page;
    context_.CommandFocus = Pane::Page;
    SetContextMenu(context_, ContextMenu::PopUp);
}

void frmDocument::HitElement(dom::Node* element) {
    if (state_ != View::Normal) return;
    WaitUntilReady();
    MarkChanges();
    mouseHit_ = true;
    if (!element) return;
    const dom::Node* current = context_.CurrentElement();
    const dom::Document& document = Document();
    if (!current) {
        context_.SetCurrentElement(element, this);
        refreshExplorer_ = true;
    } else if (element->is("select") ||
               document.sourceIndex(element) != document.sourceIndex(current)) {
        context_.SetCurrentElement(element, this);
        refreshExplorer_ = true;
    } else {
        mouseHit_ = false;
    }
    // The change of the selection may have been told while this waited.
    if (mouseHit_) docDHTMLEditor.DisplayChangedSoon();
}

void frmDocument::m_docEvents_onmousedown(dom::Node* hit) {
    Trap(context_.frame.errorLog, kModule, "m_docEvents_onmousedown", [&] { HitElement(hit); });
}

void frmDocument::m_docEvents_onkeyup() {
    Trap(context_.frame.errorLog, kModule, "m_docEvents_onkeyup",
         [&] { HitElement(Document().elementAtCaret()); });
}

void frmDocument::m_docEvents_onmouseup() {
    UpdateDocumentUI(context_, key_);
}

void frmDocument::m_docEvents_ondblclick() {
    if (OpensOnDoubleClick(context_)) context_.barMain.Click(201);
}

void frmDocument::docDHTMLEditor_onkeyup(const KeyPress& key) {
    constexpr int kEnter = 13;
    constexpr int kShift = 16;
    // The keys of commands go through the command bar's own shortcuts. Enter and Shift alone are
    // not worth a new tree.
    refreshExplorer_ = key.keyCode != kEnter && key.keyCode != kShift;
}

void frmDocument::docDHTMLEditor_DisplayChanged() {
    Trap(context_.frame.errorLog, kModule, "docDHTMLEditor_DisplayChanged", [&] {
        // 1. Hidden pages and pages behind another are looked at when they come up.
        if (closed_ || key_ != context_.CurrentPageKey || state_ != View::Normal) return;
        WaitUntilReady();
        MarkChanges();
        FollowTitle();
        FollowPageType();
        UpdateUndoTools(context_, docDHTMLEditor);
        // 2. Ordinary typing ends here.
        const dom::Document& document = Document();
        const std::size_t count = document.all().size();
        const dom::Node* current = context_.CurrentElement();
        const bool currentStands = current && document.sourceIndex(current) >= 0;
        if (!mouseHit_ && count == elementCount_ && currentStands) return;
        elementCount_ = count;
        mouseHit_ = false;
        // 3. The tools.
        if (!context_.frame.dialogs.IsModalOpen()) UpdateDocumentUI(context_, key_);
        // 4. The explorer, and in it the element that the caret is in.
        if (context_.window.picPageExplorer.Visible() && refreshExplorer_) {
            if (explorerRevision_ != document.revision()) {
                explorerRevision_ = document.revision();
                UpdatePageExplorer(context_, key_);
            }
            if (!context_.SelectingFromExplorer) SelectNodeOfElement(context_);
        }
        UpdateDownloadTime(context_);
    });
}

bool frmDocument::m_docBrowserEvents_onclick(const std::string& href,
                                             const std::string& parentHref) {
    return Trap(context_.frame.errorLog, kModule, "m_docBrowserEvents_onclick", false, [&] {
        constexpr const char* kNothing = "javascript:void(0)";
        if (EqualsNoCase(href, kNothing) || EqualsNoCase(parentHref, kNothing)) return false;
        if (surface_->Browser() && surface_->Browser()->Busy()) return false;
        // The link must reach the pages as they are now.
        if (!href.empty()) static_cast<void>(UpdateOpenPageProperties(context_.project));
        return true;
    });
}

}  // namespace pw
