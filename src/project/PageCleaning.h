#pragma once
#include <string>
#include <string_view>

#include "platform/dom/Document.h"
#include "project/ProjectContext.h"

namespace pw {

/** Cleans the document of an edited page: pictures named by a path on disk get their virtual path,
 *  in one undo step. Nothing else changes. */
void CleanPage(ProjectContext& context, dom::Document& document, std::string_view pageKey);

/** Cleans the document and returns its text with CR LF line ends; its file keeps the line ends that
 *  it had. */
std::string UpdateHTML(ProjectContext& context, dom::Document& document, std::string_view pageKey);

}  // namespace pw
