#pragma once
// One page as a tree, together with the bytes that it was read from. What is not changed is written
// back as it was read; what is changed is written anew, and nothing else.
//
// Every change goes through the six primitives of the gateway. They record themselves for undo,
// mark what has to be written anew, and tell the observers. Everything else that edits (innerHTML,
// insertAdjacentHTML, text ranges, dialogs, the browser view) is made of these six.
//
// Text is UTF-8; offsets into text are bytes and lie on character boundaries. Line ends in text
// nodes and attributes are LF: CR LF handed to a primitive is taken as LF, and LF is written in the
// way that the page ends its lines.
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/HandlerLevel.h"
#include "platform/dom/Encoding.h"
#include "platform/dom/Node.h"

namespace pw::dom {

class History;
class Gateway;

/** A place between two characters (in text) or two children (in an element). */
struct Position {
    Node* node = nullptr;
    std::size_t offset = 0;  ///< bytes in a text node, child index in an element
    bool operator==(const Position&) const = default;
};

enum class SelectionType { None, Text, Control };

struct Selection {
    SelectionType type = SelectionType::None;
    Position anchor;          ///< where the selecting began
    Position focus;           ///< where the caret is
    Node* control = nullptr;  ///< the object selected as a whole, with type Control
    bool collapsed() const { return anchor == focus; }
    bool operator==(const Selection&) const = default;
};

/** Who made a change: the projection must not be sent what it has sent itself. */
enum class Origin { Program, View, History };

/** One primitive as it was applied. A node inserted or removed stands for its whole subtree; when a
 *  node is inserted, the subtree is complete. Nodes that are not in the tree report changes too:
 *  `Document::isConnected` tells. ReplaceSource changes bytes, never the tree. */
struct Change {
    enum class Kind { InsertNode, RemoveNode, SetAttribute, SetText, ReplaceText, ReplaceSource };
    Kind kind;
    Origin origin;
    Node* node = nullptr;       ///< the node inserted, removed or changed
    Node* parent = nullptr;     ///< of an inserted or removed node
    Node* before = nullptr;     ///< the sibling in front of which it stands or stood; none: last
    std::string name;           ///< of the attribute
    std::size_t offset = 0;     ///< of a text replacement
    std::size_t removed = 0;    ///< bytes removed by a text replacement
    std::string_view inserted;  ///< bytes inserted by a text replacement
};

class DocumentObserver {
  public:
    virtual ~DocumentObserver() = default;
    /** After each primitive. Must not change the document. */
    virtual void documentChanged(const Change&) {}
    /** The doctype or the HTML element itself was replaced: show the page anew. Comes after the
     *  primitives of that edit. */
    virtual void documentReloaded() {}
    /** The selection was set by anyone but the view. */
    virtual void selectionChanged(Origin) {}
    /** A step was finished, undone or redone. */
    virtual void historyChanged() {}
};

/** Kinds of undo step. Consecutive typing of one kind merges into one step. Upkeep is no step of
 * the user's: what a change of the whole project (a page renamed, a variable changed) does to this
 * page. Undo and redo pass through it and leave the page up to date; see `setUpkeep`. */
enum class StepKind { Command, Typing, Deleting, Upkeep };

struct ParseError {
    std::string message;  ///< says what is wrong and what to do
};

class Document {
  public:
    Document();  ///< an empty page: html, head, body
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    /** Parses the bytes of a file; `decode` tells how the encoding is found. None and a message for
     * what cannot be a page (nested beyond every reason, too large); never throws for bad markup.
     */
    static std::unique_ptr<Document> parse(std::string_view bytes, ParseError* error = nullptr);
    /** As parse, of text that is already UTF-8; the page's encoding stays `encoding`. */
    static std::unique_ptr<Document> parseText(std::string text, Encoding encoding = {},
                                               ParseError* error = nullptr);

    // --- The whole page -----------------------------------------------------------------------
    /** The page as text, lossless where nothing changed. */
    std::string html() const;
    /** The page as bytes of a file, in the encoding that it came in. */
    std::string bytes() const;
    /** Replaces the whole page by this text. Keeps every node that stands in both, and their bytes;
     *  one undo step. Fails with a message, changing nothing, as parse does. */
    [[nodiscard]] bool setHtml(std::string_view text, ParseError* error = nullptr);
    const Encoding& encoding() const;
    /** The doctype as written, "" when there is none. */
    std::string doctype() const;
    bool quirks() const;

    // --- Reads --------------------------------------------------------------------------------
    Node* root() const { return root_; }
    Node* documentElement() const;
    Node* head() const;
    /** BODY, or FRAMESET where the page has that instead; none in odd pages. */
    Node* body() const;
    Node* node(NodeId id) const;
    /** Elements and comments in source order; item 0 is the HTML element. Cached. */
    const std::vector<Node*>& all() const;
    /** Index in `all`; -1 for a removed node, for text and for none. */
    int sourceIndex(const Node* node) const;
    bool isConnected(const Node* node) const { return node && node->connected_; }
    /** All elements of a tag ("!" for comments), in source order, without regard to case. */
    std::vector<Node*> tags(std::string_view name) const;
    std::vector<Node*> links() const;   ///< A and AREA with href
    std::vector<Node*> images() const;  ///< IMG
    std::vector<Node*> forms() const;
    std::vector<Node*> embeds() const;
    std::vector<Node*> applets() const;
    std::vector<Node*> plugins() const;  ///< as embeds
    std::vector<Node*> scripts() const;
    std::vector<Node*> frames() const;  ///< FRAME elements only
    Node* elementById(std::string_view id) const;
    std::string title() const;

