#include "platform/controls/Control.h"

namespace pw {

Control::Control(ControlOwner* owner, std::string name, ControlKind kind)
    : owner_(owner), name_(std::move(name)), kind_(kind) {
    owner->controls_.push_back(this);
}

Control::~Control() = default;

FaultSink* Control::Faults() const {
    return owner_->Faults();
}

std::string Control::ModuleDot() const {
    return owner_->ModuleName() + ".";
}

std::string Control::ProcedureOf(const char* event) const {
    // Controls of one name share their handlers.
    const std::size_t number = name_.find_last_not_of("0123456789");
    const bool isNumbered =
        number != name_.npos && number + 1 < name_.size() && name_[number] == '_';
    return name_.substr(0, isNumbered ? number : name_.npos) + "_" + event;
}

void Control::Notify(Aspect aspect) {
    if (observer_) observer_->ControlChanged(*this, aspect);
}

void Control::SetEnabled(bool enabled) {
    if (enabled_ == enabled) return;
    enabled_ = enabled;
    Notify(Aspect::Enabled);
}

void Control::SetVisible(bool visible) {
    if (visible_ == visible) return;
    visible_ = visible;
    Notify(Aspect::Visible);
}

void Control::SetCaption(std::string caption) {
    if (caption_ == caption) return;
    caption_ = std::move(caption);
    Notify(Aspect::Caption);
}

Control* ControlOwner::Find(const std::string& name) const {
    for (Control* control : controls_) {
        if (control->Name() == name) return control;
    }
    return nullptr;
}

}  // namespace pw
