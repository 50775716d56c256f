#include "platform/dom/Parser.h"

#include <gumbo.h>

#include "platform/Text.h"
#include "platform/dom/DocumentImpl.h"
#include "platform/dom/Escape.h"
#include "platform/dom/HtmlTree.h"
#include "platform/dom/NestingScan.h"
#include "platform/dom/SourceOrder.h"
#include "platform/dom/Tags.h"
#include "platform/dom/TextSource.h"

namespace pw::dom {

namespace {

constexpr unsigned kCloned =
    GUMBO_INSERTION_RECONSTRUCTED_FORMATTING_ELEMENT | GUMBO_INSERTION_ADOPTION_AGENCY_CLONED;

void setError(ParseError* error, std::string message) {
    if (error) error->message = std::move(message);
}

const GumboVector* childrenOf(const GumboNode* node) {
    switch (node->type) {
        case GUMBO_NODE_DOCUMENT:
            return &node->v.document.children;
        case GUMBO_NODE_ELEMENT:
        case GUMBO_NODE_TEMPLATE:
            return &node->v.element.children;
        default:
            return nullptr;
    }
}

std::string nameOf(const GumboElement& element) {
    GumboStringPiece written = element.original_tag;
    gumbo_tag_from_original_text(&written);
    if (element.tag_namespace == GUMBO_NAMESPACE_SVG && written.data) {
        if (const char* name = gumbo_normalize_svg_tagname(&written)) return name;
    }
    if (element.tag != GUMBO_TAG_UNKNOWN) return gumbo_normalized_tagname(element.tag);
    std::string name(written.data ? written.data : "", written.length);
    for (char& c : name) {
        if (c >= 'A' && c <= 'Z') c = char(c + 32);
    }
    return name;
}

/** An element that was closed by implication has the end tag of another. */
bool endsElement(std::string_view endTag, std::string_view name) {
    if (endTag.size() < name.size() + 3 || !endTag.starts_with("</")) return false;
    const std::string_view written = endTag.substr(2, name.size());
    const char behind = endTag[2 + name.size()];
    return EqualsNoCase(written, name) &&
           std::string_view(" \t\r\n\f/>").find(behind) != std::string_view::npos;
}

bool isBlankText(std::string_view text) {
    return text.find_first_not_of(" \t\r\n\f") == text.npos;
}

/** Bytes of `text` that these bytes stand for when nothing is read in them. */
std::size_t textLength(std::string_view source, std::string_view text) {
    std::size_t done = 0;
    while (!source.empty()) {
        const Unit unit = nextUnit(source, text.substr(done), TextContext::Raw);
        if (unit.source == 0) break;
        source.remove_prefix(unit.source);
        done += unit.text;
    }
    return done;
}

/** Behind a tag or a declaration that begins at `source`'s first byte. */
std::size_t markupLength(std::string_view source) {
    char quote = 0;
    for (std::size_t i = 1; i < source.size(); ++i) {
        if (quote) {
            if (source[i] == quote) quote = 0;
        } else if ((source[i] == '"' || source[i] == '\'') && source[i - 1] == '=') {
            quote = source[i];
        } else if (source[i] == '>') {
            return i + 1;
        }
    }
    return source.size();
}

}  // namespace

bool Parser::parsePage(std::string text, ParseError* error) {
    if (std::string excess = findExcess(text); !excess.empty()) {
        setError(error, std::move(excess));
        return false;
    }
    Document::Impl& impl = *document_.impl_;
    const std::size_t lineFeed = text.find('\n');
    impl.lineEnd =
        lineFeed != std::string::npos && lineFeed > 0 && text[lineFeed - 1] == '\r' ? "\r\n" : "\n";
    // An empty view would point nowhere, and the parser wants a place even of nothing.
    if (text.empty()) text.reserve(1);
    source_ = impl.bytes.keep(std::move(text));
    HtmlTree tree;
    const std::string_view readable = source_.data() ? source_ : std::string_view("");
    const GumboOutput* output = tree.parse(readable);
    if (!output) {
        setError(error, tree.tooSlow()
                            ? "The page is nested so oddly that reading it takes too long. Open it "
                              "in a text editor and look for missing end tags."
                            : "The page has more elements than fit into memory. Split it into "
                              "smaller pages.");
        return false;
    }
    document_.root_ = document_.newNode(NodeType::Document);
    document_.root_->sourced_ = true;
    impl.quirks = output->document->v.document.doc_type_quirks_mode == GUMBO_DOCTYPE_QUIRKS;
    build(output->document, document_.root_);
    dropBlanksBehindBody();
    for (Node* node = document_.root_; node; node = node->following()) {
        node->connected_ = node->tracked_ = true;
    }
    SourceOrder(document_, source_).run();
    return true;
}

std::vector<Node*> Parser::parseFragment(std::string_view html, std::string_view contextTag,
                                         ParseError* error) {
    if (html.empty()) return {};
    if (std::string excess = findExcess(html); !excess.empty()) {
        setError(error, std::move(excess));
        return {};
    }
    source_ = document_.impl_->bytes.keep(std::string(html));
    const std::string tag = ToLower(contextTag);
    GumboTag context = gumbo_tagn_enum(tag.data(), unsigned(tag.size()));
    if (context == GUMBO_TAG_UNKNOWN || context == GUMBO_TAG_HTML) context = GUMBO_TAG_BODY;
    HtmlTree tree;
    const GumboOutput* output = tree.parse(source_, context);
    if (!output) {
        setError(error, "The HTML is too large or nested too oddly to be inserted.");
        return {};
    }
    Node* root = document_.newNode(NodeType::Document);
    build(output->root, root);
    if (inOrder(*root)) {
        completeEnds(*root);
    } else {
        makeCanonical(*root);
    }
    std::vector<Node*> nodes = root->children();
    for (Node* node : nodes)
        node->parent_ = node->previous_ = node->next_ = nullptr;
    root->first_ = root->last_ = nullptr;
    return nodes;
}

/** Copies the parser's tree, without recursion: pages nest deeply. */
void Parser::build(const GumboNode* from, Node* root) {
    struct Level {
        const GumboVector* children;
        unsigned next;
        Node* parent;
    };
    std::vector<Level> levels{{childrenOf(from), 0, root}};
    std::vector<Node*> forms;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.children->length) {
            levels.pop_back();
            continue;
        }
        const auto* child = static_cast<const GumboNode*>(level.children->data[level.next++]);
        Node* parent = level.parent;
        Node* node = makeNode(child);
        Gateway::append(*parent, *node);
        if (node->is("form")) forms.push_back(node);
        if (node->isText()) {
            node->raw_ = holdsRawText(*parent);
            separateTags(*node, node->raw_, isEscapableRawTextTag(parent->localName()));
        }
        if (const GumboVector* children = childrenOf(child); children && children->length > 0) {
            levels.push_back({children, 0, node});
        }
    }
    for (Node* form : forms)
        takeLastText(*form);
}

