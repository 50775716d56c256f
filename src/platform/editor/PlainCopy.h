#pragma once
#include <string>
#include <unordered_set>

#include "platform/editor/Piece.h"

namespace pw {

/** An element from outside, alone, with those of its attributes that a page has a use for. Its id
 *  stays when it is among `targets`, the places that links lead to. */
Piece PlainCopy(const dom::Node& node, const std::unordered_set<std::string>& targets);

}  // namespace pw
