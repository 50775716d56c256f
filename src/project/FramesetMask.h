#pragma once
// The editing control can't show a frameset. A frame page therefore goes into it with its frameset
// in comments and comes out with the frameset restored. Its tags are those that a parser finds;
// they keep the case in which they were written.
//
//   <!-- <frameset …>…<!-- <noframes> -->  the page  <!-- </noframes> -->…<!-- end </frameset> -->
//
// One noframes is shown. The comments stand in front of the body and behind it, where no edit of
// the page reaches; a body that the page leaves open is closed in front of them ("</body><!-- body
// -->"). What can not be shown without touching the comments stays in the first one as a whole.
// Within a mask the end of a comment is spelled "--&gt;", and each such spelling gets an "amp;"
// more.
#include <optional>
#include <string>
#include <string_view>

namespace pw {

/** Puts the frameset, and the tags of its noframes, into comments. A page without a frameset comes
 *  back as it is, but for comments that look like masks: these say "own" then. */
std::string CommentFrameset(std::string_view html);

/** Takes them out of the comments again: CommentFrameset and this give back the very same text. */
std::string UncommentFrameset(std::string_view html);

/** The markup that a comment with this data ("<!--" and "-->" are no part of it) hides, as it
 * stands in the page: the frameset from its start on, up to the noframes that is shown, or what
 * follows that. None when the comment is no mask. */
std::optional<std::string> FramesetOfMask(std::string_view commentData);

/** The data of the comment that masks this markup: FramesetOfMask gives back the very same. */
std::string MaskOfFrameset(std::string_view frameset);

/** From the start of the frameset through its end, out of its comments; "" when either is missing.
 */
std::string ExtractFrameBlock(std::string_view html);

}  // namespace pw
