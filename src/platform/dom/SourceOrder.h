#pragma once
// Gives every byte of a page's source to a node, and finds the stretches where the order of the
// source is not the order of the tree. Runs once, after the tree was built.
#include <string_view>

#include "platform/dom/Document.h"

namespace pw::dom {

class SourceOrder {
  public:
    /** The nodes below the document's root have their start_ and end_ in `source`; that of a clone
     *  is the start tag which it was made from, and is taken away here. */
    SourceOrder(Document& document, std::string_view source)
        : document_(document), source_(source) {}

    void run();

  private:
    struct Token {
        Node* node;
        bool end;
        std::string_view bytes;
    };
    struct Hull {
        std::uint32_t first = 0;
        std::uint32_t last = 0;
        std::uint32_t count = 0;  ///< 0: nothing of it stands in the source
        bool contiguous() const { return count > 0 && last - first + 1 == count; }
    };
    struct Run {
        Node* parent;
        Node* first;
        Node* last;
        bool disordered;
    };

    void dropMisplacedEnds();
    void collect();
    void sort();
    void giveLeads();
    void findHulls();
    void findDisorder();
    void findClones();
    void makeIslands();
    void setExtents();
    void listUnclosedFormatting();
    Hull& hull(const Node& node) { return hulls_[node.id()]; }
    std::string_view extentOf(const Hull& hull) const;

    Document& document_;
    std::string_view source_;
    std::vector<Token> tokens_;  ///< in the order of the tree, then of the source
    std::vector<Hull> hulls_;    ///< by node id
    std::vector<Run> runs_;
    bool ordered_ = true;
};

}  // namespace pw::dom
