#pragma once
// Controls without a screen. A dialog's members are these models; its logic reads and writes them,
// tests press them, and the skin draws them. The skin finds its widget by the model's name.
//
// Text, check and combo models raise Change whenever their value changes, by program as by user.
// Clicks, and the node and row events of trees and lists, come from the user alone: from the
// functions that begin with "User", which the skin and the tests call.
//
// What a handler throws ends in the event that called it, where no other handler has caused that
// event: it is logged under the handler's name, and the user is told.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/HandlerLevel.h"

namespace pw {

class Control;
class ControlOwner;

/** What of a control changed. */
enum class Aspect {
    Text,
    Items,
    Selection,
    Checked,
    Enabled,
    Visible,
    Caption,
    Value,
    Range,
    Color,
    Picture,
    Focus,
    TextSelection
};

/** The skin's ear. Set while a control is on the screen. */
class ControlObserver {
  public:
    virtual ~ControlObserver() = default;
    virtual void ControlChanged(Control& control, Aspect aspect) = 0;
};

enum class ControlKind {
    Label,
    TextBox,
    CheckBox,
    OptionButton,
    ComboBox,
    ListBox,
    ListView,
    TreeView,
    Button,
    TabStrip,
    ProgressBar,
    ColorBox,
    Picture,
    Frame,
    UpDown,
    DatePicker,
    Splitter
};

/** Whatever raises events: a control, the command bar. */
class EventSource {
  public:
    /** None: what a handler throws goes on to whoever raised the event. */
    virtual FaultSink* Faults() const = 0;
    /** Of the handlers: "Options.". */
    virtual std::string ModuleDot() const = 0;
    /** "cmdBrowse_Click" for the event "Click" of each of the buttons of that name. */
    virtual std::string ProcedureOf(const char* event) const = 0;

  protected:
    ~EventSource() = default;
};

class Control : public EventSource {
  public:
    Control(ControlOwner* owner, std::string name, ControlKind kind);
    virtual ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    FaultSink* Faults() const override;
    std::string ModuleDot() const override;
    std::string ProcedureOf(const char* event) const override;

    const std::string& Name() const { return name_; }
    ControlKind Kind() const { return kind_; }

    bool Enabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    bool Visible() const { return visible_; }
    void SetVisible(bool visible);
    /** Text on the control itself, "&" in front of its access key; "" leaves the form's own. */
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    void SetFocus() { Notify(Aspect::Focus); }
    /** Shows a changed tag, tool tip, maximal length or "read only", which tell nobody. */
    void Refresh() { Notify(Aspect::Caption); }

    std::string tag;      ///< for the logic's use
    std::string toolTip;  ///< "" leaves the form's own

    void SetObserver(ControlObserver* observer) { observer_ = observer; }

  protected:
    void Notify(Aspect aspect);

  private:
    ControlOwner* owner_;
    std::string name_;
    ControlKind kind_;
    bool enabled_ = true;
    bool visible_ = true;
    std::string caption_;
    ControlObserver* observer_ = nullptr;
};

/** Calls its handler, if one is set. One handler: the logic's. */
template <typename... Args>
class Event {
  public:
    /** A member of its source, `name` that of the member. */
    Event(const EventSource* source, const char* name) : source_(source), name_(name) {}
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    template <typename Handler>
    Event& operator=(Handler handler) {
        handler_ = std::move(handler);
        return *this;
    }
    void operator()(Args... args) const {
        if (!handler_) return;
        const HandlerScope scope;
        FaultSink* faults = scope.IsOutermost() ? source_->Faults() : nullptr;
        if (!faults) return handler_(std::forward<Args>(args)...);
        try {
            handler_(std::forward<Args>(args)...);
        } catch (...) {
            faults->HandlerFailed(source_->ModuleDot(), source_->ProcedureOf(name_));
        }
    }
    explicit operator bool() const { return bool(handler_); }

  private:
    const EventSource* source_;
    const char* name_;
    std::function<void(Args...)> handler_;
};

/** Whatever holds controls: a dialog, the main window. */
class ControlOwner {
  public:
    virtual ~ControlOwner() = default;
    const std::vector<Control*>& Controls() const { return controls_; }
    Control* Find(const std::string& name) const;

    /** Of its handlers, as the error log names them. */
    virtual std::string ModuleName() const { return "Controls"; }
    FaultSink* Faults() const { return faults_; }
    void SetFaults(FaultSink* faults) { faults_ = faults; }

  private:
    friend class Control;
    std::vector<Control*> controls_;
    FaultSink* faults_ = nullptr;
};

/** Controls of one name, numbered from 0: `txtVersion[1]` is named "txtVersion_1". */
template <typename T, std::size_t N>
class ControlArray {
  public:
    ControlArray(ControlOwner* owner, const std::string& name) {
        for (std::size_t i = 0; i < N; ++i) {
            items_.push_back(std::make_unique<T>(owner, name + "_" + std::to_string(i)));
        }
    }
    T& operator[](std::size_t i) { return *items_.at(i); }
    const T& operator[](std::size_t i) const { return *items_.at(i); }
    static constexpr std::size_t size() { return N; }

  private:
    std::vector<std::unique_ptr<T>> items_;
};

}  // namespace pw
