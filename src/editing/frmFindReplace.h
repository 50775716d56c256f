#pragma once
// Find and Replace. Looks through the text of the page in normal view and through its source in
// HTML view, from the caret on; refuses an empty search; writes replacements, Replace All as one
// undo step on the matches that stood there when it began.
#include <functional>
#include <optional>
#include <vector>

#include "platform/DialogHost.h"
#include "platform/SourceBox.h"
#include "platform/controls/Dialog.h"
#include "platform/dom/TextRange.h"

namespace pw {

/** The page in front, as far as searching needs it. */
struct FindTarget {
    int view = 0;  ///< 1 normal, 2 HTML; any other is not searched
    dom::Document* document = nullptr;
    SourceBox* source = nullptr;
};

/** What was searched for and put in its place, newest first; lives as long as the program. */
struct SearchHistory {
    std::vector<std::string> find;
    std::vector<std::string> replace;
};

class frmFindReplace : public Dialog {
  public:
    static constexpr int kFind = 108;
    static constexpr int kReplace = 109;

    /** `target` is asked at every press, since the page in front can change. */
    frmFindReplace(DialogHost& dialogs, std::string caption, SearchHistory& history,
                   std::function<FindTarget()> target);

    ComboBox txtFind{this, "txtFind", true};
    Label lblReplace{this, "lblReplace"};
    ComboBox txtReplace{this, "txtReplace", true};
    CheckBox chkOption_0{this, "chkOption_0"};  ///< match case
    CheckBox chkOption_1{this, "chkOption_1"};  ///< whole word only
    ComboBox cboDirection{this, "cboDirection"};
    /** Find Next, Replace, Replace All, Cancel. */
    ControlArray<Button, 4> cmdProcess{this, "cmdProcess"};

    /** `tool` is kFind or kReplace. */
    void Setup(int tool);
    void Form_Unload() override;

  private:
    enum Button_ { FindNext = 0, Replace = 1, ReplaceAll = 2, Cancel = 3 };
    struct SourceMatch {
        std::size_t start;
        std::size_t length;
    };

    void txtFind_Change();
    void cmdProcess_Click(int index);
    void Remember();
    bool Down() const { return cboDirection.ListIndex() != 0; }

    bool FindNormalText(const FindTarget& target);
    void ReplaceNormalText();
    void ReplaceAllNormal(const FindTarget& target);
    bool FindHTMLText(const FindTarget& target);
    void ReplaceHTMLText(const FindTarget& target);
    void ReplaceAllHTML(const FindTarget& target);
    std::optional<SourceMatch> FindInSource(const std::string& text, std::size_t from) const;
    void CompletedFindMessage();

    DialogHost& dialogs_;
    std::string caption_;
    SearchHistory& history_;
    std::function<FindTarget()> target_;
    std::optional<dom::TextRange> m_range;  ///< the last match in normal view
    dom::Document* searched_ = nullptr;     ///< the document of m_range
    bool m_firstSearch = true;
    std::size_t m_findPos = 0;  ///< 1 more than the place of the last match in HTML view; 0: none
};

}  // namespace pw
