#include "project/FileKinds.h"

#include <algorithm>
#include <cstdint>

#include "platform/Text.h"

namespace pw {

namespace {

using std::string_view_literals::operator""sv;

enum class Kind { Picture, Font, Media, Java };

/** Bytes that stand at a place in every file of a kind. */
struct Mark {
    Kind kind;
    std::size_t at;
    std::string_view bytes;
};
constexpr Mark kMarks[] = {
    {Kind::Picture, 0, "GIF87a"sv},
    {Kind::Picture, 0, "GIF89a"sv},
    {Kind::Picture, 0, "\x89PNG\r\n\x1a\n"sv},
    {Kind::Picture, 0, "\xFF\xD8\xFF"sv},
    {Kind::Picture, 8, "WEBP"sv},
    {Kind::Picture, 4, "ftypavi"sv},
    {Kind::Picture, 4, "ftypmif1"sv},
    {Kind::Picture, 4, "ftypheic"sv},
    {Kind::Picture, 4, "JXL \r\n"sv},
    {Kind::Picture, 0, "\0\0\1\0"sv},
    {Kind::Picture, 0, "\0\0\2\0"sv},
    {Kind::Picture, 0, "II*\0"sv},
    {Kind::Picture, 0, "MM\0*"sv},
    {Kind::Font, 0, "OTTO"sv},
    {Kind::Font, 0, "\0\1\0\0"sv},
    {Kind::Font, 0, "ttcf\0"sv},
    {Kind::Font, 0, "wOFF"sv},
    {Kind::Font, 0, "wOF2"sv},
    {Kind::Font, 34, "LP"sv},
    {Kind::Media, 0, "ID3"sv},
    {Kind::Media, 0, "OggS"sv},
    {Kind::Media, 0, "fLaC"sv},
    {Kind::Media, 0, "MThd"sv},
    {Kind::Media, 8, "WAVE"sv},
    {Kind::Media, 8, "RMID"sv},
    {Kind::Media, 8, "AVI "sv},
    {Kind::Media, 8, "AIF"sv},
    {Kind::Media, 4, "ftyp"sv},
    {Kind::Media, 4, "moov"sv},
    {Kind::Media, 4, "mdat"sv},
    {Kind::Media, 0, "\x1A\x45\xDF\xA3"sv},
    {Kind::Media, 0, "\0\0\1\xBA"sv},
    {Kind::Media, 0, "\0\0\1\xB3"sv},
    {Kind::Media, 0, "\x30\x26\xB2\x75"sv},
    {Kind::Media, 0, "FWS"sv},
    {Kind::Media, 0, "CWS"sv},
    {Kind::Media, 0, "ZWS"sv},
    {Kind::Media, 0, ".snd"sv},
    {Kind::Media, 0, ".RMF"sv},
    {Kind::Media, 0, "WEBVTT"sv},
    {Kind::Java, 0, "PK\3\4"sv},
    {Kind::Java, 0, "\xCA\xFE\xBA\xBE"sv},
};

bool HasMark(std::string_view bytes, Kind kind) {
    return std::any_of(std::begin(kMarks), std::end(kMarks), [&](const Mark& mark) {
        return mark.kind == kind && bytes.size() >= mark.at &&
               bytes.substr(mark.at).starts_with(mark.bytes);
    });
}

/** Two letters are little to go by; the size of the header must be one that there is, too. */
bool IsBitmap(std::string_view bytes) {
    if (!bytes.starts_with("BM") || bytes.size() < 18) return false;
    const auto size = static_cast<unsigned char>(bytes[14]);
    constexpr unsigned char sizes[] = {12, 16, 40, 52, 56, 64, 108, 124};
    return std::find(std::begin(sizes), std::end(sizes), size) != std::end(sizes) &&
           bytes.substr(15, 3) == "\0\0\0"sv;
}

/** The first element is `svg`, behind what may stand before it. */
bool IsDrawing(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    for (;;) {
        bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
        std::string_view end;
        if (bytes.starts_with("<?")) {
            end = "?>";
        } else if (bytes.starts_with("<!--")) {
            end = "-->";
        } else if (bytes.starts_with("<!")) {
            end = bytes.substr(0, bytes.find('>')).find('[') == bytes.npos ? ">" : "]>";
        } else {
            break;
        }
        const auto at = bytes.find(end);
        if (at == bytes.npos) return false;
        bytes.remove_prefix(at + end.size());
    }
    if (!bytes.starts_with("<")) return false;
    const std::string_view name = bytes.substr(1, bytes.find_first_of(" \t\r\n/>") - 1);
    return name == "svg" || name.ends_with(":svg");
}

}  // namespace

bool IsPictureContent(std::string_view bytes) {
    return HasMark(bytes, Kind::Picture) || IsBitmap(bytes) || IsDrawing(bytes);
}

bool IsFontContent(std::string_view bytes) {
    return HasMark(bytes, Kind::Font);
}

bool IsMediaContent(std::string_view bytes) {
    // Sound in MPEG frames needs no header; each begins with eleven bits set.
    const bool isFrames = bytes.size() > 1 && bytes[0] == '\xFF' && (bytes[1] & 0xE0) == 0xE0;
    return isFrames || HasMark(bytes, Kind::Media);
}

bool IsJavaContent(std::string_view bytes) {
    return HasMark(bytes, Kind::Java);
}

}  // namespace pw
