#pragma once
// What a Document is made of. For the files of this folder alone.
#include <array>
#include <deque>
#include <list>

#include "platform/dom/CarriedBytes.h"
#include "platform/dom/Document.h"
#include "platform/dom/History.h"

namespace pw::dom {

/** Owns the nodes and finds them by number. */
class NodePool {
  public:
    Node* make(NodeType type);
    Node* find(NodeId id) const;
    std::size_t size() const { return count_; }

  private:
    static constexpr std::size_t kBlock = 256;
    std::vector<std::unique_ptr<Node[]>> blocks_;
    std::size_t count_ = 0;
};

/** Keeps bytes in place for as long as the document lives. */
class ByteStore {
  public:
    std::string_view keep(std::string bytes) {
        if (bytes.empty()) return {};
        return kept_.back().emplace_back(std::move(bytes));
    }
    /** Keeps what the other has kept, at its place. */
    void absorb(ByteStore& other) { kept_.splice(kept_.begin(), other.kept_); }

  private:
    std::list<std::deque<std::string>> kept_{1};
};

/** A stretch of siblings whose markup is nested so badly that the order of the source is not the
 *  order of the tree, or that one start tag serves several elements. It is copied as it stands
 *  until something in it changes; then it is written canonically. */
struct Island {
    Node* parent = nullptr;
    std::string_view extent;  ///< empty when it does not stand in one piece
    bool disordered = false;  ///< even a changed text cannot be written in its place
    int structure = 0;        ///< net number of changes to nodes and to shared start tags
    int text = 0;             ///< net number of other changes
    bool pristine() const { return structure == 0 && text == 0; }
    bool canonical() const { return structure != 0 || (disordered && text != 0); }
};

struct Document::Impl {
    explicit Impl(Document& document) : history(document) {}

    NodePool pool;
    ByteStore bytes;
    Encoding encoding;
    std::string lineEnd = "\n";
    bool quirks = false;
    std::vector<Island> islands;
    /** Formatting elements without an end tag: what comes behind them is formatted too. */
    std::vector<Node*> unclosed;

    std::vector<Node*> all;
    bool allValid = false;

    History history;
    CarriedBytes carried;
    Origin origin = Origin::Program;
    std::vector<DocumentObserver*> observers;
    bool reloadDue = false;  ///< observers have to be told at the end of the step
    int gate = 0;            ///< above 0 while the gateway or the parser changes the tree
};

}  // namespace pw::dom
