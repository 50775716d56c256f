#pragma once
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/dom/Document.h"

namespace pw {

/** The attribute by which elements of that tag (in any case) lead to another page or file, such as
 *  "href" for "A"; "" for tags that lead nowhere. */
std::string_view LinkAttributeOf(std::string_view tag);

/** Calls `visit` with the value of every attribute that leads somewhere, external ones and
 * refreshes among them, in the order of a page's text. Reads the tags alone, without parsing the
 * page. */
void ForEachLink(std::string_view html, const std::function<void(const std::string&)>& visit);

/**
 * Calls `rewrite` with the value of every attribute that leads to another page or
 * file (links, frames, targets of forms, refreshes; not pictures and other media), and sets what it
 * answers. Elements that `skip` names are passed over.
 */
void RewriteLinkAttributes(
    dom::Document& document,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite,
    bool (*skip)(const dom::Node&) = nullptr);

}  // namespace pw
