#pragma once
#include <functional>
#include <optional>
#include <string>

#include "platform/dom/Document.h"

namespace pw {

/**
 * Calls `rewrite` with the value of every attribute that leads to another page or
 * file (links, frames, targets of forms, refreshes; not pictures and other media), and sets what it
 * answers.
 */
void RewriteLinkAttributes(
    dom::Document& document,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite);

}  // namespace pw
