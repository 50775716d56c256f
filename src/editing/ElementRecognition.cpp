#include "editing/ElementRecognition.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"
#include "platform/dom/RangeEdit.h"
#include "platform/dom/Tags.h"
#include "platform/dom/TextRange.h"
#include "project/EditPage.h"
#include "project/PageInsertions.h"
#include "project/ProjectContext.h"
#include "project/Workspace.h"
#include "project/omProj/Project.h"

namespace pw {

namespace {

constexpr const char* kModule = "UIFunctions.";

dom::Document* DocumentOf(ProjectContext& context, const std::string& key) {
    OpenPage* page = context.workspace.FindOpenPage(key);
    if (!page) return nullptr;
    page->TakeOverEdits();
    return &page->Document();
}

dom::Node* WalkUp(dom::Node* element, std::string_view target) {
    while (element && !element->is(target) && !element->is("html"))
        element = element->parentElement();
    return element;
}

/** The element that new content goes behind: the one at the caret, unless that is the body itself
 * or lies outside of it. */
dom::Node* ElementToFollow(const dom::Document& document) {
    dom::Node* caret = document.elementAtCaret();
    const dom::Node* body = document.body();
    return caret && caret != body && body->contains(*caret) ? caret : nullptr;
}

void InsertBehindCaret(dom::Document& document, dom::Node& node) {
    if (dom::Node* caret = ElementToFollow(document)) {
        const dom::Position behind{caret->parent(), caret->index() + 1};
        dom::insertNodesAt(document, behind, {&node});
    } else {
        document.insertNode(*document.body(), node, nullptr);
    }
}

}  // namespace

dom::Node* GetElementAtCaret(ProjectContext& context, const std::string& key) {
    const dom::Document* document = DocumentOf(context, key);
    return document ? document->elementAtCaret() : nullptr;
}

dom::Node* GetValidElement(dom::Node* element) {
    static constexpr const char* kTexts[] = {"p", "font", "strong", "b", "em", "i", "u"};
    if (!element) return nullptr;
    if (element->is("tr")) return WalkUp(element, "table");
    const bool text = std::any_of(std::begin(kTexts), std::end(kTexts),
                                  [element](const char* tag) { return element->is(tag); });
    return text ? WalkUp(element, "td") : element;
}

dom::Node* GetParentElement(dom::Document& document, const dom::Node* element,
                            std::string_view tagName) {
    if (!element) return nullptr;
    const auto& all = document.all();
    int index = document.sourceIndex(element);
    if (index < 0 || index >= int(all.size())) return nullptr;
    if (tagName.empty()) --index;
    for (; index >= 0; --index) {
        dom::Node* item = all[std::size_t(index)];
        const bool matches =
            tagName.empty() ? IsExplorerElement(item) : EqualsNoCase(item->tagName(), tagName);
        if (matches) return item;
    }
    return nullptr;
}

bool IsExplorerElement(const dom::Node* element) {
    static constexpr std::string_view kTags[] = {
        "a",     "applet",  "body",   "comment", "div",    "form", "frame", "frameset", "hr", "img",
        "input", "marquee", "object", "script",  "select", "span", "table", "textarea", "tr"};
    if (!element) return false;
    if (element->isComment()) return true;
    return std::binary_search(std::begin(kTags), std::end(kTags),
                              std::string_view(element->localName()));
}

Selecting HowSelected(const dom::Node& element) {
    static constexpr std::string_view kWithoutBox[] = {
        "area",     "base",  "col",    "colgroup", "comment", "datalist", "frame",    "frameset",
        "head",     "html",  "link",   "map",      "meta",    "noframes", "noscript", "option",
        "optgroup", "param", "script", "source",   "style",   "template", "title",    "track"};
    static constexpr std::string_view kObjects[] = {
        "applet", "audio",   "button", "canvas", "embed", "hr",       "iframe", "img",
        "input",  "marquee", "object", "select", "table", "textarea", "video"};
    const auto isAmong = [&](const auto& tags) {
        return std::any_of(std::begin(tags), std::end(tags),
                           [&](auto tag) { return element.is(tag); });
    };
    const bool isHidden =
        element.is("input") && EqualsNoCase(element.getAttribute("type"), "hidden");
    if (!element.isElement() || isHidden || isAmong(kWithoutBox)) return Selecting::Nothing;
    return isAmong(kObjects) || dom::isVoid(element) ? Selecting::Object : Selecting::Text;
}

void SelectElement(dom::Document& document, dom::Node& element) {
    dom::Selection selection;
    const dom::Position begin{element.parent(), element.index()};
    const dom::Position end{element.parent(), element.index() + 1};
    switch (HowSelected(element)) {
        case Selecting::Nothing:
            return;
        case Selecting::Object:
            selection = {dom::SelectionType::Control, begin, end, &element};
            break;
        case Selecting::Text: {
            const auto isCell = [](const dom::Node* node) {
                return node->is("td") || node->is("th");
            };
            dom::Node* first = &element;
            dom::Node* last = &element;
            if (element.is("tr")) {
                const auto cells = element.children();
                const auto from = std::find_if(cells.begin(), cells.end(), isCell);
                if (from == cells.end()) return;
                first = *from;
                last = *std::find_if(cells.rbegin(), cells.rend(), isCell);
            }
            selection = {
                dom::SelectionType::Text, {first, 0}, {last, last->children().size()}, nullptr};
            if (IsMergeSpan(element)) selection = {dom::SelectionType::Text, begin, end, nullptr};
            break;
        }
    }
    document.setSelection(selection);
}

bool IsMergeSpan(const dom::Node& element) {
    return EqualsNoCase(element.getAttribute("type"), "omMerge");
}

std::string GetElementTypeName(const dom::Node* element) {
    using Name = std::pair<std::string_view, const char*>;
    static constexpr Name kNames[] = {
        {"applet", "Java Applet"},
        {"body", "Page"},
        {"comment", "Comment"},
        {"form", "Form"},
        {"hr", "Line"},
        {"marquee", "Marquee"},
        {"object", "ActiveX Control"},
        {"script", "Script"},
        {"select", "List Box"},
        {"tr", "Table"},
        {"table", "Table"},
        {"tbody", "Table"},
        {"td", "Table Cell"},
        {"th", "Table Cell"},
        {"textarea", "Scrolling Textbox"},
    };
    static constexpr Name kInputs[] = {
        {"checkbox", "Checkbox"},   {"file", "Text Box"},        {"hidden", "Text Box"},
        {"password", "Text Box"},   {"text", "Text Box"},        {"image", "Image Button"},
        {"radio", "Option Button"}, {"reset", "Command Button"}, {"submit", "Command Button"},
    };
    const auto look = [](const auto& table, std::string_view what) {
        const auto at = std::find_if(std::begin(table), std::end(table),
                                     [what](const Name& name) { return name.first == what; });
        return std::string(at == std::end(table) ? "" : at->second);
    };
    if (!element) return {};
    if (element->isComment()) return "Comment";
    if (element->is("a")) {
        if (IsMergeSpan(*element)) return "Merge Variable";
        return element->getAttribute("href").empty() ? "Bookmark" : "Link";
    }
    if (element->is("img")) return element->getAttribute("dynsrc").empty() ? "Image" : "Video";
    if (element->is("input")) return look(kInputs, ToLower(element->getAttribute("type")));
    return look(kNames, element->localName());
}

void InsertHTMLAtCursor(ProjectContext& context, const std::string& key, const std::string& html) {
    Trap(context.frame.errorLog, kModule, "InsertHTMLAtCursor", [&] {
        dom::Document* document = DocumentOf(context, key);
        if (!document) return;
        const dom::SelectionType selected = document->selection().type;
        if (selected == dom::SelectionType::Control) {
            context.frame.dialogs.MsgBox(
                {"Nothing was inserted because an object is selected.\n\n"
                 "Please click where the new content is to stand and try again.",
                 context.frame.brand.FormCaption(), Icon::Information, Buttons::Ok});
            return;
        }
        dom::TextRange range = dom::TextRange::fromSelection(*document);
        if (selected == dom::SelectionType::None) {
            const dom::Position start = dom::TextRange(*document).start();
            range = dom::TextRange(*document, start, start);
            range.select();
        }
        range.pasteHTML(html);
    });
}

Outcome<void> InsertComment(ProjectContext& context, const std::string& text) {
    const std::string key = context.workspace.CurrentPageKey();
    Page* page = context.project.FindPage(key);
    const dom::Document* document = DocumentOf(context, key);
    if (!page || !document || !document->elementAtCaret())
        return Problem{
            "There is no place for the comment. Please open a page and put the caret "
            "where it is to stand."};
    // Two hyphens would end the comment in the middle of its text.
    std::string data = text;
    while (data.find("--") != data.npos)
        data = ReplaceAll(data, "--", "- -");
    if (data.ends_with('-')) data += ' ';
    const auto edited = EditPage(context, *page, PageStep::OfTheUser, [&](dom::Document& page) {
        if (!CanHoldInsertions(page)) throw Failure("it has no body");
        dom::Node* comment = page.createComment(data);
        InsertBehindCaret(page, *comment);
        if (!ReadsBack(page, *comment)) throw Failure("the comment would not stay one");
    });
    if (!edited) return Problem{edited.problem()};
    if (context.frame.settings.ShowCommentsInExplorer) context.workspace.UpdatePageExplorer(key);
    return {};
}

Outcome<void> InsertScript(ProjectContext& context, const std::string& key, ScriptPlace place,
                           const ScriptText& script) {
    Page* page = context.project.FindPage(key);
    if (!page) return Problem{"The page for the script does not exist."};
    const auto edited = EditPage(context, *page, PageStep::OfTheUser, [&](dom::Document& page) {
        if (!CanHoldInsertions(page)) throw Failure("it has no body");
        dom::Node* element = page.createElement("script");
        const auto set = [&](const char* name, const std::string& value) {
            if (!value.empty()) page.setAttribute(*element, name, value);
        };
        set("src", script.source);
        set("type", script.type);
        if (script.defer) page.setAttribute(*element, "defer", "");
        set("id", script.id);
        if (!script.text.empty()) page.insertNode(*element, *page.createText(script.text), nullptr);
        if (place == ScriptPlace::Head)
            page.insertNode(*page.head(), *element, nullptr);
        else
            InsertBehindCaret(page, *element);
        if (!ReadsBack(page, *element)) throw Failure("the script would not stay one");
    });
    if (!edited) return Problem{edited.problem()};
    if (!*edited) return Problem{"The file of page " + QuoteSingle(page->Name) + " is missing."};
    if (context.frame.settings.ShowCommentsInExplorer && context.workspace.FindOpenPage(key))
        context.workspace.UpdatePageExplorer(key);
    return {};
}

}  // namespace pw
