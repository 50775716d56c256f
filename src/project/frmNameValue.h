#pragma once
// The general prompt for a name and a value. It knows none of its callers: they give it its texts
// and a test that the entry must pass, and read the result.
#include <functional>
#include <optional>
#include <string>

#include "platform/DialogHost.h"
#include "platform/controls/Dialog.h"

namespace pw {

struct NameValue {
    std::string name;
    std::string value;
};

struct NameValueQuestion {
    std::string title;
    std::string nameLabel = "&Name:";
    std::string valueLabel = "&Value:";
    enum class ValueLine { Shown, Hidden } valueLine = ValueLine::Shown;
    NameValue initial;
    int helpTopic = 0;
    /** Tells why an entry can't be taken, or "" for one that can. The dialog then stays, with the
     *  name selected. */
    std::function<std::string(const NameValue&)> refuse;
};

class frmNameValue : public Dialog {
  public:
    frmNameValue(DialogHost& dialogs, NameValueQuestion question);

    Label lblName{this, "lblName"};
    Label lblValue{this, "lblValue"};
    TextBox txtName{this, "txtName"};
    TextBox txtValue{this, "txtValue"};
    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};

    /** Both trimmed; none when it was cancelled. */
    const std::optional<NameValue>& Result() const { return result_; }

  private:
    void txtName_Change();
    void cmdOK_Click();

    DialogHost& dialogs_;
    NameValueQuestion question_;
    std::optional<NameValue> result_;
};

/** Asks; none when it was cancelled. */
std::optional<NameValue> AskNameValue(DialogHost& dialogs, NameValueQuestion question);

}  // namespace pw
