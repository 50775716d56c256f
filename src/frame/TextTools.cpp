#include "frame/TextTools.h"

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
