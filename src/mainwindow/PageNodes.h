#pragma once
// What the page explorer shows of an element.
#include <string>

#include "platform/controls/Controls.h"
#include "platform/dom/Document.h"

namespace pw {

struct FrameContext;

/** "E" and the element's place in the source. */
std::string PageNodeKey(int sourceIndex);
/** Comments only where the settings ask for them. */
bool IsShownInExplorer(const FrameContext& context, const dom::Node& element);
/** Key, text and picture; the id is the element's number, which stays when others come and go. */
TreeNode MakePageNode(const FrameContext& context, const dom::Document& document,
                      const dom::Node& element);

}  // namespace pw
