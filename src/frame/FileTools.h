#pragma once
// Files and folders in the simple forms that the rest of the program wants. Nothing here logs or
// throws: the result tells, and who needs the reason calls FileSystem itself.
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/FileSystem.h"

namespace pw {

bool FileExists(const FileSystem& files, std::string_view path);    ///< also through a link
bool FolderExists(const FileSystem& files, std::string_view path);  ///< also through a link
/** Overwrites. */
bool CopyFile(FileSystem& files, std::string_view source, std::string_view target);
/** Overwrites. False when the folder does not exist. */
bool CopyFileToFolder(FileSystem& files, std::string_view source, std::string_view folder);
/**
 * Deletes the file if it exists. With "*.*" for a name, empties the folder with all below it, and
 * the folder itself stays. True when afterwards nothing of it is left.
 */
bool DeleteFile(FileSystem& files, std::string_view path);
/** With its content, if it exists; true when it is gone. */
bool DeleteFolder(FileSystem& files, std::string_view path);
/** If it is missing; true when it stands. */
bool MakeFolder(FileSystem& files, std::string_view path);
/** `newName` is a bare name: one with a separator is refused, as is a name that is taken. */
bool RenameFile(FileSystem& files, std::string_view path, std::string_view newName);
bool RenameFolder(FileSystem& files, std::string_view path, std::string_view newName);
/** 0 when missing; sizes beyond 32 bits are cut to the largest. */
std::int32_t GetFileSize(const FileSystem& files, std::string_view path);
/** The whole file as it stands, or "". */
std::string ReadTextFile(const FileSystem& files, std::string_view path);

enum class WriteMode { Replace, Append };
bool WriteTextFile(FileSystem& files, std::string_view text, std::string_view path,
                   WriteMode mode = WriteMode::Replace);

/** A name in the folder that no file or folder has in any letter case: "a.gif", "a2.gif", … */
std::string FreeName(const FileSystem& files, std::string_view folder, std::string_view name);

}  // namespace pw
