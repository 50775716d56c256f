#include "editing/ElementRecognition.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "frame/Context.h"
#include "frame/FileTools.h"
#include "platform/Text.h"
#include "platform/dom/TextRange.h"
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

/** Runs `edit` on a page's document; that of a closed page is written back. */
template <typename Edit>
bool EditAnyPage(ProjectContext& context, const std::string& key, Edit edit) {
    Page* page = context.project.FindPage(key);
    if (!page) return false;
    bool done = false;
    if (dom::Document* open = DocumentOf(context, key)) {
        done = edit(*open);
    } else if (FileExists(context.frame.files, page->Filename)) {
        const auto closed = dom::Document::parse(ReadTextFile(context.frame.files, page->Filename));
        done = closed && edit(*closed) &&
               WriteTextFile(context.frame.files, closed->bytes(), page->Filename);
    }
    if (!done) return false;
    page->IsDirty = true;
    context.project.IsDirty = true;
    return true;
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

void InsertComment(ProjectContext& context, const std::string& text) {
    Trap(context.frame.errorLog, kModule, "InsertComment", [&] {
        const std::string key = context.workspace.CurrentPageKey();
        dom::Node* element = GetElementAtCaret(context, key);
        dom::Document* document = DocumentOf(context, key);
        if (!element || !document) return;
        // Two hyphens would end the comment in the middle of its text.
        dom::Node* comment = document->createComment(ReplaceAll(text, "--", "- -"));
        const bool insideOnly = element->is("body") || element->is("html");
        document->insertAdjacentElement(*element, insideOnly ? "beforeEnd" : "afterEnd", *comment);
        if (context.frame.settings.ShowCommentsInExplorer) {
            context.workspace.UpdatePageExplorer(key);
        }
    });
}

void InsertScript(ProjectContext& context, const std::string& key, ScriptPlace place,
                  const ScriptText& script) {
    Trap(context.frame.errorLog, kModule, "InsertScript", [&] {
        const bool done = EditAnyPage(context, key, [&](dom::Document& document) {
            dom::Node* body = document.body();
            if (!body) return false;
            dom::Node* caret = document.elementAtCaret();
            const dom::Document::Step step(document);
            dom::Node* element = document.createElement("script");
            const auto set = [&](const char* name, const std::string& value) {
                if (!value.empty()) document.setAttribute(*element, name, value);
            };
            set("src", script.source);
            set("type", script.type);
            if (script.defer) document.setAttribute(*element, "defer", "");
            set("id", script.id);
            if (!script.text.empty()) {
                document.insertNode(*element, *document.createText(script.text), nullptr);
            }
            if (place == ScriptPlace::Head) {
                document.insertAdjacentElement(*body, "beforeBegin", *element);
            } else if (caret && !caret->is("body") && !caret->is("html")) {
                document.insertAdjacentElement(*caret, "afterEnd", *element);
            } else {
                document.insertAdjacentElement(*body, "beforeEnd", *element);
            }
            return true;
        });
        if (done && context.frame.settings.ShowCommentsInExplorer &&
            context.workspace.FindOpenPage(key)) {
            context.workspace.UpdatePageExplorer(key);
        }
    });
}

}  // namespace pw
