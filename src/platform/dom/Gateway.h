#pragma once
// The one place where a page's tree changes. A primitive is worked out once, with everything that
// it does to the bytes of the page, and can then be applied forwards and backwards any number of
// times.
#include <optional>
#include <string>
#include <vector>

#include "platform/dom/Document.h"
#include "platform/dom/TextSource.h"

namespace pw::dom {

/** One of the four stretches of bytes that an element is written with. */
enum class Piece : std::uint8_t { Lead, Start, EndLead, End };

/** The primitive also changes bytes of this node (its start tag, a missing end tag …). */
struct PieceChange {
    Node* node;
    Piece piece;
    std::string_view before;
    std::string_view after;
};

struct Primitive {
    Change::Kind kind;
    Node* node = nullptr;
    Node* parent = nullptr;
    Node* before = nullptr;

    std::string name;  ///< of the attribute, as it is written
    std::size_t index = 0;
    std::optional<std::string> oldValue;
    std::optional<std::string> newValue;

    std::size_t offset = 0;
    std::string removed;
    std::string inserted;
    std::size_t sourceOffset = 0;
    std::string removedSource;
    std::string insertedSource;

    std::vector<PieceChange> pieces;
    std::vector<int> islands;  ///< that it spoils from outside
    /** The page must be shown anew, in this mode; holds the other mode while it is applied. */
    std::optional<bool> quirks;
};

enum class Direction { Forwards, Backwards };

/** Whether an edit also writes what it makes necessary elsewhere (an end tag that was implied), or
 *  the bytes are known already: when a typed source is taken over. */
enum class Bytes { WorkOut, Given };

class Gateway {
  public:
    explicit Gateway(Document& document, Bytes bytes = Bytes::WorkOut)
        : document_(document), bytes_(bytes) {}

    void insert(Node& parent, Node& node, Node* before);
    void remove(Node& node);
    void setAttribute(Node& element, std::string_view name, std::optional<std::string> value);
    void replaceText(Node& node, std::size_t offset, std::size_t removed, std::string_view inserted,
                     Change::Kind kind);
    /** Puts `inserted` in the place of each of these stretches of a text, which are in order and
     *  apart. */
    void replaceStretches(Node& node, const std::vector<TextStretch>& stretches,
                          std::string_view inserted);
    /** Makes a text that was read from the page another one with these bytes. */
    void replaceSourcedText(Node& node, std::string_view data, std::string_view bytes);
    /** Bytes alone. With `quirks` the page must be shown anew, in that mode. */
    void replacePieces(Node& node, std::vector<PieceChange> pieces,
                       std::optional<bool> quirks = std::nullopt);

    void apply(Primitive& primitive, Direction direction, Origin origin);

    /** Builds without recording: for the parser. */
    static void append(Node& parent, Node& child);

  private:
    static std::string_view& pieceOf(Node& node, Piece piece);
    void perform(Primitive primitive);
    void carryBytes(const Primitive& primitive);
    void link(Node& parent, Node& node, Node* before);
    void unlink(Node& node);
    void setConnected(Node& node, bool connected);
    void applyAttribute(Primitive& primitive, bool forwards);
    void applyText(Primitive& primitive, bool forwards);
    void applyPieces(Primitive& primitive, bool forwards);
    void countStructure(const Primitive& primitive, int by);
    void count(Node& node, int by, bool structure);
    void notify(const Change& change);

    void closeImplied(Primitive& primitive, Node& open, const Node* next);
    void closeUnclosedFormatting(Primitive& primitive, const Node& parent, const Node* before);
    void prepareParent(Primitive& primitive, Node& parent);
    void keepLead(Primitive& primitive, Node& node);
    void nameEmptied(Primitive& primitive, Node& parent, const Node& going);
    bool sharesStartTag(const Node& node) const;
    bool worksOut(const Node& a, const Node& b) const;

    Document& document_;
    Bytes bytes_;
};

}  // namespace pw::dom
