#pragma once
// The three panes beside the pages: the tree of the project, the tree of the current page's
// elements, the list of tasks.
#include <string>

#include "mainwindow/Context.h"
#include "platform/controls/Controls.h"

namespace pw {

/** Connects the panes' events. Once, after the main window's controls are made. */
void ConnectExplorers(MainContext& context);

void RefillProjectExplorer(MainContext& context);
/** Remembers in the project which of its nodes are open. */
void SetExpandedState(MainContext& context, const TreeNode& node);

/** Brings the tree of elements in step, unless it is hidden or the page is not open. */
void UpdatePageExplorer(MainContext& context, const std::string& key);
void ClearPageExplorer(MainContext& context);
/** Shows the node of the current element, or of the nearest one in front of it. */
void SelectNodeOfElement(MainContext& context);
/** Selects in the page what a node of the page explorer stands for. */
void SelectPageNode(MainContext& context, const std::string& nodeKey);

void RefreshTasks(MainContext& context);
/** Nothing happens where the list has no such task. */
void SelectTask(MainContext& context, const std::string& key);
/** The dialog of the task selected in the list. */
void ShowSelectedTask(MainContext& context);

/** Properties of the node selected in the project explorer. */
void ShowProjectObjectDialog(MainContext& context);
/** True for the nodes that ShowProjectObjectDialog has a dialog for. */
bool HasObjectDialog(char letter);
/** Whether the pane that the user is in has something selected whose properties can be shown. */
bool HasPropertiesDialog(const MainContext& context);
/** Shows them. */
void ShowPropertiesDialog(MainContext& context);

/** `tool` is 209, 210 or 211. */
void ShowExplorer(MainContext& context, int tool, bool show);
bool IsExplorerShown(const MainContext& context, int tool);

}  // namespace pw
