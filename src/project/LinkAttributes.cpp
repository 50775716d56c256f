#include "project/LinkAttributes.h"

#include <algorithm>
#include <cctype>

#include "platform/Text.h"
#include "platform/dom/Escape.h"
#include "platform/dom/StartTag.h"
#include "platform/dom/TagScan.h"
#include "project/FramesetMask.h"
#include "project/References.h"
#include "project/StyleText.h"

namespace pw {

namespace {

constexpr char kEscape = '\x1B';

/** How references stand in the value of an attribute. */
enum class Form {
    Address,
    Addresses,   ///< with commas between them
    Candidates,  ///< "a.png 1x, b.png 2x"
    Parameter,   ///< an address when it looks like a path
    Refresh,     ///< "5; url=next.html"
    Styles,
    Markup  ///< a page of its own
};

struct Row {
    std::string_view tag;  ///< "" for any
    std::string_view name;
    ReferenceKind kind;
    Form form = Form::Address;
};
/** The first that fits counts. */
constexpr Row kRows[] = {
    {"a", "href", ReferenceKind::Link},
    {"area", "href", ReferenceKind::Link},
    {"a", "xlink:href", ReferenceKind::Page},
    {"link", "href", ReferenceKind::Page},
    {"frame", "src", ReferenceKind::Page},
    {"iframe", "src", ReferenceKind::Page},
    {"form", "action", ReferenceKind::Page},
    {"button", "formaction", ReferenceKind::Page},
    {"input", "formaction", ReferenceKind::Page},
    {"img", "longdesc", ReferenceKind::Page},
    {"frame", "longdesc", ReferenceKind::Page},
    {"iframe", "longdesc", ReferenceKind::Page},
    {"q", "cite", ReferenceKind::Page},
    {"blockquote", "cite", ReferenceKind::Page},
    {"ins", "cite", ReferenceKind::Page},
    {"del", "cite", ReferenceKind::Page},
    {"object", "data", ReferenceKind::Page},
    {"embed", "src", ReferenceKind::Page},
    {"meta", "content", ReferenceKind::Page, Form::Refresh},
    {"iframe", "srcdoc", ReferenceKind::File, Form::Markup},
    {"param", "value", ReferenceKind::File, Form::Parameter},
    {"", "archive", ReferenceKind::File, Form::Addresses},
    {"", "background", ReferenceKind::File},
    {"", "codebase", ReferenceKind::File},
    {"", "dynsrc", ReferenceKind::File},
    {"", "href", ReferenceKind::File},
    {"", "imagesrcset", ReferenceKind::File, Form::Candidates},
    {"", "lowsrc", ReferenceKind::File},
    {"", "manifest", ReferenceKind::File},
    {"", "poster", ReferenceKind::File},
    {"", "src", ReferenceKind::File},
    {"", "srcset", ReferenceKind::File, Form::Candidates},
    {"", "style", ReferenceKind::File, Form::Styles},
    {"", "xlink:href", ReferenceKind::File},
};

bool IsSameName(std::string_view one, std::string_view other) {
    return one.size() == other.size() && EqualsNoCase(one, other);
}

const Row* RowOf(std::string_view tag, std::string_view name) {
    for (const Row& row : kRows)
        if (IsSameName(row.name, name) && (row.tag.empty() || IsSameName(row.tag, tag)))
            return &row;
    return nullptr;
}

bool IsBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c));
}

/** Place and length of the address in the content of a refresh, such as "5; url=next.html". */
bool FindRefreshAddress(const std::string& content, std::size_t& at, std::size_t& length) {
    const auto mark = FindNoCase(content, "url=");
    if (mark == std::string::npos) return false;
    at = content.find_first_not_of(" \t'\"", mark + 4);
    if (at == std::string::npos) return false;
    const auto end = content.find_last_not_of(" \t'\"");
    length = end < at ? 0 : end - at + 1;
    return length > 0;
}

enum class Surroundings { Page, Frameset };

/** Rewrites the references in the values and texts of a page. */
class ValueRewriter {
  public:
    using Attributes = std::vector<dom::Attribute>;

    explicit ValueRewriter(const RewriteReference& rewrite) : rewrite_(rewrite) {}

    /** None when the value may stay. */
    std::optional<std::string> Attribute(const Row& row, const Attributes& all,
                                         const std::string& value) const {
        const std::string rewritten = Rewritten(row, all, value);
        return rewritten == value ? std::nullopt : std::optional(rewritten);
    }

    std::string Styles(const std::string& css) const {
        return RewriteStyleReferences(css, [&](const std::string& reference) {
            return Local(ReferenceKind::File, reference);
        });
    }

