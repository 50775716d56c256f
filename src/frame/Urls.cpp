#include "frame/Urls.h"

#include <charconv>

#include "platform/Text.h"

namespace pw {

namespace {

struct Scheme {
    const char* name;
    int port;
};
constexpr Scheme kSchemes[] = {{"http", 80}, {"https", 443}, {"ftp", 21}, {"file", 0}};

const Scheme* SchemeOf(std::string_view url) {
    for (const Scheme& scheme : kSchemes) {
        if (StartsWithNoCase(url, std::string(scheme.name) + "://")) return &scheme;
    }
    return nullptr;
}

}  // namespace

bool CrackURL(std::string_view url, UrlParts& parts) {
    parts = {};
    std::string text = Trim(url);
    if (!SchemeOf(text)) text = "http://" + text;
    const Scheme& scheme = *SchemeOf(text);
    parts.Scheme = scheme.name;
    parts.Port = scheme.port;

    std::string_view rest = std::string_view(text).substr(parts.Scheme.size() + 3);
    const auto authorityEnd = std::min(rest.find_first_of("/?#"), rest.size());
    std::string_view authority = rest.substr(0, authorityEnd);
    rest.remove_prefix(authorityEnd);

    if (const auto at = authority.rfind('@'); at != authority.npos) {
        const std::string_view login = authority.substr(0, at);
        const auto colon = std::min(login.find(':'), login.size());
        parts.User = PercentDecode(login.substr(0, colon));
        if (colon < login.size()) parts.Password = PercentDecode(login.substr(colon + 1));
        authority.remove_prefix(at + 1);
    }
    // The colons inside the brackets of a numeric address are no port's.
    const auto bracket = authority.rfind(']');
    const auto colon = authority.rfind(':');
    if (colon != authority.npos && (bracket == authority.npos || colon > bracket)) {
        const std::string_view digits = authority.substr(colon + 1);
        int port = 0;
        const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), port);
        const bool whole = read.ec == std::errc() && read.ptr == digits.data() + digits.size();
        if (!digits.empty() && (!whole || port < 1 || port > 65535)) return false;
        if (!digits.empty()) parts.Port = port;
        authority = authority.substr(0, colon);
    }
    parts.Host = std::string(authority);

    const auto extra = std::min(rest.find_first_of("?#"), rest.size());
    parts.Path = std::string(rest.substr(0, extra));
    parts.Extra = std::string(rest.substr(extra));
    return parts.Scheme == "file" ? !parts.Path.empty() : !parts.Host.empty();
}

}  // namespace pw
