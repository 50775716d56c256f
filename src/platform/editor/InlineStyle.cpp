#include "platform/editor/InlineStyle.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/Text.h"
#include "platform/editor/EditorFormats.h"

namespace pw {

namespace {

std::string_view Trimmed(std::string_view text) {
    const std::size_t from = text.find_first_not_of(" \t\r\n");
    if (from == std::string_view::npos) return {};
    return text.substr(from, text.find_last_not_of(" \t\r\n") - from + 1);
}

/** Where the declaration that begins at `from` ends: a semicolon within quotes or brackets is its
 *  own. */
std::size_t EndOfDeclaration(std::string_view css, std::size_t from) {
    char quote = 0;
    int brackets = 0;
    for (std::size_t i = from; i < css.size(); ++i) {
        const char c = css[i];
        if (quote) {
            if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(') {
            ++brackets;
        } else if (c == ')') {
            brackets = std::max(0, brackets - 1);
        } else if (c == ';' && brackets == 0) {
            return i;
        }
    }
    return css.size();
}

bool HasPart(std::string_view value, std::string_view part) {
    return FindNoCase(value, part) != std::string_view::npos;
}

std::string ColorOf(std::string_view value) {
    constexpr std::string_view kNone[] = {"",       "transparent", "inherit",      "initial",
                                          "unset",  "auto",        "currentcolor", "none",
                                          "revert", "window",      "windowtext"};
    const std::string name = ToLower(value);
    if (std::find(std::begin(kNone), std::end(kNone), name) != std::end(kNone)) return {};
    if (name.starts_with("rgba") && (name.ends_with(", 0)") || name.ends_with(",0)"))) return {};
    const std::string color = ToLower(ColorText(name));
    // What attributes do not know, such as "var(--text)".
    return color.find_first_of("( ,") == std::string::npos ? color : std::string();
}

}  // namespace

InlineStyle::InlineStyle(std::string_view css) : css_(css) {
    const std::string_view all = css_;
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = EndOfDeclaration(all, at);
        const std::string_view declaration = all.substr(at, end - at);
        at = end + 1;
        const std::size_t colon = declaration.find(':');
        if (colon == std::string_view::npos) continue;
        std::string_view value = Trimmed(declaration.substr(colon + 1));
        if (EndsWithNoCase(value, "!important"))
            value = Trimmed(value.substr(0, value.size() - std::string_view("!important").size()));
        declarations_.push_back({ToLower(Trimmed(declaration.substr(0, colon))), value});
    }
}

std::string_view InlineStyle::Value(std::string_view name) const {
    const auto at = std::find_if(declarations_.rbegin(), declarations_.rend(),
                                 [&](const Declaration& each) { return each.name == name; });
    return at == declarations_.rend() ? std::string_view() : at->value;
}

bool InlineStyle::Holds(std::string_view name, std::string_view part) const {
    return HasPart(Value(name), part);
}

bool InlineStyle::IsHidden() const {
    return EqualsNoCase(Value("display"), "none") || EqualsNoCase(Value("mso-hide"), "all");
}

std::string InlineStyle::Alignment() const {
    const std::string align = ToLower(Value("text-align"));
    return align == "center" || align == "right" || align == "justify" ? align : std::string();
}

bool InlineStyle::HasBorder() const {
    for (const Declaration& each : declarations_) {
        if (!each.name.starts_with("border")) continue;
        for (const char* line : {"solid", "double", "dashed", "dotted"})
            if (HasPart(each.value, line)) return true;
    }
    return false;
}

std::string InlineStyle::Color() const {
    return ColorOf(Value("color"));
}

std::string InlineStyle::Background() const {
    const std::string_view color = Value("background-color");
    return ColorOf(color.empty() ? Value("background") : color);
}

InlineStyle StyleOf(const dom::Node& element) {
    const std::string* css = element.attribute("style");
    return InlineStyle(css ? std::string_view(*css) : std::string_view());
}

void Apply(const InlineStyle& style, Looks& looks) {
    if (const std::string_view weight = style.Value("font-weight"); !weight.empty())
        looks.bold = HasPart(weight, "bold") || Val(weight) >= 600;
    if (const std::string_view slant = style.Value("font-style"); !slant.empty())
        looks.italic = HasPart(slant, "italic") || HasPart(slant, "oblique");
    for (const char* name : {"text-decoration", "text-decoration-line"}) {
        const std::string_view line = style.Value(name);
        if (line.empty()) continue;
        looks.underlined = HasPart(line, "underline");
        looks.struck = HasPart(line, "line-through");
    }
    if (const std::string_view height = style.Value("vertical-align"); !height.empty())
        looks.height = EqualsNoCase(height, "sub")     ? Looks::Height::Subscript
                       : EqualsNoCase(height, "super") ? Looks::Height::Superscript
                                                       : Looks::Height::Line;
    if (const std::string color = style.Color(); !color.empty()) looks.color = color;
    if (const std::string color = style.Background(); !color.empty()) looks.background = color;
}

bool IsColorless(std::string_view color) {
    for (const char* name : {"", "black", "white", "gray", "grey", "silver"})
        if (color == name) return true;
    if (!color.starts_with('#')) return false;
    const std::string digits(color.substr(1));
    const std::size_t width = digits.size() / 3;
    if (width < 1 || width > 2) return false;
    long channels[3];
    for (std::size_t i = 0; i < 3; ++i) {
        channels[i] = std::strtol(digits.substr(i * width, width).c_str(), nullptr, 16);
        if (width == 1) channels[i] *= 17;
    }
    constexpr long kTint = 0x20;
    const auto [darkest, lightest] = std::minmax_element(std::begin(channels), std::end(channels));
    return *lightest - *darkest <= kTint;
}

int PixelsOf(std::string_view length) {
    struct Unit {
        std::string_view name;
        double pixels;
    };
    constexpr Unit kUnits[] = {{"px", 1},         {"pt", 96.0 / 72}, {"in", 96},
                               {"cm", 96 / 2.54}, {"mm", 96 / 25.4}, {"pc", 16}};
    const double number = Val(length);
    if (number <= 0 || number > 100'000) return 0;
    for (const Unit& unit : kUnits)
        if (EndsWithNoCase(length, unit.name)) return int(std::lround(number * unit.pixels));
    const bool isBare = length.find_first_not_of("0123456789. ") == std::string_view::npos;
    return isBare ? int(std::lround(number)) : 0;
}

}  // namespace pw
