#include "mainwindow/Menus.h"

#include <algorithm>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "mainwindow/CommandCatalogue.h"
#include "mainwindow/RecentProjects.h"
#include "mainwindow/UIState.h"
#include "mainwindow/frmDocument.h"
#include "mainwindow/frmMDIMain.h"
#include "platform/Text.h"

namespace pw {

void SetEditMenu(MainContext& context) {
    UpdateDocumentUI(context, context.CurrentPageKey);
    SetEditMenuItems(context);
}

void SetFileMenu(MainContext& context) {
    ResetUI(context);
    Band* band = context.barMain.FindBand("mnuFile");
    if (!band) return;
    const auto isSeparator = [](const BandItem& item) {
        return item.kind == BandItem::Kind::Separator;
    };
    std::vector<BandItem> items = band->items;
    std::erase_if(items, [](const BandItem& item) {
        return item.number >= kFirstRecentTool && item.number <= kLastRecentTool;
    });
    // The line below the projects of the last time would stand beside the one above them.
    items.erase(std::unique(items.begin(), items.end(),
                            [&](const BandItem& one, const BandItem& next) {
                                return isSeparator(one) && isSeparator(next);
                            }),
                items.end());

    std::vector<BandItem> recent;
    int tool = kFirstRecentTool;
    for (const std::string& path : ListedProjects(context.frame)) {
        const std::string digit = std::to_string(tool - kFirstRecentTool + 1);
        recent.push_back({BandItem::Kind::Tool, tool,
                          "&" + digit + " " + ReplaceAll(MenuPath(path), "&", "&&"), ""});
        context.barMain.SetDescription(tool, "Opens the project " + ToNativePath(path));
        ++tool;
    }
    if (!recent.empty()) {
        recent.push_back({BandItem::Kind::Separator, 0, "", ""});
        constexpr int kExitTool = 19;
        const auto exit = std::find_if(items.begin(), items.end(), [](const BandItem& item) {
            return item.number == kExitTool;
        });
        items.insert(exit, recent.begin(), recent.end());
    }
    context.barMain.SetBandItems("mnuFile", std::move(items));
}

void SetWindowMenu(MainContext& context) {
    constexpr int kWindowTools = kLastWindowTool - kFirstWindowTool + 1;
    Band* band = context.barMain.FindBand("mnuWindow");
    if (!band) return;
    std::vector<BandItem> items = band->items;
    std::erase_if(items, [](const BandItem& item) { return item.number >= kFirstWindowTool; });
    while (!items.empty() && items.back().kind == BandItem::Kind::Separator)
        items.pop_back();

    const auto& documents = context.OpenDocuments.All();
    if (!documents.empty()) items.push_back({BandItem::Kind::Separator, 0, "", ""});
    for (int place = 0; place < std::min(kWindowTools, context.OpenDocuments.Count()); ++place) {
        const frmDocument& document = *documents[std::size_t(place)];
        const int tool = kFirstWindowTool + place;
        const std::string title = ReplaceAll(document.Caption(), "&", "&&");
        items.push_back(
            {BandItem::Kind::Tool, tool, "&" + std::to_string(place + 1) + " " + title, ""});
        context.barMain.SetEnabled(tool, true);
        context.barMain.SetChecked(tool, document.PageKey() == context.CurrentPageKey);
    }
    if (context.OpenDocuments.Count() >= kWindowTools)
        items.push_back({BandItem::Kind::Tool, kMoreWindowsTool, "&More Windows...", ""});
    context.barMain.SetBandItems("mnuWindow", std::move(items));
}

}  // namespace pw
