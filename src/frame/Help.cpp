#include "frame/Help.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

namespace {

constexpr const char* kHelpSite = "https://www.pagewick.example/help/";

std::string FileUrl(std::string_view path) {
    std::string url = "file://";
    for (const unsigned char c : ReplaceAll(path, "\\", "/")) {
        const bool plain = c > ' ' && c < 0x7F &&
                           std::string_view("%?#\"<>").find(char(c)) == std::string_view::npos;
        url += plain ? std::string(1, char(c)) : "%" + ToHex(c, 2);
    }
    return url;
}

}  // namespace

void ShowHelp(FrameContext& context, int topic) {
    Trap(context.errorLog, "FunctionLibrary.", "ShowHelp", [&] {
        if (FileExists(context.files, context.helpFile)) {
            const std::string page =
                BuildPath(GetParentFolder(context.helpFile), std::to_string(topic) + ".html");
            const bool ownPage = topic != 0 && FileExists(context.files, page);
            context.launcher.OpenUrl(FileUrl(ownPage ? page : context.helpFile));
            return;
        }
        const Message question{
            "The help file cannot be located or is out of date.\n\n"
            "Would you like to get the most recent help file via the Internet?",
            context.brand.FormCaption(), Icon::Question, Buttons::YesNo, Answer::Yes};
        if (context.dialogs.MsgBox(question) == Answer::Yes) context.launcher.OpenUrl(kHelpSite);
    });
}

}  // namespace pw
