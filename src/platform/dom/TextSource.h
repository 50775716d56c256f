#pragma once
// Changing part of a text in the bytes that it is written with, so that all bytes in front of the
// change and behind it stay: references, line ends and all.
#include <string>
#include <string_view>

#include "platform/dom/Node.h"

namespace pw::dom {

struct SourceSplice {
    std::size_t offset = 0;
    std::string removed;
    std::string inserted;
};

/** What has to be done to `source`, the bytes of `node`, when `removed` bytes of its text at
 *  `offset` are replaced by `inserted`. Called before the change. */
SourceSplice spliceSource(std::string_view source, const Node& node, std::size_t offset,
                          std::size_t removed, std::string_view inserted, std::string_view lineEnd);

}  // namespace pw::dom
