#include "project/omProj/Results.h"

#include <cerrno>

namespace pw {
namespace {

struct ResultText {
    ProjectResult result;
    const char* text;
};

constexpr ResultText kTexts[] = {
    {ProjectResult::Success, ""},
    {ProjectResult::OlderFormat,
     "The project is of an older format. Please convert it to the latest format to open it."},
    {ProjectResult::NewerFormat,
     "The project was saved by a newer version of this program. Please update the program to open "
     "it."},
    {ProjectResult::NotAProject, "The file is not a project."},
    {ProjectResult::Damaged, "The project file is damaged. Please use a copy of it."},
    {ProjectResult::NotFound, "The project file does not exist."},
    {ProjectResult::NoPermission,
     "The file or its folder may not be read or written. Please check its permissions."},
    {ProjectResult::DiskFull, "The disk is full. Please make some room on it and try again."},
    {ProjectResult::IOError, "The disk could not be read or written."},
    {ProjectResult::MissingFile, "A page's file can not be read."},
    {ProjectResult::HostileContent,
     "The project file holds names that lead out of its folder. It was not opened, to keep your "
     "files safe."},
    {ProjectResult::NamesCollide,
     "Two files of the project have names that differ only in upper and lower case. Please rename "
     "one of them."},
    {ProjectResult::OutsideFolder, "A file lies outside the project's folder."},
    {ProjectResult::BadName,
     "A file or folder has a name that a project can not keep. Please rename it."},
    {ProjectResult::TooLarge, "A file is too large for a project."},
    {ProjectResult::CollectionFull,
     "No more items can be added here: the limit of 9,999 is reached. Please use another folder."},
    {ProjectResult::TooDeep,
     "Folders can be nested 64 levels deep at most. Please add the folder further up."},
    {ProjectResult::InUse, "Another program is working on the project. Please try again later."},
    {ProjectResult::NoWorkingFolder, "The folder for the project's files does not exist."},
    {ProjectResult::Failed, "The operation failed."},
};

}  // namespace

std::string Describe(ProjectResult result) {
    for (const ResultText& row : kTexts)
        if (row.result == result) return row.text;
    return "The operation failed.";
}

std::string Describe(ProjectResult result, int systemError) {
    if (result == ProjectResult::DiskFull && systemError == EFBIG)
        return "A file would get larger than files may be here. Please have the limit on the size "
               "of files raised and try again.";
    if (result == ProjectResult::DiskFull && systemError == EDQUOT)
        return "Your share of the disk is full. Please make some room on it and try again.";
    return Describe(result);
}

}  // namespace pw
