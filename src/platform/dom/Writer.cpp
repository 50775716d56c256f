#include "platform/dom/Writer.h"

#include "platform/dom/DocumentImpl.h"
#include "platform/dom/Escape.h"
#include "platform/dom/StartTag.h"
#include "platform/dom/Tags.h"
#include "platform/dom/TextSource.h"

namespace pw::dom {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

}  // namespace

std::string Writer::page() {
    const Node& root = *document_.root_;
    if (root.changes_ == 0) return std::string(root.extent_);
    out_.reserve(root.extent_.size() + root.extent_.size() / 8 + 256);
    writeBelow(root);
    out_ += root.endLead_;
    return std::move(out_);
}

std::string Writer::inner(const Node& node) {
    writeBelow(node);
    return std::move(out_);
}

std::string Writer::outer(const Node& node) {
    if (!node.isElement()) {
        writeText(node);
        return std::move(out_);
    }
    const std::string& lineEnd = document_.impl_->lineEnd;
    const bool hasStart = node.sourced_ && !node.start_.empty();
    out_ += hasStart ? std::string(node.start_) : canonicalStartTag(node, lineEnd);
    writeBelow(node);
    if (!node.end_.empty() && node.sourced_) {
        out_ += node.endLead_;
        out_ += node.end_;
    } else if (!isVoid(node) && !(hasStart && node.foreign_ && node.start_.ends_with("/>"))) {
        out_ += "</" + node.name_ + ">";
    }
    return std::move(out_);
}

void Writer::writeBelow(const Node& top) {
    const Node* node = top.first_;
    while (node) {
        if (enter(node) == Visit::Descend && node->first_) {
            node = node->first_;
            continue;
        }
        // `enter` has left at the last node that it wrote whole.
        while (node && !node->next_) {
            node = node->parent_;
            if (node == &top) return;
            leave(*node);
        }
        if (node) node = node->next_;
    }
}

Writer::Visit Writer::enter(const Node*& node) {
    if (!canonical_) {
        if (node->island_ >= 0) {
            const Island& island = document_.impl_->islands[std::size_t(node->island_)];
            if (island.parent != node->parent_ || island.canonical() || island.extent.empty()) {
                canonical_ = node;
            } else if (island.pristine()) {
                out_ += island.extent;
                while (node->next_ && node->next_->island_ == node->island_)
                    node = node->next_;
                return Visit::Skip;
            }
        } else if (node->changes_ == 0 && !node->extent_.empty() && !isStrange(*node)) {
            out_ += node->extent_;
            return Visit::Skip;
        }
    }
    if (node->isElement()) {
        writeStart(*node);
    } else {
        if (node->sourced_) writeLead(node->lead_);
        writeText(*node);
    }
    if (!node->first_) {
        leave(*node);
        return Visit::Skip;
    }
    return Visit::Descend;
}

void Writer::leave(const Node& node) {
    if (node.isElement()) writeEnd(node);
    if (canonical_ == &node) canonical_ = nullptr;
}

/** A clone that the parser will make again from its origin. */
bool Writer::isImpliedClone(const Node& node) const {
    return node.clone_ && !canonical_ && node.home_ >= 0 &&
           document_.impl_->islands[std::size_t(node.home_)].structure == 0;
}

void Writer::writeStart(const Node& node) {
    if (node.sourced_) writeLead(node.lead_);
    if (isImpliedClone(node)) return;
    const bool written = node.sourced_ && !node.clone_;
    if (written && (!node.start_.empty() || !canonical_)) {
        out_ += node.start_;
    } else {
        out_ += canonicalStartTag(node, document_.impl_->lineEnd);
    }
}

bool Writer::hasEndTag(const Node& node) {
    return !node.clone_ && (!node.sourced_ || !node.end_.empty());
}

void Writer::writeEnd(const Node& node) {
    if (node.sourced_) writeLead(node.endLead_);
    if (node.sourced_ && !node.end_.empty()) {
        out_ += node.end_;
        return;
    }
    if (isImpliedClone(node) || isVoid(node)) return;
    if (node.sourced_ && !node.clone_ && !canonical_) return;
    if (node.sourced_ && node.foreign_ && node.start_.ends_with("/>")) return;
    out_ += "</" + node.name_ + ">";
}

/** Its bytes are text in a foreign element alone, and it stands in none. */
bool Writer::isStrange(const Node& node) {
    if (!node.isText() || node.raw_ || !node.parent_ || node.parent_->isForeign()) return false;
    return (node.own_ ? std::string_view(*node.own_) : node.start_).starts_with(kCDataBegin);
}

void Writer::writeText(const Node& node) {
    const Node* parent = node.parent_;
    const std::string& lineEnd = document_.impl_->lineEnd;
    const bool raw = parent && holdsRawText(*parent);
    std::string_view bytes = node.own_ ? std::string_view(*node.own_) : node.start_;
    std::string written;
    if (!node.sourced_ || isStrange(node) || (node.isText() && node.raw_ != raw)) {
        if (node.isComment()) {
            written = "<!--" + escapeText(node.data_, TextContext::Raw, lineEnd) + "-->";
        } else {
            written = escapeText(node.data_, raw ? TextContext::Raw : TextContext::Normal, lineEnd);
        }
        bytes = written;
    }
    const bool beginsLine = bytes.starts_with('\n') || bytes.starts_with("\r\n");
    if (beginsLine && parent && !node.previous_ && dropsFirstLineEnd(*parent) &&
        (!node.sourced_ || node.lead_.empty())) {
        out_ += lineEnd;
    }
    out_ += bytes;
}

/** Where the order of the source is lost, stray tags would close the wrong things. */
void Writer::writeLead(std::string_view lead) {
    if (!canonical_) {
        out_ += lead;
        return;
    }
    while (!lead.empty()) {
        const std::size_t open = lead.find('<');
        out_ += lead.substr(0, open);
        if (open == lead.npos) return;
        lead.remove_prefix(open);
        const std::size_t end = std::min(lead.find('>'), lead.size() - 1) + 1;
        const bool tag = lead.size() > 1 && (isLetter(lead[1]) || lead[1] == '/');
        if (!tag) out_ += lead.substr(0, end);
        lead.remove_prefix(end);
    }
}

}  // namespace pw::dom
