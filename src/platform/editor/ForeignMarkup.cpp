#include "platform/editor/ForeignMarkup.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "platform/Text.h"
#include "platform/dom/Document.h"
#include "platform/dom/Tags.h"
#include "platform/editor/InlineStyle.h"
#include "platform/editor/ListParagraphs.h"
#include "platform/editor/MarkupSafety.h"
#include "platform/editor/Piece.h"
#include "platform/editor/PlainCopy.h"

namespace pw {

namespace {

constexpr int kDeepest = 200;      ///< elements within each other; below there is only text
constexpr int kWidestTable = 600;  ///< pixels; wider ones take the width of the page

/** Where an element stands, as far as it matters to what becomes of it. */
struct Around {
    Looks looks;
    bool isLink = false;
    bool isPreformatted = false;
    bool isShaded = false;  ///< in a cell with a colour of its own
    int depth = 0;
};

struct TableState {
    int width = 0;  ///< pixels; 0: unknown
    bool hasLines = false;
};

bool IsHeading(std::string_view tag) {
    return tag.size() == 2 && tag[0] == 'h' && tag[1] >= '1' && tag[1] <= '6';
}

bool IsFile(std::string_view address) {
    return StartsWithNoCase(address, "file:");
}

std::string Number(long number) {
    return std::to_string(number);
}

class Cleaner {
  public:
    Cleaner(const dom::Document& page, const AddressAdopter& adopter)
        : page_(page), adopter_(adopter) {
        for (const dom::Node* link : page.links()) {
            const std::string address = Trim(link->getAttribute("href"));
            if (address.starts_with('#')) targets_.insert(address.substr(1));
        }
    }

    Pieces Run() {
        Pieces pieces = Arranged(Children(*page_.body(), {}));
        if (pieces.size() == 1 && pieces[0].Is("p") && pieces[0].attributes.empty())
            return std::move(pieces[0].children);
        return pieces;
    }

  private:
    // --- The tree --------------------------------------------------------------------------------

    Pieces Children(const dom::Node& parent, const Around& around) {
        Pieces pieces;
        Around below = around;
        if (++below.depth > kDeepest) {
            for (const dom::Node* at = parent.firstChild(); at; at = at->following(&parent))
                if (at->isText() && !IsUnsafe(*at->parent())) TakeText(at->data(), below, pieces);
            return pieces;
        }
        for (const dom::Node* child = parent.firstChild(); child; child = child->next()) {
            if (child->isText()) {
                TakeText(child->data(), below, pieces);
            } else if (child->isElement() && !IsUnsafe(*child)) {
                TakeElement(*child, below, pieces);
            }
        }
        return pieces;
    }

    static void TakeText(const std::string& text, const Around& around, Pieces& out) {
        if (around.isPreformatted) {
            Append(out, Piece::Text(text));
            return;
        }
        std::string plain;
        bool afterBlank = !out.empty() && out.back().IsText() && out.back().text.ends_with(' ');
        for (const char c : text) {
            const bool isBlank = c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f';
            if (!isBlank || !afterBlank) plain += isBlank ? ' ' : c;
            afterBlank = isBlank;
        }
        if (!plain.empty()) Append(out, Piece::Text(std::move(plain)));
    }

