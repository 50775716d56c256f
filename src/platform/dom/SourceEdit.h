#pragma once
// Takes over a page's text that was edited as text. What stands in both texts keeps its nodes; the
// rest is brought about by primitives, so that the edit can be undone like every other. Afterwards
// the page is written exactly as it was typed.
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/dom/Document.h"
#include "platform/dom/Gateway.h"

namespace pw::dom {

class SourceEdit {
  public:
    explicit SourceEdit(Document& document) : document_(document) {}

    bool replacePage(std::string_view text, ParseError* error);

  private:
    struct Pair {
        Node* old;
        Node* fresh;
    };
    using Hashes = std::vector<std::uint64_t>;  ///< by node id

    static Hashes hashesOf(const Document& document);
    static std::uint64_t piecesHash(const Node& node, std::string_view lineEnd);
    void reconcile(Node& old, Node& fresh);
    void reconcileChildren(Node& old, Node& fresh);
    void reconcileAttributes(Node& old, const Node& fresh);
    void reconcilePieces(Node& old, const Node& fresh);
    std::vector<Pair> matchChildren(const std::vector<Node*>& old, const std::vector<Node*>& fresh);
    bool alike(const Node& old, const Node& fresh) const;
    bool same(const Node& old, const Node& fresh) const;
    /** A copy of a node of the other document, with everything below it. */
    Node* adopt(const Node& fresh);
    void adoptInto(Node& copy, const Node& fresh);
    int adoptIsland(const Node& fresh, Node& parent);
    void replaceEverything(Node& fresh);

    Document& document_;
    Document* other_ = nullptr;
    Hashes oldHashes_;
    Hashes freshHashes_;
    std::unordered_map<int, int> islands_;      ///< of the other document, by number
    std::unordered_set<const Node*> unclosed_;  ///< formatting without an end tag, likewise
    std::vector<Pair> pending_;
    bool reload_ = false;
};

}  // namespace pw::dom
