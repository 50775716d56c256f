#pragma once
// The commands of pagewick-cli, one table.
#include <span>
#include <string>
#include <vector>

#include "cli/Arguments.h"

namespace pw::cli {

/** What a command is run with. */
struct Invocation {
    std::string profile;  ///< native path or ""
    Arguments arguments;  ///< the first operand is the project file
    const std::string& ProjectFile() const { return arguments.operands.front(); }
    /** The operands behind the project file. */
    std::vector<std::string> Rest() const {
        return {arguments.operands.begin() + 1, arguments.operands.end()};
    }
};

struct Command {
    const char* name;
    const char* usage;    ///< behind the command's name
    const char* summary;  ///< one line
    const char* details;  ///< further lines of the help, each ended
    std::size_t fewestOperands;
    std::size_t mostOperands;
    std::vector<Option> options;
    void (*run)(const Invocation&);  ///< throws CommandFailure and UsageError
};

constexpr std::size_t kAnyNumber = 1'000'000;

const std::vector<Command>& Commands();

void RunNew(const Invocation& invocation);
void RunAdd(const Invocation& invocation);
void RunList(const Invocation& invocation);
void RunLinks(const Invocation& invocation);
void RunInfo(const Invocation& invocation);
void RunCat(const Invocation& invocation);
void RunSet(const Invocation& invocation);
void RunVariable(const Invocation& invocation);
void RunTasks(const Invocation& invocation);
void RunRename(const Invocation& invocation);
void RunRemove(const Invocation& invocation);
void RunPublish(const Invocation& invocation);

/** "Name, Description, …" for the help of `set`. */
std::string SettableNames();

}  // namespace pw::cli
