#pragma once
// The arguments of a command, taken apart.
#include <map>
#include <string>
#include <vector>

namespace pw::cli {

/** A mistake in the command line: told with a pointer to the help, exit code 2. */
struct UsageError {
    std::string message;
};

struct Option {
    const char* name;   ///< with its dashes
    const char* value;  ///< what stands behind it, such as "DIR"; none for a switch
    const char* help;
};

struct Arguments {
    std::vector<std::string> operands;
    std::map<std::string, std::vector<std::string>> options;  ///< values in their order

    bool Has(const std::string& option) const { return options.count(option) > 0; }
    /** The last one counts. */
    std::string Value(const std::string& option, const std::string& otherwise = {}) const {
        const auto at = options.find(option);
        return at == options.end() ? otherwise : at->second.back();
    }
    /** Of an option that may be repeated. */
    std::vector<std::string> Values(const std::string& option) const {
        const auto at = options.find(option);
        return at == options.end() ? std::vector<std::string>() : at->second;
    }
};

/** Everything behind "--" is an operand. `known` options may stand anywhere, also as
 *  "--name=value". Throws UsageError. */
Arguments ParseArguments(const std::vector<std::string>& words, const std::vector<Option>& known);

}  // namespace pw::cli
