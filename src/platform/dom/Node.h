#pragma once
// The nodes of a page. A node belongs to its Document, which frees it only when the document dies:
// a removed node stays valid (its sourceIndex is below 0), so that history and the logic may hold
// plain pointers. Nodes are read here; they are changed through Document alone.
#include <cstddef>
#include <cstdint>
#include <memory>
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
    /** In a foreign namespace (SVG, MathML), where names keep their case. */
    bool isForeign() const { return foreign_; }
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

    /** Text of a text or comment node, UTF-8. Line ends are LF as in every browser's tree; the CR
     * LF of a page are kept in its bytes, not here. */
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
    friend class Gateway;
    friend class SourceEdit;
    friend class SourceOrder;
    friend class NodePool;
    friend class CarriedBytes;
    Node() = default;

    NodeId id_ = 0;
    NodeType type_ = NodeType::Element;
    bool foreign_ = false;  ///< in a foreign namespace (SVG, MathML)
    bool sourced_ = false;  ///< has bytes below; a node without them is written canonically
    bool raw_ = false;      ///< text whose bytes are written in a raw text element
    bool clone_ = false;    ///< made by the parser from another's start tag
    bool cloned_ = false;   ///< whose start tag the parser used again
    bool connected_ = false;
    bool tracked_ = false;      ///< was in the tree, or took part in a recorded change
    std::int32_t changes_ = 0;  ///< net number of primitives applied in this subtree
    std::int32_t island_ = -1;  ///< of which stretch of disorder this is a member
    std::int32_t home_ = -1;    ///< of a clone: the stretch that it depends on
    std::int32_t allIndex_ = -1;

    // The bytes that the node is written with, one after the other, its children between the first
    // and the second pair. They point into buffers that the document keeps.
    std::string_view lead_;     ///< bytes in front of start_ that belong to no node
    std::string_view start_;    ///< start tag, text or comment; empty when implied
    std::string_view endLead_;  ///< bytes in front of end_ that belong to no node
    std::string_view end_;      ///< end tag; empty when implied
    /** The bytes of the whole subtree, from its first lead on, for as long as changes_ is 0. Empty
     *  when the subtree does not stand in one piece. */
    std::string_view extent_;
    std::unique_ptr<std::string> own_;  ///< bytes of an edited text or comment, instead of start_

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
