#include "platform/dom/TextRange.h"

#include <algorithm>
#include <unordered_map>

#include "platform/Text.h"
#include "platform/dom/Escape.h"
#include "platform/dom/FlatText.h"
#include "platform/dom/RangeEdit.h"

namespace pw::dom {

namespace {

const Node& flattened(const Document& document) {
    return document.body() ? *document.body() : *document.root();
}

/** Where the text behind a place begins in the flat text. */
std::size_t flatOffset(const FlatText& flat, const Position& position) {
    const Boundary boundary = boundaryOf(position);
    std::unordered_map<const Node*, std::vector<const FlatText::Run*>> runs;
    for (const FlatText::Run& run : flat.runs)
        runs[run.node].push_back(&run);
    for (const Node* node = boundary.node; node; node = node->following()) {
        const auto found = runs.find(node);
        if (found == runs.end()) continue;
        const std::size_t offset = node == boundary.node ? boundary.offset : 0;
        for (const FlatText::Run* run : found->second) {
            if (run->offset + run->length < offset) continue;
            return run->flat + (offset > run->offset ? offset - run->offset : 0);
        }
    }
    return flat.text.size();
}

std::size_t nextCharacter(const std::string& text, std::size_t at) {
    if (text.compare(at, 2, "\r\n") == 0) return at + 2;
    ++at;
    while (at < text.size() && (text[at] & 0xC0) == 0x80)
        ++at;
    return at;
}

std::size_t previousCharacter(const std::string& text, std::size_t at) {
    if (at >= 2 && text.compare(at - 2, 2, "\r\n") == 0) return at - 2;
    --at;
    while (at > 0 && (text[at] & 0xC0) == 0x80)
        --at;
    return at;
}

/** Moves by characters; `count` becomes how far it went. */
std::size_t moved(const std::string& text, std::size_t at, int& count) {
    int done = 0;
    while (done < count && at < text.size()) {
        at = nextCharacter(text, at);
        ++done;
    }
    while (done > count && at > 0) {
        at = previousCharacter(text, at);
        --done;
    }
    count = done;
    return at;
}

bool isWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           (c & 0x80) != 0;
}

/** Letters that are equal but for their case may differ in length. */
std::size_t matchLength(std::string_view text, std::size_t at, std::string_view what) {
    const std::string folded = FoldCase(what);
    for (std::size_t length = 1; length <= what.size() * 3 && at + length <= text.size();
         ++length) {
        const std::size_t tried = length <= what.size() ? what.size() - length + 1 : length;
        if (at + tried <= text.size() && FoldCase(text.substr(at, tried)) == folded) return tried;
    }
    return what.size();
}

std::vector<Node*> nodesOfText(Document& document, std::string_view text) {
    std::vector<Node*> nodes;
    bool first = true;
    for (const std::string& line : Split(withLineFeeds(text), '\n')) {
        if (!first) nodes.push_back(document.createElement("br"));
        if (!line.empty()) nodes.push_back(document.createText(line));
        first = false;
    }
    return nodes;
}

}  // namespace

TextRange::TextRange(Document& document) : document_(&document) {
    Node* top = document.body() ? document.body() : document.root();
    start_ = {top, 0};
    end_ = {top, top->children().size()};
}

TextRange::TextRange(Document& document, Position start, Position end)
    : document_(&document), start_(start), end_(end) {
    if (start_.node && end_.node && comparePositions(start_, end_) > 0) std::swap(start_, end_);
}

TextRange TextRange::fromSelection(Document& document) {
    const Selection& selection = document.selection();
    if (selection.control && selection.control->parent()) {
        const Position place{selection.control->parent(), selection.control->index()};
        return {document, place, place};
    }
    return {document, selection.anchor, selection.focus};
}

std::string TextRange::text() const {
    if (!start_.node || !end_.node || collapsed()) return {};
    return flatten(flattened(*document_), boundaryOf(start_), boundaryOf(end_)).text;
}

std::string TextRange::htmlText() const {
    if (collapsed()) return {};
    return markupBetween(*document_, start_, end_);
}

