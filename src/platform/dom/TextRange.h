#pragma once
// A stretch of a page's text that can be moved, searched, read, selected and replaced.
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::dom {

class TextRange {
  public:
    /** The whole body. */
    explicit TextRange(Document& document);
    TextRange(Document& document, Position start, Position end);
    /** The document's selection; a control selection gives an empty range in front of the object.
     */
    static TextRange fromSelection(Document& document);

    Position start() const { return start_; }
    Position end() const { return end_; }
    bool collapsed() const { return start_ == end_; }

    std::string text() const;      ///< visible text
    std::string htmlText() const;  ///< the markup of what it holds
    /** Replaces what it holds by plain text, in the formatting that the range begins in; formatting
     *  that holds nothing any more goes. One undo step. The range then holds the new text. */
    void setText(std::string_view text);
    /** Replaces what it holds by markup; one undo step. Where no content of the page can stand, as
     * in a script, a list box or between the rows of a table, nothing is replaced, and the markup
     * goes to the nearest place for it. The range ends behind the new content, and so does the
     * selection when it was this range. */
    void pasteHTML(std::string_view html);
    /** As setText for each of these, which are of one document, apart and in its order; one undo
     *  step. */
    static void replaceAll(std::vector<TextRange>& ranges, std::string_view text);
    void moveToElementText(Node& element);
    /** Makes it the document's selection. */
    void select();
    void collapseToStart() { end_ = start_; }
    void collapseToEnd() { start_ = end_; }
    /** Collapses to its start (or end when `count` is positive) and moves by visible characters.
     *  Returns how far it went. */
    int moveCharacters(int count);
    enum FindFlags { WholeWord = 2, MatchCase = 4 };
    /** Looks from the range's start forwards (span above 0) or backwards (below 0) for `text`
     *  within `span` characters; on a find the range holds the match. Text goes on through
     *  formatting, and all kinds of blank are alike. */
    bool findText(std::string_view text, int span, int flags);
    /** Every match that findText would find, each from where the one before it ended. */
    std::vector<TextRange> findAll(std::string_view text, int span, int flags) const;
    bool contains(const TextRange& other) const;

  private:
    Document* document_;
    Position start_;
    Position end_;
};

}  // namespace pw::dom
