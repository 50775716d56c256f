#pragma once
// One batch of changes that the user made in the view: read, checked, worked out against the
// document, applied. For Projection alone.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::dom {

/** The offset as the view counts it: UTF-16 units in a text, children in an element. */
std::size_t viewOffset(const Position& position);
/** False for an attribute that the parser takes and the view's DOM calls refuse. */
bool viewHoldsAttribute(std::string_view name);

class ViewBatch {
  public:
    /** How the view's numbers stand for nodes. */
    struct Lookup {
        std::function<Node*(std::int64_t id)> find;
        std::function<void(std::int64_t id, Node& node)> give;
    };
    struct List {
        Node* parent;
        std::vector<Node*> children;
    };
    struct AttributeChange {
        Node* element;
        std::string name;
        std::optional<std::string> value;
    };
    struct TextChange {
        Node* node;
        std::size_t offset;   ///< UTF-16 units from the start
        std::size_t removed;  ///< UTF-16 units
        std::size_t tail;     ///< UTF-16 units behind what is removed
        std::string inserted;
    };

    explicit ViewBatch(Document& document);
    ~ViewBatch();

    /** False when it is no batch at all. */
    bool read(std::string_view json);
    std::uint32_t number() const { return number_; }  ///< 0: it brings the selection alone
    std::uint32_t seen() const { return seen_; }      ///< the last message that the view applied
    bool full() const { return full_; }
    StepKind kind() const { return kind_; }
    bool startsStep() const { return startsStep_; }

    /** True when every number in it is known or is given by it. */
    bool knowsAll(const Lookup& lookup) const;
    /** Makes the new nodes and fills the lists below. */
    void plan(const Lookup& lookup);
    void apply();
    void applySelection(const Lookup& lookup);

    // What it changes; whoever merges may alter them before apply.
    std::vector<List> lists;  ///< parents before what is below them
    std::vector<AttributeChange> attributes;
    std::vector<TextChange> texts;
    /** Nodes that apply has put into places of theirs. */
    std::vector<Node*> placed;

  private:
    struct Impl;
    bool inPage(const Node* node) const;
    void takeOut();
    void putIn();

    Document& document_;
    std::unique_ptr<Impl> impl_;
    std::uint32_t number_ = 0;
    std::uint32_t seen_ = 0;
    bool full_ = false;
    bool startsStep_ = false;
    StepKind kind_ = StepKind::Command;
};

}  // namespace pw::dom
