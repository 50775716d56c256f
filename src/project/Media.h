#pragma once
// Brings the files that a page refers to into the `media` folder beside it, under names that are
// good in links.
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/dom/Document.h"
#include "project/FileAdmission.h"
#include "project/ProjectContext.h"

namespace pw {

/**
 * Pulls media for one page or for many. It remembers what it has copied, so one object serves a
 * whole tree of pages; nobody else should write into the media folders while it lives.
 */
class MediaPuller {
  public:
    explicit MediaPuller(ProjectContext& context) : context_(context) {}

    /**
     * Copies what `document` refers to and `admission` admits into `targetFolder`\media and
     * rewrites the references to "media/<name>". Only local references change. Those to a missing
     * picture or background are rewritten all the same, if a file beside the page can be meant; all
     * others stay as they are written. Returns the paths of the files in the media folder, with
     * those that pulled style sheets need in their turn. References are relative to
     * `sourceFolders`; the first in which the file is found counts.
     */
    std::vector<std::string> Pull(dom::Document& document,
                                  const std::vector<std::string>& sourceFolders,
                                  const std::string& targetFolder, FileAdmission& admission);

    /** Copies one file, a style sheet with all that it needs. Returns their paths in the media
     *  folder, the file itself first; nothing when it could not be copied. */
    std::vector<std::string> PullFile(const AdmittedFile& file, const std::string& targetFolder,
                                      FileAdmission& admission);
    /** As above, for a file that the user chose himself. */
    std::vector<std::string> PullChosenFile(const std::string& file,
                                            const std::string& targetFolder);

    /** More is admitted from now on: the style sheets that were made are made anew in their place
     *  when they are next asked for. */
    void StartAgain();

  private:
    struct MediaFolder {
        std::string path;
        std::unordered_map<std::string, std::string> names;   ///< folded to as written
        std::unordered_map<std::string, std::string> pulled;  ///< path of the source to name
        /** Style sheets that were written here, with their names. */
        std::unordered_map<std::string, std::string> written;
        std::unordered_map<std::string, std::vector<std::string>> needs;  ///< of style sheets
        /** Style sheets whose text is being made, with the name that they will have. */
        std::unordered_map<std::string, std::string> inTheMaking;
    };
    struct Task;

    MediaFolder& FolderBeside(const std::string& targetFolder);
    std::string Place(const Task& task, const AdmittedFile& file, int depth);
    std::string PlaceCopy(MediaFolder& folder, const AdmittedFile& file);
    std::string PlaceStyleSheet(const Task& task, const AdmittedFile& file, int depth);
    std::string MakeStyleSheet(const Task& task, const AdmittedFile& file, const std::string& css,
                               const std::string& name, int depth, std::vector<std::string>& used);
    void NoteNeedsInPlace(const Task& task, const std::string& name);
    std::string RewriteStyles(const Task& task, std::string_view css, std::string_view prefix,
                              int depth, std::vector<std::string>& used);
    void PullElement(const Task& task, dom::Node& element, std::vector<std::string>& used);
    void PullCandidates(const Task& task, dom::Node& element, std::string_view attribute,
                        std::vector<std::string>& used);
    void PullArchives(const Task& task, dom::Node& applet, std::vector<std::string>& used);
    std::string MissingName(const MediaFolder& folder, std::string_view reference) const;
    bool SameContent(const std::string& file, const std::string& other) const;
    static std::vector<std::string> WithNeeds(const MediaFolder& folder,
                                              const std::vector<std::string>& used);

    ProjectContext& context_;
    std::unordered_map<std::string, MediaFolder> folders_;
};

/** Whether the element brings the file that its link attribute names into the page (a style sheet,
 *  an embedded film), so that it is not only a link. */
bool BringsFile(const dom::Node& element);

/** Pulls the media of one document of the open project. */
std::vector<std::string> PullMedia(ProjectContext& context, dom::Document& document,
                                   const std::string& sourceFolder,
                                   const std::string& targetFolder);

/** What an open project may take: what lies below its working folder. */
FileAdmission AdmissionOfProject(const ProjectContext& context);

/**
 * The folders that references in a document are relative to, given those of its file: a BASE
 * element with a local address changes them, and its address goes, since rewritten references do
 * not need it. Empty when the BASE names a place in the web or outside of what is admitted, where
 * all relative references then lie.
 */
std::vector<std::string> TakeOverBase(dom::Document& document,
                                      const std::vector<std::string>& folders,
                                      FileAdmission& admission);

}  // namespace pw
