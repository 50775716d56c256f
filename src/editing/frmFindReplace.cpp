#include "editing/frmFindReplace.h"

#include <algorithm>

#include "platform/Text.h"

namespace pw {

namespace {

constexpr int kWholePage = 999999;  // characters; more than any page holds
constexpr std::size_t kHistoryLength = 20;

void PutFirst(std::vector<std::string>& list, const std::string& text) {
    if (text.empty()) return;
    list.erase(std::remove(list.begin(), list.end(), text), list.end());
    list.insert(list.begin(), text);
    if (list.size() > kHistoryLength) list.resize(kHistoryLength);
}

}  // namespace

frmFindReplace::frmFindReplace(DialogHost& dialogs, std::string caption, SearchHistory& history,
                               std::function<FindTarget()> target)
    : Dialog("frmFindReplace", "Find"),
      dialogs_(dialogs),
      caption_(std::move(caption)),
      history_(history),
      target_(std::move(target)) {
    cboDirection.SetItems({"Up", "Down"});
    txtFind.Change = [this] { txtFind_Change(); };
    for (int i = 0; i < int(cmdProcess.size()); ++i) {
        cmdProcess[std::size_t(i)].Click = [this, i] { cmdProcess_Click(i); };
    }
}

void frmFindReplace::Setup(int tool) {
    const bool replace = tool == kReplace;
    SetTitle(replace ? "Replace" : "Find");
    txtFind.SetItems(history_.find);
    txtReplace.SetItems(history_.replace);
    lblReplace.SetVisible(replace);
    txtReplace.SetVisible(replace);
    cmdProcess[Replace].SetVisible(replace);
    cmdProcess[ReplaceAll].SetVisible(replace);
    cboDirection.SetListIndex(1);
    txtFind_Change();
}

void frmFindReplace::Form_Unload() {
    m_range.reset();
    searched_ = nullptr;
    m_firstSearch = true;
    m_findPos = 0;
}

void frmFindReplace::txtFind_Change() {
    const bool something = !Trim(txtFind.Text()).empty();
    for (int i : {FindNext, Replace, ReplaceAll})
        cmdProcess[std::size_t(i)].SetEnabled(something);
}

void frmFindReplace::Remember() {
    PutFirst(history_.find, txtFind.Text());
    PutFirst(history_.replace, txtReplace.Text());
}

void frmFindReplace::cmdProcess_Click(int index) {
    if (index == Cancel) return Close();
    const FindTarget target = target_();
    if (target.view != 1 && target.view != 2) return;
    Remember();
    const bool normal = target.view == 1;
    if (normal && !target.document) return;
    if (!normal && !target.source) return;
    switch (index) {
        case FindNext:
            if (!(normal ? FindNormalText(target) : FindHTMLText(target))) CompletedFindMessage();
            break;
        case Replace:
            normal ? ReplaceNormalText() : ReplaceHTMLText(target);
            break;
        case ReplaceAll:
            normal ? ReplaceAllNormal(target) : ReplaceAllHTML(target);
            CompletedFindMessage();
            break;
    }
}

bool frmFindReplace::FindNormalText(const FindTarget& target) {
    if (!m_range || searched_ != target.document) {
        m_range.emplace(*target.document);
        searched_ = target.document;
        m_firstSearch = true;
    }
    // Past the last match, or it would be found again.
    if (!m_firstSearch) m_range->moveCharacters(Down() ? 1 : -1);
    const int flags = (chkOption_1.Checked() ? dom::TextRange::WholeWord : 0) |
                      (chkOption_0.Checked() ? dom::TextRange::MatchCase : 0);
    if (!m_range->findText(txtFind.Text(), Down() ? kWholePage : -kWholePage, flags)) {
        m_range.reset();
        return false;
    }
    m_range->select();
    m_firstSearch = false;
    return true;
}

void frmFindReplace::ReplaceNormalText() {
    if (!m_range || m_firstSearch) return;
    m_range->setText(txtReplace.Text());
    m_range->select();
}

void frmFindReplace::ReplaceAllNormal(const FindTarget& target) {
    // Without a match to begin at the first one is looked for.
    if ((!m_range || m_firstSearch) && !FindNormalText(target)) return;
    std::vector<dom::TextRange> matches{*m_range};
    while (FindNormalText(target))
        matches.push_back(*m_range);
    // Backwards through the page, so that a replacement moves no match that is still to come.
    if (Down()) std::reverse(matches.begin(), matches.end());
    dom::Document::Step step(*target.document);
    for (dom::TextRange& match : matches)
        match.setText(txtReplace.Text());
}

std::optional<frmFindReplace::SourceMatch> frmFindReplace::FindInSource(const std::string& text,
                                                                        std::size_t from) const {
    // COMPAT: a whole word stands between blanks; one beside a tag or at a line's end is not found.
    const std::string wanted = chkOption_1.Checked() ? " " + txtFind.Text() + " " : txtFind.Text();
    std::size_t at = std::string::npos;
    if (Down()) {
        at = chkOption_0.Checked() ? text.find(wanted, from) : FindNoCase(text, wanted, from);
    } else {
        const std::string before = text.substr(0, from);
        at = chkOption_0.Checked() ? before.rfind(wanted) : FindLastNoCase(before, wanted);
    }
    if (at == std::string::npos) return std::nullopt;
    return SourceMatch{at, wanted.size()};
}

bool frmFindReplace::FindHTMLText(const FindTarget& target) {
    SourceBox& box = *target.source;
    const std::size_t from = Down() ? box.SelStart() + box.SelLength() : box.SelStart();
    const auto match = FindInSource(box.Text(), from);
    if (!match) {
        m_findPos = 0;
        return false;
    }
    box.SetFocus();
    box.Select(match->start, match->length);
    m_findPos = match->start + 1;
    return true;
}

void frmFindReplace::ReplaceHTMLText(const FindTarget& target) {
    if (target.source->SelLength() > 0) target.source->ReplaceSelection(txtReplace.Text());
}

void frmFindReplace::ReplaceAllHTML(const FindTarget& target) {
    if (m_findPos == 0 && !FindHTMLText(target)) return;
    SourceBox& box = *target.source;
    const std::string text = box.Text();
    std::vector<SourceMatch> matches{{box.SelStart(), box.SelLength()}};
    for (;;) {
        const SourceMatch& last = matches.back();
        const auto match = FindInSource(text, Down() ? last.start + last.length : last.start);
        if (!match) break;
        matches.push_back(*match);
    }
    if (Down()) std::reverse(matches.begin(), matches.end());
    box.BeginStep();
    for (const SourceMatch& match : matches) {
        box.Select(match.start, match.length);
        box.ReplaceSelection(txtReplace.Text());
    }
    box.EndStep();
    m_findPos = 0;
}

void frmFindReplace::CompletedFindMessage() {
    dialogs_.MsgBox({"Finished searching the page.", caption_, Icon::Information});
}

}  // namespace pw
