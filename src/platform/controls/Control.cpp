#include "platform/controls/Control.h"

namespace pw {

Control::Control(ControlOwner* owner, std::string name, ControlKind kind)
    : name_(std::move(name)), kind_(kind) {
    owner->controls_.push_back(this);
}

Control::~Control() = default;

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
