#pragma once
// Changing part of a text in the bytes that it is written with, so that all bytes in front of the
// change and behind it stay: references, line ends and all.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Node.h"

namespace pw::dom {

/** Begins the bytes of a text of a foreign element in which neither tags nor references are read.
 */
inline constexpr std::string_view kCDataBegin = "<![CDATA[";
inline constexpr std::string_view kCDataEnd = "]]>";

struct SourceSplice {
    std::size_t offset = 0;
    std::string removed;
    std::string inserted;
};

/** What has to be done to `source`, the bytes of `node`, when `removed` bytes of its text at
 *  `offset` are replaced by `inserted`. Called before the change. */
SourceSplice spliceSource(std::string_view source, const Node& node, std::size_t offset,
                          std::size_t removed, std::string_view inserted, std::string_view lineEnd);

/** Part of a text, in bytes. */
struct TextStretch {
    std::size_t offset = 0;
    std::size_t length = 0;
};

/** The bytes of a text node when `inserted` takes the place of each of these stretches (in order
 *  and apart) of its text; one pass, however many they are. None when what is left would read as
 *  something else: then they have to be replaced one by one. */
std::optional<std::string> replaceInSource(std::string_view source, const Node& node,
                                           const std::vector<TextStretch>& stretches,
                                           std::string_view inserted, std::string_view lineEnd);

/** As replaceInSource, for the text itself. */
std::string replaceInText(std::string_view text, const std::vector<TextStretch>& stretches,
                          std::string_view inserted);

}  // namespace pw::dom
