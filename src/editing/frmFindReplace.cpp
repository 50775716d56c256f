#include "editing/frmFindReplace.h"

#include <algorithm>

#include "frame/Context.h"
#include "platform/Text.h"
#include "project/Workspace.h"

namespace pw {

namespace {

constexpr const char* kModule = "FindReplace.";
constexpr int kWholePage = 999999;              // characters; more than any page holds
constexpr std::size_t kLongestSelection = 200;  // bytes that are taken for a text to find

}  // namespace

frmFindReplace::frmFindReplace(FrameContext& frame, SearchHistory& history, SearchedPage& page)
    : Dialog("frmFindReplace", "Find"), frame_(frame), history_(history), page_(page) {
    cboDirection.SetItems({"Up", "Down"});
    txtFind.Change = [this] { txtFind_Change(); };
    for (int i = 0; i < int(cmdProcess.size()); ++i) {
        cmdProcess[std::size_t(i)].Click = [this, i] { cmdProcess_Click(i); };
    }
}

void frmFindReplace::Setup(int tool) {
    const bool replace = tool == kReplace;
    SetTitle(replace ? "Replace" : "Find");
    txtFind.SetItems(history_.Find());
    txtReplace.SetItems(history_.Replace());
    lblReplace.SetVisible(replace);
    txtReplace.SetVisible(replace);
    cmdProcess[Replace].SetVisible(replace);
    cmdProcess[ReplaceAll].SetVisible(replace);
    cboDirection.SetListIndex(1);
    const std::string selected = SelectedText();
    if (!selected.empty()) txtFind.SetText(selected);
    txtFind_Change();
    txtFind.SetFocus();
}

void frmFindReplace::Form_Unload() {
    m_range.reset();
    m_firstSearch = true;
    m_findPos = 0;
    finished_ = false;
}

std::string frmFindReplace::SelectedText() {
    const FindTarget target = page_.Target();
    std::string text;
    if (target.view == ViewState::Normal && target.document) {
        text = dom::TextRange::fromSelection(*target.document).text();
    } else if (target.view == ViewState::Html && target.source && target.source->SelLength() > 0) {
        text = target.source->Text().substr(target.source->SelStart(), target.source->SelLength());
    }
    const bool isShort = text.size() <= kLongestSelection && text.find('\n') == text.npos;
    return isShort ? Trim(text) : std::string();
}

bool frmFindReplace::HasSearch() const {
    return !Trim(txtFind.Text()).empty();
}

void frmFindReplace::txtFind_Change() {
    for (int i : {FindNext, Replace, ReplaceAll})
        cmdProcess[std::size_t(i)].SetEnabled(HasSearch());
}

void frmFindReplace::Remember() {
    history_.Remember(txtFind.Text(), txtReplace.Text());
    txtFind.SetItems(history_.Find());
    txtReplace.SetItems(history_.Replace());
}

void frmFindReplace::cmdProcess_Click(int index) {
    if (index == Cancel) return Close();
    Trap(frame_.errorLog, kModule, "cmdProcess_Click", [&] {
        Remember();
        direction_ = cboDirection.ListIndex() == 0 ? Direction::Up : Direction::Down;
        const FindTarget target = page_.Target();
        const bool normal = target.view == ViewState::Normal && target.document;
        if (!normal && !(target.view == ViewState::Html && target.source)) return;
        switch (index) {
            case FindNext:
                Find(target);
                break;
            case Replace:
                normal ? ReplaceNormalText(target) : ReplaceHTMLText(target);
                break;
            case ReplaceAll:
                normal ? ReplaceAllNormal(target) : ReplaceAllHTML(target);
                break;
        }
    });
}

void frmFindReplace::FindAgain(Direction direction) {
    Trap(frame_.errorLog, kModule, "FindAgain", [&] {
        direction_ = direction;
        const FindTarget target = page_.Target();
        if (target.view == ViewState::Normal && target.document && !m_range && !finished_) {
            m_range.emplace(*target.document);
            searched_ = target.document;
            m_firstSearch = false;
        }
        Find(target);
    });
}

void frmFindReplace::Find(const FindTarget& target) {
    bool found = false;
    if (target.view == ViewState::Normal && target.document) {
        found = FindNormalText(target);
    } else if (target.view == ViewState::Html && target.source) {
        found = FindHTMLText(target);
    } else {
        return;
    }
    if (!found) CompletedFindMessage();
}

bool frmFindReplace::IsWanted(const std::string& text) const {
    const int alike = chkOption_0.Checked() ? TextSearch::Same : TextSearch::AnyCase;
    const auto match = TextSearch(text, txtFind.Text(), alike | TextSearch::AnyBlank).Next(0);
    return match == TextSearch::Match{0, text.size()};
}

void frmFindReplace::CompletedFindMessage() {
    frame_.dialogs.MsgBox(
        {"Finished searching the page.", frame_.brand.FormCaption(), Icon::Information});
}

void frmFindReplace::ShowCount(std::size_t replaced) {
    page_.ShowStatus(replaced == 1
                         ? "1 text was replaced on the page."
                         : std::to_string(replaced) + " texts were replaced on the page.");
}

// --- Normal view --------------------------------------------------------------------------------

int frmFindReplace::Flags() const {
    return (chkOption_1.Checked() ? dom::TextRange::WholeWord : 0) |
           (chkOption_0.Checked() ? dom::TextRange::MatchCase : 0);
}

/** Where a search begins. Once one is under way that is the selection: the last match, unless the
 *  user has put the caret elsewhere since. */
dom::TextRange frmFindReplace::Beginning(dom::Document& document) const {
    dom::TextRange range(document);
    const bool underWay = m_range && searched_ == &document && !m_firstSearch;
    if (underWay && document.isConnected(document.selection().focus.node)) {
        range = dom::TextRange::fromSelection(document);
        Down() ? range.collapseToEnd() : range.collapseToStart();
    } else {
        Down() ? range.collapseToStart() : range.collapseToEnd();
    }
    return range;
}

bool frmFindReplace::FindNormalText(const FindTarget& target) {
    m_range = Beginning(*target.document);
    searched_ = target.document;
    finished_ = !m_range->findText(txtFind.Text(), Down() ? kWholePage : -kWholePage, Flags());
    if (finished_) {
        m_range.reset();
        m_firstSearch = true;
        return false;
    }
    ShowMatch(*m_range);
    m_firstSearch = false;
    return true;
}

void frmFindReplace::ShowMatch(dom::TextRange& range) {
    range.select();
    page_.ScrollToSelection();
}

/** True while what was found is still selected. */
bool frmFindReplace::HasMatch(const FindTarget& target) const {
    return m_range && searched_ == target.document && !m_firstSearch &&
           IsWanted(dom::TextRange::fromSelection(*target.document).text());
}

void frmFindReplace::ReplaceNormalText(const FindTarget& target) {
    if (!HasMatch(target)) return Find(target);
    dom::Document::Step step(*target.document);
    m_range = dom::TextRange::fromSelection(*target.document);
    m_range->setText(txtReplace.Text());
    // The search goes on from there, and not in what was just written.
    Down() ? m_range->collapseToEnd() : m_range->collapseToStart();
    m_range->select();
}

void frmFindReplace::ReplaceAllNormal(const FindTarget& target) {
    if (!HasMatch(target) && !FindNormalText(target)) return CompletedFindMessage();
    dom::TextRange from = dom::TextRange::fromSelection(*target.document);
    if (!Down()) from.collapseToEnd();
    std::vector<dom::TextRange> matches =
        from.findAll(txtFind.Text(), Down() ? kWholePage : -kWholePage, Flags());
    if (matches.empty()) return CompletedFindMessage();
    if (!Down()) std::reverse(matches.begin(), matches.end());
    {
        dom::Document::Step step(*target.document);
        dom::TextRange::replaceAll(matches, txtReplace.Text());
        dom::TextRange last = Down() ? matches.back() : matches.front();
        last.collapseToEnd();
        if (target.document->isConnected(last.end().node)) last.select();
    }
    m_range.reset();
    m_firstSearch = true;
    page_.ScrollToSelection();
    ShowCount(matches.size());
}

// --- HTML view ----------------------------------------------------------------------------------

/** The matches from a place on in the direction of the search, at most so many. */
std::vector<TextSearch::Match> frmFindReplace::MatchesInSource(const std::string& text,
                                                               std::size_t from,
                                                               std::size_t most) const {
    // COMPAT: a whole word stands between blanks; one beside a tag or at a line's end is not found.
    const std::size_t margin = chkOption_1.Checked() ? 1 : 0;
    const std::string blank(margin, ' ');
    const TextSearch search(text, blank + txtFind.Text() + blank,
                            chkOption_0.Checked() ? TextSearch::Same : TextSearch::AnyCase);
    std::vector<TextSearch::Match> matches;
    while (matches.size() < most) {
        const auto match = Down() ? search.Next(from) : search.Last(from);
        if (!match) break;
        // The blanks belong to the neighbours as well, and are not replaced.
        matches.push_back({match->start + margin, match->length - 2 * margin});
        from = Down() ? matches.back().end() : matches.back().start;
    }
    return matches;
}

bool frmFindReplace::FindHTMLText(const FindTarget& target) {
    SourceBox& box = *target.source;
    const std::string text = box.Text();
    std::size_t from = Down() ? box.SelStart() + box.SelLength() : box.SelStart();
    if (finished_ && finishedAt_ == from) from = Down() ? 0 : text.size();
    const auto matches = MatchesInSource(text, from, 1);
    finished_ = matches.empty();
    if (finished_) {
        m_findPos = 0;
        finishedAt_ = Down() ? box.SelStart() + box.SelLength() : box.SelStart();
        return false;
    }
    box.SetFocus();
    box.Select(matches.front().start, matches.front().length);
    m_findPos = matches.front().start + 1;
    return true;
}

void frmFindReplace::ReplaceHTMLText(const FindTarget& target) {
    SourceBox& box = *target.source;
    if (box.SelLength() == 0) return Find(target);
    const std::size_t start = box.SelStart();
    box.ReplaceSelection(txtReplace.Text());
    if (!Down()) box.Select(start, 0);
}

void frmFindReplace::ReplaceAllHTML(const FindTarget& target) {
    SourceBox& box = *target.source;
    const std::string text = box.Text();
    const bool hasMatch = m_findPos != 0 && IsWanted(text.substr(box.SelStart(), box.SelLength()));
    if (!hasMatch && !FindHTMLText(target)) return CompletedFindMessage();
    // A whole word is found by the blanks around it.
    const std::size_t start = box.SelStart() - (box.SelStart() > 0 ? 1 : 0);
    const std::size_t end = box.SelStart() + box.SelLength() + 1;
    auto matches = MatchesInSource(text, Down() ? start : end, text.size());
    if (!Down()) std::reverse(matches.begin(), matches.end());
    if (!matches.empty()) {
        // The whole stretch at once: one change for the box, and one to be undone.
        const std::size_t first = matches.front().start;
        std::string stretch;
        std::size_t copied = first;
        for (const TextSearch::Match& match : matches) {
            stretch.append(text, copied, match.start - copied).append(txtReplace.Text());
            copied = match.end();
        }
        box.Select(first, copied - first);
        box.ReplaceSelection(stretch);
        m_findPos = 0;
        ShowCount(matches.size());
    }
    CompletedFindMessage();
}

}  // namespace pw
