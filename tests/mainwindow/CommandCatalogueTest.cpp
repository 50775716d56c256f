#include "mainwindow/CommandCatalogue.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace pw {
namespace {

struct Catalogue : testing::Test {
    Catalogue() { BuildCommandBar(bar, {"Pagewick", "Acme Hosting", true}); }
    std::set<int> Tools() {
        std::set<int> numbers;
        for (const std::string& name : bar.BandNames()) {
            for (const BandItem& item : bar.FindBand(name)->items) {
                if (item.number != 0) numbers.insert(item.number);
            }
        }
        return numbers;
    }
    CommandBar bar;
};

TEST_F(Catalogue, EveryEntryHasACaptionAnIconAndADescription) {
    for (const std::string& name : bar.BandNames()) {
        for (const BandItem& item : bar.FindBand(name)->items) {
            if (item.kind == BandItem::Kind::Separator) continue;
            EXPECT_FALSE(item.caption.empty()) << name << " " << item.number;
            EXPECT_EQ(item.caption.find('{'), std::string::npos) << item.caption;
            if (item.kind == BandItem::Kind::SubBand) {
                EXPECT_NE(bar.FindBand(item.subBand), nullptr) << item.subBand;
            }
            if (item.number == 0) continue;
            const Tool* tool = bar.FindTool(item.number);
            ASSERT_NE(tool, nullptr) << item.number;
            EXPECT_FALSE(tool->icon.empty()) << item.number;
            EXPECT_FALSE(tool->description.empty()) << item.number;
        }
    }
}

TEST_F(Catalogue, ShortcutsBelongToOneCommandEach) {
    std::map<std::string, int> owners;
    for (const int number : Tools()) {
        const std::string& keys = bar.FindTool(number)->shortcut;
        if (keys.empty()) continue;
        EXPECT_TRUE(owners.emplace(keys, number).second)
            << keys << " of " << number << " and " << owners[keys];
    }
    const std::map<std::string, int> promised = {
        {"Ctrl+N", 2},   {"Ctrl+O", 6},         {"Ctrl+S", 7},   {"Ctrl+Shift+S", 8},
        {"Ctrl+Z", 101}, {"Ctrl+Shift+Z", 102}, {"Ctrl+X", 103}, {"Ctrl+C", 104},
        {"Ctrl+V", 105}, {"Ctrl+A", 107},       {"Ctrl+B", 404}, {"Ctrl+I", 405},
        {"Ctrl+U", 406}, {"F1", 1001},          {"F5", 205}};
    for (const auto& [keys, number] : promised)
        EXPECT_EQ(owners[keys], number) << keys;
}

TEST_F(Catalogue, AccessKeysAreUniqueInEachMenu) {
    for (const std::string& name : bar.BandNames()) {
        const Band& band = *bar.FindBand(name);
        // Two of the ways to publish have been called so from the first.
        if (band.kind != BandKind::Menu || name == "mnuFilePublish") continue;
        std::map<char, std::string> keys;
        for (const BandItem& item : band.items) {
            const auto mark = item.caption.find('&');
            if (mark == std::string::npos || item.caption[mark + 1] == '&') continue;
            const char key = char(std::tolower(item.caption[mark + 1]));
            EXPECT_TRUE(keys.emplace(key, item.caption).second)
                << name << ": " << item.caption << " and " << keys[key];
        }
    }
}

TEST_F(Catalogue, WhatHasNoHandlerIsDisabledAndNothingElse) {
    for (const int number : Tools())
        EXPECT_EQ(bar.FindTool(number)->enabled, HasHandler(number)) << number;
    for (const int number : {13, 301, 416, 501, 601, 701, 1004, 1101})
        EXPECT_FALSE(HasHandler(number)) << number;
}

TEST_F(Catalogue, EveryMenuIsReachedFromTheMenuBar) {
    std::set<std::string> reached = {kMenuBar};
    std::vector<std::string> open = {kMenuBar};
    while (!open.empty()) {
        const Band& band = *bar.FindBand(open.back());
        open.pop_back();
        for (const BandItem& item : band.items) {
            if (!item.subBand.empty() && reached.insert(item.subBand).second)
                open.push_back(item.subBand);
        }
    }
    for (const std::string& name : bar.BandNames()) {
        if (bar.FindBand(name)->kind == BandKind::Menu) {
            EXPECT_TRUE(reached.count(name)) << name;
        }
    }
}

TEST_F(Catalogue, MenusCarryTheNamesOfTheDay) {
    EXPECT_EQ(bar.Caption(13), "Pu&blish Web Site to Acme Hosting");
    EXPECT_EQ(bar.Caption(1012), "&About Pagewick...");
    EXPECT_EQ(bar.FindTool(19)->description, "Exit Pagewick; prompts to save changes");
    EXPECT_TRUE(bar.FindTool(13)->visible);
    CommandBar other;
    BuildCommandBar(other, {"Pagewick", "", false});
    EXPECT_FALSE(other.FindTool(13)->visible);
    EXPECT_EQ(other.FindBand(kDownloadMenu)->items.size(), 12u);
    EXPECT_EQ(other.FindTool(1204)->description, "Set download speed to 56K Modem");
}

TEST(ToolbarCommands, AreTheListOfToolbars) {
    EXPECT_EQ(ToolbarOfCommand(213), "Format");
    EXPECT_EQ(ToolbarOfCommand(216), "Insert Advanced");
    EXPECT_EQ(ToolbarOfCommand(219), "Table");
    EXPECT_EQ(ToolbarOfCommand(220), "");
    EXPECT_EQ(CommandOfToolbar("Standard"), 218);
    EXPECT_EQ(CommandOfToolbar("mnuFile"), 0);
}

}  // namespace
}  // namespace pw
