#pragma once
// The way to a new web site.

namespace pw {

struct ProjectContext;

/** Makes a new project with one blank page in place of the open one, without asking about that.
 *  False, with a message to the user, when the page can't be made. */
bool RunKindlerun(ProjectContext& context);

}  // namespace pw
