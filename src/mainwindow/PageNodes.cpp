#include "mainwindow/PageNodes.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "editing/ElementRecognition.h"
#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

namespace {

std::string Named(const dom::Node& element, const std::string& otherwise = {}) {
    const std::string name = element.getAttribute("name");
    return name.empty() ? otherwise : name;
}

std::string TagName(const dom::Node& element) {
    return element.tagName();
}

std::string NameOrTag(const dom::Node& element) {
    return Named(element, element.tagName());
}

std::string NameOnly(const dom::Node& element) {
    return Named(element);
}

std::string ImageFile(const dom::Node& element) {
    const std::string video = element.getAttribute("dynsrc");
    return GetFileName(video.empty() ? element.getAttribute("src") : video);
}

std::string NameOrImage(const dom::Node& element) {
    return Named(element, ImageFile(element));
}

std::string Language(const dom::Node& element) {
    return element.getAttribute("language");
}

struct Kind {
    std::string_view tag;
    int picture;
    std::string (*text)(const dom::Node&);
};
constexpr Kind kKinds[] = {
    {"applet", 42, NameOrTag},  {"body", 23, TagName},     {"comment", 25, TagName},
    {"div", 27, TagName},       {"span", 27, TagName},     {"form", 28, NameOrTag},
    {"frame", 38, NameOrTag},   {"frameset", 39, TagName}, {"hr", 43, TagName},
    {"marquee", 46, TagName},   {"object", 21, NameOrTag}, {"tr", 51, TagName},
    {"script", 49, Language},   {"select", 33, NameOnly},  {"table", 50, TagName},
    {"textarea", 36, NameOnly},
};
/** By the type of an INPUT. */
constexpr Kind kInputs[] = {
    {"checkbox", 31, NameOnly}, {"hidden", 32, NameOnly}, {"image", 29, NameOrImage},
    {"password", 37, NameOnly}, {"radio", 34, NameOnly},  {"text", 35, NameOnly},
    {"file", 35, NameOnly},     {"reset", 29, NameOnly},  {"submit", 29, NameOnly},
};

template <typename Table>
void Look(const Table& table, std::string_view what, const dom::Node& element, TreeNode& node) {
    const auto at = std::find_if(std::begin(table), std::end(table),
                                 [what](const Kind& kind) { return kind.tag == what; });
    if (at == std::end(table)) return;
    node.image = at->picture;
    node.text = at->text(element);
}

std::string ProperCase(std::string_view text) {
    std::string result = ToLower(text);
    bool first = true;
    for (char& character : result) {
        if (first && character >= 'a' && character <= 'z') character = char(character - 'a' + 'A');
        first = character == ' ';
    }
    return result;
}

void DescribeAnchor(const dom::Node& element, TreeNode& node) {
    if (IsMergeSpan(element)) {
        node.image = 20;
        node.text = "Merge Variable " + ProperCase(element.getAttribute("name"));
    } else if (const std::string href = element.getAttribute("href"); !href.empty()) {
        node.image = 44;
        node.text = href;
    } else {
        node.image = 24;
        node.text = Named(element, "BOOKMARK");
    }
}

std::string OneLine(std::string_view text) {
    return Trim(ReplaceAll(ReplaceAll(text, "\r", ""), "\n", ""));
}

/** Addresses below the folder of the pages are shown as the pages' visitors see them. */
std::string WithoutPreviewFolder(const FrameContext& context, std::string text) {
    const std::string start = "file://" + ReplaceAll(context.settings.PreviewFolder, "\\", "/");
    if (!context.settings.PreviewFolder.empty() && StartsWithNoCase(text, start))
        text = text.substr(start.size());
    return ReplaceAll(text, "\\", "/");
}

}  // namespace

std::string PageNodeKey(int sourceIndex) {
    return "E" + std::to_string(sourceIndex);
}

bool IsShownInExplorer(const FrameContext& context, const dom::Node& element) {
    const bool comment = element.isComment() || element.is("comment");
    return comment ? context.settings.ShowCommentsInExplorer : IsExplorerElement(&element);
}

TreeNode MakePageNode(const FrameContext& context, const dom::Document& document,
                      const dom::Node& element) {
    TreeNode node;
    node.key = PageNodeKey(document.sourceIndex(&element));
    node.id = element.id();
    if (element.isComment()) {
        node.image = 25;
        node.text = OneLine(element.data());
    } else if (element.is("a")) {
        DescribeAnchor(element, node);
    } else if (element.is("img")) {
        node.image = element.getAttribute("dynsrc").empty() ? 41 : 53;
        node.text = ImageFile(element);
    } else if (element.is("input")) {
        Look(kInputs, ToLower(element.getAttribute("type")), element, node);
    } else {
        Look(kKinds, element.localName(), element, node);
    }
    const bool bodyLike = element.is("body") || element.is("frameset");
    if (node.text.empty() || bodyLike) node.text = "<" + element.tagName() + ">";
    node.text = WithoutPreviewFolder(context, std::move(node.text));
    return node;
}

}  // namespace pw
