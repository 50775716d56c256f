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
         "The project is named after its file unless a name is given. A file name that does not "
         "end\n"
         "in .pwp gets it, and is then printed. A file that exists is not overwritten.\n",
         1,
         1,
         {{"--name", "NAME", "the project's name"}},
         RunNew},
        {"add",
         "PROJECT.pwp PATH... [--folder KEY] [--with-files-from DIR]...",
         "Take HTML pages into a project.",
         "Each PATH is a page or a folder. Of a folder all pages are taken, and its sub-folders\n"
         "become project folders. Pictures, style sheets and scripts that the pages use come\n"
         "along, and links among the pages added together keep working though pages get new\n"
         "names. A page named index becomes the default page where there is none.\n"
         "What lies outside of the folder PATH, or is hidden, stays behind; of a page that is "
         "named\n"
         "by itself, so does what its tags are not for. It is told, and the page keeps the "
         "address\n"
         "as it is written. --with-files-from takes such files along.\n"
         "Pages that can not be taken in are reported and left out; the rest is added all the\n"
         "same, and the exit code is 1.\n",
         2,
         kAnyNumber,
         {{"--folder", "KEY", "add below this folder; `list` tells the keys"},
          {"--with-files-from", "DIR", "let pages bring files from there too; may be repeated"}},
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
        {"links",
         "PROJECT.pwp [--json]",
         "List the links of all pages and tell whether they stand.",
         "One link a line: key of the page, its file, the target as written, state, separated by\n"
         "tabs. A link to a file of the site \"stands\" when the file is there, and one to a\n"
         "bookmark when the page has it; otherwise it is \"missing\". Addresses of the web and "
         "the\n"
         "like are \"not tested\".\n",
         1,
         1,
         {{"--json", nullptr, kJsonHelp}},
         RunLinks},
        {"tasks",
         "PROJECT.pwp [--json]",
         "List the tasks of a project.",
         "One task a line: name, priority, status, who is to do it, day by which it is to be\n"
         "complete, separated by tabs.\n",
         1,
         1,
         {{"--json", nullptr, kJsonHelp}},
         RunTasks},
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
        {"variable",
         "PROJECT.pwp [NAME=VALUE...] [--json]",
         "List the merge variables, or make and change custom ones.",
         "Without NAME=VALUE one variable a line: standard or custom, name, value, separated by\n"
         "tabs. A new value is written into all pages that show it. Standard variables show the\n"
         "properties of the project, which `set` changes.\n",
         1,
         kAnyNumber,
         {{"--json", nullptr, kJsonHelp}},
         RunVariable},
        {"rename",
         "PROJECT.pwp KEY NEWNAME [--title] [--keep-bookmarks]",
         "Give the file of a page, or a folder, another name.",
         "All links in the project that lead to a page follow it; those to a bookmark in it lead\n"
         "to the page itself then, and how many did so is printed. A name without an extension\n"
         "gets .htm. A folder is renamed on disk too, and every reference that leads through it\n"
         "follows.\n",
         3,
         3,
         {{"--title", nullptr, "change the title of a page and leave its file alone"},
          {"--keep-bookmarks", nullptr,
           "links must mean the very file, and keep their bookmarks and queries"}},
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
         "path of that folder is printed. Links that lead nowhere are named on the error output.\n",
         1,
         1,
         {{"--html", "DIR", "where to; made when it is missing"}},
         RunPublish},
    };
    return commands;
}

}  // namespace pw::cli