    /** The tags of a text, which are written as they are but for what is rewritten. */
    std::string Tags(std::string_view text, Surroundings surroundings) const {
        std::string updated;
        std::size_t copied = 0;
        dom::TagScan scan(text, dom::TagsFrom::Markup);
        while (const auto tag = scan.next()) {
            const std::string former(tag->text());
            std::string written = former;
            const Attributes attributes = tag->attributes();
            for (const dom::Attribute& attribute : attributes) {
                const Row* row = RowOf(tag->name(), attribute.name);
                if (!row) continue;
                Row own = *row;
                if (surroundings == Surroundings::Frameset && own.name == "src")
                    own.kind = ReferenceKind::Frame;
                if (const auto value = Attribute(own, attributes, attribute.value))
                    written = dom::patchStartTag(written, attribute.name, value, "\n");
            }
            if (written == former) continue;
            updated.append(text, copied, tag->begin() - copied).append(written);
            copied = tag->end();
        }
        return updated.append(text.substr(copied));
    }

  private:
    std::optional<std::string> Local(ReferenceKind kind, const std::string& value) const {
        return IsLocalReference(value) ? rewrite_(kind, value) : std::nullopt;
    }
    std::string LocalOrSame(ReferenceKind kind, const std::string& value) const {
        return Local(kind, value).value_or(value);
    }

    std::string Rewritten(const Row& row, const Attributes& all, const std::string& value) const {
        switch (row.form) {
            case Form::Address:
                return LocalOrSame(row.kind, value);
            case Form::Addresses:
                // What they are relative to is the base of the code, where there is one.
                return HasAttribute(all, "codebase") ? value : List(value);
            case Form::Candidates:
                return Candidates(value);
            case Form::Parameter:
                return value.find('/') == value.npos ? value : LocalOrSame(row.kind, value);
            case Form::Refresh:
                return Refresh(row, all, value);
            case Form::Styles:
                return Styles(value);
            case Form::Markup:
                return Tags(value, Surroundings::Page);
        }
        return value;
    }

    static bool HasAttribute(const Attributes& all, std::string_view name) {
        return std::any_of(all.begin(), all.end(), [&](const dom::Attribute& attribute) {
            return IsSameName(attribute.name, name);
        });
    }

    std::string List(const std::string& value) const {
        std::string list;
        for (const auto& part : Split(value, ','))
            list += "," + LocalOrSame(ReferenceKind::File, part);
        return list.substr(1);
    }

    /** An address ends at a blank, a description at a comma. */
    std::string Candidates(const std::string& value) const {
        std::string list;
        for (std::size_t at = 0; at < value.size();) {
            if (IsBlank(value[at]) || value[at] == ',') {
                list += value[at++];
                continue;
            }
            std::size_t end = at;
            while (end < value.size() && !IsBlank(value[end]))
                ++end;
            const bool isLast = value[end - 1] == ',';
            if (isLast) --end;
            list += LocalOrSame(ReferenceKind::File, value.substr(at, end - at));
            at = isLast ? end : std::min(value.find(',', end), value.size());
            list.append(value, end, at - end);
        }
        return list;
    }

    std::string Refresh(const Row& row, const Attributes& all, std::string value) const {
        const auto isRefresh = [](const dom::Attribute& attribute) {
            return IsSameName(attribute.name, "http-equiv") &&
                   EqualsNoCase(attribute.value, "refresh");
        };
        std::size_t at = 0;
        std::size_t length = 0;
        if (std::none_of(all.begin(), all.end(), isRefresh) ||
            !FindRefreshAddress(value, at, length))
            return value;
        return value.replace(at, length, LocalOrSame(row.kind, value.substr(at, length)));
    }

    const RewriteReference& rewrite_;
};

/** One walk through a parsed page. */
class PageRewriter {
  public:
    PageRewriter(dom::Document& document, const RewriteReference& rewrite)
        : document_(document), values_(rewrite) {}

    enum class Inner { Leave, Rewrite };
    void RewriteElement(dom::Node& element, Inner pages) {
        for (std::size_t i = 0; i < element.attributes().size(); ++i) {
            const dom::Attribute& attribute = element.attributes()[i];
            const Row* row = RowOf(element.localName(), attribute.name);
            if (!row || (row->form == Form::Markup && pages == Inner::Leave)) continue;
            const auto value = values_.Attribute(*row, element.attributes(), attribute.value);
            if (!value) continue;
            const std::string name = attribute.name;
            changed_.push_back({document_.sourceIndex(&element), name, attribute.value});
            document_.setAttribute(element, name, *value);
        }
    }

    void RewriteText(dom::Node& text) {
        const dom::Node* holder = text.parentElement();
        if (holder && holder->is("style")) SetText(text, *holder, values_.Styles(text.data()));
        if (holder && holder->is("noframes"))
            SetText(text, *holder, values_.Tags(text.data(), Surroundings::Page));
    }

