#pragma once
#include <array>
#include <iterator>
#include <set>
#include <string>

#include "frame/MainWindowLayout.h"

namespace pw::test {

/** A main window of which only the layout exists, on a screen of 1280 by 960 pixels. */
class FakeMainWindowLayout : public MainWindowLayout {
  public:
    WindowState State() const override { return state; }
    void Maximise() override { state = WindowState::Maximised; }
    TwipRect Geometry() const override { return geometry; }
    void SetGeometry(const TwipRect& next) override { geometry = next; }
    TwipRect Screen() const override { return {0, 0, 1280 * kTwipsPerPixel, 960 * kTwipsPerPixel}; }
    bool IsExplorerShown(int tool) const override { return explorers.count(tool) > 0; }
    void ShowExplorer(int tool, Visibility visibility) override {
        visibility == Visibility::Shown ? void(explorers.insert(tool))
                                        : void(explorers.erase(tool));
    }
    bool IsToolbarVisible(const std::string& name) const override {
        return toolbars.count(name) > 0;
    }
    void ShowToolbar(const std::string& name, Visibility visibility) override {
        visibility == Visibility::Shown ? void(toolbars.insert(name)) : void(toolbars.erase(name));
    }
    int SplitterSize(int index) const override { return splitters.at(std::size_t(index)); }
    void SetSplitterSize(int index, int size) override { splitters.at(std::size_t(index)) = size; }
    void ShowStandardToolbars(int skillLevel) override { standardLevel = skillLevel; }

    WindowState state = WindowState::Normal;
    TwipRect geometry;
    std::set<int> explorers;
    std::set<std::string> toolbars;
    std::array<int, std::size(kSplitterValues)> splitters{};
    int standardLevel = -1;  ///< of the last ShowStandardToolbars
};

}  // namespace pw::test