/** The parser ends a form before it hands out the text in front of the end tag, which then stands
 *  behind the form. */
void Parser::takeLastText(Node& form) {
    const char* const sourceEnd = source_.data() + source_.size();
    const auto endOf = [](std::string_view bytes) { return bytes.data() + bytes.size(); };
    const auto isText = [](const Node* node) {
        return node && node->isText() && !node->start_.empty();
    };
    if (form.start_.empty() || !form.end_.empty() || !isText(form.next_)) return;
    const char* const begin = form.next_->start_.data();
    if (begin < endOf(form.start_)) return;
    const std::string_view inside(endOf(form.start_), std::size_t(begin - endOf(form.start_)));
    if (FindNoCase(inside, "</form") != inside.npos) return;  // the text is behind it indeed

    for (Node* last = form.next_; isText(last); last = last->next_) {
        const char* const behind = endOf(last->start_);
        const std::string_view rest(behind, std::size_t(sourceEnd - behind));
        const std::string_view tag = rest.substr(0, rest.find('>') + 1);
        if (!endsElement(tag, "form")) continue;
        form.end_ = tag;
        moveInto(form, *last);
        return;
    }
}

/** All behind the element up to that sibling. */
void Parser::moveInto(Node& element, Node& last) {
    Node* const behind = last.next_;
    for (Node* node = element.next_; node != behind;) {
        Node* const next = node->next_;
        node->previous_ = node->next_ = nullptr;
        Gateway::append(element, *node);
        node = next;
    }
    element.next_ = behind;
    (behind ? behind->previous_ : element.parent_->last_) = &element;
}

