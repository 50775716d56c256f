#pragma once
#include "platform/Clipboard.h"

namespace pw {

/** A clipboard of this program alone. */
class MemoryClipboard : public Clipboard {
  public:
    std::string Text() const override { return text_; }
    std::string Html() const override { return html_; }
    void Set(const std::string& text, const std::string& html) override {
        text_ = text;
        html_ = html;
    }
    void Clear() override { Set("", ""); }

  private:
    std::string text_;
    std::string html_;
};

}  // namespace pw
