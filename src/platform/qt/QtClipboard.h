#pragma once
#include "platform/Clipboard.h"
#include "platform/SystemInfo.h"

namespace pw {

class QtClipboard : public Clipboard {
  public:
    std::string Text() const override;
    std::string Html() const override;
    void Set(const std::string& text, const std::string& html) override;
    void Clear() override;
};

/** Starts programs beside this one, and pages in the desktop's browser. */
class QtLauncher : public Launcher {
  public:
    bool Start(const std::string& program, const std::string& argument) override;
    bool OpenUrl(const std::string& url) override;
};

}  // namespace pw
