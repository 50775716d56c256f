#pragma once
#include <string>

#include "platform/EditorSurface.h"

namespace pw::test {

/** In place of the view that the user types into: whatever is selected can be formatted in every
 *  way, and nothing comes of it. */
class StandInEditor : public EditorSurface {
  public:
    void Show(dom::Document& document, const std::string&) override { document_ = &document; }
    void Clear() override { document_ = nullptr; }
    bool Busy() const override { return false; }
    void Flush() override {}
    CommandState QueryState(const std::string&) const override {
        const bool selected = document_ && document_->selection().type != dom::SelectionType::None;
        return selected ? CommandState::Enabled : CommandState::Disabled;
    }
    std::string QueryValue(const std::string&) const override { return ""; }
    bool Execute(const std::string&, const std::string&) override { return false; }
    void SetFocus() override {}
    void ScrollIntoView(const dom::Node&) override {}
    void SetGrid(int, int) override {}
    void SetShowBorders(bool) override {}
    void SetShowTags(bool) override {}
    void SetSnapToGrid(bool) override {}
    void Refresh() override {}
    bool Capture(const std::string&) override { return false; }

  private:
    const dom::Document* document_ = nullptr;
};

}  // namespace pw::test
