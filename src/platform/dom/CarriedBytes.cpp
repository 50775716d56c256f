#include "platform/dom/CarriedBytes.h"

#include <algorithm>

#include "platform/dom/Escape.h"
#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

/** A step that moves more than this is no split of a text. */
constexpr std::size_t kMost = 64;

}  // namespace

void CarriedBytes::taken(std::string_view text, std::string_view bytes) {
    // What would be written like that anyway need not be remembered.
    if (text.empty() || bytes == escapeText(text, TextContext::Normal, "\n")) return;
    if (cuts_.size() >= kMost) return;
    cuts_.push_back({std::string(text), std::string(bytes)});
    std::erase_if(fresh_, [&](Node* node) { return give(cuts_.back(), *node); });
}

void CarriedBytes::inserted(Node& top) {
    for (Node* node = &top; node && fresh_.size() < kMost; node = node->following(&top)) {
        if (!node->isText() || node->sourced_ || node->data_.empty()) continue;
        const bool given = std::any_of(cuts_.begin(), cuts_.end(),
                                       [&](const Cut& cut) { return give(cut, *node); });
        if (!given) fresh_.push_back(node);
    }
}

void CarriedBytes::touched(const Node& node) {
    std::erase(fresh_, &node);
}

void CarriedBytes::clear() {
    cuts_.clear();
    fresh_.clear();
}

bool CarriedBytes::give(const Cut& cut, Node& node) {
    const std::size_t found = cut.text.find(node.data_);
    if (found == std::string::npos) return false;
    if (node.parent_ && holdsRawText(*node.parent_)) return false;
    const std::string_view bytes = cut.bytes;
    const std::size_t begin =
        alignedLength(bytes, std::string_view(cut.text).substr(0, found), TextContext::Normal);
    if (begin == bytes.npos) return false;
    const std::size_t length = alignedLength(bytes.substr(begin), node.data_, TextContext::Normal);
    if (length == bytes.npos) return false;
    node.sourced_ = true;
    node.own_ = std::make_unique<std::string>(bytes.substr(begin, length));
    return true;
}

}  // namespace pw::dom
