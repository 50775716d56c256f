#include "frame/FileTools.h"

#include <limits>
#include <set>

#include "frame/Paths.h"
#include "platform/Text.h"

namespace pw {

namespace {

bool Done(FileError error) {
    return error == FileError::None;
}
bool Gone(FileError error) {
    return error == FileError::None || error == FileError::NotFound;
}

/** What a path leads to when links are followed. */
FileInfo Resolve(const FileSystem& files, std::string_view path) {
    const FileInfo info = files.Stat(path);
    if (!info.isLink) return info;
    const std::string target = files.Canonical(path);
    return target.empty() ? FileInfo() : files.Stat(target);
}

bool EmptyFolder(FileSystem& files, const std::string& folder) {
    std::vector<FolderEntry> entries;
    const FileError listed = files.List(folder, entries);
    if (listed == FileError::NotFound) return true;
    bool gone = listed == FileError::None;
    for (const FolderEntry& entry : entries) {
        const std::string path = BuildPath(folder, entry.name);
        gone &= Gone(entry.isFolder ? files.RemoveFolder(path) : files.RemoveFile(path));
    }
    return gone;
}

bool RenameEntry(FileSystem& files, std::string_view path, std::string_view newName) {
    if (newName.empty() || newName.find_first_of("\\/") != newName.npos) return false;
    if (newName == "." || newName == "..") return false;
    return Done(files.Rename(path, BuildPath(GetParentFolder(path), newName)));
}

}  // namespace

bool FileExists(const FileSystem& files, std::string_view path) {
    const FileInfo info = Resolve(files, path);
    return info.exists && !info.isFolder;
}

bool FolderExists(const FileSystem& files, std::string_view path) {
    return Resolve(files, path).isFolder;
}

bool CopyFile(FileSystem& files, std::string_view source, std::string_view target) {
    return Done(files.Copy(source, target));
}

bool CopyFileToFolder(FileSystem& files, std::string_view source, std::string_view folder) {
    return FolderExists(files, folder) &&
           Done(files.Copy(source, BuildPath(folder, GetFileName(source))));
}

bool DeleteFile(FileSystem& files, std::string_view path) {
    if (GetFileName(path) == "*.*") return EmptyFolder(files, GetParentFolder(path));
    return Gone(files.RemoveFile(path));
}

bool DeleteFolder(FileSystem& files, std::string_view path) {
    return Gone(files.RemoveFolder(path));
}

bool MakeFolder(FileSystem& files, std::string_view path) {
    return Done(files.MakeFolder(path));
}

bool RenameFile(FileSystem& files, std::string_view path, std::string_view newName) {
    return FileExists(files, path) && RenameEntry(files, path, newName);
}

bool RenameFolder(FileSystem& files, std::string_view path, std::string_view newName) {
    return FolderExists(files, path) && RenameEntry(files, path, newName);
}

std::int32_t GetFileSize(const FileSystem& files, std::string_view path) {
    const FileInfo info = Resolve(files, path);
    constexpr auto largest = std::uint64_t(std::numeric_limits<std::int32_t>::max());
    return info.exists && !info.isFolder ? std::int32_t(std::min(info.size, largest)) : 0;
}

std::string ReadTextFile(const FileSystem& files, std::string_view path) {
    std::string text;
    return Done(files.Read(path, text)) ? text : "";
}

bool WriteTextFile(FileSystem& files, std::string_view text, std::string_view path,
                   WriteMode mode) {
    return Done(mode == WriteMode::Append ? files.Append(path, text) : files.Write(path, text));
}

std::string FreeName(const FileSystem& files, std::string_view folder, std::string_view name) {
    std::vector<FolderEntry> entries;
    // A folder that cannot be listed takes no name; writing into it will tell the reason.
    if (files.List(folder, entries) != FileError::None) return std::string(name);
    std::set<std::string> taken;
    for (const FolderEntry& entry : entries)
        taken.insert(FoldCase(entry.name));
    const std::string base = GetBaseName(name);
    const std::string extension = GetExtension(name);
    std::string candidate(name);
    for (int number = 2; taken.count(FoldCase(candidate)) > 0; ++number) {
        candidate = base + std::to_string(number);
        if (!extension.empty()) candidate += "." + extension;
    }
    return candidate;
}

}  // namespace pw
