#pragma once
// The nodes of a page. A node belongs to its Document, which frees it only when the document dies:
// a removed node stays valid (its sourceIndex is below 0), so that history and the logic may hold
// plain pointers. Nodes are read here; they are changed through Document alone.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pw::dom {

class Document;

/** Stable number of a node within its document; never used twice. 0 is no node. */
using NodeId = std::uint32_t;

enum class NodeType : std::uint8_t { Document, Element, Text, Comment };

struct Attribute {
    std::string name;   ///< as written in the page, or lower case when set by the program
    std::string value;  ///< decoded: no character references
};

/** Half-open range of bytes in the decoded source text; empty when a node has no source of its own.
 */
struct SourceRange {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool empty() const { return begin == end; }
};

class Node {
  public:
    NodeId id() const { return id_; }
    NodeType type() const { return type_; }
    bool isElement() const { return type_ == NodeType::Element; }
    bool isText() const { return type_ == NodeType::Text; }
    bool isComment() const { return type_ == NodeType::Comment; }

    /** Upper-case tag of an element, "!" for a comment, "" for text. */
    std::string tagName() const;
    /** Lower-case tag of an element (SVG keeps its own case), "" for others. */
    const std::string& localName() const { return name_; }
    /** True when this is an element of that tag, without regard to case. */
    bool is(std::string_view tag) const;

    Node* parent() const { return parent_; }
    /** The parent when it is an element, else none. */
    Node* parentElement() const { return parent_ && parent_->isElement() ? parent_ : nullptr; }
    Node* firstChild() const { return first_; }
    Node* lastChild() const { return last_; }
    Node* previous() const { return previous_; }
    Node* next() const { return next_; }
    std::vector<Node*> children() const;
    /** Position among the siblings; walks them. */
    std::size_t index() const;
    /** True for the node itself and everything below it. */
    bool contains(const Node& other) const;
    /** Next node in document order, within `scope` (none: the whole tree). */
    Node* following(const Node* scope = nullptr) const;
    /** Next node in document order that is not below this one. */
    Node* followingSkippingChildren(const Node* scope = nullptr) const;

    /** Text of a text or comment node, UTF-8, line ends as written. */
    const std::string& data() const { return data_; }

    const std::vector<Attribute>& attributes() const { return attributes_; }
    bool hasAttribute(std::string_view name) const;
    /** The attribute as written (decoded), or the table of defaults' answer, or "". Case of the
     * name is ignored. Booleans answer "true" or "" by presence. */
    std::string getAttribute(std::string_view name) const;
    /** The written value alone: none when the attribute is missing. */
    const std::string* attribute(std::string_view name) const;

  private:
    friend class Document;
    friend class Parser;
    friend class Writer;
    friend class History;
    Node() = default;

    NodeId id_ = 0;
    NodeType type_ = NodeType::Element;
    bool svg_ = false;           ///< in a foreign namespace (SVG, MathML)
    bool startChanged_ = false;  ///< attributes differ from the source's start tag
    bool textChanged_ = false;   ///< data differs from the source text
    bool childrenChanged_ = false;
    bool connected_ = false;
    SourceRange start_;  ///< start tag, text or comment in the source
    SourceRange end_;    ///< end tag in the source; empty when it was implied
    std::string name_;
    std::string data_;
    std::vector<Attribute> attributes_;
    Node* parent_ = nullptr;
    Node* first_ = nullptr;
    Node* last_ = nullptr;
    Node* previous_ = nullptr;
    Node* next_ = nullptr;
};

}  // namespace pw::dom
