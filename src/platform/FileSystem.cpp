#include "platform/FileSystem.h"

#include <filesystem>

namespace pw {

std::string Describe(FileError error) {
    switch (error) {
        case FileError::None:
            return "there was no error";
        case FileError::NotFound:
            return "the file or folder does not exist";
        case FileError::Exists:
            return "a file or folder of this name exists already";
        case FileError::NoPermission:
            return "you have no permission for it";
        case FileError::NoSpace:
            return "there is no room for it on the disk";
        case FileError::ReadOnlyDisk:
            return "the disk is write-protected";
        case FileError::IsFolder:
            return "it is a folder";
        case FileError::NotFolder:
            return "a part of the path is not a folder";
        case FileError::NotEmpty:
            return "the folder is not empty";
        case FileError::BadName:
            return "the name cannot be used for a file";
        case FileError::Cancelled:
            return "it was cancelled";
        case FileError::IO:
            return "the disk reported an error";
    }
    return "the disk reported an error";
}

std::string ToNativePath(std::string_view path) {
    std::string native(path);
    for (char& c : native) {
        if (c == '\\') c = '/';
    }
    return native;
}

std::string FromNativePath(std::string_view native) {
    std::string path(native);
    for (char& c : path) {
        if (c == '/') c = '\\';
    }
    return path;
}

std::string FromNativeArgument(const std::string& argument) {
    if (argument.empty() || argument.find('\\') != argument.npos) return "";
    std::error_code error;
    const auto absolute = std::filesystem::absolute(argument, error);
    return error ? "" : FromNativePath(absolute.lexically_normal().string());
}

}  // namespace pw
