#include "project/OfferLeftOut.h"

#include <algorithm>

#include "frame/Context.h"
#include "platform/DialogHost.h"

namespace pw {

namespace {

/** So many lines fit into a message; nobody agrees to what he can not see. */
constexpr std::size_t kTold = 12;

void AddOnce(std::vector<std::string>& list, const std::string& text) {
    if (std::find(list.begin(), list.end(), text) == list.end()) list.push_back(text);
}

std::string Lines(const std::vector<std::string>& list, std::size_t from) {
    std::string lines;
    for (std::size_t i = from; i < std::min(list.size(), from + kTold); ++i)
        lines += (lines.empty() ? "" : "\n") + list[i];
    return lines;
}

}  // namespace

void OfferLeftOut(FrameContext& frame, const std::vector<LeftOutFile>& leftOut,
                  const std::function<void(const std::vector<std::string>& files)>& take) {
    std::vector<std::string> offered;
    std::vector<std::string> kept;
    for (const LeftOutFile& file : leftOut)
        file.mayBeOffered ? AddOnce(offered, file.file) : AddOnce(kept, Describe(file));
    const std::string title = frame.brand.FormCaption();

    std::vector<std::string> agreed;
    for (std::size_t from = 0; from < offered.size(); from += kTold) {
        std::vector<std::string> shown;
        for (const std::string& file : offered)
            shown.push_back(ToNativePath(file));
        const std::string text =
            "The page names files that do not come along by themselves, since they lie elsewhere "
            "or "
            "are only linked to:\n\n" +
            Lines(shown, from) +
            "\n\nShould they be copied into the project? Whatever is in the project is published "
            "with it.";
        if (frame.dialogs.MsgBox({text, title, Icon::Question, Buttons::YesNo, Answer::No}) !=
            Answer::Yes)
            break;
        agreed.insert(agreed.end(), offered.begin() + long(from),
                      offered.begin() + long(std::min(offered.size(), from + kTold)));
    }
    if (!agreed.empty()) take(agreed);
    if (kept.empty()) return;
    std::string text = Lines(kept, 0);
    if (kept.size() > kTold)
        text += "\n" + std::to_string(kept.size() - kTold) + " more were left out.";
    frame.dialogs.MsgBox({text, title, Icon::Information, Buttons::Ok});
}

}  // namespace pw