void TextRange::setText(std::string_view text) {
    if (!start_.node) return;
    Document::Step step(*document_);
    if (start_.node == end_.node && start_.node->isText() &&
        text.find_first_of("\r\n") == text.npos) {
        const std::size_t offset = start_.offset;
        document_->replaceText(*start_.node, offset, end_.offset - offset, text);
        start_ = {start_.node, offset};
        end_ = {start_.node, offset + text.size()};
        return;
    }
    const Position place = deleteRange(*document_, start_, end_);
    const std::vector<Node*> nodes = nodesOfText(*document_, text);
    end_ = insertNodesAt(*document_, place, nodes);
    start_ = place;
    if (!nodes.empty()) {
        Node* first = nodes.front();
        start_ = first->isText() ? Position{first, 0} : Position{first->parent(), first->index()};
    }
}

void TextRange::pasteHTML(std::string_view html) {
    if (!start_.node) return;
    const Selection& selection = document_->selection();
    const bool selected = selection.type == SelectionType::Text &&
                          ((selection.anchor == start_ && selection.focus == end_) ||
                           (selection.anchor == end_ && selection.focus == start_));
    const Node* element = start_.node->isElement() ? start_.node : start_.node->parent();
    const std::string context = element && element->isElement() ? element->localName() : "body";
    const std::vector<Node*> nodes = document_->parseFragment(html, context);
    Document::Step step(*document_);
    const Position place = collapsed() ? start_ : deleteRange(*document_, start_, end_);
    start_ = end_ = insertNodesAt(*document_, place, nodes);
    if (selected) document_->collapse(end_);
}

void TextRange::moveToElementText(Node& element) {
    start_ = {&element, 0};
    end_ = {&element, element.children().size()};
}

void TextRange::select() {
    document_->setSelection({SelectionType::Text, start_, end_, nullptr});
}

int TextRange::moveCharacters(int count) {
    const FlatText flat = flatten(flattened(*document_));
    const std::size_t at = flatOffset(flat, count > 0 ? end_ : start_);
    const std::size_t to = moved(flat.text, at, count);
    const Position position = to >= flat.text.size() ? flat.endAt(to) : flat.positionAt(to);
    if (position.node) start_ = end_ = position;
    return count;
}

bool TextRange::findText(std::string_view text, int span, int flags) {
    if (text.empty() || span == 0) return false;
    const FlatText flat = flatten(flattened(*document_));
    const std::size_t start = flatOffset(flat, start_);
    int count = span;
    const std::size_t limit = moved(flat.text, start, count);
    const std::size_t begin = std::min(start, limit);
    const std::string_view searched =
        std::string_view(flat.text).substr(begin, std::max(start, limit) - begin);
    const bool matchCase = (flags & MatchCase) != 0;
    std::size_t from = 0;
    std::size_t upTo = searched.size();
    for (;;) {
        const std::string_view window = searched.substr(0, upTo);
        std::size_t found = 0;
        if (span > 0) {
            found = matchCase ? window.find(text, from) : FindNoCase(window, text, from);
        } else {
            found = matchCase ? window.rfind(text) : FindLastNoCase(window, text);
        }
        if (found == std::string_view::npos) return false;
        const std::size_t at = begin + found;
        const std::size_t length = matchCase ? text.size() : matchLength(flat.text, at, text);
        const bool wordBefore = at > 0 && isWordByte(flat.text[at - 1]);
        const bool wordBehind =
            at + length < flat.text.size() && isWordByte(flat.text[at + length]);
        if (!(flags & WholeWord) || (!wordBefore && !wordBehind)) {
            start_ = flat.positionAt(at);
            end_ = flat.endAt(at + length);
            return true;
        }
        from = found + 1;
        while (from < searched.size() && (searched[from] & 0xC0) == 0x80)
            ++from;
        if (span < 0) {
            upTo = found + length - 1;
            if (upTo == 0) return false;
        }
    }
}

bool TextRange::contains(const TextRange& other) const {
    return comparePositions(start_, other.start_) <= 0 && comparePositions(other.end_, end_) <= 0;
}

}  // namespace pw::dom
