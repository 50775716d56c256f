#pragma once
#include <string>
#include <string_view>

#include "platform/dom/Document.h"
#include "project/ProjectContext.h"

namespace pw {

/**
 * Cleans the document of an edited page and returns its text with CR LF line ends, as the source
 * view shows it. Pictures named by a path on disk get their virtual path, in one undo step; nothing
 * else in the document changes, so its file keeps the line ends that it had.
 */
std::string UpdateHTML(ProjectContext& context, dom::Document& document, std::string_view pageKey);

}  // namespace pw
