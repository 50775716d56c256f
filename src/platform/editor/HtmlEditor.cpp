#include "platform/editor/HtmlEditor.h"

#include <algorithm>

#include "platform/Clipboard.h"
#include "platform/Text.h"
#include "platform/dom/Tags.h"
#include "platform/dom/TextRange.h"
#include "platform/editor/EditorFormats.h"
#include "platform/editor/LayerCommands.h"
#include "platform/editor/TableCommands.h"

namespace pw {

/** Tells the editor of every change, whoever made it. */
class HtmlEditor::Watcher : public dom::DocumentObserver {
  public:
    explicit Watcher(HtmlEditor& editor) : editor_(editor) {}
    void documentChanged(const dom::Change& change) override {
        if (editor_.PrimitiveApplied) editor_.PrimitiveApplied(change);
        editor_.DisplayChangedSoon();
    }
    void documentReloaded() override {
        if (editor_.DocumentReplaced) editor_.DocumentReplaced();
        editor_.DisplayChangedSoon();
    }
    void selectionChanged(dom::Origin) override { editor_.DisplayChangedSoon(); }

  private:
    HtmlEditor& editor_;
};

HtmlEditor::HtmlEditor(FileSystem& files, MessageLoop& loop, Clipboard* clipboard,
                       EditorSurface* surface)
    : files_(files),
      loop_(loop),
      clipboard_(clipboard),
      surface_(surface),
      watcher_(std::make_unique<Watcher>(*this)),
      document_(std::make_unique<dom::Document>()) {
    document_->addObserver(watcher_.get());
    if (!surface_) return;
    ListenToSurface();
    surface_->Show(*document_, SurfaceBase());
}

HtmlEditor::~HtmlEditor() {
    *alive_ = false;
    if (surface_) {
        surface_->events.loaded = nullptr;
        surface_->events.changed = nullptr;
        surface_->events.command = nullptr;
        surface_->events.dropped = nullptr;
        surface_->events.placed = nullptr;
        surface_->events.filesDropped = nullptr;
        surface_->events.imagePasted = nullptr;
        surface_->Clear();
    }
    document_->removeObserver(watcher_.get());
}

void HtmlEditor::ListenToSurface() {
    surface_->events.loaded = [this] {
        if (DocumentComplete) DocumentComplete();
    };
    surface_->events.changed = [this] { DisplayChangedSoon(); };
    surface_->events.command = [this](const std::string& name) {
        const std::pair<std::string_view, EditorCommand> table[] = {{"undo", DECMD_UNDO},
                                                                    {"redo", DECMD_REDO},
                                                                    {"cut", DECMD_CUT},
                                                                    {"copy", DECMD_COPY},
                                                                    {"paste", DECMD_PASTE}};
        for (const auto& [known, command] : table)
            if (name == known) ExecCommand(command);
    };
    surface_->events.dropped = [this](const std::string& html, const std::string& text) {
        WaitUntilReady();
        LeaveObject();
        InsertForeign(html, text);
    };
    surface_->events.filesDropped = [this](const std::vector<std::string>& files) {
        WaitUntilReady();
        LeaveObject();
        if (FilesBrought) FilesBrought(files);
    };
    surface_->events.imagePasted = [this](const std::string& png) {
        if (PictureBrought) PictureBrought(png);
    };
    surface_->events.placed = [this](dom::Node& object, const Placement& placement) {
        PlaceObject(*document_, object, placement);
    };
}

void HtmlEditor::Post(std::function<void()> task) {
    loop_.Post([alive = std::weak_ptr<bool>(alive_), task = std::move(task)] {
        if (const auto living = alive.lock(); living && *living) task();
    });
}

void HtmlEditor::DisplayChangedSoon() {
    if (displayChangedDue_) return;
    displayChangedDue_ = true;
    Post([this] {
        displayChangedDue_ = false;
        MarkCells();
        if (DisplayChanged) DisplayChanged();
    });
}

void HtmlEditor::MarkCells() {
    if (!surface_) return;
    std::vector<dom::Node*> cells = SelectedCells(*document_);
    if (cells == markedCells_) return;
    markedCells_ = std::move(cells);
    surface_->MarkCells(markedCells_);
}

// --- The document -------------------------------------------------------------------------------

void HtmlEditor::ReplaceDocument(std::unique_ptr<dom::Document> document) {
    document_->removeObserver(watcher_.get());
    std::swap(document_, document);
    document_->addObserver(watcher_.get());
    document_->setUpkeep([this](dom::Document& page) {
        if (Upkeep) Upkeep(page);
    });
    lastError_.clear();
    if (DocumentReplaced) DocumentReplaced();
    if (surface_) {
        surface_->Show(*document_, SurfaceBase());
    } else {
        Post([this] {
            if (DocumentComplete) DocumentComplete();
        });
    }
    markedCells_.clear();
    retired_ = std::move(document);
    DisplayChangedSoon();
}

bool HtmlEditor::LoadDocument(const std::string& path) {
    const std::size_t slash = path.rfind('\\');
    path_ = path;
    baseUrl_ = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    std::string bytes;
    if (const FileError error = files_.Read(path, bytes); error != FileError::None) {
        ReplaceDocument(std::make_unique<dom::Document>());
        lastError_ = Describe(error);
        return false;
    }
    dom::ParseError error;
    auto document = dom::Document::parse(bytes, &error);
    const bool parsed = document != nullptr;
    ReplaceDocument(parsed ? std::move(document) : std::make_unique<dom::Document>());
    if (!parsed) lastError_ = error.message;
    return parsed;
}

bool HtmlEditor::LoadHTML(const std::string& html, const dom::Encoding& encoding) {
    dom::ParseError error;
    auto document = dom::Document::parseText(html, encoding, &error);
    const bool parsed = document != nullptr;
    ReplaceDocument(parsed ? std::move(document) : std::make_unique<dom::Document>());
    if (!parsed) lastError_ = error.message;
    return parsed;
}

void HtmlEditor::NewDocument() {
    path_.clear();
    ReplaceDocument(std::make_unique<dom::Document>());
}

int HtmlEditor::SaveDocument(const std::string& path, Durability durability) {
    WaitUntilReady();
    const FileError error = files_.Write(path, document_->bytes(), durability);
    if (error != FileError::None) lastError_ = Describe(error);
    return static_cast<int>(error);
}

std::string HtmlEditor::DocumentHTML() {
    WaitUntilReady();
    return document_->html();
}

bool HtmlEditor::SetDocumentHTML(const std::string& html) {
    WaitUntilReady();
    dom::ParseError error;
    if (!document_->setHtml(html, &error)) {
        lastError_ = error.message;
        return false;
    }
    DisplayChangedSoon();
    return true;
}

void HtmlEditor::SetBaseURL(const std::string& url) {
    if (url == baseUrl_) return;
    baseUrl_ = url;
    if (!surface_) return;
    WaitUntilReady();
    surface_->Show(*document_, SurfaceBase());
}

// The view wants an address; the logic has a folder.
std::string HtmlEditor::SurfaceBase() const {
    return AddressOfFolder(baseUrl_);
}

std::string HtmlEditor::DocumentTitle() {
    return document_->title();
}

bool HtmlEditor::Busy() const {
    return surface_ && surface_->Busy();
}

void HtmlEditor::WaitUntilReady() {
    if (surface_) surface_->Flush();
}

bool HtmlEditor::IsDirty() {
    return document_->isDirty();
}

void HtmlEditor::MarkClean() {
    document_->markClean();
}

// --- How it is shown ----------------------------------------------------------------------------

void HtmlEditor::SetSnapToGrid(int x, int y) {
    gridX_ = x;
    gridY_ = y;
    if (surface_) surface_->SetGrid(x, y);
}

void HtmlEditor::SetSnapToGridOn(bool on) {
    snap_ = on;
    if (surface_) surface_->SetSnapToGrid(on);
}

void HtmlEditor::SetShowBorders(bool show) {
    borders_ = show;
    if (surface_) surface_->SetShowBorders(show);
}

void HtmlEditor::SetShowDetails(bool show) {
    details_ = show;
    if (surface_) surface_->SetShowTags(show);
}

void HtmlEditor::SetFocus() {
    if (surface_) surface_->SetFocus();
}

void HtmlEditor::Refresh() {
    if (surface_) surface_->Refresh();
}

// --- Commands -----------------------------------------------------------------------------------

namespace {

constexpr std::pair<EditorCommand, TableCommand> kTableCommands[] = {
    {DECMD_INSERTROW, TableCommand::InsertRow},    {DECMD_DELETEROWS, TableCommand::DeleteRows},
    {DECMD_INSERTCOL, TableCommand::InsertColumn}, {DECMD_DELETECOLS, TableCommand::DeleteColumns},
    {DECMD_INSERTCELL, TableCommand::InsertCell},  {DECMD_DELETECELLS, TableCommand::DeleteCells},
    {DECMD_MERGECELLS, TableCommand::MergeCells},  {DECMD_SPLITCELL, TableCommand::SplitCell},
};

constexpr std::pair<EditorCommand, LayerCommand> kLayerCommands[] = {
    {DECMD_MAKE_ABSOLUTE, LayerCommand::MakeAbsolute},
    {DECMD_LOCK_ELEMENT, LayerCommand::Lock},
    {DECMD_BRING_TO_FRONT, LayerCommand::BringToFront},
    {DECMD_SEND_TO_BACK, LayerCommand::SendToBack},
    {DECMD_BRING_FORWARD, LayerCommand::BringForward},
    {DECMD_SEND_BACKWARD, LayerCommand::SendBackward},
    {DECMD_SEND_BELOW_TEXT, LayerCommand::SendBelowText},
    {DECMD_BRING_ABOVE_TEXT, LayerCommand::BringAboveText},
};

/** One that changes nothing, and is answered like QueryStatus. */
bool IsQuestion(int command) {
    return command == DECMD_GETBLOCKFMTNAMES || command == DECMD_GETBLOCKFMT ||
           command == DECMD_GETFONTNAME || command == DECMD_GETFONTSIZE ||
           command == DECMD_GETFORECOLOR || command == DECMD_GETBACKCOLOR;
}

template <typename Table>
auto FindCommand(const Table& table, int command) -> decltype(&table[0].second) {
    for (const auto& entry : table)
        if (entry.first == command) return &entry.second;
    return nullptr;
}

}  // namespace

CommandState HtmlEditor::QueryStatus(int command) {
    const auto enabledIf = [](bool can) {
        return can ? CommandState::Enabled : CommandState::Disabled;
    };
    switch (command) {
        case DECMD_UNDO:
            return enabledIf(document_->canUndo());
        case DECMD_REDO:
            return enabledIf(document_->canRedo());
        case DECMD_CUT:
        case DECMD_COPY:
            return enabledIf(clipboard_ && HasSelection());
        case DECMD_DELETE:
            return enabledIf(HasSelection());
        // What the clipboard holds is asked when it is pasted: asking another program each time
        // that the caret moves would make the caret wait.
        case DECMD_PASTE:
            return enabledIf(clipboard_ && document_->body());
        case DECMD_SELECTALL:
            return enabledIf(document_->body());
        case DECMD_UNLINK:
            return enabledIf(!LinksInSelection().empty());
        case DECMD_GETBLOCKFMTNAMES:
            return CommandState::Enabled;
        case DECMD_GETBLOCKFMT:
            return enabledIf(document_->elementAtCaret());
        case DECMD_HYPERLINK:
            if (surface_ && (HasSelection() || !LinksInSelection().empty()))
                return CommandState::Enabled;
            return CommandState::Disabled;
        // Where InsertHTML would put it.
        case DECMD_INSERTTABLE:
            return enabledIf(document_->selection().type == dom::SelectionType::Text);
        default:
            break;
    }
    if (const TableCommand* table = FindCommand(kTableCommands, command))
        return enabledIf(CanRunTableCommand(*document_, *table));
    if (const LayerCommand* layer = FindCommand(kLayerCommands, command)) {
        const CommandState state = LayerState(*document_, *layer);
        // Where an object stands is known to the view alone.
        const bool blind = !surface_ && *layer == LayerCommand::MakeAbsolute;
        return blind && state == CommandState::Enabled ? CommandState::Disabled : state;
    }
    const char* name = SurfaceCommand(command);
    if (!surface_ || !name) return CommandState::Disabled;
    const CommandState state = surface_->QueryState(name);
    return state == CommandState::NotSupported ? CommandState::Disabled : state;
}

std::string HtmlEditor::ExecCommand(int command, const std::string& argument) {
    if (!IsQuestion(command)) WaitUntilReady();
    if (QueryStatus(command) == CommandState::Disabled) return {};
    switch (command) {
        case DECMD_UNDO:
            document_->undo();
            if (surface_) surface_->ScrollToSelection();
            return {};
        case DECMD_REDO:
            document_->redo();
            if (surface_) surface_->ScrollToSelection();
            return {};
        case DECMD_COPY:
            Copy();
            return {};
        case DECMD_CUT:
            Copy();
            document_->deleteSelection();
            return {};
        case DECMD_DELETE:
            document_->deleteSelection();
            return {};
        case DECMD_PASTE:
            Paste();
            return {};
        case DECMD_SELECTALL:
            SelectAll();
            return {};
        case DECMD_UNLINK:
            Unlink();
            return {};
        case DECMD_GETBLOCKFMTNAMES:
            return BlockFormatNames();
        case DECMD_GETBLOCKFMT:
            return BlockFormat();
        case DECMD_SETBLOCKFMT:
            SetBlockFormat(argument);
            return {};
        case DECMD_GETFONTNAME:
            return FirstFont(surface_->QueryValue("fontName"));
        case DECMD_GETFONTSIZE:
            return surface_->QueryValue("fontSize");
        case DECMD_GETFORECOLOR:
            return ColorText(surface_->QueryValue("foreColor"));
        case DECMD_GETBACKCOLOR:
            return ColorText(surface_->QueryValue("backColor"));
        case DECMD_SETFORECOLOR:
        case DECMD_SETBACKCOLOR:
            surface_->Execute(SurfaceCommand(command), ColorText(argument));
            return {};
        case DECMD_INSERTTABLE:
            return {};  // has no meaning without its parameters: see InsertTable
        default:
            if (const TableCommand* table = FindCommand(kTableCommands, command)) {
                RunTableCommand(*document_, *table);
                return {};
            }
            if (const LayerCommand* layer = FindCommand(kLayerCommands, command)) {
                RunLayerCommand(*document_, *layer, [this](const dom::Node& object) {
                    return surface_ ? surface_->FreePlaceOf(object) : std::nullopt;
                });
                return {};
            }
            surface_->Execute(SurfaceCommand(command), argument);
            return {};
    }
}

void HtmlEditor::InsertTable(const InsertTableParam& param) {
    WaitUntilReady();
    if (QueryStatus(DECMD_INSERTTABLE) != CommandState::Disabled)
        pw::InsertTable(*document_, param);
}

bool HtmlEditor::HasSelection() const {
    const dom::Selection& selection = document_->selection();
    return selection.type == dom::SelectionType::Control ||
           (selection.type == dom::SelectionType::Text && !selection.collapsed());
}

void HtmlEditor::Copy() {
    const dom::Selection& selection = document_->selection();
    if (selection.type == dom::SelectionType::Control) {
        clipboard_->Set(
            document_->innerText(*selection.control),
            MarkupForClipboard(document_->outerHTML(*selection.control), SurfaceBase()));
        return;
    }
    const auto range = dom::TextRange::fromSelection(*document_);
    clipboard_->Set(range.text(), MarkupForClipboard(range.htmlText(), SurfaceBase()));
}

void HtmlEditor::Paste() {
    const std::vector<std::string> files = clipboard_->Files();
    if (!files.empty() && FilesBrought) {
        FilesBrought(files);
        return;
    }
    const std::string html = clipboard_->Html();
    const std::string text = clipboard_->Text();
    // A browser copies a picture as its address in the web, where it may not stay, and as itself.
    const bool isPicture = html.empty() ? text.empty() : IsLonePicture(html);
    if (isPicture && surface_ && surface_->Execute("pasteImage", {})) return;
    InsertForeign(html, text);
}

void HtmlEditor::InsertForeign(const std::string& html, const std::string& text) {
    std::string markup =
        html.empty() ? std::string() : CleanMarkup(html, ForeignAddresses, SurfaceBase());
    if (markup.empty()) markup = MarkupOfText(text);
    InsertMarkup(markup);
}

void HtmlEditor::InsertMarkup(const std::string& markup) {
    if (!document_->body() || markup.empty()) return;
    dom::Document::Step step(*document_);
    // A range needs a caret: an object that is selected gives way, and a page without any gets the
    // markup at its end.
    if (document_->selection().type == dom::SelectionType::Control) document_->deleteSelection();
    if (!document_->selection().focus.node)
        document_->collapse({document_->body(), document_->body()->children().size()});
    dom::TextRange::fromSelection(*document_).pasteHTML(markup);
    // Typing goes on in the last of the new paragraphs.
    const dom::Position behind = document_->selection().focus;
    if (!behind.node || !behind.node->isElement() || behind.offset == 0) return;
    dom::Node* last = behind.node->children().at(behind.offset - 1);
    if (!dom::isBlockTag(last->localName()) || last->is("table")) return;
    while (last->isElement() && last->lastChild() && !last->is("table"))
        last = last->lastChild();
    if (last->isText()) document_->collapse({last, last->data().size()});
}

// What is dropped beside an object must not replace it.
void HtmlEditor::LeaveObject() {
    const dom::Selection& selection = document_->selection();
    if (selection.type != dom::SelectionType::Control || !selection.control->parent()) return;
    document_->collapse({selection.control->parent(), selection.control->index() + 1});
}

void HtmlEditor::SelectAll() {
    dom::Node* body = document_->body();
    dom::Selection selection;
    selection.type = dom::SelectionType::Text;
    selection.anchor = {body, 0};
    selection.focus = {body, body->children().size()};
    document_->setSelection(selection);
}

// --- Links --------------------------------------------------------------------------------------

std::vector<dom::Node*> HtmlEditor::LinksInSelection() const {
    const dom::Selection& selection = document_->selection();
    std::vector<dom::Node*> links;
    const auto isLink = [](const dom::Node& node) {
        return node.is("a") && node.attribute("href");
    };
    const auto around = [&](dom::Node* node) {
        for (; node; node = node->parent())
            if (isLink(*node) && !std::count(links.begin(), links.end(), node))
                links.push_back(node);
    };
    if (selection.type == dom::SelectionType::None || !selection.focus.node) return links;
    around(selection.control ? selection.control : selection.focus.node);
    if (selection.control || selection.collapsed()) return links;
    around(selection.anchor.node);
    const dom::TextRange selected = dom::TextRange::fromSelection(*document_);
    for (dom::Node* link : document_->links()) {
        if (!isLink(*link) || std::count(links.begin(), links.end(), link)) continue;
        const dom::Position start{link, 0};
        const dom::Position end{link, link->children().size()};
        if (selected.contains(dom::TextRange(*document_, start, end))) links.push_back(link);
    }
    return links;
}

void HtmlEditor::Unlink() {
    dom::Document::Step step(*document_);
    for (dom::Node* link : LinksInSelection()) {
        for (dom::Node* child : link->children())
            document_->moveNode(*link->parent(), *child, link);
        document_->removeNode(*link);
    }
}

// --- Block formats ------------------------------------------------------------------------------

std::string HtmlEditor::BlockFormat() const {
    for (const dom::Node* node = document_->elementAtCaret(); node; node = node->parentElement()) {
        const std::string name = BlockFormatOfTag(node->localName());
        if (!name.empty()) return name;
        if (node->is("td") || node->is("th") || node->is("body")) break;
    }
    return "Normal";
}

dom::Node* HtmlEditor::ListAtCaret() const {
    for (dom::Node* node = document_->elementAtCaret(); node; node = node->parentElement()) {
        if (ListCommandOfTag(node->localName())) return node;
        if (node->is("td") || node->is("th") || node->is("body")) break;
    }
    return nullptr;
}

void HtmlEditor::SetBlockFormat(const std::string& name) {
    const BlockFormatEntry* format = FindBlockFormat(name);
    if (!format) return;
    const dom::Node* list = ListAtCaret();
    const char* makesList = ListCommandOfTag(format->tag);
    const char* unmakesList = list ? ListCommandOfTag(list->localName()) : nullptr;
    if (!makesList) {
        // An item that becomes a heading leaves its list.
        if (unmakesList) surface_->Execute(unmakesList, {});
        surface_->Execute(format->command, format->tag);
        return;
    }
    if (makesList != unmakesList) surface_->Execute(makesList, {});
    RenameListAtCaret(format->tag);
}

// The view makes two kinds of list; the others differ from them by their tag alone.
void HtmlEditor::RenameListAtCaret(std::string_view tag) {
    dom::Node* list = ListAtCaret();
    if (!list || list->is(tag)) return;
    dom::Document::Step step(*document_);
    const dom::Selection selection = document_->selection();
    dom::Node* renamed = document_->createElement(tag);
    const std::vector<dom::Attribute> attributes = list->attributes();
    for (const dom::Attribute& attribute : attributes)
        document_->setAttribute(*renamed, attribute.name, attribute.value);
    document_->insertNode(*list->parent(), *renamed, list);
    for (dom::Node* item : list->children())
        document_->moveNode(*renamed, *item, nullptr);
    document_->removeNode(*list);
    document_->setSelection(selection);
}

}  // namespace pw
