#include "mainwindow/frmTip.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "frame/ImageInfo.h"
#include "platform/Text.h"

namespace pw {

namespace {

std::vector<std::string> ReadTips(const FrameContext& context) {
    const std::string support = BuildPath(context.places.programFolder, "support");
    std::vector<std::string> tips;
    for (const std::string& line :
         Split(ReadTextFile(context.files, BuildPath(support, "tips.txt")), '\n')) {
        std::string tip = Trim(ReplaceAll(line, "\r", ""));
        if (!tip.empty()) tips.push_back(std::move(tip));
    }
    return tips;
}

/** The picture that lies beside a valid brand file under the same name; "" without one. */
std::string BrandPicture(const FrameContext& context) {
    if (!context.brand.IsValid()) return {};
    const std::string& brand = context.brand.BrandFile();
    for (const char* extension : {".png", ".gif", ".jpg", ".bmp"}) {
        const std::string picture =
            BuildPath(GetParentFolder(brand), GetBaseName(brand) + extension);
        ImageInfo info;
        if (ReadImageInfo(context.files, picture, info)) return picture;
    }
    return {};
}

}  // namespace

frmTip::frmTip(FrameContext& context)
    : Dialog("frmTip", context.brand.FormCaption()), context_(context), tips_(ReadTips(context)) {
    imgTip.SetFilename(BrandPicture(context_));
    chkShowTips.SetChecked(context_.settings.ShowTips);
    chkShowTips.Change = [this] { context_.settings.ShowTips = chkShowTips.Checked(); };
    cmdNext.SetEnabled(!tips_.empty());
    cmdNext.Click = [this] { ShowNextTip(); };
    cmdClose.Click = [this] { Close(); };
}

void frmTip::Form_Load() {
    ShowNextTip();
}

void frmTip::ShowNextTip() {
    if (tips_.empty()) return lblTip.SetCaption("Tips are unavailable.");
    constexpr const char* kSection = "General";
    constexpr const char* kNextTip = "Next Tip";
    const int next = RegNumber(context_.hive, kSection, kNextTip);
    const bool known = next >= 0 && next < int(tips_.size());
    const int shown = known ? next : 0;
    // Where the number can not be kept the tips only begin again.
    static_cast<void>(SetRegNumber(context_.hive, kSection, kNextTip, shown + 1));
    // An ampersand in a text is no access key.
    lblTip.SetCaption(ReplaceAll(tips_[std::size_t(shown)], "&", "&&"));
}

}  // namespace pw