    void TakeElement(const dom::Node& node, const Around& around, Pieces& out) {
        struct Entry {
            std::string_view tag;
            void (Cleaner::*take)(const dom::Node&, const InlineStyle&, const Around&, Pieces&);
        };
        static constexpr Entry kEntries[] = {
            {"a", &Cleaner::TakeLink},
            {"article", &Cleaner::TakeContainer},
            {"aside", &Cleaner::TakeContainer},
            {"b", &Cleaner::TakeFormatting},
            {"br", &Cleaner::TakeBreak},
            {"center", &Cleaner::TakeContainer},
            {"col", &Cleaner::TakeColumn},
            {"dir", &Cleaner::TakeList},
            {"div", &Cleaner::TakeContainer},
            {"em", &Cleaner::TakeFormatting},
            {"figcaption", &Cleaner::TakeContainer},
            {"figure", &Cleaner::TakeContainer},
            {"font", &Cleaner::TakeFormatting},
            {"footer", &Cleaner::TakeContainer},
            {"h1", &Cleaner::TakeParagraph},
            {"h2", &Cleaner::TakeParagraph},
            {"h3", &Cleaner::TakeParagraph},
            {"h4", &Cleaner::TakeParagraph},
            {"h5", &Cleaner::TakeParagraph},
            {"h6", &Cleaner::TakeParagraph},
            {"header", &Cleaner::TakeContainer},
            {"i", &Cleaner::TakeFormatting},
            {"img", &Cleaner::TakePicture},
            {"li", &Cleaner::TakeItem},
            {"main", &Cleaner::TakeContainer},
            {"menu", &Cleaner::TakeList},
            {"nav", &Cleaner::TakeContainer},
            {"ol", &Cleaner::TakeList},
            {"p", &Cleaner::TakeParagraph},
            {"s", &Cleaner::TakeFormatting},
            {"section", &Cleaner::TakeContainer},
            {"span", &Cleaner::TakeFormatting},
            {"strike", &Cleaner::TakeFormatting},
            {"strong", &Cleaner::TakeFormatting},
            {"sub", &Cleaner::TakeFormatting},
            {"sup", &Cleaner::TakeFormatting},
            {"table", &Cleaner::TakeTable},
            {"tbody", &Cleaner::TakeTablePart},
            {"td", &Cleaner::TakeCell},
            {"tfoot", &Cleaner::TakeTablePart},
            {"th", &Cleaner::TakeCell},
            {"thead", &Cleaner::TakeTablePart},
            {"tr", &Cleaner::TakeTablePart},
            {"u", &Cleaner::TakeFormatting},
            {"ul", &Cleaner::TakeList},
        };
        static_assert(std::is_sorted(std::begin(kEntries), std::end(kEntries),
                                     [](const Entry& a, const Entry& b) { return a.tag < b.tag; }));
        const InlineStyle style = StyleOf(node);
        if (IsNoise(node, style)) return;
        const auto entry = std::lower_bound(
            std::begin(kEntries), std::end(kEntries), node.localName(),
            [](const Entry& each, const std::string& tag) { return each.tag < tag; });
        if (entry != std::end(kEntries) && entry->tag == node.localName() && !node.isForeign())
            (this->*entry->take)(node, style, around, out);
        else
            TakeOther(node, style, around, out);
    }

    /** What a program writes for itself, and what is not shown. */
    static bool IsNoise(const dom::Node& node, const InlineStyle& style) {
        if (style.IsHidden() || node.hasAttribute("hidden")) return true;
        // The mark of a list paragraph, and the list of reviewers' comments.
        if (style.Holds("mso-list", "ignore") || style.Holds("mso-element", "comment")) return true;
        const std::string& tag = node.localName();
        if (tag == "xml") return true;
        for (const char* kind : {"v:", "w:", "m:", "x:"})
            if (tag.starts_with(kind)) return true;
        return false;
    }

    // --- Text ------------------------------------------------------------------------------------

    void TakeFormatting(const dom::Node& node, const InlineStyle& style, const Around& around,
                        Pieces& out) {
        if (!style.Value("mso-spacerun").empty() || !style.Value("mso-tab-count").empty() ||
            EqualsNoCase(node.getAttribute("class"), "Apple-converted-space")) {
            TakeText(" ", around, out);
            return;
        }
        const std::string& tag = node.localName();
        Looks looks = around.looks;
        if (tag == "b" || tag == "strong") looks.bold = true;
        if (tag == "i" || tag == "em") looks.italic = true;
        if (tag == "u") looks.underlined = true;
        if (tag == "s" || tag == "strike") looks.struck = true;
        if (tag == "sub") looks.height = Looks::Height::Subscript;
        if (tag == "sup") looks.height = Looks::Height::Superscript;
        if (const std::string* color = node.attribute("color")) looks.color = ToLower(*color);
        Apply(style, looks);
        Around below = around;
        below.looks = looks;
        Append(out, Dressed(Children(node, below), tag, looks, around));
    }

