#pragma once
// Brings a form (forms/NAME.ui) and the controls of its dialog together by their names: the widget
// `txtVersion_1` shows the control "txtVersion_1". No dialog needs code of its own in the skin.
#include <QIcon>
#include <QStringList>
#include <QWidget>

#include <memory>
#include <vector>

#include "platform/controls/Controls.h"
#include "platform/qt/Binding.h"

namespace pw {

/** What a form and its controls do not have in common; all empty when they fit. */
struct BindingReport {
    QStringList controlsWithoutWidget;
    QStringList widgetsWithoutControl;  ///< but for labels, boxes and the like
    QStringList wrongKind;              ///< there, but not able to show the control
    bool complete() const {
        return controlsWithoutWidget.isEmpty() && widgetsWithoutControl.isEmpty() &&
               wrongKind.isEmpty();
    }
    QString text() const;
};

/** Loads the form of that name from the resources; none when there is none. */
std::unique_ptr<QWidget> loadForm(const QString& name, QWidget* parent = nullptr);
/** The program's own picture. */
QIcon programIcon();
/** The names of all forms in the resources. */
QStringList formNames();

class FormBinder {
  public:
    /** Both must outlive the binder. Controls without a widget, and the other way round, are left
     *  alone and told in the report. */
    FormBinder(ControlOwner& owner, QWidget& form);
    const BindingReport& report() const { return report_; }

  private:
    void findStrays(const ControlOwner& owner, const QWidget& parent);
    std::vector<std::unique_ptr<Binding>> bindings_;
    BindingReport report_;
};

}  // namespace pw
