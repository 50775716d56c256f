#include "platform/dom/OriginalBytes.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>

#include "platform/Text.h"
#include "platform/dom/TextMatch.h"

namespace pw::dom {

namespace {

constexpr char kEscape = '\x1B';
constexpr char kShiftOut = '\x0E';
constexpr char kShiftIn = '\x0F';
constexpr std::string_view kAscii = "\x1B(B";
/** Says at the beginning of a file in the Korean encoding what its shifts mean. */
constexpr std::string_view kKorean = "\x1B$)C";
constexpr std::size_t kLongestCharacter = 8;

bool isKorean(const Encoding& encoding) {
    return EqualsNoCase(encoding.name, "iso-2022-kr");
}

/** Escapes that choose what the plain bytes stand for; others choose what shifted ones do. */
bool choosesPlain(std::string_view escape) {
    return escape.size() >= 3 && std::string_view("*)+-./").find(escape[1]) == escape.npos &&
           std::string_view("*)+-./").find(escape[2]) == escape.npos;
}

}  // namespace

/** Decodes a file character by character. */
class OriginalBytes::Reader {
  public:
    Reader(OriginalBytes& original, std::string_view body)
        : original_(original),
          rest_(body),
          handle_(iconv_open("UTF-8", original.encoding_.name.c_str())) {}
    ~Reader() {
        if (handle_ != iconv_t(-1)) iconv_close(handle_);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /** False when the bytes are not those of the text. */
    bool run(const std::vector<Decoded::Stray>& strays) {
        if (handle_ == iconv_t(-1)) return false;
        const std::size_t front = original_.bytes_.size() - rest_.size();
        const std::size_t whole = rest_.size();
        auto stray = strays.begin();
        // A decoder that waits for a second character knows more than it tells.
        bool waits = false;
        addCut(0, front);
        while (!rest_.empty()) {
            if (stray != strays.end() && stray->offset == text_) {
                rest_.remove_prefix(stray->byte.size());
                text_ += 4;
                ++stray;
                waits = false;
            } else {
                const char first = rest_.front();
                const std::size_t length = step();
                if (length == 0) return false;
                const std::string_view used = rest_.substr(0, length);
                rest_.remove_prefix(length);
                if (decoded_.empty()) {
                    waits |= !shifts(used);
                    continue;
                }
                if (original_.text_.compare(text_, decoded_.size(), decoded_) != 0) return false;
                text_ += decoded_.size();
                waits &= (first & 0x80) != 0 || first == kEscape;
            }
            if (!waits) addCut(text_, front + whole - rest_.size());
        }
        return text_ == original_.text_.size();
    }

  private:
    /** Bytes of the next character or shift, decoded; 0 for an error. */
    std::size_t step() {
        for (std::size_t length = 1; length <= std::min(kLongestCharacter, rest_.size());
             ++length) {
            char* from = const_cast<char*>(rest_.data());
            std::size_t left = length;
            char buffer[64];
            char* to = buffer;
            std::size_t room = sizeof buffer;
            const std::size_t result = iconv(handle_, &from, &left, &to, &room);
            if (result == std::size_t(-1) && errno == EILSEQ) return 0;
            if (left == length) continue;
            decoded_.assign(buffer, sizeof buffer - room);
            return length - left;
        }
        return 0;
    }

    bool shifts(std::string_view used) {
        Shift next = shift_;
        if (used.front() == kEscape) {
            if (isKorean(original_.encoding_)) return true;
            next.escape = used == kAscii ? "" : std::string(used);
        } else if (used.front() == kShiftOut || used.front() == kShiftIn) {
            next.out = used.front() == kShiftOut;
        } else {
            return false;
        }
        shift_ = next;
        return true;
    }

    /** Bytes of a shift are those of the character behind it. */
    void addCut(std::size_t text, std::size_t byte) {
        original_.cuts_.push_back({text, byte, original_.numberOf(shift_)});
    }

    OriginalBytes& original_;
    std::string_view rest_;
    iconv_t handle_;
    std::string decoded_;
    std::size_t text_ = 0;
    Shift shift_;
};

std::shared_ptr<const OriginalBytes> OriginalBytes::of(std::string_view bytes,
                                                       const Decoded& decoded) {
    std::shared_ptr<OriginalBytes> original(new OriginalBytes);
    original->text_ = decoded.text;
    original->bytes_ = bytes;
    original->encoding_ = {decoded.encoding.name, decoded.encoding.byteOrderMark};
    original->shifts_.emplace_back();
    if (decoded.encoding.byteOrderMark) bytes.remove_prefix(std::min<std::size_t>(2, bytes.size()));
    if (!Reader(*original, bytes).run(decoded.undecodable)) return nullptr;
    return original;
}

std::uint32_t OriginalBytes::numberOf(const Shift& shift) {
    // A file has a handful of them.
    const auto found = std::ranges::find(shifts_, shift);
    if (found != shifts_.end()) return std::uint32_t(found - shifts_.begin());
    shifts_.push_back(shift);
    return std::uint32_t(shifts_.size() - 1);
}

/** Back to what holds at a file's beginning. */
void OriginalBytes::leave(std::uint32_t shift, std::string& out) const {
    if (shifts_[shift].out) out += kShiftIn;
    if (choosesPlain(shifts_[shift].escape)) out += kAscii;
}

void OriginalBytes::encodeNew(std::string_view text, std::string& out) const {
    std::string bytes = dom::encode(text, {encoding_.name, false});
    if (isKorean(encoding_) && bytes.starts_with(kKorean)) bytes.erase(0, kKorean.size());
    out += bytes;
}

std::string OriginalBytes::encode(std::string_view text) const {
    if (text == text_) return bytes_;
    std::string out = bytes_.substr(0, cuts_.front().byte);
    std::uint32_t shift = 0;
    std::size_t done = 0;
    const auto writeNew = [&](std::size_t end) {
        if (end == done) return;
        leave(shift, out);
        shift = 0;
        encodeNew(text.substr(done, end - done), out);
        done = end;
    };
    for (const TextMatch& match : matchTexts(text_, text)) {
        // Whole characters, with the shifts in front of them.
        const auto first = std::ranges::lower_bound(cuts_, match.from, {}, &Cut::text);
        auto last = std::ranges::upper_bound(cuts_, match.from + match.length, {}, &Cut::text);
        if (first == cuts_.end() || last == cuts_.begin()) continue;
        --last;
        if (last->text <= first->text) continue;
        writeNew(match.to + (first->text - match.from));
        if (shift != first->shift) {
            leave(shift, out);
            out += shifts_[first->shift].escape;
            if (shifts_[first->shift].out) out += kShiftOut;
        }
        const bool isEnd = last->text == text_.size() && match.to + match.length == text.size();
        const std::size_t behind = isEnd ? bytes_.size() : last->byte;
        out.append(bytes_, first->byte, behind - first->byte);
        shift = isEnd ? 0 : last->shift;
        done += last->text - first->text;
    }
    writeNew(text.size());
    leave(shift, out);
    if (isKorean(encoding_) && out.find(kShiftOut) != out.npos && out.find(kKorean) == out.npos)
        out.insert(0, kKorean);
    return out;
}

}  // namespace pw::dom
