#pragma once
// The life of the one project of the program: made new, opened, saved, saved under another name,
// saved by the clock, and given up for another one.
//
// All of these show their messages themselves unless told to be silent, put the cause behind the
// message, and leave what they could not do as it was.
#include <string>
#include <vector>

#include "project/ProjectContext.h"

namespace pw {

constexpr const char* kProjectExtension = "pwp";
constexpr const char* kNewProjectName = "My Web Site";

enum class Silent { No, Yes };

/** Gives up what is open, unsaved changes too, and leaves a new project with a name, one site and
 *  no pages. `IsLoaded` is false: the caller sets it when there is something to show. */
void InitNewProject(ProjectContext& context);
/** The values that every new project starts with. */
void InitProjectProperties(ProjectContext& context);

/**
 * Opens a project file. Until its header is known to be good and nobody else has it open, the
 * project that was open stays; afterwards a failure leaves an empty one without a file name. When
 * the file is damaged, a whole copy from a save that did not end is offered: it opens without a
 * file name, so that the damaged file stays as it is until the user saves over it.
 */
bool OpenProject(ProjectContext& context, const std::string& path, Silent silent);

/** A new project with that page as its first, named after it. */
bool OpenHTMLAsProject(ProjectContext& context, const std::string& path);

enum class Proceed { NameOnly, Save };
/**
 * Saves under `Settings.ProjectFilename`, for which the user is asked when it is empty and `silent`
 * is No. With NameOnly it ends there, true when there is a name. False when there is none, when
 * another program has the file open, or when it could not be written: the file is then as it was.
 */
bool SaveProject(ProjectContext& context, Proceed proceed, Silent silent);
/** Asks for a name and saves under it; cancelled or failed, the former name stands again. */
bool SaveProjectAs(ProjectContext& context);

/** Brings every open page's data into the object model and its text into its file. False, with the
 *  page's name in `unwritten` when given, when a file could not be written. */
bool UpdateOpenPageProperties(ProjectContext& context, std::string* unwritten = nullptr);

/** Makes the standard variables what the project's properties are now, in open and closed pages.
 *  Returns the names of pages that could not be brought up to date. */
std::vector<std::string> RefreshVariables(ProjectContext& context);

enum class SaveAnswer { NotAsked = 0, Cancel = 2, Yes = 6, No = 7 };
/** Asks only when the project is loaded, has a name, at least one page and unsaved changes. */
SaveAnswer AskToSave(ProjectContext& context, const std::string& message, const std::string& title);

enum class GivingUp { ForNewProject, ForOpening, ForExit };
/** Asks whether to save before the project is given up, and saves. False when the user wants to
 *  stay, when the save did not happen, or while the project is busy. `title` is the caption of the
 *  command, menu marks and all. */
bool MayGiveUpProject(ProjectContext& context, GivingUp why, const std::string& title);

/** Milliseconds between two ticks of the timer that runs while `Settings.AutoSave` is on. */
constexpr int kAutoSaveInterval = 60000;
/** One tick: `tag` holds the count of ticks as a decimal number. */
void AutoSaveTick(ProjectContext& context, std::string& tag, bool mainWindowMinimised);

/** Of the main window: the program's own caption, and the name of the loaded project. */
std::string MainWindowCaption(const ProjectContext& context);

/** Where a project file's copy stands while it is saved over. */
std::string BackupPath(const std::string& projectFile);

}  // namespace pw
