#include "editing/PageAppearance.h"

#include <algorithm>

#include "frame/Colors.h"
#include "platform/Text.h"

namespace pw {

namespace {

constexpr const char* kColorAttributes[] = {"bgcolor", "text", "link", "vlink", "alink"};
constexpr const char* kMarginAttributes[] = {"leftmargin", "topmargin"};
constexpr const char* kSoundTag = "bgsound";

using Value = std::optional<std::string>;

dom::Node* FirstSound(const dom::Document& document) {
    const auto sounds = document.tags(kSoundTag);
    return sounds.empty() ? nullptr : sounds.front();
}

/** What is larger is no margin and no count, whatever the page says. */
int SmallNumber(const std::string& text) {
    constexpr double kLargest = 99999;
    return int(std::clamp(Val(text), -kLargest, kLargest));
}

int ReadLoop(const dom::Node& sound) {
    const std::string text = Trim(sound.getAttribute("loop"));
    if (EqualsNoCase(text, "infinite")) return PageAppearance::kEndless;
    const int count = SmallNumber(text);
    return count < 0 ? PageAppearance::kEndless : std::max(count, 1);
}

std::string LoopText(int loop) {
    return loop == PageAppearance::kEndless ? "infinite" : std::to_string(loop);
}

void WriteSound(dom::Document& document, const PageAppearance& now, const PageAppearance& wanted) {
    if (wanted.sound.empty()) {
        for (dom::Node* sound : document.tags(kSoundTag))
            document.removeNode(*sound);
        return;
    }
    dom::Node* sound = FirstSound(document);
    const bool isNew = !sound;
    if (isNew) sound = document.createElement(kSoundTag);
    if (isNew || wanted.sound != now.sound) document.setAttribute(*sound, "src", wanted.sound);
    if (isNew || wanted.loop != now.loop)
        document.setAttribute(*sound, "loop", LoopText(wanted.loop));
    if (isNew) document.insertNode(*document.head(), *sound, nullptr);
}

}  // namespace

bool HasAppearance(const dom::Document& document) {
    const dom::Node* body = document.body();
    return body && body->is("body") && document.head();
}

PageAppearance ReadAppearance(const dom::Document& document) {
    PageAppearance looks;
    if (!HasAppearance(document)) return looks;
    const dom::Node& body = *document.body();
    looks.background = body.getAttribute("background");
    looks.watermark = EqualsNoCase(body.getAttribute("bgproperties"), "fixed");
    for (std::size_t i = 0; i < looks.colors.size(); ++i) {
        const auto color = ParseHtmlColor(body.getAttribute(kColorAttributes[i]));
        if (color) looks.colors[i] = *color;
    }
    for (std::size_t i = 0; i < looks.margins.size(); ++i) {
        const std::string* margin = body.attribute(kMarginAttributes[i]);
        if (margin) looks.margins[i] = SmallNumber(*margin);
    }
    if (const dom::Node* sound = FirstSound(document)) {
        looks.sound = sound->getAttribute("src");
        looks.loop = ReadLoop(*sound);
    }
    return looks;
}

void WriteAppearance(dom::Document& document, const PageAppearance& wanted) {
    const PageAppearance now = ReadAppearance(document);
    if (wanted == now || !HasAppearance(document)) return;
    dom::Node& body = *document.body();
    const dom::Document::Step step(document);
    const auto set = [&](const char* name, const Value& value) {
        document.setAttribute(body, name, value);
    };
    if (wanted.background != now.background)
        set("background", wanted.background.empty() ? Value() : wanted.background);
    if (wanted.watermark != now.watermark)
        set("bgproperties", wanted.watermark ? Value("fixed") : Value());
    for (std::size_t i = 0; i < wanted.colors.size(); ++i) {
        if (wanted.colors[i] != now.colors[i])
            set(kColorAttributes[i], HtmlColor(wanted.colors[i]));
    }
    for (std::size_t i = 0; i < wanted.margins.size(); ++i) {
        if (wanted.margins[i] == now.margins[i]) continue;
        set(kMarginAttributes[i],
            wanted.margins[i] ? Value(std::to_string(*wanted.margins[i])) : Value());
    }
    if (wanted.sound != now.sound || wanted.loop != now.loop) WriteSound(document, now, wanted);
}

}  // namespace pw
