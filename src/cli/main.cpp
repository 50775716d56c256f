// pagewick-cli: works on project files without a display.
#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/Session.h"
#include "frame/Versions.h"

namespace pw::cli {
namespace {

enum ExitCode { Done = 0, Failed = 1, WrongUsage = 2 };

const std::vector<Option> kGlobalOptions = {
    {"--profile", "DIR", "keep settings and temporary files in DIR, apart from your own"},
    {"--help", nullptr, "show help"},
    {"--version", nullptr, "show the version"},
};

const Command* FindCommand(const std::string& name) {
    const auto& commands = Commands();
    const auto at = std::find_if(commands.begin(), commands.end(),
                                 [&](const Command& each) { return name == each.name; });
    return at == commands.end() ? nullptr : &*at;
}

void PrintOptions(std::ostream& out, const std::vector<Option>& options) {
    for (const auto& option : options) {
        std::string left = option.name;
        if (option.value) left += std::string(" ") + option.value;
        left.resize(std::max<std::size_t>(left.size() + 2, 18), ' ');
        out << "  " << left << option.help << "\n";
    }
}

void PrintHelp(std::ostream& out) {
    out << "Usage: pagewick-cli [--profile DIR] COMMAND PROJECT.pwp ...\n\n"
           "Works on web site projects without a display.\n\nCommands:\n";
    for (const auto& command : Commands()) {
        std::string name = command.name;
        name.resize(10, ' ');
        out << "  " << name << command.summary << "\n";
    }
    out << "\nOptions:\n";
    PrintOptions(out, kGlobalOptions);
    out << "\n`pagewick-cli COMMAND --help` tells more about a command.\n"
           "Exit codes: 0 done, 1 failed, 2 wrong usage.\n";
}

void PrintHelp(std::ostream& out, const Command& command) {
    out << "Usage: pagewick-cli [--profile DIR] " << command.name << " " << command.usage << "\n\n"
        << command.summary << "\n";
    const std::string details = command.details ? command.details : SettableNames();
    if (!details.empty()) out << "\n" << details;
    out << "\nOptions:\n";
    PrintOptions(out, command.options);
    PrintOptions(out, {kGlobalOptions[0], kGlobalOptions[1]});
    out << "\nExit codes: 0 done, 1 failed, 2 wrong usage.\n";
}

/** The command's name is the first word that is no option and no value of one. */
std::size_t PlaceOfCommand(const std::vector<std::string>& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--profile") {
            ++i;
        } else if (words[i].empty() || words[i][0] != '-') {
            return i;
        }
    }
    return words.size();
}

int RunCommand(const Command& command, std::vector<std::string> words) {
    std::vector<Option> known = command.options;
    known.insert(known.end(), kGlobalOptions.begin(), kGlobalOptions.end());
    Invocation invocation;
    try {
        invocation.arguments = ParseArguments(words, known);
        if (invocation.arguments.Has("--help")) {
            PrintHelp(std::cout, command);
            return Done;
        }
        invocation.profile = invocation.arguments.Value("--profile");
        const std::size_t count = invocation.arguments.operands.size();
        if (count < command.fewestOperands) throw UsageError{"Something is missing."};
        if (count > command.mostOperands)
            throw UsageError{"'" + invocation.arguments.operands.back() + "' is too much."};
        command.run(invocation);
        return Done;
    } catch (const UsageError& error) {
        EndProgress();
        std::cerr << error.message << "\nUsage: pagewick-cli " << command.name << " "
                  << command.usage << "\n";
        return WrongUsage;
    } catch (const CommandFailure& failure) {
        EndProgress();
        if (!failure.message.empty()) std::cerr << failure.message << "\n";
        return Failed;
    } catch (const Interrupted& interrupted) {
        EndProgress();
        std::cerr << interrupted.what() << " The project is as it was.\n";
        return Failed;
    }
}

int Main(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = arguments;
    const std::size_t at = PlaceOfCommand(words);
    if (at == words.size()) {
        try {
            const Arguments only = ParseArguments(words, kGlobalOptions);
            if (only.Has("--version")) {
                std::cout << "pagewick-cli " << GetVersionString() << "\n";
                return Done;
            }
            PrintHelp(only.Has("--help") ? std::cout : std::cerr);
            return only.Has("--help") ? Done : WrongUsage;
        } catch (const UsageError& error) {
            std::cerr << error.message << "\n`pagewick-cli --help` lists the options.\n";
            return WrongUsage;
        }
    }
    const std::string name = words[at];
    words.erase(words.begin() + long(at));
    if (name == "help") {
        const Command* about = words.size() > at ? FindCommand(words[at]) : nullptr;
        if (about) {
            PrintHelp(std::cout, *about);
        } else {
            PrintHelp(std::cout);
        }
        return Done;
    }
    const Command* command = FindCommand(name);
    if (!command) {
        std::cerr << "There is no command '" << name
                  << "'. `pagewick-cli --help` lists the commands.\n";
        return WrongUsage;
    }
    return RunCommand(*command, words);
}

}  // namespace
}  // namespace pw::cli

int main(int count, char** values) {
    pw::cli::WatchForInterrupts();
    try {
        return pw::cli::Main(std::vector<std::string>(values + 1, values + count));
    } catch (const std::exception& problem) {
        std::cerr << "pagewick-cli: " << problem.what() << "\n";
        return 1;
    }
}
