#include "platform/editor/LayerCommands.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>
#include <vector>

#include "platform/Text.h"
#include "platform/editor/StyleDeclarations.h"

namespace pw {

namespace {

using dom::Document;
using dom::Node;

constexpr char kLocked[] = "data-locked";

StyleDeclarations StyleOf(const Node& element) {
    const std::string* style = element.attribute("style");
    return StyleDeclarations(style ? *style : std::string());
}

bool WriteStyle(Document& document, Node& element, const StyleDeclarations& style) {
    const std::string* before = element.attribute("style");
    const std::string text = style.Text();
    if (before ? *before == text : text.empty()) return false;
    document.setAttribute(element, "style", text.empty() ? std::nullopt : std::optional(text));
    return true;
}

bool IsAbsolute(const StyleDeclarations& style) {
    const std::string position = style.Value("position").value_or("");
    return EqualsNoCase(position, "absolute") || EqualsNoCase(position, "fixed");
}

bool IsLayer(const Node& element) {
    return element.hasAttribute("style") && IsAbsolute(StyleOf(element));
}

/** Others are placed along with it, and z-index counts for it. */
bool IsPositioned(const Node& element) {
    if (!element.hasAttribute("style")) return false;
    const StyleDeclarations style = StyleOf(element);
    return IsAbsolute(style) || EqualsNoCase(style.Value("position").value_or(""), "relative");
}

/** Parts of something else can't leave it. */
bool MayLeaveTheText(const Document& document, const Node& element) {
    static constexpr std::string_view kParts[] = {
        "html",  "head",    "body",   "frameset", "tr",       "td",     "th",
        "tbody", "thead",   "tfoot",  "col",      "colgroup", "li",     "dt",
        "dd",    "caption", "option", "legend",   "optgroup", "br",     "map",
        "area",  "param",   "script", "noscript", "style",    "source", "track"};
    const Node* body = document.body();
    return element.isElement() && !element.isForeign() && body && body != &element &&
           body->contains(element) && body->is("body") &&
           std::find(std::begin(kParts), std::end(kParts), element.localName()) == std::end(kParts);
}

/** The object selected, or the layer that the caret stands in. */
Node* ObjectOf(const Document& document) {
    const dom::Selection& selection = document.selection();
    if (selection.type == dom::SelectionType::Control) {
        Node* object = selection.control;
        return document.isConnected(object) && MayLeaveTheText(document, *object) ? object
                                                                                  : nullptr;
    }
    for (Node* node = document.elementAtCaret(); node; node = node->parentElement()) {
        if (IsLayer(*node) && MayLeaveTheText(document, *node)) return node;
    }
    return nullptr;
}

int ZIndexOf(const StyleDeclarations& style) {
    const std::string value = style.Value("z-index").value_or("");
    int z = 0;
    std::from_chars(value.data(), value.data() + value.size(), z);
    return std::clamp(z, -1'000'000, 1'000'000);
}

// --- Order --------------------------------------------------------------------------------------

enum class TextSide { InFront, Behind };

TextSide SideOf(int z) {
    return z < 0 ? TextSide::Behind : TextSide::InFront;
}

struct Layer {
    Node* node = nullptr;
    int z = 0;
    int place = 0;  ///< in the page
};

const Node* PositionedParent(const Node& element) {
    const Node* parent = element.parentElement();
    while (parent && !IsPositioned(*parent))
        parent = parent->parentElement();
    return parent;
}

/** The others on that side of the text, as they are painted: the hindmost first. */
std::vector<Layer> LayersBeside(const Document& document, const Node& object, TextSide side) {
    const Node* parent = PositionedParent(object);
    std::vector<Layer> layers;
    for (Node* node : document.all()) {
        if (node == &object || !node->isElement() || !IsPositioned(*node)) continue;
        const int z = ZIndexOf(StyleOf(*node));
        if (SideOf(z) == side && PositionedParent(*node) == parent)
            layers.push_back({node, z, document.sourceIndex(node)});
    }
    std::stable_sort(layers.begin(), layers.end(),
                     [](const Layer& a, const Layer& b) { return a.z < b.z; });
    return layers;
}

void SetZIndex(Document& document, Node& element, int z) {
    StyleDeclarations style = StyleOf(element);
    if (ZIndexOf(style) == z) return;
    style.Set("z-index", std::to_string(z));
    WriteStyle(document, element, style);
}

/** Puts the object at this rank among the layers of that side. Others keep their numbers wherever
 *  the order allows it; of two with one number, the later in the page is in front. */
void PutAtRank(Document& document, Node& object, TextSide side, std::size_t rank) {
    std::vector<Layer> layers = LayersBeside(document, object, side);
    rank = std::min(rank, layers.size());
    layers.insert(layers.begin() + std::ptrdiff_t(rank),
                  Layer{&object, 0, document.sourceIndex(&object)});
    const auto settle = [&](Layer& layer, int bound, bool breaksBound) {
        if (layer.node == &object || breaksBound) layer.z = bound;
        SetZIndex(document, *layer.node, layer.z);
    };
    if (side == TextSide::InFront) {
        const Layer* below = nullptr;
        for (Layer& layer : layers) {
            const int least = !below ? 0 : below->z + (layer.place > below->place ? 0 : 1);
            settle(layer, least, layer.z < least);
            below = &layer;
        }
    } else {
        const Layer* above = nullptr;
        for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) {
            const int most = !above ? -1 : above->z - (layer->place < above->place ? 0 : 1);
            settle(*layer, most, layer->z > most);
            above = &*layer;
        }
    }
}

/** How many layers of its side are behind it. */
std::size_t RankOf(const Document& document, const Node& object, TextSide side) {
    const int z = ZIndexOf(StyleOf(object));
    const int place = document.sourceIndex(&object);
    const std::vector<Layer> layers = LayersBeside(document, object, side);
    return std::size_t(std::count_if(layers.begin(), layers.end(), [&](const Layer& layer) {
        return layer.z < z || (layer.z == z && layer.place < place);
    }));
}

bool Reorder(Document& document, Node& object, LayerCommand command) {
    const TextSide side = SideOf(ZIndexOf(StyleOf(object)));
    const std::size_t rank = RankOf(document, object, side);
    const std::size_t last = LayersBeside(document, object, side).size();
    std::size_t wanted = rank;
    TextSide wantedSide = side;
    switch (command) {
        case LayerCommand::BringToFront:
            wanted = last;
            break;
        case LayerCommand::SendToBack:
            wanted = 0;
            break;
        case LayerCommand::BringForward:
            wanted = std::min(rank + 1, last);
            break;
        case LayerCommand::SendBackward:
            wanted = rank > 0 ? rank - 1 : 0;
            break;
        case LayerCommand::SendBelowText:
            wantedSide = TextSide::Behind;
            if (side != wantedSide) wanted = std::string::npos;
            break;
        case LayerCommand::BringAboveText:
            wantedSide = TextSide::InFront;
            if (side != wantedSide) wanted = 0;
            break;
        default:
            break;
    }
    if (wanted == rank && wantedSide == side) return false;
    PutAtRank(document, object, wantedSide, wanted);
    return true;
}

// --- In and out of the text ---------------------------------------------------------------------

std::string Pixels(int value) {
    return std::to_string(value) + "px";
}

void LeaveTheText(Document& document, Node& object, const Placement& place) {
    StyleDeclarations style = StyleOf(object);
    style.Append("position", "absolute");
    const std::pair<const char*, std::optional<int>> values[] = {
        {"left", place.left}, {"top", place.top}, {"width", place.width}, {"height", place.height}};
    for (const auto& [property, value] : values)
        if (value) style.Append(property, Pixels(*value));
    WriteStyle(document, object, style);
    PutAtRank(document, object, TextSide::InFront, std::string::npos);
}

void ReturnToTheText(Document& document, Node& object) {
    StyleDeclarations style = StyleOf(object);
    const std::size_t from = *style.Find("position");
    for (const char* property :
         {"position", "left", "top", "right", "bottom", "width", "height", "z-index"})
        style.Remove(property, from);
    if (IsAbsolute(style)) style.Remove("position");
    if (!style.Value("position")) {
        for (const char* property : {"left", "top", "right", "bottom", "z-index"})
            style.Remove(property);
    }
    WriteStyle(document, object, style);
    if (object.hasAttribute(kLocked)) document.setAttribute(object, kLocked, std::nullopt);
}

/** Objects with their size in attributes. */
bool HasSizeAttributes(const Node& object) {
    static constexpr std::string_view kSized[] = {"img",    "table",  "object",  "embed", "applet",
                                                  "iframe", "video",  "marquee", "hr",    "td",
                                                  "th",     "canvas", "layer"};
    return std::find(std::begin(kSized), std::end(kSized), object.localName()) != std::end(kSized);
}

}  // namespace

