#include "frame/SaveQuestion.h"

#include <algorithm>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

namespace {

/** Whether the file's extension is one that the question's filter shows. */
bool IsOfKind(const FileQuestion& question, const std::string& extension) {
    if (extension.empty()) return false;
    if (EqualsNoCase(extension, question.defaultExtension) ||
        EqualsNoCase(extension, question.ownExtension))
        return true;
    // Pairs of text and patterns.
    const auto parts = Split(question.filter, '|');
    for (std::size_t i = 1; i < parts.size(); i += 2) {
        const auto patterns = Split(parts[i], ';');
        const auto fits = [&](const std::string& pattern) {
            return EqualsNoCase(Trim(pattern), "*." + extension);
        };
        if (std::any_of(patterns.begin(), patterns.end(), fits)) return true;
    }
    return false;
}

}  // namespace

std::string WithExtension(std::string_view path, std::string_view extension) {
    std::string name(path);
    if (extension.empty() || EqualsNoCase(GetExtension(name), extension)) return name;
    while (name.ends_with('.'))
        name.pop_back();
    return name + "." + std::string(extension);
}

std::string NameToSave(const FileQuestion& question, std::string_view path) {
    if (path.empty() || IsOfKind(question, GetExtension(path))) return std::string(path);
    return WithExtension(path, question.defaultExtension);
}

std::string AskSaveFile(FrameContext& context, FileQuestion question) {
    for (;;) {
        const std::string path = NameToSave(question, context.dialogs.SaveFile(question));
        if (path.empty() || !FileExists(context.files, path)) return path;
        const Message replace{
            QuoteSingle(GetFileName(path)) + " already exists.\n\nDo you want to replace it?",
            question.title, Icon::Question, Buttons::YesNo, Answer::No};
        if (context.dialogs.MsgBox(replace) == Answer::Yes) return path;
        question.initialPath = path;
    }
}

}  // namespace pw
