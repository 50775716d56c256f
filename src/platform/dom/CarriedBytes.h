#pragma once
// Bytes of text that leaves one node and comes back in a new one within the same step: the view
// does so whenever it splits a paragraph or formats part of a text. The new node takes over the
// bytes, so that references and line ends survive.
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::dom {

class CarriedBytes {
  public:
    /** This text was taken out of a node, where it had these bytes. */
    void taken(std::string_view text, std::string_view bytes);
    /** A node came into the tree, with all that is below it. */
    void inserted(Node& top);
    /** The text of this node was changed: its bytes are its own affair from now on. */
    void touched(const Node& node);
    void clear();

  private:
    struct Cut {
        std::string text;
        std::string bytes;
    };
    static bool give(const Cut& cut, Node& node);

    std::vector<Cut> cuts_;
    std::vector<Node*> fresh_;
};

}  // namespace pw::dom
