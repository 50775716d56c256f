#pragma once
// Takes many HTML files into the project at once, with their folders, and keeps the links among
// them working though the pages get new names.
#include <functional>
#include <string>
#include <vector>

#include "project/FileAdmission.h"
#include "project/ProjectContext.h"

namespace pw {

struct AddFilesRequest {
    /** Files and folders. Of a folder all pages are taken; its sub-folders become project folders.
     */
    std::vector<std::string> paths;
    std::string folderKey;  ///< where to; "" for the top level
    std::function<void(int done, int total)> progress;
    /** Folders whose files may come along too, though no page of them is taken. */
    std::vector<std::string> withFilesFrom;
};

struct AddFilesProblem {
    std::string file;
    std::string reason;  ///< a sentence for the user
};

struct AddFilesResult {
    std::vector<std::string> pageKeys;  ///< of the new pages
    int folders = 0;                    ///< new ones
    /** What could not be taken; the rest was. */
    std::vector<AddFilesProblem> problems;
    /** What the pages name and may not have, as long as nobody has agreed to it. */
    std::vector<LeftOutFile> leftOut;
    /** Takes these files along after all and makes the pages that name them anew; answers what
     * could not be taken. To be called before anything else is done to the pages. */
    std::function<std::vector<AddFilesProblem>(const std::vector<std::string>& files)> takeLeftOut;
};

AddFilesResult AddFiles(ProjectContext& context, const AddFilesRequest& request);

}  // namespace pw
