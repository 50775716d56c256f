#include "editing/SourceColoring.h"

#include <array>

namespace pw {

namespace {

enum class Mode {
    Content,       ///< text between tags, or the content of a raw element
    Tag,           ///< in a tag, between its properties
    Value,         ///< behind the equals sign
    DoubleQuoted,  ///< in a value
    SingleQuoted,
    Comment,
    Declaration,  ///< <!doctype …> and <?…>
};

constexpr int modeBits = 4;
constexpr int modeMask = (1 << modeBits) - 1;

/** Elements whose content is no markup; the state holds the place in this list, from 1. */
constexpr std::array<std::string_view, 4> rawElements = {"script", "style", "textarea", "title"};

template <typename Char>
bool IsLetter(Char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

template <typename Char>
bool IsBlank(Char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f';
}

/** Without regard to case; `name` is in lower case. */
template <typename Char>
bool Matches(std::basic_string_view<Char> text, std::size_t at, std::string_view name) {
    if (text.size() - at < name.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const Char c = text[at + i];
        const Char lower = c >= 'A' && c <= 'Z' ? Char(c + ('a' - 'A')) : c;
        if (lower != Char(name[i])) return false;
    }
    return true;
}

template <typename Char>
class LineColoring {
  public:
    LineColoring(std::basic_string_view<Char> line, SourceLineState state)
        : line_(line), mode_(Mode(state & modeMask)), raw_(state >> modeBits) {}

    void Run() {
        while (at_ < line_.size()) {
            switch (mode_) {
                case Mode::Content:
                    Content();
                    break;
                case Mode::Tag:
                    InTag();
                    break;
                case Mode::Value:
                    Value();
                    break;
                case Mode::DoubleQuoted:
                    Quoted('"');
                    break;
                case Mode::SingleQuoted:
                    Quoted('\'');
                    break;
                case Mode::Comment:
                    UpTo("-->", SourcePart::Comment);
                    break;
                case Mode::Declaration:
                    UpTo(">", SourcePart::Tag);
                    break;
            }
        }
    }

    SourceLineState State() const { return int(mode_) | raw_ << modeBits; }
    std::vector<SourceSpan>& Spans() { return spans_; }

  private:
    void Add(std::size_t start, std::size_t end, SourcePart part) {
        if (end == start) return;
        // Pieces that touch are one, such as "<" and the name behind it.
        if (!spans_.empty() && spans_.back().part == part &&
            spans_.back().start + spans_.back().length == start) {
            spans_.back().length += end - start;
        } else {
            spans_.push_back({start, end - start, part});
        }
    }

    void Content() {
        at_ = line_.find(Char('<'), at_);
        if (at_ == line_.npos) {
            at_ = line_.size();
            return;
        }
        if (raw_ > 0) return RawContent();
        const Char next = at_ + 1 < line_.size() ? line_[at_ + 1] : Char(' ');
        if (Matches(line_, at_, "<!--")) {
            Open(4, Mode::Comment, SourcePart::Comment);
        } else if (next == '!' || next == '?') {
            Open(2, Mode::Declaration, SourcePart::Tag);
        } else if (IsLetter(next) ||
                   (next == '/' && at_ + 2 < line_.size() && IsLetter(line_[at_ + 2]))) {
            OpenTag();
        } else {
            ++at_;  // a bare "<" in the text
        }
    }

    void RawContent() {
        const std::string_view name = rawElements[std::size_t(raw_ - 1)];
        if (Matches(line_, at_, "</") && Matches(line_, at_ + 2, name)) {
            OpenTag();
        } else {
            ++at_;
        }
    }

    void Open(std::size_t length, Mode mode, SourcePart part) {
        Add(at_, at_ + length, part);
        at_ += length;
        mode_ = mode;
    }

    void OpenTag() {
        const std::size_t start = at_;
        const bool closing = line_[++at_] == '/';
        if (closing) ++at_;
        const std::size_t name = at_;
        while (at_ < line_.size() && !IsBlank(line_[at_]) && line_[at_] != '>' &&
               line_[at_] != '/') {
            ++at_;
        }
        raw_ = 0;
        for (std::size_t i = 0; i < rawElements.size() && !closing; ++i) {
            if (rawElements[i].size() == at_ - name && Matches(line_, name, rawElements[i])) {
                raw_ = int(i) + 1;
            }
        }
        Add(start, at_, SourcePart::Tag);
        mode_ = Mode::Tag;
    }

    void InTag() {
        const Char c = line_[at_];
        if (IsBlank(c)) {
            ++at_;
        } else if (c == '>') {
            Open(1, Mode::Content, SourcePart::Tag);
        } else if (c == '/') {
            Open(1, Mode::Tag, SourcePart::Tag);
        } else if (c == '=') {
            ++at_;
            mode_ = Mode::Value;
        } else {
            const std::size_t start = at_;
            while (at_ < line_.size() && !IsBlank(line_[at_]) && line_[at_] != '=' &&
                   line_[at_] != '>' && line_[at_] != '/') {
                ++at_;
            }
            Add(start, at_, SourcePart::Property);
        }
    }

    void Value() {
        const Char c = line_[at_];
        if (IsBlank(c)) {
            ++at_;
        } else if (c == '"' || c == '\'') {
            Open(1, c == '"' ? Mode::DoubleQuoted : Mode::SingleQuoted, SourcePart::Value);
        } else if (c == '>') {
            mode_ = Mode::Tag;
        } else {
            const std::size_t start = at_;
            while (at_ < line_.size() && !IsBlank(line_[at_]) && line_[at_] != '>')
                ++at_;
            Add(start, at_, SourcePart::Value);
            mode_ = Mode::Tag;
        }
    }

    void Quoted(char quote) {
        const std::size_t end = line_.find(Char(quote), at_);
        const std::size_t stop = end == line_.npos ? line_.size() : end + 1;
        Add(at_, stop, SourcePart::Value);
        at_ = stop;
        if (end != line_.npos) mode_ = Mode::Tag;
    }

    void UpTo(std::string_view end, SourcePart part) {
        const std::size_t start = at_;
        while (at_ < line_.size() && !Matches(line_, at_, end))
            ++at_;
        if (at_ < line_.size()) {
            at_ += end.size();
            mode_ = Mode::Content;
        }
        Add(start, at_, part);
    }

    std::basic_string_view<Char> line_;
    std::size_t at_ = 0;
    Mode mode_;
    int raw_;
    std::vector<SourceSpan> spans_;
};

template <typename Char>
std::vector<SourceSpan> Color(std::basic_string_view<Char> line, SourceLineState& state) {
    LineColoring<Char> coloring(line, state);
    coloring.Run();
    state = coloring.State();
    return std::move(coloring.Spans());
}

}  // namespace

std::vector<SourceSpan> ColorSourceLine(std::string_view line, SourceLineState& state) {
    return Color(line, state);
}

std::vector<SourceSpan> ColorSourceLine(std::u16string_view line, SourceLineState& state) {
    return Color(line, state);
}

}  // namespace pw
