#pragma once
// The project explorer's tree as the object library sees it when it fills it.
#include <string>

namespace pw {

enum class ExplorerImage { Project, WebSite, Folder, Page, DefaultPage, FramesPage };

class ExplorerNodes {
  public:
    virtual ~ExplorerNodes() = default;
    virtual void Clear() = 0;
    /** Parents come before their children; the root's parent is "". The tag is the file name of a
     *  page and "" for everything else. */
    virtual void Add(const std::string& parentKey, const std::string& key, const std::string& text,
                     const std::string& tag, ExplorerImage image, bool expanded) = 0;
};

}  // namespace pw
