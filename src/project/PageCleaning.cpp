#include "project/PageCleaning.h"

#include "frame/Context.h"
#include "project/Paths.h"
#include "project/References.h"

namespace pw {

namespace {

/** A carriage return alone, the line end of old machines, counts as one too. */
std::string WithCrLf(std::string_view text) {
    std::string lines;
    lines.reserve(text.size() + text.size() / 32);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (c == '\r' || c == '\n') {
            lines += "\r\n";
        } else {
            lines += c;
        }
    }
    return lines;
}

}  // namespace

void CleanPage(ProjectContext& context, dom::Document& document, std::string_view pageKey) {
    Trap(context.frame.errorLog, "ProjectFunctions.", "UpdateHTML", [&] {
        const dom::Document::Step step(document);
        for (dom::Node* image : document.images()) {
            const std::string* source = image->attribute("src");
            if (!source) continue;
            const std::string path = GetVirtualPath(context, *source, pageKey);
            if (!path.empty() && path != *source)
                document.setAttribute(*image, "src", EncodeLink(path));
        }
    });
}

std::string UpdateHTML(ProjectContext& context, dom::Document& document, std::string_view pageKey) {
    CleanPage(context, document, pageKey);
    // The title block needs no care: the document writes the very title that it answers.
    return WithCrLf(document.html());
}

}  // namespace pw
