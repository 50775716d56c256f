#pragma once
// The declarations of a style attribute, read and changed without touching the text of the others.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pw {

class StyleDeclarations {
  public:
    explicit StyleDeclarations(std::string_view text);

    /** The value of a property, as it counts: the last one, or the last important one. None when it
     *  is not declared. Without "!important", and without blanks at its ends. */
    std::optional<std::string> Value(std::string_view property) const;
    /** A length in whole pixels; none for other units, and for what is not declared. */
    std::optional<int> Pixels(std::string_view property) const;
    /** In place of the declaration that counts, or behind all others. */
    void Set(std::string_view property, std::string_view value);
    /** Behind all others, also when the property is declared already. */
    void Append(std::string_view property, std::string_view value);
    void Remove(std::string_view property);
    /** Removes the declarations of a property from the `first`-th declaration on. */
    void Remove(std::string_view property, std::size_t first);
    /** Number of the declaration that counts, among all; none when there is none. */
    std::optional<std::size_t> Find(std::string_view property) const;
    bool empty() const { return pieces_.empty(); }
    std::string Text() const;

  private:
    struct Piece {
        std::string text;      ///< as written, without its semicolon
        std::string property;  ///< lower case; "" for what is no declaration
        bool important = false;
    };
    void Rewrite(Piece& piece, std::string_view value);

    std::vector<Piece> pieces_;
    std::string tail_;  ///< what stands behind the last semicolon, if nothing but blanks
    bool closed_ = false;
};

}  // namespace pw
