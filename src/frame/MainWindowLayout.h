#pragma once
// What the stored layout needs of the main window. Lengths are in twips, 15 to a pixel.
#include <string>

namespace pw {

constexpr int kTwipsPerPixel = 15;
constexpr int kFirstExplorerTool = 209;
constexpr int kLastExplorerTool = 211;

/** The borders between the panes, by the names of their stored values. */
constexpr const char* kSplitterValues[] = {"Explorers Width", "Project Explorer Height",
                                           "Task Explorer Height"};

struct TwipRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

enum class WindowState { Normal, Minimised, Maximised };
enum class Visibility { Hidden, Shown };

class MainWindowLayout {
  public:
    virtual ~MainWindowLayout() = default;
    virtual WindowState State() const = 0;
    virtual void Maximise() = 0;
    /** Of the window when it is neither minimised nor maximised. */
    virtual TwipRect Geometry() const = 0;
    virtual void SetGeometry(const TwipRect& geometry) = 0;
    /** Width and height of the screen; its left and top are not read. */
    virtual TwipRect Screen() const = 0;
    /** `tool` is one of the view menu's commands 209 to 211. */
    virtual bool IsExplorerShown(int tool) const = 0;
    virtual void ShowExplorer(int tool, Visibility visibility) = 0;
    virtual bool IsToolbarVisible(const std::string& name) const = 0;
    virtual void ShowToolbar(const std::string& name, Visibility visibility) = 0;
    /** Pixels of the pane at a border, by its place in kSplitterValues; 0: as it comes. */
    virtual int SplitterSize(int index) const = 0;
    virtual void SetSplitterSize(int index, int size) = 0;
    /** The set of toolbars that belongs to a skill level from 0 to 2. */
    virtual void ShowStandardToolbars(int skillLevel) = 0;
};

}  // namespace pw
