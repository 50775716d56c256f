#pragma once
#include <string_view>

#include "platform/FileSystem.h"

namespace pw {

struct ImageInfo {
    int width = 0;   ///< pixels
    int height = 0;  ///< pixels
    int depth = 0;   ///< bits per pixel
};
/** From the header, by the extension gif, jpg, jpeg, bmp or png. False when it cannot be read. */
bool ReadImageInfo(const FileSystem& files, std::string_view path, ImageInfo& info);

}  // namespace pw