    std::string innerText(const Node& node) const;  ///< visible text; line ends are CR LF
    std::string innerHTML(const Node& node) const;
    std::string outerHTML(const Node& node) const;

    // --- The gateway: the six primitives ------------------------------------------------------
    /** Makes a node that is not yet in the tree. */
    Node* createElement(std::string_view tag);
    Node* createText(std::string_view data);
    Node* createComment(std::string_view data);

    /** Puts `node` (new or removed, not connected) in front of `before`, or last when none. */
    void insertNode(Node& parent, Node& node, Node* before);
    void removeNode(Node& node);
    /** None removes the attribute. */
    void setAttribute(Node& element, std::string_view name, std::optional<std::string> value);
    void setText(Node& node, std::string_view data);
    void replaceText(Node& node, std::size_t offset, std::size_t removed,
                     std::string_view inserted);
    /** Replaces bytes [begin, end) of html() by `text`, for edits that no tree change expresses. */
    [[nodiscard]] bool replaceSource(std::size_t begin, std::size_t end, std::string_view text,
                                     ParseError* error = nullptr);

    // --- Edits made of the primitives ---------------------------------------------------------
    /** What stands behind `offset` becomes a text node of its own, with its bytes, behind this one.
     *  Returns it; none when nothing would be left on one side. */
    Node* splitText(Node& text, std::size_t offset);
    void setTitle(std::string_view title);
    void moveNode(Node& parent, Node& node, Node* before);
    void setInnerHTML(Node& element, std::string_view html);
    void setInnerText(Node& element, std::string_view text);
    /** Replaces the element; returns the first of the new nodes, or none. */
    Node* setOuterHTML(Node& element, std::string_view html);
    /** `where` is beforeBegin, afterBegin, beforeEnd or afterEnd, in any case. */
    void insertAdjacentHTML(Node& element, std::string_view where, std::string_view html);
    void insertAdjacentElement(Node& element, std::string_view where, Node& other);
    /** Nodes of a fragment parsed in the context of an element of that tag; not connected. */
    std::vector<Node*> parseFragment(std::string_view html, std::string_view contextTag);

    // --- Selection ----------------------------------------------------------------------------
    const Selection& selection() const { return selection_; }
    void setSelection(const Selection& wanted, Origin origin = Origin::Program);
    void collapse(Position caret);
    /** The element that holds the focus of the selection; none without a selection. */
    Node* elementAtCaret() const;
    /** Deletes what is selected and puts the caret there. */
    void deleteSelection();

    // --- History ------------------------------------------------------------------------------
    /** Groups all changes while it lives into one undo step; nested ones join the outermost. The
     *  selection at its end is the one that redo brings back, so the view's belongs within it. Text
     *  that leaves one node and comes back in a new one within a step keeps its bytes. A change
     *  outside of every step is a step of its own; typing of the view merges with the last. */
    class Step {
      public:
        explicit Step(Document& document, StepKind kind = StepKind::Command);
        /** An exception that passes takes back what the step has done. */
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;
        /** Takes back what was done since this step began, the selection too; nothing of it stays
         * for undo or redo. The step is still open afterwards and may be filled anew. */
        void rollBack();

      private:
        Document& document_;
        Selection before_;
        StepScope scope_;    // nobody swallows an exception that it has to see
        std::size_t begin_;  ///< number of primitives of the outermost step at its start
        int exceptions_;     ///< in flight at its start
    };
    bool canUndo() const;
    bool canRedo() const;
    bool undo();
    bool redo();
    /** Called within each undo and redo: what these bring back can be older than the project, and
     * is brought up to date with it. The changes of the call belong to the undo or redo. */
    void setUpkeep(std::function<void(Document&)> upkeep);
    /** Ends the merging of typing: the next change starts a step of its own. */
    void sealStep();
    /** Forgets all steps; the tree stays. */
    void clearHistory();
    /** Differs from what was parsed or last marked clean; follows undo and redo. */
    bool isDirty() const;
    void markClean();
    /** Seconds that never run backwards; decides when typing starts a new step. */
    void setClock(std::function<double()> clock);

    /** Origin of the changes made while it lives. */
    class OriginScope {
      public:
        OriginScope(Document& document, Origin origin);
        ~OriginScope();
        OriginScope(const OriginScope&) = delete;
        OriginScope& operator=(const OriginScope&) = delete;

      private:
        Document& document_;
        Origin previous_;
    };

    void addObserver(DocumentObserver* observer);
    void removeObserver(DocumentObserver* observer);
    /** Counts up with every primitive; equal numbers mean an unchanged tree. */
    std::uint64_t revision() const { return revision_; }

  private:
    friend class Parser;
    friend class Writer;
    friend class History;
    friend class Gateway;
    friend class SourceEdit;
    friend class SourceOrder;

    struct Unparsed {};
    explicit Document(Unparsed);  ///< without a tree, for the parser to fill
    Node* newNode(NodeType type);

    Node* root_ = nullptr;
    Selection selection_;
    std::uint64_t revision_ = 0;
    // The rest is the business of Document.cpp, Parser.cpp, Writer.cpp and History.cpp.
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace pw::dom
