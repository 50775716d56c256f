#pragma once
// Merge variables: named values of the project that appear in many pages and are kept up to date in
// all of them. In a page a variable is an anchor: <A type=omMerge name="Company Name">Acme</A>.
#include <string>
#include <string_view>

#include "platform/dom/Document.h"
#include "project/ProjectContext.h"

namespace pw {

/** Rebuilds the standard variables from the project's properties, behind the custom ones. */
void UpdateProjectMergeVariables(ProjectContext& context);

/** Brings the variables in a document up to date; the number of anchors that changed. */
int UpdateMergeVariablesOnThisPage(ProjectContext& context, dom::Document& document);

enum class PagesToUpdate { All, ClosedOnly };
/** Only files whose variables changed are written. False when some file could not be. */
bool UpdateMergeVariablesInClosedPages(ProjectContext& context, PagesToUpdate which);
void UpdateMergeVariablesInOpenPages(ProjectContext& context);

/** `type` is "S" for the standard and "C" for the custom ones. */
void RemoveVariablesOfType(ProjectContext& context, std::string_view type);

/** Text as markup, line ends as <br>. */
std::string EscapeHTML(std::string_view text);

}  // namespace pw
