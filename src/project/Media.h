#pragma once
// Brings the files that a page refers to into the `media` folder beside it, under names that are
// good in links.
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/dom/Document.h"
#include "project/ProjectContext.h"

namespace pw {

class Page;

/**
 * Pulls media for one page or for many. It remembers what it has copied, so one object serves a
 * whole tree of pages; nobody else should write into the media folders while it lives.
 */
class MediaPuller {
  public:
    explicit MediaPuller(ProjectContext& context) : context_(context) {}

    /**
     * Copies what `document` refers to into `targetFolder`\media and rewrites the references to
     * "media/<name>". Only local references change. Those to a missing picture or background are
     * rewritten all the same; other references to missing files stay. Returns the paths of the
     * files in the media folder, with those that pulled style sheets need in their turn.
     * `sourceFolders` are what references are relative to, the first that has the file counts.
     */
    std::vector<std::string> Pull(dom::Document& document,
                                  const std::vector<std::string>& sourceFolders,
                                  const std::string& targetFolder);

    /** Copies one file; returns its path in the media folder, "" when it could not be copied.
     *  `also` gets the files that a style sheet brings with it. */
    std::string PullFile(const std::string& file, const std::string& targetFolder,
                         std::vector<std::string>* also = nullptr);

  private:
    struct MediaFolder {
        bool listed = false;
        std::unordered_map<std::string, std::string> names;               ///< folded to written
        std::unordered_map<std::string, std::string> pulled;              ///< source path to name
        std::unordered_map<std::string, std::vector<std::string>> needs;  ///< of a style sheet
    };
    struct Names;

    MediaFolder& FolderAt(const std::string& mediaFolder);
    std::string Place(const std::string& file, const std::string& mediaFolder, int depth);
    std::string PlaceStyleSheet(const std::string& file, const std::string& mediaFolder, int depth);
    std::string RewriteStyles(std::string_view css, const std::vector<std::string>& sourceFolders,
                              const std::string& mediaFolder, std::string_view prefix, int depth,
                              std::vector<std::string>& used);
    std::string MissingName(std::string_view reference, const std::string& mediaFolder);
    bool SameContent(const std::string& file, const std::string& other) const;

    ProjectContext& context_;
    std::unordered_map<std::string, MediaFolder> folders_;
    std::unordered_map<std::string, std::string> placing_;  ///< style sheets in the making
};

/** Pulls the media of one document; see MediaPuller::Pull. */
std::vector<std::string> PullMedia(ProjectContext& context, dom::Document& document,
                                   const std::string& sourceFolder,
                                   const std::string& targetFolder);

}  // namespace pw