    /** Puts what `looks` adds to the surroundings round the text. */
    static Pieces Dressed(Pieces pieces, std::string_view tag, const Looks& looks,
                          const Around& around) {
        const Looks& before = around.looks;
        const auto wrap = [&](bool isOn, bool wasOn, std::string_view usual,
                              std::string_view other) {
            if (isOn && !wasOn)
                pieces = WrapInline(std::move(pieces), Piece::Element(tag == other ? tag : usual));
        };
        wrap(looks.height == Looks::Height::Subscript, before.height == looks.height, "sub", "");
        wrap(looks.height == Looks::Height::Superscript, before.height == looks.height, "sup", "");
        wrap(looks.struck, before.struck, "s", "");
        wrap(looks.underlined && !around.isLink, before.underlined, "u", "");
        wrap(looks.italic, before.italic, "i", "em");
        wrap(looks.bold, before.bold, "b", "strong");
        const bool isColored =
            !IsColorless(looks.color) || (around.isShaded && !looks.color.empty());
        if (isColored && looks.color != before.color && !around.isLink) {
            Piece font = Piece::Element("font");
            font.Set("color", looks.color);
            pieces = WrapInline(std::move(pieces), font);
        }
        if (!IsColorless(looks.background) && looks.background != before.background) {
            Piece marked = Piece::Element("span");
            marked.Set("style", "background-color: " + looks.background);
            pieces = WrapInline(std::move(pieces), marked);
        }
        return pieces;
    }

    void TakeBreak(const dom::Node& node, const InlineStyle& style, const Around&, Pieces& out) {
        if (style.Holds("page-break-before", "always") ||
            FindNoCase(node.getAttribute("class"), "Apple-interchange") != std::string::npos)
            return;
        Append(out, Copied(node));
    }

    void TakeLink(const dom::Node& node, const InlineStyle&, const Around& around, Pieces& out) {
        Piece link = Copied(node);
        if (const std::string* address = node.attribute("href"))
            link.Set("href", LinkAddress(Trim(*address)));
        for (const char* name : {"name", "id"}) {
            const std::string* anchor = node.attribute(name);
            link.Set(name, anchor && targets_.contains(*anchor) ? *anchor : "");
        }
        Around below = around;
        const bool leads = link.Attribute("href") != nullptr;
        below.isLink = around.isLink || leads;
        Pieces pieces = Children(node, below);
        const bool isAnchor = link.Attribute("name") || link.Attribute("id");
        const bool isKept = isAnchor || (leads && !around.isLink && !AreBlank(pieces));
        if (!isKept) {
            Append(out, std::move(pieces));
        } else if (pieces.empty()) {
            Append(out, std::move(link));
        } else {
            Append(out, WrapInline(std::move(pieces), link));
        }
    }
    /** "" for one that leads nowhere from a page of the site. */
    std::string LinkAddress(const std::string& address) {
        if (RunsScript(address)) return {};
        if (!IsFile(address)) return address;
        return adopter_.link ? adopter_.link(address).value_or("") : "";
    }

    void TakePicture(const dom::Node& node, const InlineStyle& style, const Around& around,
                     Pieces& out) {
        Piece picture = Copied(node);
        for (const char* side : {"width", "height"}) {
            if (picture.Attribute(side)) continue;
            if (const int pixels = PixelsOf(style.Value(side))) picture.Set(side, Number(pixels));
        }
        const auto isDot = [&](const char* side) {
            const std::string* size = picture.Attribute(side);
            return size && (*size == "1" || *size == "0");
        };
        if (isDot("width") && isDot("height")) return;  // it counts readers
        const std::string address = PictureAddress(Trim(node.getAttribute("src")));
        if (address.empty()) {
            TakeText(node.getAttribute("alt"), around, out);
            return;
        }
        picture.Set("src", address);
        Append(out, std::move(picture));
    }
    /** "" for one that no visitor of the page could see. */
    std::string PictureAddress(const std::string& address) {
        for (const char* passing : {"cid:", "blob:", "about:", "mhtml:"})
            if (StartsWithNoCase(address, passing)) return {};
        if (RunsScript(address)) return {};
        const bool isData = StartsWithNoCase(address, "data:");
        if (!isData && !IsFile(address)) return address;
        if (adopter_.picture) return adopter_.picture(address).value_or("");
        return isData ? address : std::string();
    }

    // --- Paragraphs ------------------------------------------------------------------------------

