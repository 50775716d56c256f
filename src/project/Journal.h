#pragma once
// The journal of the open project: beside the scratch area, in this run's folder, stands enough to
// get the project back after a crash. The pages are in their files anyway; the tree is written when
// it changed, and a short record says what project it is. No journal stands while there is nothing
// to lose.
#include <string>
#include <vector>

#include "platform/FileSystem.h"
#include "project/ProjectContext.h"

namespace pw {

class OpenPage;

/** To be called every second or two. Writes what the user changed once it has been quiet for two
 *  seconds, and during long typing or in the source view every ten. Costs nothing to speak of when
 *  nothing changed, and does nothing while a dialog is up. */
void JournalTick(ProjectContext& context);

/** The project was made, loaded or recovered; from now on there is something to write down. */
void JournalOpened(ProjectContext& context);
/** Files of pages have got other names: a journal that stands follows at once, also while a dialog
 *  is up, since a recovery goes by the names. */
void JournalFilesMoved(ProjectContext& context);
/** A save into that file begins: whatever becomes of it, nothing is lost. */
void JournalBeforeSave(ProjectContext& context, const std::string& file);
/** Everything is in the project file now. */
void JournalSaved(ProjectContext& context);
/** The project is given up: the journal goes, and nothing is written to it until another project
 *  is opened. False when it could not be removed. */
bool JournalClear(ProjectContext& context);

/** True when the page's file holds an older text than its document, dirty or not: an undo can take
 *  a page back behind what the journal has written. */
bool IsFileBehind(ProjectContext& context, OpenPage& page);
/** The page's text was written to its file by somebody else. */
void JournalPageWritten(ProjectContext& context, OpenPage& page);

/** What the record says. */
struct JournalRecord {
    std::string projectFile;  ///< "" for a project never saved
    std::string projectName;
    std::string fileStamp;                 ///< of the project file when it was last loaded or saved
    std::string savingTo;                  ///< a save into that file had begun
    std::vector<std::string> editedPages;  ///< keys of pages whose text changed since then
};
std::string WriteRecord(const JournalRecord& record);
/** False for anything but a whole record. */
bool ReadRecord(const std::string& text, JournalRecord& record);

/** Places in a run folder. */
std::string JournalRecordPath(const std::string& runFolder);
std::string JournalTreePath(const std::string& runFolder);

/** Changes whenever the file does; "" when there is none. */
std::string StampOf(const FileSystem& files, const std::string& file);

}  // namespace pw