Node* Parser::makeNode(const GumboNode* from) {
    if (from->type == GUMBO_NODE_ELEMENT || from->type == GUMBO_NODE_TEMPLATE) {
        return makeElement(from);
    }
    const bool comment = from->type == GUMBO_NODE_COMMENT;
    Node* node = document_.newNode(comment ? NodeType::Comment : NodeType::Text);
    const GumboText& text = from->v.text;
    node->data_ = text.text;
    node->start_ = bytes(text.original_text.data, text.original_text.length);
    node->sourced_ = true;
    return node;
}

Node* Parser::makeElement(const GumboNode* from) {
    const GumboElement& element = from->v.element;
    Node* node = document_.newNode(NodeType::Element);
    node->name_ = nameOf(element);
    node->foreign_ = element.tag_namespace != GUMBO_NAMESPACE_HTML;
    node->sourced_ = true;
    node->clone_ = (from->parse_flags & kCloned) != 0;
    if ((from->parse_flags & GUMBO_INSERTION_FROM_ISINDEX) == 0) {
        node->start_ = bytes(element.original_tag.data, element.original_tag.length);
    }
    const std::string_view end =
        bytes(element.original_end_tag.data, element.original_end_tag.length);
    if (endsElement(end, node->name_)) node->end_ = end;
    node->attributes_.reserve(element.attributes.length);
    for (unsigned i = 0; i < element.attributes.length; ++i) {
        const auto* attribute = static_cast<const GumboAttribute*>(element.attributes.data[i]);
        const GumboStringPiece& written = attribute->original_name;
        node->attributes_.push_back({written.data && written.length > 0
                                         ? std::string(written.data, written.length)
                                         : std::string(attribute->name),
                                     attribute->value});
    }
    return node;
}

std::string_view Parser::bytes(const char* data, std::size_t length) const {
    if (!data || length == 0 || data < source_.data()) return {};
    if (data + length > source_.data() + source_.size()) return {};
    return {data, length};
}

/** The parser joins texts between which it dropped a tag. Here they stay apart, so that no text
 *  holds a tag in its bytes. */
