#pragma once
// Which element of a page is meant by a press or a caret, what it is called, and the ways in which
// dialogs and add-ins write into a page.
#include <string>
#include <string_view>

#include "platform/Outcome.h"
#include "platform/dom/Document.h"

namespace pw {

struct ProjectContext;

/** The element that holds the caret of an open page; none when the page is closed or has none. */
dom::Node* GetElementAtCaret(ProjectContext& context, const std::string& key);

/** The element that a dialog edits for this one: the table of a row, the cell of a text (or HTML
 *  where there is no cell), else the element itself. */
dom::Node* GetValidElement(dom::Node* element);

/** The nearest element in front of this one in source order: with a tag name the nearest of that
 *  tag, the element itself included; without one the nearest of those that the page explorer shows.
 *  It need not be an ancestor. */
dom::Node* GetParentElement(dom::Document& document, const dom::Node* element,
                            std::string_view tagName);

/** True for what the page explorer shows, comments among it. */
bool IsExplorerElement(const dom::Node* element);

/** How a press on the element's node in the page explorer selects it: the text that it holds, as an
 *  object, or not at all, as it has no box in the page. */
enum class Selecting { Text, Object, Nothing };
Selecting HowSelected(const dom::Node& element);
/** Selects it in that way; of a row, the text of its cells, and a merge variable with all it holds.
 */
void SelectElement(dom::Document& document, dom::Node& element);

bool IsMergeSpan(const dom::Node& element);
/** The word of captions and messages, such as "Table Cell"; "" for elements without one. */
std::string GetElementTypeName(const dom::Node* element);

/** Puts HTML in place of the selection of an open page, or at its start where nothing is selected.
 *  With an object selected as a whole nothing happens, and the user is told. */
void InsertHTMLAtCursor(ProjectContext& context, const std::string& key, const std::string& html);

/** Behind the element at the caret of the current page. Refuses what would not read back as that
 *  comment. */
Outcome<void> InsertComment(ProjectContext& context, const std::string& text);

enum class ScriptPlace { Head, Body };
struct ScriptText {
    std::string source;  ///< address of a file, or ""
    std::string text;
    std::string type;
    bool defer = false;
    std::string id;
};
/** Into any page of the project, open or closed; a closed one is written back. Refuses what would
 * not read back as that script. */
Outcome<void> InsertScript(ProjectContext& context, const std::string& key, ScriptPlace place,
                           const ScriptText& script);

}  // namespace pw