    void RewriteMask(dom::Node& comment) {
        const auto frameset = FramesetOfMask(comment.data());
        if (!frameset) return;
        const std::string rewritten = values_.Tags(*frameset, Surroundings::Frameset);
        if (rewritten != *frameset) SetText(comment, comment, MaskOfFrameset(rewritten));
    }

    std::vector<ChangedReference> TakeChanged() { return std::move(changed_); }

  private:
    void SetText(dom::Node& node, const dom::Node& holder, const std::string& text) {
        if (text == node.data()) return;
        changed_.push_back({document_.sourceIndex(&holder), "", node.data()});
        document_.setText(node, text);
    }

    dom::Document& document_;
    ValueRewriter values_;
    std::vector<ChangedReference> changed_;
};

/** Whether a value can name the file, whose name may be written in several ways. */
bool MayName(std::string_view value, std::string_view name) {
    if (FindNoCase(value, name) != value.npos) return true;
    return value.find('%') != value.npos &&
           FindNoCase(PercentDecode(value), name) != std::string::npos;
}

}  // namespace

bool IsLinkAttribute(std::string_view tag, std::string_view name) {
    const Row* row = RowOf(tag, name);
    return row && row->kind != ReferenceKind::File && row->form == Form::Address;
}

void ForEachLink(std::string_view html, const std::function<void(const std::string&)>& visit) {
    dom::TagScan scan(html, dom::TagsFrom::Markup);
    while (const auto tag = scan.next()) {
        for (const Row& row : kRows) {
            if (row.kind == ReferenceKind::File || !tag->is(row.tag)) continue;
            const auto value = tag->attribute(row.name);
            if (!value) continue;
            if (row.form == Form::Address) {
                visit(*value);
            } else if (EqualsNoCase(tag->attribute("http-equiv").value_or(""), "refresh")) {
                std::size_t at = 0;
                std::size_t length = 0;
                if (FindRefreshAddress(*value, at, length)) visit(value->substr(at, length));
            }
        }
    }
}

void RewriteLinkAttributes(
    dom::Document& document,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite,
    bool (*skip)(const dom::Node&)) {
    const RewriteReference rewriteLink = [&](ReferenceKind kind, const std::string& value) {
        return kind == ReferenceKind::File ? std::nullopt : rewrite(value);
    };
    PageRewriter page(document, rewriteLink);
    const dom::Document::Step step(document);
    for (dom::Node* node = document.root(); node; node = node->following())
        if (node->isElement() && !(skip && skip(*node)))
            page.RewriteElement(*node, PageRewriter::Inner::Leave);
}

std::vector<ChangedReference> RewriteReferences(dom::Document& document, FramesetMasked frameset,
                                                const RewriteReference& rewrite) {
    PageRewriter page(document, rewrite);
    const dom::Document::Step step(document);
    for (dom::Node* node = document.root(); node; node = node->following()) {
        if (node->isElement()) {
            page.RewriteElement(*node, PageRewriter::Inner::Rewrite);
        } else if (node->isText()) {
            page.RewriteText(*node);
        } else if (node->isComment() && frameset == FramesetMasked::Yes) {
            page.RewriteMask(*node);
        }
    }
    return page.TakeChanged();
}

bool MayHoldReference(std::string_view bytes, std::string_view name, LookFor what,
                      const std::function<bool(ReferenceKind, const std::string&)>& concerns) {
    // As bytes the tags can be read in all encodings but those of wide units and of escapes.
    const bool isPlain =
        IsAscii(name) && bytes.find('\0') == bytes.npos && bytes.find(kEscape) == bytes.npos;
    const std::string decoded = isPlain ? std::string() : dom::decode(bytes).text;
    const std::string_view text = isPlain ? bytes : std::string_view(decoded);
    if (what == LookFor::AllReferences && FindNoCase(text, "<style") != text.npos &&
        FindNoCase(text, name) != text.npos)
        return true;

    dom::TagScan scan(text, dom::TagsFrom::Anywhere);
    bool mayHold = false;
    std::string value;
    while (!mayHold) {
        const auto tag = scan.next();
        if (!tag) break;
        tag->forEachWrittenAttribute([&](std::string_view attribute, std::string_view written) {
            if (mayHold || written.empty()) return;
            const bool isEscaped = written.find('&') != written.npos;
            if (isEscaped) value = dom::decodeAttribute(written);
            if (!MayName(isEscaped ? std::string_view(value) : written, name)) return;
            const Row* row = RowOf(tag->name(), attribute);
            if (!row || (row->kind == ReferenceKind::File && row->form != Form::Markup &&
                         what == LookFor::Links))
                return;
            if (!isEscaped) value = written;
            // Letters beyond ASCII have yet to be decoded.
            mayHold = row->form != Form::Address || !IsAscii(value) || concerns(row->kind, value);
        });
    }
    return mayHold || !scan.isComplete();
}

}  // namespace pw
