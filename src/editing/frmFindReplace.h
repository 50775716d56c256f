#pragma once
// Find and Replace, open beside the page while the user works on it. In normal view it looks
// through the text of the page as it is read, from the top on and then from match to match; in HTML
// view through the source, from the caret on. It refuses an empty search, writes replacements, and
// makes Replace All one undo step on the matches that stood there when it began.
#include <optional>
#include <string>
#include <vector>

#include "editing/SearchHistory.h"
#include "platform/SourceBox.h"
#include "platform/TextSearch.h"
#include "platform/controls/Dialog.h"
#include "platform/dom/TextRange.h"

namespace pw {

struct FrameContext;

/** The page in front, as far as searching needs it. */
struct FindTarget {
    int view = 0;  ///< 1 normal, 2 HTML; any other is not searched
    dom::Document* document = nullptr;
    SourceBox* source = nullptr;
};

/** What Find and Replace needs of the program around it. */
class SearchedPage {
  public:
    virtual ~SearchedPage() = default;
    /** Asked at every press, since the page in front can change. Nothing that the user has typed is
     *  still due in it. */
    virtual FindTarget Target() = 0;
    /** Scrolls to what is selected in normal view. */
    virtual void ScrollToSelection() = 0;
    virtual void ShowStatus(const std::string& text) = 0;
};

class frmFindReplace : public Dialog {
  public:
    static constexpr int kFind = 108;
    static constexpr int kReplace = 109;
    enum class Direction { Up, Down };

    frmFindReplace(FrameContext& frame, SearchHistory& history, SearchedPage& page);

    ComboBox txtFind{this, "txtFind", true};
    Label lblReplace{this, "lblReplace"};
    ComboBox txtReplace{this, "txtReplace", true};
    CheckBox chkOption_0{this, "chkOption_0"};  ///< match case
    CheckBox chkOption_1{this, "chkOption_1"};  ///< whole word only
    ComboBox cboDirection{this, "cboDirection"};
    /** Find Next, Replace, Replace All, Cancel. */
    ControlArray<Button, 4> cmdProcess{this, "cmdProcess"};

    /** `tool` is kFind or kReplace. A short text that is selected in the page is what to find. */
    void Setup(int tool);
    void Form_Unload() override;
    /** True when there is something to look for. */
    bool HasSearch() const;
    /** As Find Next, from the caret on, whether the dialog is open or not. */
    void FindAgain(Direction direction);

  private:
    enum Button_ { FindNext = 0, Replace = 1, ReplaceAll = 2, Cancel = 3 };

    void txtFind_Change();
    void cmdProcess_Click(int index);
    void Remember();
    std::string SelectedText();
    bool Down() const { return direction_ == Direction::Down; }
    bool IsWanted(const std::string& text) const;
    void Find(const FindTarget& target);

    bool FindNormalText(const FindTarget& target);
    void ReplaceNormalText(const FindTarget& target);
    void ReplaceAllNormal(const FindTarget& target);
    dom::TextRange Beginning(dom::Document& document) const;
    bool HasMatch(const FindTarget& target) const;
    int Flags() const;
    void ShowMatch(dom::TextRange& range);

    bool FindHTMLText(const FindTarget& target);
    void ReplaceHTMLText(const FindTarget& target);
    void ReplaceAllHTML(const FindTarget& target);
    std::vector<TextSearch::Match> MatchesInSource(const std::string& text, std::size_t from,
                                                   std::size_t most) const;

    void CompletedFindMessage();
    void ShowCount(std::size_t replaced);

    FrameContext& frame_;
    SearchHistory& history_;
    SearchedPage& page_;
    Direction direction_ = Direction::Down;
    /** The last match in normal view; none: the next search begins at the top. */
    std::optional<dom::TextRange> m_range;
    const dom::Document* searched_ = nullptr;  ///< that of m_range, which may be gone
    bool m_firstSearch = true;
    std::size_t m_findPos = 0;    ///< 1 more than the place of the last match in HTML view; 0: none
    bool finished_ = false;       ///< the last search came to the end
    std::size_t finishedAt_ = 0;  ///< where the caret stood in HTML view then
};

}  // namespace pw
