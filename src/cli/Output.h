#pragma once
// What the commands print: plain text and JSON to the standard output, progress to a terminal.
#include <string>
#include <string_view>
#include <vector>

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

/** "What 12 of 244" on one line of a terminal; nothing when the error output is none. */
void ShowProgress(std::string_view what, int done, int total);
/** Takes the line away again. */
void EndProgress();

/** For one field of a line: blanks in place of tabs and line ends. */
std::string OneField(std::string_view text);

}  // namespace pw::cli
