#pragma once
#include "platform/Clipboard.h"

namespace pw {

/** A clipboard of this program alone. */
class MemoryClipboard : public Clipboard {
  public:
    std::string Text() const override { return text_; }
    std::string Html() const override { return html_; }
    std::vector<std::string> Files() const override { return files_; }
    void Set(const std::string& text, const std::string& html) override {
        text_ = text;
        html_ = html;
        files_.clear();
    }
    /** As a file manager does. */
    void SetFiles(const std::vector<std::string>& files) {
        Clear();
        files_ = files;
    }
    void Clear() override { Set("", ""); }

  private:
    std::string text_;
    std::string html_;
    std::vector<std::string> files_;
};

}  // namespace pw
