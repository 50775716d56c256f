#include "mainwindow/frmAbout.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"

namespace pw {

frmAbout::frmAbout(FrameContext& context)
    : Dialog("frmAbout", "About " + context.brand.FormCaption()) {
    lblTitle.SetCaption(context.brand.FormCaption());
    lblVersion.SetCaption("Version " + GetVersionString());
    lblCopyright.SetCaption("Free software under the Apache License, Version 2.0");
    lblDetails.SetCaption(GetOSInfo(context.system));
    cmdOK.Click = [this] { Close(); };
}

}  // namespace pw
