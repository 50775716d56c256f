#pragma once
// What an operation of the object library ended in. Nothing in this folder throws to its callers.
#include <cstdint>
#include <string>

namespace pw {

enum class ProjectResult : std::uint32_t {
    Success = 0,
    OlderFormat = 0x80040203,   ///< written by an older program; a converter is needed
    NewerFormat = 0x80040204,   ///< written by a newer program
    NotAProject = 0x80040205,   ///< some other kind of file
    Damaged = 0x80040206,       ///< a project file whose content is broken or cut off
    NotFound = 0x80040207,      ///< there is no such file
    NoPermission = 0x80040208,  ///< reading or writing is not allowed
    DiskFull = 0x80040209,
    IOError = 0x8004020A,         ///< the disk failed to read or write
    MissingFile = 0x8004020B,     ///< a page's file can't be read; nothing was saved
    HostileContent = 0x8004020C,  ///< names that would lead out of the working folder, and the like
    NamesCollide = 0x8004020D,    ///< two files whose names differ only in upper and lower case
    OutsideFolder = 0x8004020E,   ///< a page's file or a folder lies outside the working folder
    BadName = 0x8004020F,         ///< a name on disk that a project file can't hold
    TooLarge = 0x80040210,        ///< a file larger than a project file can hold
    CollectionFull = 0x80040211,  ///< all 9,999 numbers of a collection are given out
    TooDeep = 0x80040212,         ///< folders nested beyond 64 levels
    InUse = 0x80040213,           ///< another program works on the file, or this one is busy
    NoWorkingFolder = 0x80040214,  ///< `WorkingFolder` is not set or is no folder
    Failed = 0x80040215            ///< something unforeseen, told in the message
};

/** A sentence for the user that says what is wrong and, where it helps, what to do. */
std::string Describe(ProjectResult result);
/** The same, where the errno that led to it tells more. */
std::string Describe(ProjectResult result, int systemError);

}  // namespace pw
