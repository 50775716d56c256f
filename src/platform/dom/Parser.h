#pragma once
// Makes the tree of a page from its text.
#include <string_view>
#include <vector>

#include "platform/dom/Document.h"

struct GumboInternalNode;

namespace pw::dom {

class Parser {
  public:
    explicit Parser(Document& document) : document_(document) {}

    /** Fills an empty document. False and a message for what cannot be a page. */
    bool parsePage(std::string text, ParseError* error);
    /** Nodes of a fragment that are not in the tree. None and a message as above. */
    std::vector<Node*> parseFragment(std::string_view html, std::string_view contextTag,
                                     ParseError* error);

  private:
    void build(const GumboInternalNode* from, Node* root);
    Node* makeNode(const GumboInternalNode* from);
    Node* makeElement(const GumboInternalNode* from);
    /** Bytes that lie in the text being read; others are the parser's inventions. */
    std::string_view bytes(const char* data, std::size_t length) const;
    void separateTags(Node& text, bool raw, bool escapable);
    void takeLastText(Node& form);
    static void moveInto(Node& element, Node& last);
    void dropBlanksBehindBody();
    bool checkSize(ParseError* error) const;
    bool inOrder(const Node& root) const;
    void makeCanonical(Node& root);
    void completeEnds(Node& root);

    Document& document_;
    std::string_view source_;
};

}  // namespace pw::dom
