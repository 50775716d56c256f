#include "platform/dom/NestingScan.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/dom/TagScan.h"
#include "platform/dom/Tags.h"

namespace pw::dom {

namespace {

enum Trait : std::uint16_t {
    kFormatting = 1,  // is opened again after it was left open
    kSpecial = 2,     // ends the search for an ordinary end tag
    kScope = 4,       // nothing outside of it is ended from inside
    kMarker = 8,      // formatting does not leave it
    kParagraph = 16,
    kEndsParagraph = 32,
    kList = 64,
    kForeignRoot = 128,
    kHeading = 256,
};

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? char(c + 32) : c;
}
bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}
bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

struct Name {
    std::string_view text;  ///< lower case, at most 15 letters: longer names are ordinary ones
    std::uint64_t hash = 0;
    std::uint16_t traits = 0;
};

std::uint16_t traitsOf(std::string_view name) {
    std::uint16_t traits = 0;
    if (isFormattingTag(name)) traits |= kFormatting;
    static constexpr std::string_view kScopes[] = {"applet", "caption", "html",    "table",
                                                   "td",     "th",      "marquee", "template",
                                                   "object", "button"};
    static constexpr std::string_view kMarkers[] = {"applet",  "caption",  "td",    "th",
                                                    "marquee", "template", "object"};
    const auto among = [&](const auto& list) {
        return std::find(std::begin(list), std::end(list), name) != std::end(list);
    };
    if (among(kScopes)) traits |= kScope | kSpecial;
    if (among(kMarkers)) traits |= kMarker;
    if (isBlockTag(name)) traits |= kSpecial;
    if (name == "p") traits |= kParagraph;
    if (startEnds("p", name)) traits |= kEndsParagraph;
    if (name == "ul" || name == "ol" || name == "dl" || name == "menu" || name == "dir") {
        traits |= kList;
    }
    if (name.size() == 2 && name[0] == 'h' && name[1] >= '1' && name[1] <= '6') traits |= kHeading;
    if (name == "svg" || name == "math") traits |= kForeignRoot;
    return traits;
}

constexpr std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 1469598103934665603u;
    for (const char c : text)
        hash = (hash ^ std::uint8_t(c)) * 1099511628211u;
    return hash;
}
constexpr std::uint64_t kSelect = hashOf("select");
constexpr std::uint64_t kTemplate = hashOf("template");

/** A model of the parser's stack of open elements that is just good enough to tell its depth. */
class Scan {
  public:
    explicit Scan(std::string_view markup) : markup_(markup) {}

    std::string run() {
        while (at_ < markup_.size()) {
            const std::size_t open = markup_.find('<', at_);
            if (open == markup_.npos || open + 1 >= markup_.size()) break;
            at_ = open + 1;
            const char next = markup_[at_];
            if (next == '!' || next == '?') {
                skipDeclaration();
            } else if (next == '/') {
                if (at_ + 1 < markup_.size() && isLetter(markup_[at_ + 1])) {
                    ++at_;
                    endTag(readName());
                    skipAttributes();
                }
            } else if (isLetter(next)) {
                const std::size_t begin = at_;
                const Name name = readName();
                const bool selfClosing = skipAttributes();
                startTag(name, markup_.substr(begin, at_ - begin), selfClosing);
            }
            if (!excess_.empty()) return excess_;
        }
        return {};
    }

  private:
    struct Open {
        Name name;
        std::size_t formatting = 0;  ///< number of its entry in the list of formatting, or 0
    };
    struct Known {
        std::uint64_t hash = 0;
        std::uint16_t traits = 0;
    };
    struct Formatting {
        std::uint64_t name = 0;  ///< 0 is a marker
        std::string_view tag;
        std::size_t number = 0;
        bool open = true;
    };

    void skipDeclaration() {
        if (foreign_ > 0 && markup_.substr(at_, 8) == "![CDATA[") {
            const std::size_t end = markup_.find("]]>", at_);
            at_ = end == markup_.npos ? markup_.size() : end + 3;
            return;
        }
        at_ = endOfDeclaration(markup_, at_ - 1);
    }

    Name readName() {
        std::size_t length = 0;
        std::uint64_t hash = 1469598103934665603u;
        while (at_ < markup_.size() && !isBlank(markup_[at_]) && markup_[at_] != '/' &&
               markup_[at_] != '>') {
            const char c = lower(markup_[at_++]);
            hash = (hash ^ std::uint8_t(c)) * 1099511628211u;
            if (length < sizeof letters_) letters_[length] = c;
            ++length;
        }
        const std::string_view text(letters_, length <= sizeof letters_ ? length : 0);
        Known& known = known_[hash % std::size(known_)];
        if (known.hash != hash) known = {hash, traitsOf(text)};
        return {text, hash, known.traits};
    }

