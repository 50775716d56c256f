#pragma once
// Merge variables: named values of the project that appear in many pages and are kept up to date in
// all of them. In a page a variable is an anchor: <A type=omMerge name="Company Name">Acme</A>.
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Document.h"
#include "project/ProjectContext.h"

namespace pw {

/** Of the custom variables; the standard ones come on top. */
constexpr int kMostCustomVariables = 100;

/** True for the name, in any case, of one that shows a property of the project. */
bool IsStandardVariable(std::string_view name);
/** What is wrong with the name of a custom variable, as a sentence for the user; "" when nothing
 *  is. Whether it is taken is another matter. */
std::string VariableNameProblem(std::string_view name);
/** Makes a custom variable or changes the one of that name; both texts are trimmed, and line ends
 *  become CR LF. Returns why it can't be, as a sentence for the user, or "". */
std::string SetCustomVariable(ProjectContext& context, std::string_view name,
                              std::string_view value);
/** The anchor for a page. */
std::string VariableMarkup(std::string_view name, std::string_view value);

/** Rebuilds the standard variables from the project's properties, behind the custom ones. */
void UpdateProjectMergeVariables(ProjectContext& context);

struct VariableValue {
    std::string name;
    std::string value;
    bool operator==(const VariableValue&) const = default;
};
/** Gives the project these variables in place of all of that type, at the end of the list. What
 * those of the same name showed before is remembered: pages may still show it. */
void ReplaceVariablesOfType(ProjectContext& context, std::string_view type,
                            const std::vector<VariableValue>& wanted);

struct VariablesOnPage {
    int changed = 0;
    std::vector<std::string> left;  ///< names of variables whose anchors can't be written
};
/**
 * Brings the variables in a document up to date. A value takes the place of what its anchor holds;
 * but where that begins or ends with the value, or with one that the variable had before, and goes
 * on, the rest is moved out beside the anchor first. An anchor that holds blocks, or that the
 * parser had to close, is left as it is.
 */
VariablesOnPage UpdateMergeVariablesOnThisPage(ProjectContext& context, dom::Document& document);

struct VariablesInPages {
    std::vector<std::string> notUpdated;  ///< names of pages that could not be written
    std::vector<std::string> problems;    ///< why, in the same order
    std::vector<std::string> left;        ///< "'Slogan' on page 'Home'"
};
/** In open pages, which is no undo step of theirs, and in the files of closed ones. Only files
 * whose variables changed are written, and only those that hold one with another text are parsed.
 */
VariablesInPages UpdateMergeVariablesInPages(ProjectContext& context);
/** What became of those in `left`, for the user; "" when there are none. */
std::string LeftVariables(const VariablesInPages& update);
/** As UpdateMergeVariablesInPages; tells the user under that title what could not be done. */
void UpdateMergeVariablesInAllPages(ProjectContext& context, const std::string& title);

/** `type` is "S" for the standard and "C" for the custom ones. */
void RemoveVariablesOfType(ProjectContext& context, std::string_view type);

/** Text as markup, line ends as <br>. */
std::string EscapeHTML(std::string_view text);

}  // namespace pw
