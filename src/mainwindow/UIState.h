#pragma once
// Which commands are possible, pressed and shown, and what some of them say, as a function of the
// program's state. These routines only read states; a failure is logged and leaves the tools as
// they were.
#include <cstdint>
#include <string>

#include "mainwindow/Context.h"

namespace pw {

class HtmlEditor;

/** Everything: bands, tools, captions, panels, the welcome page. */
void ResetUI(MainContext& context);
/** What depends on the selection in the page. */
void UpdateDocumentUI(MainContext& context, const std::string& key);
/** Undo and redo alone: cheap enough for every key. */
void UpdateUndoTools(MainContext& context, HtmlEditor& editor);
/** Cut, copy, paste and delete, for the pane in force. */
void SetEditMenuItems(MainContext& context);

enum class ContextMenu { Prepare, PopUp };
void SetContextMenu(MainContext& context, ContextMenu how);

/** Whether an Edit command (103 to 106, or 1103 to 1106) can act on a pane now. */
bool IsEditPossible(MainContext& context, int tool, Pane focus);
/** The pane that the Edit commands act on now. */
Pane FocusInForce(const MainContext& context);
/** Type letter of the node selected in the project explorer ('W', 'R', 'F', 'P'), or 0. */
char SelectedNodeLetter(const MainContext& context);

/** Captions of the commands for properties and HTML: for a node of that letter in the project
 *  explorer, or with 0 for the current element. */
void SetPropertyCaptions(MainContext& context, char letter);

/** View tabs of all pages and the toolbars that belong to `Settings.SkillLevel`. */
void ApplySkillLevel(MainContext& context);
/** The toolbars of a skill level, 0 to 2. */
void ShowStandardToolbars(MainContext& context, int skillLevel);
bool IsToolbarStandard(const std::string& toolbar, int skillLevel);

/** Fills the lists of the font tools, once in a run. */
void InitDHTMLFormats(MainContext& context);
/** "8" to "36" for the font sizes 1 to 7, and back; "" and 0 for everything else. */
std::string FontSizeText(int index);
int FontSizeIndex(const std::string& text);

/** "3 seconds over 56K Modem (12KB)". `speed` counts the connections from 1. */
std::string DownloadTimeText(std::int64_t size, int speed);
/** Figure of merit in seconds; throws a Failure for a connection that there is not. */
std::int64_t DownloadSeconds(std::int64_t size, int speed);
void UpdateDownloadTime(MainContext& context);

/** In the first panel; the second shows whether the machine is connected. */
void ShowStatusText(MainContext& context, const std::string& text);

}  // namespace pw
