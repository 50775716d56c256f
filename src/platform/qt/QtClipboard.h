#pragma once
#include "platform/Clipboard.h"

namespace pw {

class QtClipboard : public Clipboard {
  public:
    std::string Text() const override;
    std::string Html() const override;
    std::vector<std::string> Files() const override;
    void Set(const std::string& text, const std::string& html) override;
    void Clear() override;
};

}  // namespace pw
