#include "cli/Arguments.h"

#include <algorithm>

namespace pw::cli {

Arguments ParseArguments(const std::vector<std::string>& words, const std::vector<Option>& known) {
    Arguments arguments;
    bool isOperandsOnly = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (isOperandsOnly || word.size() < 2 || word[0] != '-') {
            arguments.operands.push_back(word);
            continue;
        }
        if (word == "--") {
            isOperandsOnly = true;
            continue;
        }
        const auto equals = std::min(word.find('='), word.size());
        const std::string name = word.substr(0, equals);
        const auto option = std::find_if(known.begin(), known.end(),
                                         [&](const Option& each) { return name == each.name; });
        if (option == known.end()) throw UsageError{"There is no option " + name + " here."};
        const bool hasValue = equals < word.size();
        if (!option->value) {
            if (hasValue) throw UsageError{"The option " + name + " takes no value."};
            arguments.options[name].push_back("");
        } else if (hasValue) {
            arguments.options[name].push_back(word.substr(equals + 1));
        } else if (i + 1 < words.size()) {
            arguments.options[name].push_back(words[++i]);
        } else {
            throw UsageError{"The option " + name + " needs a value: " + name + " " +
                             option->value + "."};
        }
    }
    return arguments;
}

}  // namespace pw::cli