    /** To behind the tag's ">"; true for "/>". */
    bool skipAttributes() {
        std::size_t count = 0;
        while (at_ < markup_.size()) {
            const char c = markup_[at_];
            if (c == '>') {
                ++at_;
                return at_ >= 2 && markup_[at_ - 2] == '/';
            }
            if (isBlank(c) || c == '/') {
                ++at_;
                continue;
            }
            if (++count > kMostAttributes) {
                excess_ = "The page has a tag with more than " + std::to_string(kMostAttributes) +
                          " attributes, which is damaged or not meant to be read. Open it in a "
                          "text editor and remove that tag.";
                at_ = markup_.size();
                return false;
            }
            skipAttribute();
        }
        return false;
    }

    void skipAttribute() {
        ++at_;
        while (at_ < markup_.size() && !isBlank(markup_[at_]) && markup_[at_] != '/' &&
               markup_[at_] != '>' && markup_[at_] != '=') {
            ++at_;
        }
        while (at_ < markup_.size() && isBlank(markup_[at_]))
            ++at_;
        if (at_ >= markup_.size() || markup_[at_] != '=') return;
        ++at_;
        while (at_ < markup_.size() && isBlank(markup_[at_]))
            ++at_;
        if (at_ >= markup_.size()) return;
        const char quote = markup_[at_];
        if (quote == '"' || quote == '\'') {
            const std::size_t end = markup_.find(quote, at_ + 1);
            at_ = end == markup_.npos ? markup_.size() : end + 1;
            return;
        }
        while (at_ < markup_.size() && !isBlank(markup_[at_]) && markup_[at_] != '>')
            ++at_;
    }

    void startTag(const Name& name, std::string_view tag, bool selfClosing) {
        const std::string_view text = name.text;
        if (foreign_ == 0) {
            if (isVoidTag(text) || text == "isindex" || text == "html" || text == "head" ||
                text == "body")
                return;
            if (isRawTextTag(text) || isEscapableRawTextTag(text)) {
                at_ = endOfRawText(markup_, at_, text);
                return;
            }
            if (isIgnored(text)) return;
            endImplied(name);
        } else if (selfClosing) {
            return;
        }
        push(name, tag);
    }

    /** A form in a form, and all but its options in a selection field. */
    bool isIgnored(std::string_view text) {
        static constexpr std::string_view kEndSelect[] = {"select", "input",   "keygen", "textarea",
                                                          "table",  "caption", "tbody",  "thead",
                                                          "tfoot",  "tr",      "td",     "th"};
        if (templates_ == 0 && text == "form" && std::exchange(formIsOpen_, true)) return true;
        if (selects_ == 0 || text == "option" || text == "optgroup" || text == "script" ||
            text == "template")
            return false;
        if (std::ranges::count(kEndSelect, text) == 0) return true;
        popTo("select", false);
        return text == "select";
    }

    void endImplied(const Name& name) {
        const std::string_view text = name.text;
        if (text == "table") endTable();
        if (name.traits & kEndsParagraph) popTo("p", false);
        if (text == "li") popTo("li", true);
        if (text == "dt" || text == "dd") {
            popTo("dt", true);
            popTo("dd", true);
        }
        if (text == "option" || text == "optgroup") popTop("option");
        if (text == "optgroup") popTop("optgroup");
        if (text == "a" || text == "nobr") endFormatting(name);
        if (text == "button") popTo("button", false);
        if (text == "td" || text == "th") popWithinTable({"td", "th"});
        if (text == "tr") popWithinTable({"tr", "caption", "colgroup"});
        if (text == "tbody" || text == "thead" || text == "tfoot" || text == "caption" ||
            text == "colgroup") {
            popWithinTable({"tbody", "thead", "tfoot", "caption", "colgroup", "tr"});
        }
        if (name.traits & kHeading) {
            if (!open_.empty() && (open_.back().name.traits & kHeading)) popFrom(open_.size() - 1);
        }
    }

    void popTop(std::string_view name) {
        if (!open_.empty() && open_.back().name.hash == hashOf(name)) popFrom(open_.size() - 1);
    }

    /** Ends the nearest open element of that name unless something stands in between. */
    void popTo(std::string_view name, bool stopAtList) {
        const std::uint64_t hash = hashOf(name);
        for (std::size_t i = open_.size(); i-- > 0;) {
            if (open_[i].name.hash == hash) return popFrom(i);
            if (open_[i].name.traits & kScope) return;
            if (stopAtList && (open_[i].name.traits & kList)) return;
        }
    }

    /** A table that begins within another, but in none of its cells, ends that. */
    void endTable() {
        for (std::size_t i = open_.size(); i-- > 0;) {
            const std::uint64_t hash = open_[i].name.hash;
            if (hash == hashOf("table")) return popFrom(i);
            if (open_[i].name.traits & kMarker) return;
        }
    }

    /** Ends the outermost open one of these within the innermost table. */
    void popWithinTable(std::initializer_list<std::string_view> names) {
        static const std::uint64_t kTable = hashOf("table");
        std::size_t found = open_.size();
        for (std::size_t i = open_.size(); i-- > 0;) {
            if (open_[i].name.hash == kTable) break;
            for (const std::string_view name : names) {
                if (open_[i].name.hash == hashOf(name)) found = i;
            }
        }
        if (found < open_.size()) popFrom(found);
    }

