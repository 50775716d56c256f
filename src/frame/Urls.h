#pragma once
#include <string>
#include <string_view>

namespace pw {

struct UrlParts {
    std::string Scheme;  ///< lower case, without the colon
    std::string Host;
    int Port = 0;  ///< the scheme's own when the address names none; 0 for files
    std::string User;
    std::string Password;
    std::string Path;   ///< with its leading slash
    std::string Extra;  ///< query and fragment with their marks
};
/** "http://" is put in front of an address without a scheme. False when it has no host or path. */
bool CrackURL(std::string_view url, UrlParts& parts);

}  // namespace pw
