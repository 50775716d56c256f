#include "frame/TextTools.h"

#include "frame/Formatting.h"
#include "platform/Text.h"

namespace pw {

std::string ReplaceIllegalChars(std::string_view text, std::string_view replacement) {
    std::string result(text);
    // One after the other, so a replacement that holds a later one of these is replaced as well.
    for (const char c : std::string_view(" &:;<'?>%@#\"![]^{}|~+="))
        result = ReplaceAll(result, std::string_view(&c, 1), replacement);
    return result;
}

bool IsAlphanumericKey(int code) {
    return code == 8 || code == 13 || (code >= '0' && code <= '9') ||
           (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z') || code == '-' ||
           code == '_';
}

bool IsFilenameKey(int code) {
    if (code <= 0 || code > 127) return true;
    return std::string_view("\"*/:<>?\\|").find(char(code)) == std::string_view::npos;
}

void DigitsOnly(int& code) {
    constexpr int kBackspace = 8;
    if (code != kBackspace && (code < '0' || code > '9')) code = 0;
}

std::string DiskNameProblem(std::string_view kind, std::string_view name) {
    constexpr std::size_t kLongest = 200;  // bytes; disks take 255
    const std::string what(kind);
    if (Trim(name).empty()) return "Please enter a name for the " + what + ".";
    const bool isWelcome = std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return c >= 0x20 && c != 0x7F && IsFilenameKey(c);
    });
    if (!isWelcome || !IsValidUtf8(name))
        return "A " + what +
               " name can not contain any of the characters \\ / : * ? \" < > |. "
               "Please enter a different name.";
    if (name.ends_with('.'))
        return "A " + what + " name can not end with a point. Please enter a different name.";
    if (name.size() > kLongest)
        return "This " + what + " name is too long. Please enter a shorter one.";
    return {};
}

std::string ListOfNames(const std::vector<std::string>& names) {
    constexpr std::size_t kMostTold = 3;
    const std::size_t told = std::min(names.size(), kMostTold);
    const std::size_t others = names.size() - told;
    std::string list;
    for (std::size_t i = 0; i < told; ++i) {
        if (i > 0) list += i + 1 == told && others == 0 ? " and " : ", ";
        list += QuoteSingle(names[i]);
    }
    if (others == 0) return list;
    return list + " and " + std::to_string(others) + (others == 1 ? " other" : " others");
}

int CountChars(char character, std::string_view text) {
    return int(std::count(text.begin(), text.end(), character));
}

std::string RemoveMenuMarks(std::string_view text) {
    std::string result(text);
    std::erase_if(result, [](char c) { return c == '.' || c == '&' || c == ':'; });
    return result;
}

int CountWords(std::string_view text) {
    const std::string trimmed = Trim(text);
    if (trimmed.empty()) return 0;
    const auto separators = std::count_if(
        trimmed.begin(), trimmed.end(), [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
    return int(separators) + 1;
}

std::string StripDoubleSlashes(std::string_view url) {
    const auto at = url.find("//");
    return std::string(at == url.npos ? url : url.substr(at + 2));
}

}  // namespace pw
