#pragma once
// A page's text on its way through the source view. The view shows every line end as CR LF; what
// comes back gets the line ends that the page had, so that lines nobody touched keep their bytes.
#include <string>
#include <string_view>

namespace pw {

class SourceText {
  public:
    SourceText() = default;
    explicit SourceText(std::string original);

    const std::string& Original() const { return original_; }
    /** With CR LF at the end of every line. */
    const std::string& Shown() const { return shown_; }
    /** The page's text when the view holds `edited`. New lines end as most lines of the page do. */
    std::string TakeBack(std::string_view edited) const;

  private:
    std::string original_;
    std::string shown_;
};

/** All line ends as CR LF; a lone CR is none. */
std::string WithCrLf(std::string_view text);

}  // namespace pw
