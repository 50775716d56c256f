#pragma once
// The tie between one control model and its widget, both ways. Made by makeBinding; there is one
// class for each kind of control.
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

#include "platform/controls/Controls.h"

namespace pw {

class Binding : public QObject, public ControlObserver {
    Q_OBJECT
  public:
    Binding(Control& control, QWidget& widget);
    /** The control must still be there. */
    ~Binding() override;

    void ControlChanged(Control& control, Aspect aspect) override;
    /** Shows everything; to be called once when the binding is complete. */
    void showAll();

  protected:
    /** Shows what is special to the kind. Raises nothing. */
    virtual void show(Aspect aspect) = 0;
    /** How a caption is shown; "" only when it was taken away. */
    virtual void showCaption(const QString& caption);
    /** True while the widget is being set by the model: what it then reports, no user did. */
    bool showing() const { return showing_ > 0; }

  private:
    void showCommon(Aspect aspect);
    Control& control_;
    QPointer<QWidget> widget_;
    int showing_ = 0;
};

/** None when the widget cannot show a control of that kind. */
std::unique_ptr<Binding> makeBinding(Control& control, QWidget& widget);

// The larger ones, in files of their own.
std::unique_ptr<Binding> makeTextBinding(Control& control, QWidget& widget);
std::unique_ptr<Binding> makeListBinding(Control& control, QWidget& widget);
std::unique_ptr<Binding> makeTreeBinding(Control& control, QWidget& widget);
std::unique_ptr<Binding> makeSplitterBinding(Control& control, QWidget& widget);

}  // namespace pw