void Parser::separateTags(Node& text, bool raw, bool escapable) {
    if (text.start_ == text.data_ || text.start_.empty()) return;
    const TextContext context = raw         ? TextContext::Raw
                                : escapable ? TextContext::Escapable
                                            : TextContext::Normal;
    const std::string_view source = text.start_;
    const std::string data = text.data_;
    Node* node = &text;
    std::size_t at = 0;
    std::size_t done = 0;
    std::size_t beginSource = 0;
    std::size_t beginData = 0;
    const auto close = [&](std::size_t sourceEnd, std::size_t dataEnd) {
        node->start_ = source.substr(beginSource, sourceEnd - beginSource);
        node->data_ = data.substr(beginData, dataEnd - beginData);
    };
    bool afterTag = false;
    const auto begin = [&] {
        // An empty first part means that the text began with a tag.
        if (!node->data_.empty()) {
            Node* next = document_.newNode(NodeType::Text);
            next->sourced_ = true;
            Gateway::append(*node->parent_, *next);
            node = next;
        }
        beginSource = at;
        beginData = done;
    };
    const bool foreign = text.parent_ && text.parent_->isForeign();
    while (at < source.size()) {
        if (foreign && source.substr(at).starts_with(kCDataBegin)) {
            if (!afterTag) close(at, done);
            afterTag = true;
            begin();
            const std::string_view rest = source.substr(at + kCDataBegin.size());
            const std::string_view inside = rest.substr(0, rest.find(kCDataEnd));
            done += textLength(inside, std::string_view(data).substr(done));
            at += kCDataBegin.size() + inside.size();
            at += source.substr(at).starts_with(kCDataEnd) ? kCDataEnd.size() : 0;
            close(at, done);
            continue;
        }
        if (context == TextContext::Normal && beginsMarkup(source.substr(at))) {
            if (!afterTag) close(at, done);
            afterTag = true;
            at += markupLength(source.substr(at));
            continue;
        }
        const char c = source[at];
        const bool plain =
            done < data.size() && c == data[done] && c != '&' && c != '\r' && (c & 0x80) == 0;
        const Unit unit =
            plain ? Unit{1, 1}
                  : nextUnit(source.substr(at), std::string_view(data).substr(done), context);
        if (unit.source == 0) break;
        if (afterTag && done < data.size()) {
            begin();
            afterTag = false;
        }
        at += unit.source;
        done += unit.text;
        if (done == data.size() && !afterTag) {
            // NULs and tags behind the last character belong to nobody.
            close(at, done);
            return;
        }
    }
    if (done == data.size()) {
        if (!afterTag) close(at, done);
        return;
    }
    // The bytes do not explain the rest of the text. It keeps what it has of them.
    if (afterTag && !node->data_.empty()) {
        Node* next = document_.newNode(NodeType::Text);
        Gateway::append(*node->parent_, *next);
        next->data_ = data.substr(done);
        return;
    }
    close(source.size(), data.size());
}

/** Blanks behind the end tag of the body are the last text of the body to the parser. Left there,
 *  everything that is added to the page would go behind that end tag, and a comment in between
 * would come out in front of them. */
void Parser::dropBlanksBehindBody() {
    Node* body = document_.body();
    Node* html = document_.documentElement();
    if (!body) return;
    const auto endOf = [](const Node* node) {
        return node->end_.empty() ? nullptr : node->end_.data();
    };
    const char* end = endOf(body);
    if (!end) end = endOf(html);
    if (!end) return;
    for (;;) {
        // A paragraph that was left open takes them.
        Node* last = body;
        while (last->last_)
            last = last->last_;
        if (!last->isText() || last->start_.data() < end || !isBlankText(last->data_)) return;
        Node* parent = last->parent_;
        parent->last_ = last->previous_;
        (last->previous_ ? last->previous_->next_ : parent->first_) = nullptr;
        last->parent_ = last->previous_ = nullptr;
    }
}

bool Parser::inOrder(const Node& root) const {
    const char* behind = source_.data();
    const Node* node = &root;
    const auto passes = [&](std::string_view bytes) {
        if (bytes.empty()) return true;
        if (bytes.data() < behind) return false;
        behind = bytes.data() + bytes.size();
        return true;
    };
    for (;;) {
        if (node->clone_ || !passes(node->start_)) return false;
        if (node->first_) {
            node = node->first_;
            continue;
        }
        for (;;) {
            if (!passes(node->end_)) return false;
            if (node == &root) return true;
            if (node->next_) {
                node = node->next_;
                break;
            }
            node = node->parent_;
        }
    }
}

void Parser::makeCanonical(Node& root) {
    for (Node* node = &root; node; node = node->following(&root)) {
        node->sourced_ = node->clone_ = false;
        node->start_ = node->end_ = {};
    }
}

/** What was left open in a fragment must not go on behind it. */
void Parser::completeEnds(Node& root) {
    for (Node* node = root.first_; node; node = node->following(&root)) {
        if (!node->isElement() || !node->end_.empty() || isVoid(*node)) continue;
        if (node->foreign_ ? node->start_.ends_with("/>") : hasOptionalEnd(node->name_)) continue;
        node->end_ = document_.impl_->bytes.keep("</" + node->name_ + ">");
    }
}

}  // namespace pw::dom
