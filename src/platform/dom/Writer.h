#pragma once
// Writes a page, or part of one: the bytes it was read from where nothing changed, new markup where
// something did.
#include <string>

#include "platform/dom/Document.h"

namespace pw::dom {

class Writer {
  public:
    explicit Writer(const Document& document) : document_(document) {}

    std::string page();
    std::string outer(const Node& node);
    std::string inner(const Node& node);

    /** True when the element's end tag stands in the text that was read, or will be written; false
     *  where the parser has closed the element for want of one. */
    static bool hasEndTag(const Node& node);

  private:
    enum class Visit { Descend, Skip };
    void writeBelow(const Node& top);
    Visit enter(const Node*& node);
    void leave(const Node& node);
    void writeStart(const Node& node);
    void writeText(const Node& node);
    void writeEnd(const Node& node);
    void writeLead(std::string_view lead);
    static bool isStrange(const Node& node);
    bool isImpliedClone(const Node& node) const;

    const Document& document_;
    std::string out_;
    const Node* canonical_ = nullptr;  ///< the node below which all is written canonically
};

}  // namespace pw::dom
