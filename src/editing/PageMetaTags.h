#pragma once
// The meta tags of a page while a dialog edits them: they stand beside the page, which changes only
// when they are written.
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace pw {

/** Those with a name, and those that stand for a header of the server's answer. */
enum class MetaKind { Named, Header };

struct PageMetaTag {
    MetaKind kind = MetaKind::Named;
    std::string name;
    std::string content;
    bool removed = false;

  private:
    friend class PageMetaTags;
    dom::NodeId element = 0;  ///< 0: not yet in the page
};

class PageMetaTags {
  public:
    PageMetaTags() = default;
    /** Those that a user may edit: not the one that names the program, and none without a name. */
    explicit PageMetaTags(const dom::Document& document);

    int Count() const { return int(tags_.size()); }
    PageMetaTag& At(int place) { return tags_.at(std::size_t(place)); }
    /** Returns its place. */
    int Add(MetaKind kind, const std::string& name, const std::string& content);

    /** False for a page that has no place for one that is to come into it. */
    bool CanWrite(const dom::Document& document) const;
    /** Brings the page's own in line; one undo step, or none where nothing differs. */
    void Write(dom::Document& document) const;

  private:
    std::vector<PageMetaTag> tags_;
};

}  // namespace pw
