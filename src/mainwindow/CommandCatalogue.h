#pragma once
// Every command of the program: its number, the menus and toolbars that it stands on, what it is
// called there, its picture and its keys. The table is in CommandCatalogue.cpp, one line an entry.
#include <string>
#include <vector>

#include "platform/controls/CommandBar.h"

namespace pw {

/** The band whose sub-bands are the menu bar of the main window. */
constexpr const char* kMenuBar = "mnuMain";
constexpr const char* kContextMenu = "mnuContext";
/** Opens from the third panel of the status bar. */
constexpr const char* kDownloadMenu = "mnuDownload";
constexpr const char* kDownloadToolTip = "Estimated download time";

/** The projects opened last, on the File menu. */
constexpr int kFirstRecentTool = 21;
constexpr int kLastRecentTool = 28;
/** The open pages on the Window menu, and behind them the list of all. */
constexpr int kFirstWindowTool = 905;
constexpr int kLastWindowTool = 913;
constexpr int kMoreWindowsTool = 914;

/** What of the captions is known at run time only. */
struct CatalogueNames {
    std::string product;   ///< "Pagewick", or the brand's caption
    std::string provider;  ///< the hosting provider's name, or ""
    /** The provider publishes for this client: tool 13 is on the menus. */
    bool publishesToProvider = false;
};

/** Puts all bands and tools on an empty bar. Those without a handler are disabled for good. */
void BuildCommandBar(CommandBar& bar, const CatalogueNames& names);

/** True for a command that does something today. */
bool HasHandler(int tool);

/** The toolbar that a command of the view menu (213 to 219) shows and hides; "" for others. */
std::string ToolbarOfCommand(int tool);
/** The other way round; 0 for others. */
int CommandOfToolbar(const std::string& band);

}  // namespace pw
