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

/** Brings the variables in a document up to date; the number of anchors that changed. */
int UpdateMergeVariablesOnThisPage(ProjectContext& context, dom::Document& document);

enum class PagesToUpdate { All, ClosedOnly };
/** Only files whose variables changed are written, and only those that hold one with another text
 *  are parsed. Returns the names of pages that could not be brought up to date. */
std::vector<std::string> UpdateMergeVariablesInClosedPages(ProjectContext& context,
                                                           PagesToUpdate which);
/** As an undo step of each page whose variables changed. */
void UpdateMergeVariablesInOpenPages(ProjectContext& context);
/** In open and closed pages; tells the user under that title when some could not be written. */
void UpdateMergeVariablesInAllPages(ProjectContext& context, const std::string& title);

/** `type` is "S" for the standard and "C" for the custom ones. */
void RemoveVariablesOfType(ProjectContext& context, std::string_view type);

/** Text as markup, line ends as <br>. */
std::string EscapeHTML(std::string_view text);

}  // namespace pw