    void popFrom(std::size_t index) {
        while (open_.size() > index) {
            const Open& top = open_.back();
            if (top.name.traits & kForeignRoot) --foreign_;
            if (top.name.hash == kSelect) --selects_;
            if (top.name.hash == kTemplate) --templates_;
            if (top.name.traits & kMarker) {
                while (!formatting_.empty()) {
                    const bool marker = formatting_.back().name == 0;
                    if (!marker && !formatting_.back().open) --closed_;
                    formatting_.pop_back();
                    if (marker) break;
                }
            } else if (top.formatting > 0) {
                leaveFormatting(top.formatting);
            }
            open_.pop_back();
        }
    }

    void leaveFormatting(std::size_t number) {
        for (auto entry = formatting_.rbegin(); entry != formatting_.rend(); ++entry) {
            if (entry->number != number || entry->name == 0) continue;
            if (entry->open) {
                entry->open = false;
                ++closed_;
            }
            return;
        }
    }

    void push(const Name& name, std::string_view tag) {
        Open open{name, 0};
        open.name.text = {};
        if (foreign_ == 0 && (name.traits & kFormatting))
            open.formatting = pushFormatting(name, tag);
        if (name.traits & kMarker) formatting_.push_back({});
        if (name.traits & kForeignRoot) ++foreign_;
        if (name.hash == kSelect) ++selects_;
        if (name.hash == kTemplate) ++templates_;
        open_.push_back(open);
        if (open_.size() + closed_ > kDeepestNesting) {
            excess_ = "The page nests more than " + std::to_string(kDeepestNesting) +
                      " elements in each other, which no browser shows. Probably end tags are "
                      "missing: open it in a text editor and add them.";
        }
    }

    std::size_t pushFormatting(const Name& name, std::string_view tag) {
        // Of equal ones the parser keeps three.
        std::size_t equal = 0;
        for (std::size_t i = formatting_.size(); i-- > 0;) {
            if (formatting_[i].name == 0) break;
            if (formatting_[i].tag != tag) continue;
            if (++equal < 3) continue;
            if (!formatting_[i].open) --closed_;
            formatting_.erase(formatting_.begin() + std::ptrdiff_t(i));
            break;
        }
        formatting_.push_back({name.hash, tag, ++numbers_, true});
        return numbers_;
    }

    void endTag(const Name& name) {
        if (templates_ == 0 && name.text == "form") formIsOpen_ = false;
        if (foreign_ == 0 && (name.traits & kFormatting)) return endFormatting(name);
        for (std::size_t i = open_.size(); i-- > 0;) {
            if (open_[i].name.hash == name.hash) return popFrom(i);
            const std::uint16_t stop = (name.traits & kSpecial) ? kScope : kSpecial;
            const bool table = name.text == "table" || name.text == "tr" || name.text == "tbody" ||
                               name.text == "thead" || name.text == "tfoot" || name.text == "td" ||
                               name.text == "th";
            static const std::uint64_t kTable = hashOf("table");
            if (table ? open_[i].name.hash == kTable : (open_[i].name.traits & stop) != 0) return;
        }
    }

    void endFormatting(const Name& name) {
        std::size_t found = formatting_.size();
        for (std::size_t i = formatting_.size(); i-- > 0;) {
            if (formatting_[i].name == 0) break;
            if (formatting_[i].name == name.hash) {
                found = i;
                break;
            }
        }
        if (found == formatting_.size()) return;
        const std::size_t number = formatting_[found].number;
        if (!formatting_[found].open) --closed_;
        formatting_.erase(formatting_.begin() + std::ptrdiff_t(found));
        bool block = false;
        for (std::size_t i = open_.size(); i-- > 0;) {
            if (open_[i].formatting != number) {
                block |= (open_[i].name.traits & kSpecial) != 0;
                continue;
            }
            // A block inside keeps open what the parser then opens again around its content.
            if (!block) return popFrom(i);
            open_.erase(open_.begin() + std::ptrdiff_t(i));
            return;
        }
    }

    std::string_view markup_;
    std::size_t at_ = 0;
    std::vector<Open> open_;
    std::vector<Formatting> formatting_;
    std::size_t closed_ = 0;  ///< formatting that is left open but not among the open elements
    std::size_t numbers_ = 0;
    int foreign_ = 0;
    int selects_ = 0;
    int templates_ = 0;
    bool formIsOpen_ = false;
    char letters_[15];
    Known known_[256];
    std::string excess_;
};

}  // namespace

std::string findExcess(std::string_view markup) {
    if (markup.size() > kLargestPage) {
        return "The page is larger than " + std::to_string(kLargestPage >> 20) +
               " MB. Split it into smaller pages.";
    }
    return Scan(markup).run();
}

}  // namespace pw::dom
