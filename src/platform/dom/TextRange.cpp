#include "platform/dom/TextRange.h"

#include <algorithm>
#include <optional>

#include "platform/Text.h"
#include "platform/TextSearch.h"
#include "platform/dom/Escape.h"
#include "platform/dom/FlatText.h"
#include "platform/dom/Gateway.h"
#include "platform/dom/RangeEdit.h"

namespace pw::dom {

namespace {

const Node& flattened(const Document& document) {
    return document.body() ? *document.body() : *document.root();
}

/** Where the text behind a place begins in the flat text of `top`. */
std::size_t flatOffset(const FlatText& flat, const Node& top, const Position& position) {
    const Boundary boundary = boundaryOf(position);
    if (boundary.node && !top.contains(*boundary.node)) {
        return comparePositions(position, {const_cast<Node*>(&top), 0}) < 0 ? 0 : flat.text.size();
    }
    // The runs stand in the order of the page: both are walked side by side.
    auto run = flat.runs.begin();
    for (const Node* node = &top; node && node != boundary.node; node = node->following(&top)) {
        while (run != flat.runs.end() && run->node == node)
            ++run;
    }
    const auto isInFront = [&] {
        return run != flat.runs.end() && run->node == boundary.node &&
               run->offset + run->length < boundary.offset;
    };
    while (isInFront())
        ++run;
    if (run == flat.runs.end()) return flat.text.size();
    const bool inside = run->node == boundary.node && boundary.offset > run->offset;
    return run->flat + (inside ? boundary.offset - run->offset : 0);
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

/** The visible text of a page, in which one text is looked for. */
class Finder {
  public:
    using Match = TextSearch::Match;

    Finder(Document& document, std::string_view what, int flags)
        : top_(flattened(document)),
          flat_(flatten(top_)),
          search_(flat_.text, what,
                  TextSearch::AnyBlank |
                      (flags & TextRange::MatchCase ? TextSearch::Same : TextSearch::AnyCase)),
          wholeWord_((flags & TextRange::WholeWord) != 0) {}

    /** Begins at a place, and ends where the span does. */
    void start(const Position& from, int span) {
        at_ = flatOffset(flat_, top_, from);
        forwards_ = span > 0;
        limit_ = moved(flat_.text, at_, span);
    }
    std::optional<Match> next() {
        for (;;) {
            const std::optional<Match> match = forwards_ ? search_.Next(at_) : search_.Last(at_);
            if (!match || (forwards_ ? match->end() > limit_ : match->start < limit_)) {
                return std::nullopt;
            }
            if (!wholeWord_ || IsWholeWord(flat_.text, match->start, match->length)) {
                at_ = forwards_ ? match->end() : match->start;
                return match;
            }
            at_ = forwards_ ? nextCharacter(flat_.text, match->start)
                            : previousCharacter(flat_.text, match->end());
        }
    }
    Position startOf(const Match& match) const { return flat_.positionAt(match.start); }
    Position endOf(const Match& match) const { return flat_.endAt(match.end()); }

  private:
    const Node& top_;
    FlatText flat_;
    TextSearch search_;
    bool wholeWord_;
    bool forwards_ = true;
    std::size_t at_ = 0;
    std::size_t limit_ = 0;
};

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
    if (!start_.node || isNoContent(start_, end_)) return;
    Document::Step step(*document_);
    const bool oneLine = text.find_first_of("\r\n") == text.npos;
    if (start_.node->isText() && oneLine) {
        Node& node = *start_.node;
        const std::size_t offset = std::min(start_.offset, node.data().size());
        if (end_.node == &node) {
            document_->replaceText(node, offset, end_.offset - offset, text);
        } else {
            deleteRange(*document_, start_, end_);
            document_->replaceText(node, offset, 0, text);
        }
        start_ = {&node, offset};
        end_ = {&node, offset + text.size()};
        if (node.data().empty()) start_ = end_ = removeEmptied(*document_, node);
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

void TextRange::replaceAll(std::vector<TextRange>& ranges, std::string_view text) {
    if (ranges.empty()) return;
    Document& document = *ranges.front().document_;
    const Document::Step step(document);
    const bool oneLine = text.find_first_of("\r\n") == text.npos;
    // Backwards, so that a replacement moves no range that is still to come. Those within one text
    // go together.
    for (std::size_t end = ranges.size(); end > 0;) {
        Node* node = ranges[end - 1].start_.node;
        const auto isWithin = [node](const TextRange& range) {
            return range.start_.node == node && range.end_.node == node;
        };
        std::size_t begin = end;
        while (node && node->isText() && oneLine && begin > 0 && isWithin(ranges[begin - 1]))
            --begin;
        if (begin == end) {
            const Position cut = ranges[--end].end_;
            ranges[end].setText(text);
            // The text in which it ended has lost its beginning.
            for (std::size_t i = end + 1; i < ranges.size() && cut.node != node; ++i) {
                if (ranges[i].start_.node != cut.node) break;
                ranges[i].start_.offset -= cut.offset;
                if (ranges[i].end_.node == cut.node) ranges[i].end_.offset -= cut.offset;
            }
            continue;
        }
        std::vector<TextStretch> stretches;
        for (std::size_t i = begin; i < end; ++i)
            stretches.push_back(
                {ranges[i].start_.offset, ranges[i].end_.offset - ranges[i].start_.offset});
        Gateway(document).replaceStretches(*node, stretches, text);
        std::size_t grown = 0;  // modulo its range, as it may be less than nothing
        for (std::size_t i = begin; i < end; ++i) {
            const std::size_t start = stretches[i - begin].offset + grown;
            ranges[i].start_ = {node, start};
            ranges[i].end_ = {node, start + text.size()};
            grown += text.size() - stretches[i - begin].length;
        }
        // One that goes on in the next text began in this one.
        if (end < ranges.size() && ranges[end].start_.node == node) {
            ranges[end].start_.offset += grown;
            if (ranges[end].end_.node == node) ranges[end].end_.offset += grown;
        }
        if (node->data().empty()) {
            const Position place = removeEmptied(document, *node);
            for (std::size_t i = begin; i < end; ++i)
                ranges[i].start_ = ranges[i].end_ = place;
        }
        end = begin;
    }
}

void TextRange::pasteHTML(std::string_view html) {
    if (!start_.node) return;
    const Selection& selection = document_->selection();
    const bool selected = selection.type == SelectionType::Text &&
                          ((selection.anchor == start_ && selection.focus == end_) ||
                           (selection.anchor == end_ && selection.focus == start_));
    const auto parsedFor = [&](const Position& place) {
        const Node* element = place.node->isElement() ? place.node : place.node->parent();
        return document_->parseFragment(
            html, element && element->isElement() ? element->localName() : "body");
    };
    Document::Step step(*document_);
    const bool deletes = !collapsed() && !isNoContent(start_, end_);
    Position place = deletes ? deleteRange(*document_, start_, end_) : start_;
    std::vector<Node*> nodes = parsedFor(place);
    if (const Position better = placeForContent(*document_, place, nodes); better != place) {
        place = better;
        nodes = parsedFor(place);
    }
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
    const std::size_t at = flatOffset(flat, flattened(*document_), count > 0 ? end_ : start_);
    const std::size_t to = moved(flat.text, at, count);
    const Position position = to >= flat.text.size() ? flat.endAt(to) : flat.positionAt(to);
    if (position.node) start_ = end_ = position;
    return count;
}

bool TextRange::findText(std::string_view text, int span, int flags) {
    if (text.empty() || span == 0) return false;
    Finder finder(*document_, text, flags);
    finder.start(start_, span);
    const auto match = finder.next();
    if (!match) return false;
    start_ = finder.startOf(*match);
    end_ = finder.endOf(*match);
    return true;
}

std::vector<TextRange> TextRange::findAll(std::string_view text, int span, int flags) const {
    std::vector<TextRange> found;
    if (text.empty() || span == 0) return found;
    Finder finder(*document_, text, flags);
    finder.start(start_, span);
    while (const auto match = finder.next()) {
        TextRange& range = found.emplace_back(*this);
        range.start_ = finder.startOf(*match);
        range.end_ = finder.endOf(*match);
    }
    return found;
}

bool TextRange::contains(const TextRange& other) const {
    return comparePositions(start_, other.start_) <= 0 && comparePositions(other.end_, end_) <= 0;
}

}  // namespace pw::dom
