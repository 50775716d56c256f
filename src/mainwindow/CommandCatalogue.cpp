#include "mainwindow/CommandCatalogue.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <utility>

#include "frame/Settings.h"
#include "platform/Text.h"

namespace pw {

namespace {

enum Traits { None = 0, Check = 1, Combo = 2, EditableCombo = 4 };

/** One entry of a band. A tool's icon, keys and description stand where it comes first. */
struct Entry {
    int number = 0;  ///< 0 and no sub-band: a separator
    const char* caption = "";
    const char* icon = "";
    const char* shortcut = "";
    const char* description = "";
    const char* subBand = "";
    int traits = None;
};

struct BandTable {
    const char* name;
    const char* caption;
    BandKind kind;
    std::vector<Entry> entries;
};

constexpr Entry kLine{};

Entry Sub(const char* caption, const char* band, int number = 0, const char* icon = "",
          const char* description = "") {
    return {number, caption, icon, "", description, band, None};
}

/** "{product}" and "{provider}" in captions and descriptions are filled in later. */
const std::vector<BandTable>& Catalogue() {
    // clang-format off
    static const std::vector<BandTable> table = {
        {"mnuContext", "", BandKind::Popup, {
            {1103, "Cut", "edit-cut", "", "Removes the selection and places it on the clipboard"},
            {1104, "Copy", "edit-copy", "", "Copies the selection to the clipboard"},
            {1105, "Paste", "edit-paste", "", "Inserts the contents of the clipboard"},
            {1106, "Delete", "edit-delete", "", "Deletes the selection"},
            kLine,
            {1107, "Properties (set by app)", "document-properties", "", "Shows the properties of the selected item"},
            {202, "Element HTML (set by app)", "format-text-code", "", "Shows the HTML of the selected item"},
            {1101, "Form Pr&operties...", "view-form", "", "Shows the properties of the form around the selected item"},
        }},
        {"mnuEdit", "&Edit", BandKind::Menu, {
            {101, "U&ndo", "edit-undo", "Ctrl+Z", "Undoes the last change"},
            {102, "&Redo", "edit-redo", "Ctrl+Shift+Z", "Does again what was undone"},
            kLine,
            {103, "C&ut", "edit-cut", "Ctrl+X", "Removes the selection and places it on the clipboard"},
            {104, "&Copy", "edit-copy", "Ctrl+C", "Copies the selection to the clipboard"},
            {105, "&Paste", "edit-paste", "Ctrl+V", "Inserts the contents of the clipboard"},
            {106, "&Delete", "edit-delete", "", "Deletes the selection"},
            kLine,
            {107, "Select &All", "edit-select-all", "Ctrl+A", "Selects everything on the current page"},
            kLine,
            {108, "&Find...", "edit-find", "Ctrl+F", "Finds text on the current page"},
            {109, "R&eplace...", "edit-find-replace", "Ctrl+H", "Finds text on the current page and replaces it"},
        }},
        {"mnuView", "&View", BandKind::Menu, {
            {201, "Properties (set by app)", "document-properties", "", "Shows the properties of the selected item"},
            {202, "Element HTML (set by app)"},
            kLine,
            {209, "&Project Explorer", "view-sidetree", "", "Shows or hides the project explorer", "", Check},
            {210, "P&age Explorer", "view-web-browser-dom-tree", "", "Shows or hides the page explorer", "", Check},
            {211, "Tas&k Explorer", "view-task", "", "Shows or hides the task explorer", "", Check},
            kLine,
            Sub("&Toolbars", "mnuViewToolbars"),
            kLine,
            {203, "Show &Borders", "format-border-set-all", "", "Show or hide the DIV and table borders on the current page", "", Check},
            {204, "Show Ta&gs", "code-context", "", "Show or hide the page tags on the current page", "", Check},
            kLine,
            {205, "Re&fresh", "view-refresh", "F5", "Draws the current page anew"},
            Sub("Previe&w in", "mnuViewPreview"),
        }},
        {"mnuViewPreview", "Previe&w in", BandKind::Menu, {
            {207, "Internet &Explorer", "internet-services", "F12", "Shows the current page in your web browser"},
            {208, "Netscape &Navigator", "globe", "Ctrl+F12", "Shows the current page in your second web browser"},
        }},
        {"mnuViewToolbars", "&Toolbars", BandKind::Menu, {
            {213, "&Format", "format-text-bold", "", "Shows or hides the Format toolbar", "", Check},
            {214, "F&orms", "view-form", "", "Shows or hides the Forms toolbar", "", Check},
            {215, "&Insert", "list-add", "", "Shows or hides the Insert toolbar", "", Check},
            {216, "Insert Ad&vanced", "code-block", "", "Shows or hides the Insert Advanced toolbar", "", Check},
            {217, "&Layering", "object-order-front", "", "Shows or hides the Layering toolbar", "", Check},
            {218, "&Standard", "configure-toolbars", "", "Shows or hides the Standard toolbar", "", Check},
            {219, "&Table", "table", "", "Shows or hides the Table toolbar", "", Check},
        }},
        {"mnuFile", "&File", BandKind::Menu, {
            Sub("&New", "mnuFileNew", 1, "document-new", "Creates a new project, page, folder or task"),
            {6, "&Open Project...", "document-open", "Ctrl+O", "Opens a project"},
            kLine,
            {7, "Sa&ve Project", "document-save", "Ctrl+S", "Saves the project"},
            {8, "Sav&e Project As...", "document-save-as", "Ctrl+Shift+S", "Saves the project under another name"},
            {9, "Save Page &As...", "document-export", "", "Saves the current page as an HTML file"},
            kLine,
            Sub("P&ublish Web Site", "mnuFilePublish"),
            {13, "Pu&blish Web Site to {provider}", "document-send", "", "Publishes the web site to {provider}"},
            kLine,
            {10, "Project Propert&ies...", "configure_project", "", "Shows the properties of the project"},
            {11, "Create &Thumbnail", "viewimage", "", "Creates a thumbnail image of the current document in your project"},
            {12, "Set &Default Template", "document-save-as-template", "", "Sets the current page as the project's default page template"},
            kLine,
            {18, "&Print...", "document-print", "Ctrl+P", "Prints the current page"},
            kLine,
            {19, "E&xit", "application-exit", "Ctrl+Q", "Exit {product}; prompts to save changes"},
        }},
        {"mnuFileNew", "&New", BandKind::Menu, {
            {3, "Project...", "project-development-new-template", "Ctrl+Shift+N", "Creates a new project"},
            {2, "&Page...", "document-new", "Ctrl+N", "Creates a new page"},
            {4, "&Folder...", "folder-new", "", "Creates a new folder"},
            {5, "&Task...", "view-task-add", "", "Creates a new task"},
        }},
        {"Format", "Format", BandKind::Toolbar, {
            {401, "Block Format", "draw-text", "", "Sets the block format of the selection", "", Combo},
            {402, "Font Name", "character-set", "", "Sets the font of the selection", "", EditableCombo},
            {403, "Font Size", "format-font-size-more", "", "Sets the font size of the selection", "", Combo},
            kLine,
            {404, "Bold", "format-text-bold", "Ctrl+B", "Makes the selection bold", "", Check},
            {405, "Italic", "format-text-italic", "Ctrl+I", "Makes the selection italic", "", Check},
            {406, "Underline", "format-text-underline", "Ctrl+U", "Underlines the selection", "", Check},
            kLine,
            {407, "Foreground Color", "format-text-color", "", "Sets the text color of the selection"},
            {408, "Background Color", "format-fill-color", "", "Sets the background color of the selection"},
            kLine,
            {409, "Align Left", "format-justify-left", "", "Aligns the selection to the left", "", Check},
            {410, "Center", "format-justify-center", "", "Centers the selection", "", Check},
            {411, "Align Right", "format-justify-right", "", "Aligns the selection to the right", "", Check},
            kLine,
            {412, "Bulletted List", "format-list-unordered", "", "Makes the selection a bulletted list", "", Check},
            {413, "Numbered List", "format-list-ordered", "", "Makes the selection a numbered list", "", Check},
            {414, "Outdent", "format-indent-less", "", "Decreases the indent of the selection"},
            {415, "Indent", "format-indent-more", "", "Increases the indent of the selection"},
            kLine,
            {416, "Theme", "color-management", "", "Sets the theme of the current page"},
        }},
        {"Standard", "Standard", BandKind::Toolbar, {
            {2, "New Page"},
            {6, "Open Project"},
            {7, "Save Project"},
            {13, "Publish Web Site via Web Hosting Provider"},
            kLine,
            {501, "Spell Check", "tools-check-spelling", "F7", "Checks the spelling of the current page"},
            {18, "Print Web Page"},
            kLine,
            {103, "Cut Item"},
            {104, "Copy Item"},
            {105, "Paste Item"},
            {106, "Delete Item"},
            kLine,
            {101, "Undo"},
            {102, "Redo"},
            kLine,
            {201, "View Properties"},
            {203, "Show Borders"},
            {204, "Show Tags"},
            kLine,
            {1001, "Help", "help-contents", "F1", "Shows the help for {product}"},
        }},
        {"mnuFilePublish", "P&ublish Web Site", BandKind::Menu, {
            {14, "via Trial Publish to &Pagewick", "run-build", "", "Publishes the web site with a trial account"},
            {15, "via Web Hosting &Provider...", "document-send", "", "Publishes the web site to a web hosting provider"},
            {16, "via &FTP Server...", "folder-sync", "", "Publishes the web site to an FTP server"},
            {17, "as &HTML...", "viewhtml", "", "Publishes the web site as HTML files to a folder"},
        }},
        {"mnuInsert", "&Insert", BandKind::Menu, {
            {301, "&Image...", "insert-image", "", "Inserts an image"},
            {302, "&Video...", "media-playback-start", "", "Inserts a video"},
            {303, "Li&ne...", "insert-horizontal-rule", "", "Inserts a horizontal line"},
            {304, "&Marquee...", "text-speak", "", "Inserts a line of moving text"},
            kLine,
            {325, "&Link...", "insert-link", "Ctrl+K", "Inserts a link to a page, a file or an address"},
            {324, "&Bookmark...", "bookmark-new", "", "Inserts a bookmark"},
            Sub("Line B&reaks", "mnuInsertLineBreaks"),
            kLine,
            {331, "&Special Characters...", "format-text-symbol", "", "Inserts characters that are not on the keyboard"},
            {332, "C&omment...", "edit-comment", "", "Inserts a comment that only the page's authors see"},
            {306, "Cop&yright Notice...", "view-certificate", "", "Inserts a copyright notice"},
            {307, "&Datestamp...", "view-calendar-day", "", "Inserts the date"},
            {333, "&Table of Contents...", "insert-table-of-contents", "", "Inserts a table of contents"},
            kLine,
            Sub("&Forms", "mnuInsertForms"),
            Sub("&Advanced", "mnuInsertAdvanced"),
        }},
        {"mnuInsertLineBreaks", "Line B&reaks", BandKind::Menu, {
            {327, "Normal", "insert-more-mark", "", "Inserts a line break"},
            {328, "Clear Left Margin", "format-justify-left", "", "Inserts a line break below what floats on the left"},
            {329, "Clear Right Margin", "format-justify-right", "", "Inserts a line break below what floats on the right"},
            {330, "Clear Left && Right Margins", "format-justify-fill", "", "Inserts a line break below what floats on either side"},
        }},
        {"mnuInsertForms", "&Forms", BandKind::Menu, {
            {309, "&AutoForm...", "tools-wizard", "", "Inserts a ready-made form"},
            {310, "&Form", "view-form", "", "Inserts an empty form"},
            kLine,
            {311, "&Text Box...", "text-field", "", "Inserts a text box"},
            {312, "&Scrolling Text Box...", "insert-text-frame", "", "Inserts a text box of several lines"},
            {313, "&Check Box...", "checkbox", "", "Inserts a check box"},
            {314, "&Option Button...", "draw-circle", "", "Inserts an option button"},
            {315, "&List Box...", "view-list-text", "", "Inserts a list box"},
            {316, "Command &Button...", "insert-button", "", "Inserts a command button"},
        }},
        {"mnuInsertAdvanced", "&Advanced", BandKind::Menu, {
            {318, "&ActiveX...", "preferences-plugin", "", "Inserts an ActiveX control"},
            {319, "&Java Applet...", "code-class", "", "Inserts a Java applet"},
            {320, "&Plug-In...", "media-playlist-append", "", "Inserts a plug-in"},
            {321, "&Script...", "dialog-scripts", "", "Inserts a script"},
            {322, "&HTML...", "format-text-code", "", "Inserts HTML as you type it"},
            {323, "&Merge Variables...", "code-variable", "", "Inserts and edits merge variables"},
        }},
        {"mnuFormat", "F&ormat", BandKind::Menu, {
            {404, "&Bold"},
            {405, "&Italic"},
            {406, "&Underline"},
            kLine,
            {407, "&Foreground Color"},
            {408, "Back&ground Color"},
            kLine,
            {409, "Align &Left"},
            {410, "&Center"},
            {411, "Align &Right"},
            kLine,
            {412, "Bulle&tted List"},
            {413, "Numb&ered List"},
            {414, "&Outdent"},
            {415, "I&ndent"},
            kLine,
            {416, "T&heme"},
            Sub("La&yering", "mnuFormatLayering"),
            kLine,
            {426, "Re&move Formatting", "edit-clear-all", "", "Removes the formatting from the selection"},
            {427, "Remo&ve Link", "edit-clone-unlink", "", "Removes the link from the selection"},
        }},
        {"mnuFormatLayering", "La&yering", BandKind::Menu, {
            {418, "&Absolute Positioning", "transform-move", "", "Toggles the selected element between static positioning and absolute positioning", "", Check},
            {419, "Loc&k", "object-locked", "", "Toggles between locking and unlocking the movement and sizing of an absolutely positioned element", "", Check},
            kLine,
            {420, "Bring to &Front", "object-order-front", "", "Moves an absolutely positioned element in front of all others"},
            {421, "Send to &Back", "object-order-back", "", "Moves an absolutely positioned element behind all others"},
            {422, "B&ring Forward", "object-order-raise", "", "Moves an absolutely positioned element one step forward"},
            {423, "&Send Backward", "object-order-lower", "", "Moves an absolutely positioned element one step backward"},
            {424, "Behind &Text", "layer-visible-off", "", "Moves an absolutely positioned element behind text", "", Check},
            {425, "Fr&ont of Text", "layer-visible-on", "", "Moves an absolutely positioned element in front of text", "", Check},
        }},
        {"mnuTable", "T&able", BandKind::Menu, {
            {601, "&Insert Table...", "insert-table", "", "Inserts a table"},
            kLine,
            {602, "Insert &Row", "edit-table-insert-row-below", "", "Inserts a row below the current one"},
            {603, "Delete R&ow", "edit-table-delete-row", "", "Deletes the current row"},
            {604, "Insert &Column", "edit-table-insert-column-right", "", "Inserts a column to the right of the current one"},
            {605, "Delete Col&umn", "edit-table-delete-column", "", "Deletes the current column"},
            {606, "Insert Ce&ll", "insertcell", "", "Inserts a cell behind the current one"},
            {607, "D&elete Cells", "edit-delete-remove", "", "Deletes the selected cells"},
            kLine,
            {608, "&Merge Cells", "edit-table-cell-merge", "", "Makes one cell of the selected ones"},
            {609, "&Split Cell", "edit-table-cell-split", "", "Makes two cells of the current one"},
        }},
        {"mnuTools", "&Tools", BandKind::Menu, {
            {501, "&Spelling..."},
            {502, "&Verify Links...", "link", "", "Tests the links of the project"},
            {503, "&Domain Name...", "network-connect", "", "Finds out whether a domain name is available"},
            {504, "Snap to &Grid", "view-grid", "", "Moves absolutely positioned elements along a grid", "", Check},
            kLine,
            {505, "&Options...", "configure", "", "Changes the settings of {product}"},
        }},
        {"mnuServices", "e&Services", BandKind::Menu, {
            {701, "&Get More eServices...", "list-add", "", "Opens the eServices page on the Internet"},
            kLine,
            Sub("&Business", "mnuServicesItems", 702, "view-financial-account", "Shows the business eServices"),
            Sub("&Lifestyle", "mnuServicesItems", 703, "im-user", "Shows the lifestyle eServices"),
            Sub("M&oney-Making", "mnuServicesItems", 704, "format-currency", "Shows the money-making eServices"),
            Sub("&News and Information", "mnuServicesItems", 705, "view-pim-news", "Shows the eServices for news and information"),
            Sub("&Web Site Enhancements", "mnuServicesItems", 706, "internet-services", "Shows the eServices that enhance a web site"),
        }},
        {"mnuServicesItems", "", BandKind::Menu, {}},
        {"mnuWindow", "&Window", BandKind::Menu, {
            {901, "&Cascade", "window-duplicate", "", "Arranges the page windows one behind the other"},
            {902, "Tile &Horizontally", "view-split-top-bottom", "", "Arranges the page windows one below the other"},
            {903, "Tile &Vertically", "view-split-left-right", "", "Arranges the page windows side by side"},
            kLine,
            {904, "C&lose All Pages", "window-close", "", "Closes all page windows"},
        }},
        {"mnuHelp", "&Help", BandKind::Menu, {
            {1001, "&Contents and Index"},
            {1002, "Ti&p of the Day...", "help-hint", "", "Shows a tip"},
            kLine,
            {1004, "{product} on the &Web", "globe", "", "Opens the web site of {product}"},
            {1005, "Web Hosting P&rovider", "internet-services", "", "Opens the support page of your web hosting provider"},
            Sub("&Ombrino on the Web", "mnuHelpOmbrino"),
            kLine,
            {1012, "&About {product}...", "help-about", "", "Shows the version of {product}"},
        }},
        {"mnuHelpOmbrino", "&Ombrino on the Web", BandKind::Menu, {
            {1007, "&Gallery", "viewimage", "", "Opens the gallery on the Internet"},
            {1008, "&Product News && Updates", "view-pim-news", "", "Opens the news about {product} on the Internet"},
            {1009, "Frequently Asked &Questions", "help-contextual", "", "Opens the questions and answers on the Internet"},
            {1010, "Send Feedbac&k", "help-feedback", "", "Tells the makers of {product} what you think of it"},
            {1011, "Ombrino &Home Page", "go-home", "", "Opens the home page of Ombrino"},
        }},
        {"Table", "Table", BandKind::Toolbar, {
            {601, "Insert Table"},
            kLine,
            {602, "Insert Row"},
            {603, "Delete Row"},
            {604, "Insert Column"},
            {605, "Delete Column"},
            {606, "Insert Cell"},
            {607, "Delete Cells"},
            kLine,
            {608, "Merge Cells"},
            {609, "Split Cell"},
        }},
        {"Forms", "Forms", BandKind::Toolbar, {
            {309, "Insert AutoForm"},
            {310, "Insert Form"},
            kLine,
            {311, "Insert Text Box"},
            {312, "Insert Scrolling Text Box"},
            {313, "Insert Check Box"},
            {314, "Insert Option Button"},
            {315, "Insert List Box"},
            {316, "Insert Command Button"},
        }},
        {"Layering", "Layering", BandKind::Toolbar, {
            {418, "Absolute Positioning"},
            {419, "Lock"},
            kLine,
            {420, "Bring to Front"},
            {421, "Send to Back"},
            {422, "Bring Forward"},
            {423, "Send Backward"},
            kLine,
            {424, "Behind Text"},
            {425, "Front of Text"},
        }},
        {"Insert", "Insert", BandKind::Toolbar, {
            {301, "Insert Image"},
            {302, "Insert Video"},
            {303, "Insert Line"},
            {304, "Insert Marquee"},
            kLine,
            {306, "Insert Copyright Notice"},
            {307, "Insert Datestamp"},
            kLine,
            {324, "Insert Bookmark"},
            {325, "Insert Link"},
            {327, "Insert Line Break"},
            kLine,
            {331, "Insert Special Characters"},
            {332, "Insert Comment"},
            {333, "Insert Table of Contents"},
        }},
        {"Insert Advanced", "Insert Advanced", BandKind::Toolbar, {
            {318, "Insert ActiveX"},
            {319, "Insert Java Applet"},
            {320, "Insert Plug-In"},
            {321, "Insert Script"},
            {322, "Insert HTML"},
            {323, "Insert Merge Variables"},
        }},
        // On no menu: commands for those who know their keys.
        {"mnuKeys", "", BandKind::Popup, {
            {110, "Find Next", "go-down-search", "F3", "Finds the next place of the text that was looked for last"},
            {111, "Find Previous", "go-up-search", "Shift+F3", "Finds the place before of the text that was looked for last"},
        }},
        {kMenuBar, "", BandKind::Menu, {
            Sub("&File", "mnuFile"),
            Sub("&Edit", "mnuEdit"),
            Sub("&View", "mnuView"),
            Sub("&Insert", "mnuInsert"),
            Sub("F&ormat", "mnuFormat"),
            Sub("T&able", "mnuTable"),
            Sub("&Tools", "mnuTools"),
            Sub("e&Services", "mnuServices"),
            Sub("&Window", "mnuWindow"),
            Sub("&Help", "mnuHelp"),
        }},
    };
    // clang-format on
    return table;
}

/** Numbers with a working handler, as ranges. What is in none of them is disabled for good. */
// clang-format off
constexpr std::pair<int, int> kHandled[] = {
    {1, 12}, {17, 19}, {kFirstRecentTool, kLastRecentTool},            // File
    {101, 111},                                                        // Edit
    {201, 201}, {203, 205}, {207, 211}, {213, 219},                    // View
    {323, 323}, {326, 330},                                            // Insert
    {401, 415}, {418, 427},                                            // Format
    {504, 505},                                                        // Tools
    {602, 609},                                                        // Table
    {901, 904}, {kFirstWindowTool, kMoreWindowsTool},                  // Window
    {1001, 1002}, {1012, 1012},                                        // Help
    {1103, 1108},                                                      // the context menu
    {1201, 1212},                                                      // connections
};
// clang-format on

std::string Fill(const char* text, const CatalogueNames& names) {
    const std::string product = ReplaceAll(text, "{product}", names.product);
    return Trim(ReplaceAll(product, "{provider}", names.provider));
}

Tool MakeTool(const Entry& entry, const CatalogueNames& names) {
    Tool tool;
    tool.number = entry.number;
    tool.icon = entry.icon;
    tool.shortcut = entry.shortcut;
    tool.description = Fill(entry.description, names);
    tool.checkable = (entry.traits & Check) != 0;
    tool.editable = (entry.traits & EditableCombo) != 0;
    tool.kind = entry.traits & (Combo | EditableCombo) ? ToolKind::Combo : ToolKind::Button;
    tool.enabled = HasHandler(entry.number);
    return tool;
}

BandItem MakeItem(const Entry& entry, const CatalogueNames& names) {
    using Kind = BandItem::Kind;
    const bool opens = *entry.subBand != 0;
    const Kind kind = opens ? Kind::SubBand : entry.number == 0 ? Kind::Separator : Kind::Tool;
    return {kind, entry.number, Fill(entry.caption, names), entry.subBand};
}

void BuildBand(CommandBar& bar, const BandTable& table, const CatalogueNames& names) {
    Band band{table.name, table.caption, table.kind, {}, true, true};
    for (const Entry& entry : table.entries) {
        if (entry.number != 0) bar.AddTool(MakeTool(entry, names));
        band.items.push_back(MakeItem(entry, names));
    }
    bar.AddBand(std::move(band));
}

/** One tool for each connection speed. */
void BuildDownloadBand(CommandBar& bar) {
    Band band{kDownloadMenu, kDownloadToolTip, BandKind::Popup, {}, true, true};
    int number = 1201;
    for (const char* speed : kConnectionSpeeds) {
        Tool tool;
        tool.number = number;
        tool.icon = "network-connect";
        tool.description = std::string("Set download speed to ") + speed;
        tool.checkable = true;
        tool.enabled = HasHandler(number);
        bar.AddTool(std::move(tool));
        band.items.push_back({BandItem::Kind::Tool, number, speed, ""});
        ++number;
    }
    bar.AddBand(std::move(band));
}

/** Tools that come on their menu when it opens. */
void AddTools(CommandBar& bar, int first, int last, Tool like) {
    like.enabled = HasHandler(first);
    for (like.number = first; like.number <= last; ++like.number)
        bar.AddTool(like);
}

void AddLateTools(CommandBar& bar) {
    AddTools(bar, kFirstRecentTool, kLastRecentTool,
             {.description = "Opens this project", .icon = "project-development"});
    AddTools(
        bar, kFirstWindowTool, kLastWindowTool,
        {.description = "Brings this page to the front", .icon = "text-html", .checkable = true});
    AddTools(bar, kMoreWindowsTool, kMoreWindowsTool,
             {.description = "Shows all page windows", .icon = "view-list-text"});
}

}  // namespace

void BuildCommandBar(CommandBar& bar, const CatalogueNames& names) {
    for (const BandTable& band : Catalogue())
        BuildBand(bar, band, names);
    BuildDownloadBand(bar);
    AddLateTools(bar);
    bar.SetToolVisible(13, names.publishesToProvider);
    bar.SetToolVisible(1005, !names.provider.empty());
}

bool HasHandler(int tool) {
    return std::any_of(std::begin(kHandled), std::end(kHandled),
                       [tool](auto range) { return tool >= range.first && tool <= range.second; });
}

std::string ToolbarOfCommand(int tool) {
    const int index = tool - 213;
    return index >= 0 && index < int(std::size(kToolbarNames)) ? kToolbarNames[index] : "";
}

int CommandOfToolbar(const std::string& band) {
    const auto at = std::find(std::begin(kToolbarNames), std::end(kToolbarNames), band);
    return at == std::end(kToolbarNames) ? 0 : 213 + int(at - std::begin(kToolbarNames));
}

}  // namespace pw
