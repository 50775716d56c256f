#include "cli/Output.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>

#include "frame/Formatting.h"
#include "platform/Text.h"

namespace pw::cli {

namespace {

bool isProgressShown = false;

}  // namespace

std::string JsonText(std::string_view text) {
    std::string json = "\"";
    for (const char c : MakeValidUtf8(text)) {
        switch (c) {
            case '"':
                json += "\\\"";
                break;
            case '\\':
                json += "\\\\";
                break;
            case '\n':
                json += "\\n";
                break;
            case '\r':
                json += "\\r";
                break;
            case '\t':
                json += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escape[8];
                    std::snprintf(escape, sizeof escape, "\\u%04x", c);
                    json += escape;
                } else {
                    json += c;
                }
        }
    }
    return json + "\"";
}

JsonObject& JsonObject::AddRaw(std::string_view name, std::string_view value) {
    if (!members_.empty()) members_ += ", ";
    members_.append(JsonText(name)).append(": ").append(value);
    return *this;
}

std::string DateText(DateTime date) {
    if (date == 0) return {};
    const DateParts parts = SplitDate(date);
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", parts.year, parts.month,
                  parts.day, parts.hour, parts.minute, parts.second);
    return text;
}

std::string DayText(DateTime date) {
    constexpr std::size_t kDay = 10;  // characters
    return DateText(date).substr(0, kDay);
}

void ShowProgress(std::string_view what, int done, int total) {
    if (!isatty(STDERR_FILENO)) return;
    std::cerr << "\r\033[K" << what << " " << done << " of " << total << std::flush;
    isProgressShown = true;
}

void EndProgress() {
    if (isProgressShown) std::cerr << "\r\033[K" << std::flush;
    isProgressShown = false;
}

std::string OneField(std::string_view text) {
    std::string field(text);
    for (char& c : field)
        if (static_cast<unsigned char>(c) < 0x20) c = ' ';
    return field;
}

}  // namespace pw::cli
