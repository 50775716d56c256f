#pragma once
// The editing control can't show a frameset. A frame page therefore goes into it with its frameset
// in comments and comes out with the frameset restored. Tags are found without regard to case and
// keep the case in which they were written.
#include <string>
#include <string_view>

namespace pw {

/** Puts the block from the first <frameset to the last </frameset>, and every noframes tag, into
 *  comments; the end of the frameset into one of its own where the tags in front of it have closed
 *  the first. A page without a frameset comes back as it is. */
std::string CommentFrameset(std::string_view html);

/** Takes them out of the comments again: CommentFrameset and this give back the very same text. */
std::string UncommentFrameset(std::string_view html);

/** From the first <frameset through the last </frameset>, out of its comments; "" when either is
 *  missing. */
std::string ExtractFrameBlock(std::string_view html);

}  // namespace pw