    static std::string ParagraphTag(const dom::Node& node, const InlineStyle& style) {
        const std::string& tag = node.localName();
        const auto heading = [](double level) {
            return "h" + Number(std::lround(std::clamp(level, 1.0, 6.0)));
        };
        if (IsHeading(tag)) return tag;
        if (EqualsNoCase(node.getAttribute("role"), "heading"))
            return heading(std::max(Val(node.getAttribute("aria-level")), 2.0));
        const std::string kind = node.getAttribute("class");
        if (StartsWithNoCase(kind, "MsoTitle")) return "h1";
        if (StartsWithNoCase(kind, "MsoSubtitle")) return "h2";
        if (const double level = Val(style.Value("mso-outline-level")); level > 0)
            return heading(level);
        return "p";
    }

    static std::string AlignmentOf(const dom::Node& node, const InlineStyle& style) {
        if (node.is("center")) return "center";
        const std::string align = style.Alignment();
        if (!align.empty() || !style.Value("text-align").empty()) return align;
        const std::string written = ToLower(node.getAttribute("align"));
        return written == "left" ? std::string() : written;
    }

    void TakeParagraph(const dom::Node& node, const InlineStyle& style, const Around& around,
                       Pieces& out) {
        Piece paragraph = Piece::Element(ParagraphTag(node, style));
        paragraph.Set("align", AlignmentOf(node, style));
        if (const std::string* id = node.attribute("id"); id && targets_.contains(*id))
            paragraph.Set("id", *id);
        if (paragraph.Is("p")) paragraph.item = ListMarkOf(node, style);
        Around below = around;
        below.looks.bold = around.looks.bold || IsHeading(paragraph.tag);
        TakeFlow(std::move(paragraph), Children(node, below), out);
    }

    void TakeContainer(const dom::Node& node, const InlineStyle& style, const Around& around,
                       Pieces& out) {
        Piece paragraph = Piece::Element(ParagraphTag(node, style));
        paragraph.Set("align", AlignmentOf(node, style));
        TakeFlow(std::move(paragraph), Children(node, around), out);
    }

    /** The text becomes the paragraph; paragraphs and the like stand on their own. */
    static void TakeFlow(Piece paragraph, Pieces pieces, Pieces& out) {
        if (HasBlocks(pieces)) {
            pieces = Arranged(std::move(pieces));
            if (const std::string* align = paragraph.Attribute("align"))
                for (Piece& piece : pieces)
                    if ((piece.Is("p") || IsHeading(piece.tag)) && !piece.Attribute("align"))
                        piece.Set("align", *align);
            Append(out, std::move(pieces));
            return;
        }
        if (AreBlank(pieces)) {
            // It parts what stands round it all the same.
            out.push_back(Piece::Element("p"));
            return;
        }
        TrimEnds(pieces);
        paragraph.children = std::move(pieces);
        out.push_back(std::move(paragraph));
    }

    /** What a cell, an item or the whole page holds: text beside paragraphs becomes paragraphs. */
    static Pieces Arranged(Pieces pieces) {
        if (!HasBlocks(pieces)) return pieces;
        Pieces result;
        Pieces run;
        const auto close = [&] {
            if (!AreBlank(run)) {
                TrimEnds(run);
                Piece paragraph = Piece::Element("p");
                paragraph.children = std::move(run);
                result.push_back(std::move(paragraph));
            }
            run.clear();
        };
        for (Piece& piece : pieces) {
            if (!IsBlock(piece)) {
                run.push_back(std::move(piece));
                continue;
            }
            close();
            const bool isEmpty = piece.Is("p") && piece.children.empty();
            if (!isEmpty) result.push_back(std::move(piece));
        }
        close();
        GatherLists(result);
        return result;
    }

    // --- Lists -----------------------------------------------------------------------------------

