#pragma once
// The start tags of a page, read from its text without building a tree: for looking through all
// the pages of a project, which parsing would take ten times as long for.
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dom/Node.h"
#include "platform/dom/StartTag.h"

namespace pw::dom {

/** Behind a comment, a doctype or the like that begins with the "<!" or "<?" at this place. */
std::size_t endOfDeclaration(std::string_view markup, std::size_t at);

/** Where the end tag of a raw text element begins; `at` is behind its start tag, `name` in lower
 *  case. The text's end when there is none. */
std::size_t endOfRawText(std::string_view markup, std::size_t at, std::string_view name);

/** A start tag in the text of a page. What it holds is looked for when it is asked for. */
class TagInText {
  public:
    TagInText(std::string_view page, std::size_t begin);

    std::size_t begin() const { return begin_; }
    /** Behind its ">". */
    std::size_t end() const;
    /** With all its bytes. */
    std::string_view text() const { return rest_.substr(0, end() - begin_); }
    /** As it is written. */
    std::string_view name() const { return rest_.substr(1, nameEnd_ - 1); }
    /** `lowerName` is ASCII, in lower case. */
    bool is(std::string_view lowerName) const;
    /** Value of the first attribute of that name, with its references decoded; none without one. */
    std::optional<std::string> attribute(std::string_view lowerName) const;
    /** Calls `visit` with the name and the value of each attribute as they are written. */
    template <typename Visit>
    void forEachWrittenAttribute(const Visit& visit) const;
    /** All of them with their references decoded; of several of one name the first. */
    std::vector<Attribute> attributes() const;

  private:
    std::string_view rest_;  // of the page, from the tag on
    std::size_t begin_;
    std::size_t nameEnd_;
};

/** Where tags are looked for. `Anywhere`: also in comments, scripts and the values of attributes,
 *  so that a tag which a parser finds is among those found, whatever the page looks like; but see
 *  `isComplete`. */
enum class TagsFrom { Markup, Anywhere };

/** Goes through the start tags of a page in their order, in a time in proportion to its length. */
class TagScan {
  public:
    TagScan(std::string_view page, TagsFrom where) : page_(page), where_(where) {}
    std::optional<TagInText> next();
    /** False when tags lay within so many others that some were passed over. No page of a human
     *  hand is like that; whoever must not miss a tag asks at the end, and then asks a parser. */
    bool isComplete() const { return isComplete_; }

  private:
    std::size_t behind(const TagInText& tag) const;
    bool mayOverlap(const TagInText& tag);

    /** A tag that never ends reaches to the end of the page, and so does each one within it. */
    static constexpr std::size_t kMostWithinEachOther = 16;

    std::string_view page_;
    TagsFrom where_;
    std::size_t at_ = 0;
    std::array<std::size_t, kMostWithinEachOther> ends_{};  // of tags found, where any reach on
    bool isComplete_ = true;
};

template <typename Visit>
void TagInText::forEachWrittenAttribute(const Visit& visit) const {
    std::size_t at = nameEnd_;
    while (const auto place = nextAttribute(rest_, at))
        visit(rest_.substr(place->name, place->nameEnd - place->name),
              rest_.substr(place->value, place->valueEnd - place->value));
}

}  // namespace pw::dom
