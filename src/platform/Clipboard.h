#pragma once
#include <string>
#include <vector>

namespace pw {

/** The desktop's clipboard. */
class Clipboard {
  public:
    virtual ~Clipboard() = default;
    virtual std::string Text() const = 0;
    virtual std::string Html() const = 0;
    /** Files of this machine, as a file manager copies them: paths with backslashes. */
    virtual std::vector<std::string> Files() const = 0;
    virtual void Set(const std::string& text, const std::string& html) = 0;
    virtual void Clear() = 0;
};

}  // namespace pw
