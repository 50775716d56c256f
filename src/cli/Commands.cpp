#include "cli/Commands.h"

namespace pw::cli {

namespace {

constexpr const char* kJsonHelp = "print JSON in place of plain text";

}  // namespace

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"new",
         "PROJECT.pwp [--name NAME]",
         "Make a new project without pages.",
         "The project is named after its file unless a name is given. A file that exists is not\n"
         "overwritten.\n",
         1,
         1,
         {{"--name", "NAME", "the project's name"}},
         RunNew},
        {"add",
         "PROJECT.pwp PATH... [--folder KEY]",
         "Take HTML pages into a project.",
         "Each PATH is a page or a folder. Of a folder all pages are taken, and its sub-folders\n"
         "become project folders. Pictures, style sheets and scripts that the pages use come\n"
         "along, and links among the pages added together keep working though pages get new\n"
         "names. A page named index becomes the default page where there is none.\n"
         "Pages that can not be taken in are reported and left out; the rest is added all the\n"
         "same, and the exit code is 1.\n",
         2,
         kAnyNumber,
         {{"--folder", "KEY", "add below this folder; `list` tells the keys"}},
         RunAdd},
        {"list",
         "PROJECT.pwp [--json]",
         "List the folders and pages of a project.",
         "One item a line: key, file relative to the project, title, separated by tabs. The file\n"
         "of a folder ends with a slash.\n",
         1,
         1,
         {{"--json", nullptr, kJsonHelp}},
         RunList},
        {"info",
         "PROJECT.pwp [--json]",
         "Show the properties of a project.",
         "",
         1,
         1,
         {{"--json", nullptr, kJsonHelp}},
         RunInfo},
        {"cat",
         "PROJECT.pwp KEY",
         "Print the HTML of a page, byte for byte.",
         "",
         2,
         2,
         {},
         RunCat},
        {"set",
         "PROJECT.pwp NAME=VALUE...",
         "Change properties of a project.",
         nullptr,  // the names, from their table
         2,
         kAnyNumber,
         {},
         RunSet},
        {"rename",
         "PROJECT.pwp KEY NAME",
         "Give a folder or a page another name.",
         "A folder is renamed on disk too, which can break links that lead into it. The name of a\n"
         "page is its title.\n",
         3,
         3,
         {},
         RunRename},
        {"remove",
         "PROJECT.pwp KEY...",
         "Remove pages, and folders with all below them.",
         "",
         2,
         kAnyNumber,
         {},
         RunRemove},
        {"publish",
         "PROJECT.pwp --html DIR",
         "Write the site as plain files.",
         "The site is written into a folder below DIR that bears the project's name, and the\n"
         "path of that folder is printed.\n",
         1,
         1,
         {{"--html", "DIR", "where to; made when it is missing"}},
         RunPublish},
    };
    return commands;
}

}  // namespace pw::cli
