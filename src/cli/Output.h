#pragma once
// What the commands print: plain text and JSON to the standard output, progress to a terminal.
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemInfo.h"

namespace pw::cli {

/** With its quotes. */
std::string JsonText(std::string_view text);

/** One flat object; the values are JSON already. */
class JsonObject {
  public:
    JsonObject& Add(std::string_view name, std::string_view text) {
        return AddRaw(name, JsonText(text));
    }
    JsonObject& Add(std::string_view name, const char* text) {
        return Add(name, std::string_view(text));
    }
    JsonObject& Add(std::string_view name, long long number) {
        return AddRaw(name, std::to_string(number));
    }
    JsonObject& Add(std::string_view name, int number) {
        return Add(name, static_cast<long long>(number));
    }
    JsonObject& Add(std::string_view name, bool value) {
        return AddRaw(name, value ? "true" : "false");
    }
    std::string Text() const { return "{" + members_ + "}"; }

  private:
    JsonObject& AddRaw(std::string_view name, std::string_view value);
    std::string members_;
};

/** Objects one a line, printed as they come. */
class JsonArray {
  public:
    explicit JsonArray(std::ostream& out) : out_(out) { out_ << "["; }
    ~JsonArray() { out_ << (isEmpty_ ? "]\n" : "\n]\n"); }
    JsonArray(const JsonArray&) = delete;
    JsonArray& operator=(const JsonArray&) = delete;

    void Add(const JsonObject& object) {
        out_ << (isEmpty_ ? "\n  " : ",\n  ") << object.Text();
        isEmpty_ = false;
    }

  private:
    std::ostream& out_;
    bool isEmpty_ = true;
};

/** "2026-11-22 21:46:00", which sorts and which scripts can read; "" for no date. */
std::string DateText(DateTime date);
/** "2026-11-22". */
std::string DayText(DateTime date);

/** "What 12 of 244" on one line of a terminal; nothing when the error output is none. */
void ShowProgress(std::string_view what, int done, int total);
/** Takes the line away again. */
void EndProgress();

/** For one field of a line: blanks in place of tabs and line ends. */
std::string OneField(std::string_view text);

}  // namespace pw::cli