    void TakeList(const dom::Node& node, const InlineStyle& style, const Around& around,
                  Pieces& out) {
        Piece list = Piece::Element(node.is("ol") ? "ol" : "ul");
        if (node.is("ol")) {
            const std::string* start = node.attribute("start");
            const std::string* type = node.attribute("type");
            list.Set("start", start && *start != "1" ? *start : "");
            list.Set("type", type && *type != "1" ? *type : NumberingOf(node, style));
        }
        for (Piece& piece : Children(node, around)) {
            Pieces& items = list.children;
            const bool isItem = piece.Is("li");
            const bool isList = piece.Is("ul") || piece.Is("ol");
            if (isItem && HoldsListsAlone(piece) && !items.empty()) {
                Append(items.back().children, std::move(piece.children));
            } else if (isItem) {
                if (!piece.children.empty()) items.push_back(std::move(piece));
            } else if (isList && !items.empty()) {
                // Some programs write an inner list beside the item that it belongs to.
                items.back().children.push_back(std::move(piece));
            } else if (!IsBlank(piece) && !(piece.Is("p") && piece.children.empty())) {
                items.push_back(Piece::Element("li"));
                items.back().children.push_back(std::move(piece));
            }
        }
        if (!list.children.empty()) out.push_back(std::move(list));
    }
    static bool HoldsListsAlone(const Piece& item) {
        return !item.children.empty() &&
               std::all_of(item.children.begin(), item.children.end(), [](const Piece& piece) {
                   return piece.Is("ul") || piece.Is("ol") || IsBlank(piece);
               });
    }

    void TakeItem(const dom::Node& node, const InlineStyle&, const Around& around, Pieces& out) {
        Piece item = Piece::Element("li");
        if (const std::string* value = node.attribute("value"))
            if (node.parent() && node.parent()->is("ol")) item.Set("value", *value);
        item.children = WithoutLoneParagraph(Arranged(Children(node, around)), nullptr);
        TrimEnds(item.children);
        if (AreBlank(item.children)) item.children.clear();
        out.push_back(std::move(item));
    }

    /** The one paragraph of a cell or an item gives way to its text. */
    static Pieces WithoutLoneParagraph(Pieces pieces, Piece* cell) {
        const auto isParagraph = [](const Piece& piece) { return piece.Is("p"); };
        if (std::count_if(pieces.begin(), pieces.end(), isParagraph) != 1) return pieces;
        if (!pieces.front().Is("p")) return pieces;
        Piece& paragraph = pieces.front();
        const std::string* align = paragraph.Attribute("align");
        if (align && cell) cell->Set("align", *align);
        if (align && !cell) return pieces;
        Pieces result = std::move(paragraph.children);
        result.insert(result.end(), std::move_iterator(pieces.begin() + 1),
                      std::move_iterator(pieces.end()));
        return result;
    }

    // --- Tables ----------------------------------------------------------------------------------

    static int WidthOf(const dom::Node& node, const InlineStyle& style) {
        const std::string* width = node.attribute("width");
        return PixelsOf(width ? std::string_view(*width) : style.Value("width"));
    }

    void TakeTable(const dom::Node& node, const InlineStyle& style, const Around& around,
                   Pieces& out) {
        TableState state;
        state.width = WidthOf(node, style);
        state.hasLines = style.HasBorder();
        if (state.width == 0) {
            for (const dom::Node* at = node.firstChild(); at; at = at->following(&node)) {
                if (at->is("tr")) break;
                if (at->is("col")) state.width += WidthOf(*at, InlineStyle(""));
            }
        }
        tables_.push_back(state);
        Piece table = Copied(node);
        table.children = WithoutText(Children(node, around));
        state = tables_.back();
        tables_.pop_back();
        table.Set("height", "");
        if (state.width > kWidestTable) table.Set("width", "100%");
        if (state.hasLines) {
            const auto isNone = [&](const char* name) {
                const std::string* size = table.Attribute(name);
                return !size || *size == "0";
            };
            if (isNone("border")) table.Set("border", "1");
            if (isNone("cellpadding")) table.Set("cellpadding", "4");
            table.Set("cellspacing", "0");
        }
        // Programs centre a table within the page; how text runs round it is not theirs to say.
        if (const std::string* align = table.Attribute("align"))
            if (!EqualsNoCase(*align, "center")) table.Set("align", "");
        const bool hasRows =
            std::any_of(table.children.begin(), table.children.end(), [](const Piece& piece) {
                return piece.Is("tr") || piece.Is("tbody") || piece.Is("thead");
            });
        if (hasRows) out.push_back(std::move(table));
    }

