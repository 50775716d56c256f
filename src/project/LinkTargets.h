#pragma once
// The frames of a project that a link can aim at.
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/Controls.h"
#include "project/ProjectContext.h"

namespace pw {

/** Fills the tree with every named frame, below the pages and folders that lead to it. The tag of a
 *  frame's node is "1", of any other "0"; a frame's key is its page's key and its name. */
void BuildTargetsList(TreeView& tree, ProjectContext& context);

/** Names of the frames of a frame page, masked or not, in their order: of those in its frameset,
 * and of those in the text. */
std::vector<std::string> FrameNames(std::string_view html);

}  // namespace pw