CommandState LayerState(const Document& document, LayerCommand command) {
    const Node* object = ObjectOf(document);
    if (!object) return CommandState::Disabled;
    const StyleDeclarations style = StyleOf(*object);
    const bool absolute = IsAbsolute(style);
    const auto latchedIf = [](bool latched) {
        return latched ? CommandState::Latched : CommandState::Enabled;
    };
    if (command == LayerCommand::MakeAbsolute) return latchedIf(absolute);
    if (!absolute) return CommandState::Disabled;
    switch (command) {
        case LayerCommand::Lock:
            return latchedIf(object->hasAttribute(kLocked));
        case LayerCommand::SendBelowText:
            return latchedIf(SideOf(ZIndexOf(style)) == TextSide::Behind);
        case LayerCommand::BringAboveText:
            return latchedIf(SideOf(ZIndexOf(style)) == TextSide::InFront);
        default:
            return CommandState::Enabled;
    }
}

bool RunLayerCommand(Document& document, LayerCommand command, const FreePlace& freePlace) {
    if (LayerState(document, command) == CommandState::Disabled) return false;
    Node* object = ObjectOf(document);
    std::optional<Placement> place;
    if (command == LayerCommand::MakeAbsolute && !IsLayer(*object)) {
        // The answer comes from a view, and events may run meanwhile.
        place = freePlace ? freePlace(*object) : std::nullopt;
        if (!place || ObjectOf(document) != object || IsLayer(*object)) return false;
    }
    Document::Step step(document);
    switch (command) {
        case LayerCommand::MakeAbsolute:
            place ? LeaveTheText(document, *object, *place) : ReturnToTheText(document, *object);
            return true;
        case LayerCommand::Lock:
            document.setAttribute(
                *object, kLocked,
                object->hasAttribute(kLocked) ? std::nullopt : std::optional<std::string>("true"));
            return true;
        default:
            return Reorder(document, *object, command);
    }
}

bool PlaceObject(Document& document, Node& object, const Placement& placement) {
    if (!document.isConnected(&object) || object.hasAttribute(kLocked)) return false;
    Document::Step step(document);
    StyleDeclarations style = StyleOf(object);
    bool changed = false;
    const auto setSize = [&](const char* property, const std::optional<int>& value) {
        if (!value) return;
        if (!HasSizeAttributes(object) || style.Value(property)) {
            style.Set(property, Pixels(*value));
            return;
        }
        const bool thickness = object.is("hr") && std::string_view(property) == "height";
        const char* name = thickness ? "size" : property;
        const std::string text = std::to_string(*value);
        const std::string* before = object.attribute(name);
        if (before && *before == text) return;
        document.setAttribute(object, name, text);
        changed = true;
    };
    const auto setPlace = [&](const char* property, const char* opposite,
                              const std::optional<int>& value) {
        if (!value) return;
        style.Set(property, Pixels(*value));
        style.Remove(opposite);
    };
    setPlace("left", "right", placement.left);
    setPlace("top", "bottom", placement.top);
    setSize("width", placement.width);
    setSize("height", placement.height);
    return WriteStyle(document, object, style) || changed;
}

}  // namespace pw
