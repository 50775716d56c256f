#pragma once
// Looks for one text in another, again and again, in one direction or the other.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pw {

class TextSearch {
  public:
    /** What counts as alike, of all of Unicode. */
    enum Alike {
        Same = 0,
        AnyCase = 1,
        AnyBlank = 2  ///< non-breaking blanks and others
    };
    /** A stretch of the text, in bytes. */
    struct Match {
        std::size_t start = 0;
        std::size_t length = 0;
        std::size_t end() const { return start + length; }
        bool operator==(const Match&) const = default;
    };

    /** Passes over the text once; a search is then as quick as one for the very bytes. The text
     *  must stay where it is. `alike` is a sum of Alike. */
    TextSearch(std::string_view text, std::string_view what, int alike);
    TextSearch(const TextSearch&) = delete;
    TextSearch& operator=(const TextSearch&) = delete;

    /** The first that begins at this place or behind it. */
    std::optional<Match> Next(std::size_t from) const;
    /** The last that ends at this place or in front of it. */
    std::optional<Match> Last(std::size_t before) const;

  private:
    /** Behind a character that was folded to one of another length. */
    struct Shift {
        std::size_t folded;
        std::size_t original;
    };

    void Fold(std::string_view text, int alike, std::string& folded, std::vector<Shift>* shifts);
    std::size_t ToFolded(std::size_t original) const;
    std::size_t ToOriginal(std::size_t folded) const;
    Match MatchAt(std::size_t folded) const;

    std::string folded_;
    std::string_view text_;  ///< what is looked through: folded_, or the text itself
    std::string what_;
    std::vector<Shift> shifts_;
};

}  // namespace pw
