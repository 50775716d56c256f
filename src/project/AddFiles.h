#pragma once
// Takes many HTML files into the project at once, with their folders, and keeps the links among
// them working though the pages get new names.
#include <functional>
#include <string>
#include <vector>

#include "project/ProjectContext.h"

namespace pw {

struct AddFilesRequest {
    /** Files and folders. Of a folder all pages are taken; its sub-folders become project folders.
     */
    std::vector<std::string> paths;
    std::string folderKey;  ///< where to; "" for the top level
    std::function<void(int done, int total)> progress;
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
};

AddFilesResult AddFiles(ProjectContext& context, const AddFilesRequest& request);

}  // namespace pw
