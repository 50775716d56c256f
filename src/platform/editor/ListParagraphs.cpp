#include "platform/editor/ListParagraphs.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "platform/Text.h"

namespace pw {

namespace {

constexpr int kLevels = 9;  ///< more than any program has

/** What a mark says of its list. */
struct Numbering {
    bool isOrdered = false;
    std::string type;  ///< of letters and roman numbers; "" for plain numbers
    int number = 1;    ///< that the mark stands for
};

int RomanNumber(std::string_view digits) {
    constexpr std::string_view kDigits = "ivxlcdm";
    constexpr int kValues[] = {1, 5, 10, 50, 100, 500, 1000};
    int sum = 0;
    int before = 0;
    for (std::size_t i = digits.size(); i-- > 0;) {
        const std::size_t at = kDigits.find(digits[i]);
        if (at == std::string_view::npos) return 0;
        sum += kValues[at] < before ? -kValues[at] : kValues[at];
        before = std::max(before, kValues[at]);
    }
    return sum;
}

/** "1.", "(b)", "iv)" or the last number of "2.1."; anything else is a bullet. */
Numbering Read(const std::string& mark) {
    Numbering numbering;
    std::string digits = Trim(mark);
    if (digits.empty() || (digits.back() != '.' && digits.back() != ')')) return numbering;
    digits.pop_back();
    digits.erase(0, digits.find_last_of(".(") + 1);
    const auto all = [&](auto isKind) {
        return !digits.empty() && std::all_of(digits.begin(), digits.end(), [&](char c) {
            return isKind(static_cast<unsigned char>(c)) != 0;
        });
    };
    if (all([](int c) { return std::isdigit(c); })) return {true, "", int(Val(digits))};
    if (!all([](int c) { return c < 0x80 && std::isalpha(c); })) return numbering;
    const bool isUpper = std::isupper(static_cast<unsigned char>(digits[0])) != 0;
    const std::string lower = ToLower(digits);
    // A list of letters seldom gets as far as "i".
    if (const int roman = RomanNumber(lower); roman > 0 && (digits.size() > 1 || lower == "i"))
        return {true, isUpper ? "I" : "i", roman};
    if (digits.size() == 1) return {true, isUpper ? "A" : "a", lower[0] - 'a' + 1};
    return numbering;
}

Piece NewList(const ListMark& mark) {
    const Numbering numbering = Read(mark.mark);
    Piece list = Piece::Element(numbering.isOrdered ? "ol" : "ul");
    list.Set("type", numbering.type);
    if (numbering.isOrdered && numbering.number > 1)
        list.Set("start", std::to_string(numbering.number));
    return list;
}

/** The list that begins at `at`, which comes to stand behind it. */
Piece TakeList(Pieces& pieces, std::size_t& at) {
    const ListMark first = *pieces[at].item;
    const bool isOrdered = Read(first.mark).isOrdered;
    Piece list = NewList(first);
    while (at < pieces.size() && pieces[at].item) {
        const ListMark& mark = *pieces[at].item;
        if (mark.level < first.level) break;
        if (mark.level > first.level) {
            Piece inner = TakeList(pieces, at);
            list.children.back().children.push_back(std::move(inner));
            continue;
        }
        if (mark.list != first.list || Read(mark.mark).isOrdered != isOrdered) break;
        Piece item = Piece::Element("li");
        item.children = std::move(pieces[at].children);
        list.children.push_back(std::move(item));
        ++at;
    }
    return list;
}

}  // namespace

std::optional<ListMark> ListMarkOf(const dom::Node& node, const InlineStyle& style) {
    // "l0 level2 lfo1": the second level of the list l0 in its first use.
    const std::string_view list = style.Value("mso-list");
    const std::size_t at = FindNoCase(list, "level");
    if (at == std::string_view::npos) return std::nullopt;
    ListMark item;
    item.list = std::string(list.substr(0, at));
    const std::string_view behind = list.substr(at + std::string_view("level").size());
    item.level = std::clamp(int(Val(behind)), 1, kLevels);
    item.list += behind.substr(std::min(behind.find(' '), behind.size()));
    for (const dom::Node* inner = node.firstChild(); inner; inner = inner->following(&node)) {
        if (!inner->isElement() || !StyleOf(*inner).Holds("mso-list", "ignore")) continue;
        for (const dom::Node* text = inner->firstChild(); text; text = text->following(inner))
            if (text->isText()) item.mark += text->data();
        item.mark = Trim(ReplaceAll(item.mark, "\xC2\xA0", " "));
        break;
    }
    return item;
}

std::string NumberingOf(const dom::Node& list, const InlineStyle& style) {
    struct Kind {
        std::string_view css;
        const char* type;
    };
    static constexpr Kind kKinds[] = {{"lower-alpha", "a"}, {"lower-latin", "a"},
                                      {"upper-alpha", "A"}, {"upper-latin", "A"},
                                      {"lower-roman", "i"}, {"upper-roman", "I"}};
    const dom::Node* item = list.firstChild();
    while (item && !item->is("li"))
        item = item->next();
    const InlineStyle ofItem = item ? StyleOf(*item) : InlineStyle("");
    for (const InlineStyle* each : {&style, &ofItem})
        for (const Kind& kind : kKinds)
            if (EqualsNoCase(each->Value("list-style-type"), kind.css)) return kind.type;
    return {};
}

void GatherLists(Pieces& pieces) {
    const auto isItem = [](const Piece& piece) { return piece.item.has_value(); };
    if (std::none_of(pieces.begin(), pieces.end(), isItem)) return;
    Pieces result;
    for (std::size_t at = 0; at < pieces.size();) {
        if (isItem(pieces[at])) {
            result.push_back(TakeList(pieces, at));
        } else {
            result.push_back(std::move(pieces[at++]));
        }
    }
    pieces = std::move(result);
}

}  // namespace pw
