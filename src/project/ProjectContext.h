#pragma once
// What the routines of the project floor work on. They are free functions in namespace pw that take
// this by reference; the error log knows them under "ProjectFunctions.".
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/ProjectLock.h"
#include "project/FileUses.h"
#include "project/JournalState.h"
#include "project/References.h"

namespace pw {

struct FrameContext;
class Project;
class Workspace;

struct ProjectContext {
    FrameContext& frame;   ///< settings, files, clock, dialogs, error log
    Project& project;      ///< the one project of the program
    Workspace& workspace;  ///< status line, open pages, explorers

    /** The hosting provider that the project goes to, as its profile tells; empty without one. */
    struct Provider {
        std::string Name;
        std::string WebAddress;
    } provider;

    /** Pages cut or copied in the project explorer: the program's own clipboard. */
    struct CopiedPage {
        std::string file;  ///< path of a copy that stays until the next one is taken
        std::string title;
        std::string folder;     ///< where the page lay: what its references are relative to
        bool isCut = false;     ///< the page itself is gone, and its name with it
        bool isPasted = false;  ///< at least once
        bool isDefault = false;
        std::string description;
        std::string keywords;
        /** Files that the page listed; copies of them lie beside that of the page. */
        struct ListedFile {
            std::string path;  ///< where it lay
            int origin = 0;
            std::string description;
        };
        std::vector<ListedFile> files;
        bool empty() const { return file.empty(); }
    } copiedPage;

    /** Pages and folders that have got another name or place since the project was opened, in turn:
     *  what an undo brings back in an open page can be older. */
    std::vector<Move> moves;

    /** On the file of the open project; none for one that was never saved. */
    std::unique_ptr<ProjectLock> lock;
    std::string lockedFile;  ///< real path of that file
    JournalState journal;    ///< what a crash would leave to recover from
    FileUses uses;           ///< what pages and style sheets refer to
};

}  // namespace pw
