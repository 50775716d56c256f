#pragma once
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace pw {

/**
 * Calls `rewrite` with every reference in CSS text, in url() and @import, and puts what it answers
 * in the place of the reference; nothing else changes. Comments and the
 * code of servers are passed over.
 */
std::string RewriteStyleReferences(
    std::string_view css,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite);

}  // namespace pw
