#pragma once
// What the commands do. A number's range names the routine; each routine knows its own numbers. All
// of them catch and log their failures as "MDIMain.MenuEdit" and the like.
#include <string>

#include "mainwindow/Context.h"

namespace pw {

/** Connects the events of the command bar. Once. */
void ConnectCommandBar(MainContext& context);

/** A command by its number; nothing happens while the project is busy. */
void RunCommand(MainContext& context, int tool);

void MenuFile(MainContext& context, int tool);
void MenuFilePublish(MainContext& context, int tool);
void MenuEdit(MainContext& context, int tool);
void MenuContext(MainContext& context, int tool);
/** Edit in the pane of the context menu; `tool` is 1103 to 1106. */
void MenuContextEdit(MainContext& context, int tool);
void MenuView(MainContext& context, int tool);
void MenuInsert(MainContext& context, int tool);
void MenuFormat(MainContext& context, int tool);
void MenuTable(MainContext& context, int tool);
void MenuTools(MainContext& context, int tool);
void MenuWindow(MainContext& context, int tool);
void MenuHelp(MainContext& context, int tool);
void MenuDownload(MainContext& context, int tool);

/** Asks about unsaved changes and opens that file; also from the welcome page. */
void OpenChosenProject(MainContext& context, const std::string& path);
/** Shows frmProject and takes its values into the merge variables of all pages. */
void EditProjectProperties(MainContext& context);
/** A new page from the blank template, at the node selected in the project explorer. */
void InsertNewPage(MainContext& context);

}  // namespace pw
