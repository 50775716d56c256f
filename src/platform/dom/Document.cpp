#include "platform/dom/Document.h"

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "platform/Text.h"
#include "platform/dom/DocumentImpl.h"
#include "platform/dom/Escape.h"
#include "platform/dom/FlatText.h"
#include "platform/dom/OriginalBytes.h"
#include "platform/dom/Parser.h"
#include "platform/dom/SourceEdit.h"
#include "platform/dom/Writer.h"

namespace pw::dom {

// --- Nodes --------------------------------------------------------------------------------------

Node* NodePool::make(NodeType type) {
    if (count_ % kBlock == 0) blocks_.emplace_back(new Node[kBlock]);
    Node* node = &blocks_.back()[count_ % kBlock];
    node->id_ = NodeId(++count_);
    node->type_ = type;
    return node;
}

Node* NodePool::find(NodeId id) const {
    if (id == 0 || id > count_) return nullptr;
    return &blocks_[(id - 1) / kBlock][(id - 1) % kBlock];
}

Node* Document::newNode(NodeType type) {
    return impl_->pool.make(type);
}

Node* Document::node(NodeId id) const {
    return impl_->pool.find(id);
}

Node* Document::createElement(std::string_view tag) {
    Node* node = newNode(NodeType::Element);
    node->name_ = ToLower(tag);
    return node;
}

Node* Document::createText(std::string_view data) {
    Node* node = newNode(NodeType::Text);
    node->data_ = withLineFeeds(data);
    return node;
}

Node* Document::createComment(std::string_view data) {
    Node* node = newNode(NodeType::Comment);
    node->data_ = withLineFeeds(data);
    return node;
}

// --- The whole page -----------------------------------------------------------------------------

Document::Document() : impl_(std::make_unique<Impl>(*this)) {
    ParseError error;
    if (!Parser(*this).parsePage("<html><head></head><body></body></html>", &error)) {
        throw std::logic_error(error.message);
    }
}

Document::Document(Unparsed) : impl_(std::make_unique<Impl>(*this)) {}

Document::~Document() = default;

std::unique_ptr<Document> Document::parse(std::string_view bytes, ParseError* error) {
    Decoded decoded = decode(bytes);
    // Some encodings write one text in several ways: then the bytes themselves must be kept.
    if (encode(decoded.text, decoded.encoding) != bytes)
        decoded.encoding.original = OriginalBytes::of(bytes, decoded);
    return parseText(std::move(decoded.text), decoded.encoding, error);
}

std::unique_ptr<Document> Document::parseText(std::string text, Encoding encoding,
                                              ParseError* error) {
    std::unique_ptr<Document> document(new Document(Unparsed{}));
    document->impl_->encoding = std::move(encoding);
    if (!IsValidUtf8(text)) text = MakeValidUtf8(text);
    if (!Parser(*document).parsePage(std::move(text), error)) return nullptr;
    return document;
}

std::string Document::html() const {
    return Writer(*this).page();
}

std::string Document::bytes() const {
    return encode(html(), impl_->encoding);
}

bool Document::setHtml(std::string_view text, ParseError* error) {
    return SourceEdit(*this).replacePage(text, error);
}

bool Document::replaceSource(std::size_t begin, std::size_t end, std::string_view text,
                             ParseError* error) {
    std::string page = html();
    begin = std::min(begin, page.size());
    end = std::clamp(end, begin, page.size());
    page.replace(begin, end - begin, text);
    return setHtml(page, error);
}

const Encoding& Document::encoding() const {
    return impl_->encoding;
}

std::string Document::doctype() const {
    const auto find = [](std::string_view bytes) -> std::string {
        const std::size_t begin = FindNoCase(bytes, "<!doctype");
        if (begin == bytes.npos) return {};
        const std::size_t end = bytes.find('>', begin);
        return std::string(bytes.substr(begin, end == bytes.npos ? end : end - begin + 1));
    };
    // It belongs to no node: it stands in front of HTML, of a comment there, or of the first thing
    // that has bytes.
    for (const Node* node = root_->first_; node; node = node->following()) {
        if (std::string found = find(node->lead_); !found.empty()) return found;
        if (!node->isComment() && !node->start_.empty()) return {};
    }
    return find(root_->endLead_);
}

bool Document::quirks() const {
    return impl_->quirks;
}

// --- Reads --------------------------------------------------------------------------------------

Node* Document::documentElement() const {
    for (Node* child = root_->first_; child; child = child->next_) {
        if (child->isElement()) return child;
    }
    return nullptr;
}

Node* Document::head() const {
    const Node* html = documentElement();
    for (Node* child = html ? html->first_ : nullptr; child; child = child->next_) {
        if (child->is("head")) return child;
    }
    return nullptr;
}

Node* Document::body() const {
    const Node* html = documentElement();
    for (Node* child = html ? html->first_ : nullptr; child; child = child->next_) {
        if (child->is("body") || child->is("frameset")) return child;
    }
    return nullptr;
}

const std::vector<Node*>& Document::all() const {
    if (impl_->allValid) return impl_->all;
    impl_->all.clear();
    // Item 0 is the HTML element; a comment in front of it comes behind it.
    Node* html = documentElement();
    if (html) impl_->all.push_back(html);
    for (Node* node = root_->first_; node; node = node->following()) {
        if (node != html && !node->isText()) impl_->all.push_back(node);
    }
    for (std::size_t i = 0; i < impl_->all.size(); ++i) {
        impl_->all[i]->allIndex_ = std::int32_t(i);
    }
    impl_->allValid = true;
    return impl_->all;
}

int Document::sourceIndex(const Node* node) const {
    if (!node || !node->connected_ || node->isText() || node == root_) return -1;
    all();
    return node->allIndex_;
}

std::vector<Node*> Document::tags(std::string_view name) const {
    std::vector<Node*> found;
    for (Node* node : all()) {
        if (node->is(name)) found.push_back(node);
    }
    return found;
}

std::vector<Node*> Document::links() const {
    std::vector<Node*> found;
    for (Node* node : all()) {
        if ((node->is("a") || node->is("area")) && node->hasAttribute("href")) {
            found.push_back(node);
        }
    }
    return found;
}

std::vector<Node*> Document::images() const {
    return tags("img");
}
std::vector<Node*> Document::forms() const {
    return tags("form");
}
std::vector<Node*> Document::embeds() const {
    return tags("embed");
}
std::vector<Node*> Document::applets() const {
    return tags("applet");
}
std::vector<Node*> Document::plugins() const {
    return embeds();
}
std::vector<Node*> Document::scripts() const {
    return tags("script");
}
std::vector<Node*> Document::frames() const {
    return tags("frame");
}

Node* Document::elementById(std::string_view id) const {
    for (Node* node : all()) {
        const std::string* value = node->attribute("id");
        if (value && *value == id) return node;
    }
    return nullptr;
}

std::string Document::title() const {
    const Node* top = head() ? head() : root_;
    for (const Node* node = top; node; node = node->following(top)) {
        if (!node->is("title")) continue;
        std::string text;
        for (const Node* child = node->first_; child; child = child->next_)
            text += child->data_;
        std::string collapsed;
        for (const char c : text) {
            const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\f';
            if (!blank)
                collapsed += c;
            else if (!collapsed.empty() && collapsed.back() != ' ')
                collapsed += ' ';
        }
        if (!collapsed.empty() && collapsed.back() == ' ') collapsed.pop_back();
        return collapsed;
    }
    return {};
}

std::string Document::innerText(const Node& node) const {
    static constexpr std::string_view kShownAsTheyAre[] = {
        "script", "style", "title", "textarea", "noframes", "noscript", "noembed", "iframe"};
    if (!node.isElement() && node.type_ != NodeType::Document) {
        return ReplaceAll(node.data_, "\n", "\r\n");
    }
    for (const std::string_view tag : kShownAsTheyAre) {
        if (!node.is(tag)) continue;
        std::string text;
        for (const Node* at = &node; at; at = at->following(&node)) {
            if (at->isText()) text += at->data_;
        }
        return ReplaceAll(text, "\n", "\r\n");
    }
    return flatten(node).text;
}

std::string Document::innerHTML(const Node& node) const {
    return Writer(*this).inner(node);
}
std::string Document::outerHTML(const Node& node) const {
    return Writer(*this).outer(node);
}

// --- The gateway --------------------------------------------------------------------------------

void Document::insertNode(Node& parent, Node& node, Node* before) {
    if (!node.parent_) return Gateway(*this).insert(parent, node, before);
    moveNode(parent, node, before);
}

void Document::removeNode(Node& node) {
    Gateway(*this).remove(node);
}

void Document::setAttribute(Node& element, std::string_view name,
                            std::optional<std::string> value) {
    Gateway(*this).setAttribute(element, name, std::move(value));
}

void Document::setText(Node& node, std::string_view data) {
    const std::string text = withLineFeeds(data);
    const std::string& old = node.data_;
    const auto isInside = [](const std::string& s, std::size_t at) {
        return at < s.size() && (s[at] & 0xC0) == 0x80;
    };
    // Only what differs is replaced, so that the rest keeps its bytes.
    std::size_t begin = 0;
    const std::size_t shorter = std::min(old.size(), text.size());
    while (begin < shorter && old[begin] == text[begin])
        ++begin;
    while (begin > 0 && (isInside(old, begin) || isInside(text, begin)))
        --begin;
    std::size_t end = 0;
    while (end < shorter - begin && old[old.size() - 1 - end] == text[text.size() - 1 - end])
        ++end;
    while (end > 0 && (isInside(old, old.size() - end) || isInside(text, text.size() - end)))
        --end;
    Gateway(*this).replaceText(node, begin, old.size() - begin - end,
                               std::string_view(text).substr(begin, text.size() - begin - end),
                               Change::Kind::SetText);
}

void Document::replaceText(Node& node, std::size_t offset, std::size_t removed,
                           std::string_view inserted) {
    Gateway(*this).replaceText(node, offset, removed, inserted, Change::Kind::ReplaceText);
}

// --- History ------------------------------------------------------------------------------------

Document::Step::Step(Document& document, StepKind kind)
    : document_(document),
      before_(document.selection_),
      begin_(document.impl_->history.beginStep(kind)),
      exceptions_(std::uncaught_exceptions()) {}
Document::Step::~Step() {
    if (std::uncaught_exceptions() > exceptions_) rollBack();
    document_.impl_->history.endStep();
}
void Document::Step::rollBack() {
    document_.impl_->history.rollBack(begin_, before_);
}

bool Document::canUndo() const {
    return impl_->history.canUndo();
}
bool Document::canRedo() const {
    return impl_->history.canRedo();
}
bool Document::undo() {
    return impl_->history.undo();
}
bool Document::redo() {
    return impl_->history.redo();
}
void Document::setUpkeep(std::function<void(Document&)> upkeep) {
    impl_->history.setUpkeep(std::move(upkeep));
}
void Document::sealStep() {
    impl_->history.seal();
}
void Document::clearHistory() {
    impl_->history.clear();
}
bool Document::isDirty() const {
    return impl_->history.isDirty();
}
void Document::markClean() {
    impl_->history.markClean();
}
void Document::setClock(std::function<double()> clock) {
    impl_->history.setClock(std::move(clock));
}

Document::OriginScope::OriginScope(Document& document, Origin origin)
    : document_(document), previous_(document.impl_->origin) {
    document_.impl_->origin = origin;
}
Document::OriginScope::~OriginScope() {
    document_.impl_->origin = previous_;
}

void Document::addObserver(DocumentObserver* observer) {
    impl_->observers.push_back(observer);
}
void Document::removeObserver(DocumentObserver* observer) {
    std::erase(impl_->observers, observer);
}

}  // namespace pw::dom