    /** A share of a table that is too wide, else pixels. */
    std::string CellWidth(int pixels) const {
        const int whole = tables_.empty() ? 0 : tables_.back().width;
        if (pixels == 0 || whole <= kWidestTable) return pixels ? Number(pixels) : "";
        return Number(std::lround(100.0 * std::min(pixels, whole) / whole)) + "%";
    }

    void TakeColumn(const dom::Node& node, const InlineStyle& style, const Around&, Pieces& out) {
        Piece column = Copied(node);
        if (const int width = WidthOf(node, style)) column.Set("width", CellWidth(width));
        out.push_back(std::move(column));
    }

    void TakeTablePart(const dom::Node& node, const InlineStyle& style, const Around& around,
                       Pieces& out) {
        // A row without a height gives the widths of the columns below it, and shows nothing.
        const bool isRow = node.is("tr");
        if (isRow && node.getAttribute("height") == "0") return;
        Piece part = Copied(node);
        part.Set("height", "");
        Around below = around;
        Shade(part, style);
        below.isShaded = around.isShaded || part.Attribute("bgcolor");
        part.children = WithoutText(Children(node, below));
        if (!part.children.empty()) out.push_back(std::move(part));
    }

    void TakeCell(const dom::Node& node, const InlineStyle& style, const Around& around,
                  Pieces& out) {
        if (!tables_.empty() && style.HasBorder()) tables_.back().hasLines = true;
        Piece cell = Copied(node);
        cell.Set("height", "");
        cell.Set("align", AlignmentOf(node, style));
        if (const int width = WidthOf(node, InlineStyle(""))) cell.Set("width", CellWidth(width));
        for (const char* span : {"colspan", "rowspan"})
            if (const std::string* count = cell.Attribute(span); count && *count == "1")
                cell.Set(span, "");
        Shade(cell, style);
        Around below = around;
        below.isShaded = around.isShaded || cell.Attribute("bgcolor");
        below.looks.bold = around.looks.bold || node.is("th");
        cell.children = WithoutLoneParagraph(Arranged(Children(node, below)), &cell);
        TrimEnds(cell.children);
        if (AreBlank(cell.children)) cell.children.clear();
        out.push_back(std::move(cell));
    }

    static void Shade(Piece& part, const InlineStyle& style) {
        if (const std::string color = style.Background(); !color.empty())
            part.Set("bgcolor", color);
        const std::string* color = part.Attribute("bgcolor");
        if (color && (*color == "white" || *color == "#ffffff")) part.Set("bgcolor", "");
    }

    /** Between the parts of a table there is nothing but blanks. */
    static Pieces WithoutText(Pieces pieces) {
        std::erase_if(pieces, [](const Piece& piece) { return !IsBlock(piece); });
        return pieces;
    }

    // --- The rest --------------------------------------------------------------------------------

    Piece Copied(const dom::Node& node) const { return PlainCopy(node, targets_); }

    void TakeOther(const dom::Node& node, const InlineStyle&, const Around& around, Pieces& out) {
        const std::string& tag = node.localName();
        Around below = around;
        below.isPreformatted = around.isPreformatted || tag == "pre" || tag == "textarea";
        Pieces pieces = Children(node, below);
        // Elements that programs and scripts make up stand for nothing but what they hold.
        if (tag.find_first_of(":-") != std::string::npos && !node.isForeign()) {
            Append(out, std::move(pieces));
            return;
        }
        Piece piece = Copied(node);
        const bool isAsItIs = node.isForeign() || below.isPreformatted;
        piece.children = isAsItIs ? std::move(pieces) : Arranged(std::move(pieces));
        const bool isEmptyBlock = dom::isBlockTag(tag) && !dom::isVoid(node) &&
                                  AreBlank(piece.children) && !piece.Is("option");
        if (!isEmptyBlock) Append(out, std::move(piece));
    }

    const dom::Document& page_;
    const AddressAdopter& adopter_;
    std::unordered_set<std::string> targets_;  ///< names that links of the fragment lead to
    std::vector<TableState> tables_;           ///< that are being taken, the innermost last
};

}  // namespace

std::string ForeignMarkup(std::string_view fragment, const AddressAdopter& adopter) {
    const auto page = dom::Document::parseText(MakeValidUtf8(fragment));
    if (!page || !page->body()) return {};
    return MarkupOf(Cleaner(*page, adopter).Run());
}

}  // namespace pw
