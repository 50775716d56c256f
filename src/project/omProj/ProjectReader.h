#pragma once
// Reads a project file into a project object that nobody uses yet, and checks all of it: types,
// keys, names, sizes, counts. Throws `ProjectFailure`.
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "project/omProj/Database.h"
#include "project/omProj/FileStreams.h"
#include "project/omProj/Project.h"

namespace pw {

class ProjectReader {
  public:
    /** `header` is of the same file. */
    ProjectReader(Project& project, ProjectDatabase& database, const ProjectFileHeader& header);

    void ReadHeader();
    /** Into `ThumbnailImage`; a project without a picture leaves it empty. */
    void ReadThumbnail();
    void ReadTree();
    /** The list of files, checked; what the pages name must be among them. */
    void ReadFileList();
    /** Hands the contents to the sink, in the order of the list. */
    void ReadContents(FileSink& sink, const std::function<void(int)>& progress);

    const std::vector<FileTarget>& Files() const { return files_; }
    /** Folders of the tree on disk, by their stored names. */
    const std::vector<std::string>& FolderNames() const { return folderNames_; }
    /** Of a journal: the project file that it belongs to. */
    const std::string& BaseFile() const { return baseFile_; }
    const FileMark& BaseMark() const { return baseMark_; }

  private:
    void ReadSites();
    void ReadFolders();
    void ReadPages();
    void ReadAttachments();
    void ReadMetaTags();
    void ReadForms();
    void ReadLists();
    Page* PageOf(std::string_view owner);
    std::string PathOf(std::string_view storedName);
    void NoteCounters(Pages& pages, Sections& sections, const ProjectStatement& row);
    void RestoreCounters();
    void OrderIndex();

    Project& project_;
    ProjectDatabase& database_;
    ProjectFileHeader header_;
    std::vector<FileTarget> files_;
    std::vector<std::int64_t> fileIds_;
    std::vector<std::string> folderNames_;
    std::vector<std::string> pageFiles_;
    /** Of collections, applied when all items are in, which must not have outrun them. */
    struct Counters {
        Pages* pages;
        Sections* sections;
        int nextPage;
        int nextFolder;
    };
    std::vector<Counters> counters_;
    struct AttachmentCounter {
        Page* page;
        int next;
    };
    std::vector<AttachmentCounter> attachmentCounters_;
    int nextSite_ = 1;
    int nextAttachment_ = 1;
    std::string thumbnail_;
    std::string baseFile_;
    FileMark baseMark_;
    std::int64_t fileCount_ = 0;
};

}  // namespace pw
