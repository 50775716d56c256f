#include "platform/controls/CommandBar.h"

namespace pw {

Tool& CommandBar::AddTool(Tool tool) {
    auto [at, added] = tools_.try_emplace(tool.number, tool);
    Tool& known = at->second;
    if (!added) {
        if (known.description.empty()) known.description = tool.description;
        if (known.icon.empty()) known.icon = tool.icon;
        if (known.shortcut.empty()) known.shortcut = tool.shortcut;
    }
    return known;
}

Band& CommandBar::AddBand(Band band) {
    order_.push_back(band.name);
    return bands_[band.name] = std::move(band);
}

Tool* CommandBar::FindTool(int number) {
    const auto found = tools_.find(number);
    return found == tools_.end() ? nullptr : &found->second;
}

const Tool* CommandBar::FindTool(int number) const {
    const auto found = tools_.find(number);
    return found == tools_.end() ? nullptr : &found->second;
}

Band* CommandBar::FindBand(const std::string& name) {
    const auto found = bands_.find(name);
    return found == bands_.end() ? nullptr : &found->second;
}

namespace {

/** Stores a value and says whether it was another. */
template <typename T, typename U>
bool Assign(T& target, U&& value) {
    if (target == value) return false;
    target = std::forward<U>(value);
    return true;
}

}  // namespace

void CommandBar::SetEnabled(int number, bool enabled) {
    Tool* tool = FindTool(number);
    if (tool && Assign(tool->enabled, enabled) && observer_) observer_->ToolChanged(*tool);
}

void CommandBar::SetChecked(int number, bool checked) {
    Tool* tool = FindTool(number);
    if (tool && Assign(tool->checked, checked) && observer_) observer_->ToolChanged(*tool);
}

void CommandBar::SetToolVisible(int number, bool visible) {
    Tool* tool = FindTool(number);
    if (tool && Assign(tool->visible, visible) && observer_) observer_->ToolChanged(*tool);
}

void CommandBar::SetCaption(int number, const std::string& caption) {
    bool changed = false;
    for (auto& [name, band] : bands_) {
        for (BandItem& item : band.items) {
            if (item.kind == BandItem::Kind::Tool && item.number == number) {
                changed |= Assign(item.caption, caption);
            }
        }
    }
    Tool* tool = FindTool(number);
    if (changed && tool && observer_) observer_->ToolChanged(*tool);
}

void CommandBar::SetDescription(int number, const std::string& description) {
    Tool* tool = FindTool(number);
    if (tool && Assign(tool->description, description) && observer_) observer_->ToolChanged(*tool);
}

void CommandBar::SetComboItems(int number, std::vector<std::string> items) {
    Tool* tool = FindTool(number);
    if (tool && Assign(tool->items, std::move(items)) && observer_) observer_->ToolChanged(*tool);
}

void CommandBar::SetComboText(int number, const std::string& text) {
    Tool* tool = FindTool(number);
    if (tool && Assign(tool->text, text) && observer_) observer_->ToolChanged(*tool);
}

void CommandBar::SetBandVisible(const std::string& name, bool visible) {
    Band* band = FindBand(name);
    if (band && Assign(band->visible, visible) && observer_) observer_->BandChanged(*band);
}

void CommandBar::SetBandEnabled(const std::string& name, bool enabled) {
    Band* band = FindBand(name);
    if (band && Assign(band->enabled, enabled) && observer_) observer_->BandChanged(*band);
}

void CommandBar::SetBandItems(const std::string& name, std::vector<BandItem> items) {
    Band* band = FindBand(name);
    if (!band) return;
    band->items = std::move(items);
    if (observer_) observer_->BandChanged(*band);
}

void CommandBar::PopUp(const std::string& name) {
    Band* band = FindBand(name);
    if (band && observer_) observer_->PopUp(*band);
}

std::string CommandBar::Caption(int number) const {
    for (const std::string& name : order_) {
        for (const BandItem& item : bands_.at(name).items) {
            if (item.kind == BandItem::Kind::Tool && item.number == number) return item.caption;
        }
    }
    return {};
}

bool CommandBar::IsEnabled(int number) const {
    const Tool* tool = FindTool(number);
    if (!tool || !tool->enabled || !tool->visible) return false;
    bool placed = false;
    for (const auto& [name, band] : bands_) {
        for (const BandItem& item : band.items) {
            if (item.kind != BandItem::Kind::Tool || item.number != number) continue;
            if (band.enabled) return true;
            placed = true;
        }
    }
    return !placed;
}

void CommandBar::Click(int number) {
    if (IsEnabled(number)) ToolClick(number);
}

void CommandBar::ChooseCombo(int number, const std::string& text) {
    Tool* tool = FindTool(number);
    if (!tool || !IsEnabled(number)) return;
    tool->text = text;
    ComboChange(number);
}

void CommandBar::OpenBand(const std::string& band) {
    BandOpen(band);
}

void CommandBar::CloseToolbar(const std::string& band) {
    SetBandVisible(band, false);
    ToolbarClosed(band);
}

void CommandBar::PointerEnters(int number) {
    MouseEnter(number);
}

void CommandBar::PointerLeaves() {
    MouseExit();
}

}  // namespace pw
