#include "project/StyleText.h"

#include <cctype>
#include <utility>

#include "platform/Text.h"

namespace pw {

namespace {

constexpr auto npos = std::string_view::npos;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

bool IsNameCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || (c & 0x80);
}

bool StandsAt(std::string_view css, std::string_view word, std::size_t at) {
    return EqualsNoCase(css.substr(at, word.size()), word);
}

/** Walks over CSS text and copies it, putting rewritten references in. */
class StyleScanner {
  public:
    StyleScanner(std::string_view css,
                 const std::function<std::optional<std::string>(const std::string&)>& rewrite)
        : css_(css), rewrite_(rewrite) {}

    std::string Run() {
        bool isImport = false;  // behind @import the next string is a reference
        while (at_ < css_.size()) {
            const char c = css_[at_];
            if (c == '/' && StandsAt(css_, "/*", at_)) {
                const auto end = css_.find("*/", at_ + 2);
                at_ = end == npos ? css_.size() : end + 2;
            } else if (const std::size_t behind = EndOfCode(at_); behind > at_) {
                at_ = behind;
            } else if (c == '"' || c == '\'') {
                const std::size_t end = EndOfString(at_);
                if (isImport && end < css_.size()) Replace(at_ + 1, end, css_[at_]);
                at_ = std::min(end + 1, css_.size());
                isImport = false;
            } else if (c == '@') {
                isImport = StandsAt(css_, "@import", at_);
                at_ += isImport ? 7 : 1;
            } else if (StandsAt(css_, "url(", at_) && !IsInName(at_)) {
                ReadUrl();
                isImport = false;
            } else {
                if (c == ';' || c == '{') isImport = false;
                ++at_;
            }
        }
        return out_.append(css_.substr(copied_));
    }

  private:
    bool IsInName(std::size_t at) const { return at > 0 && IsNameCharacter(css_[at - 1]); }

    /** Place behind code of a server that begins here; the place itself when none does. */
    std::size_t EndOfCode(std::size_t at) const {
        static constexpr std::pair<std::string_view, std::string_view> kinds[] = {
            {"<?", "?>"}, {"<%", "%>"}, {"{{", "}}"}, {"{%", "%}"}};
        for (const auto& [open, close] : kinds) {
            if (css_.compare(at, open.size(), open) != 0) continue;
            const auto end = css_.find(close, at + open.size());
            return end == npos ? at : end + close.size();
        }
        return at;
    }

    /** Place of the closing quote, or the end of the text. */
    std::size_t EndOfString(std::size_t open) const {
        std::size_t i = open + 1;
        while (i < css_.size() && css_[i] != css_[open])
            i += css_[i] == '\\' ? 2 : 1;
        return std::min(i, css_.size());
    }

    void ReadUrl() {
        std::size_t begin = at_ + 4;
        while (begin < css_.size() && IsBlank(css_[begin]))
            ++begin;
        if (begin >= css_.size()) {
            at_ = css_.size();
            return;
        }
        if (css_[begin] == '"' || css_[begin] == '\'') {
            const std::size_t end = EndOfString(begin);
            if (end < css_.size()) Replace(begin + 1, end, css_[begin]);
            at_ = std::min(end + 1, css_.size());
            return;
        }
        const auto close = css_.find(')', begin);
        if (close == npos) {
            at_ = css_.size();
            return;
        }
        std::size_t end = close;
        while (end > begin && IsBlank(css_[end - 1]))
            --end;
        Replace(begin, end, '\0');
        at_ = close + 1;
    }

    /** An escaped reference is left alone: it is no name that anyone gives to a file. */
    void Replace(std::size_t begin, std::size_t end, char quote) {
        const std::string reference(css_.substr(begin, end - begin));
        if (reference.empty() || reference.find('\\') != reference.npos) return;
        const auto rewritten = rewrite_(reference);
        if (!rewritten || *rewritten == reference) return;
        if (quote && rewritten->find(quote) != rewritten->npos) return;
        out_.append(css_.substr(copied_, begin - copied_)).append(*rewritten);
        copied_ = end;
    }

    std::string_view css_;
    const std::function<std::optional<std::string>(const std::string&)>& rewrite_;
    std::string out_;
    std::size_t at_ = 0;
    std::size_t copied_ = 0;
};

}  // namespace

std::string RewriteStyleReferences(
    std::string_view css,
    const std::function<std::optional<std::string>(const std::string&)>& rewrite) {
    return StyleScanner(css, rewrite).Run();
}

}  // namespace pw
