#include "frame/ImageInfo.h"

#include <cstdlib>

#include "frame/Paths.h"
#include "platform/Text.h"

namespace pw {

namespace {

/** Reads numbers at offsets; what lies outside the file reads as 0. */
class Bytes {
  public:
    explicit Bytes(const std::string& data) : data_(data) {}
    std::size_t Size() const { return data_.size(); }
    int Byte(std::size_t at) const { return at < data_.size() ? std::uint8_t(data_[at]) : 0; }
    int Little16(std::size_t at) const { return Byte(at) | Byte(at + 1) << 8; }
    int Big16(std::size_t at) const { return Byte(at) << 8 | Byte(at + 1); }
    std::int32_t Little32(std::size_t at) const {
        return std::int32_t(std::uint32_t(Little16(at)) | std::uint32_t(Little16(at + 2)) << 16);
    }
    std::int32_t Big32(std::size_t at) const {
        return std::int32_t(std::uint32_t(Big16(at)) << 16 | std::uint32_t(Big16(at + 2)));
    }
    bool Has(std::size_t at, std::string_view text) const {
        return data_.compare(std::min(at, data_.size()), text.size(), text) == 0;
    }

  private:
    const std::string& data_;
};

bool ReadGif(const Bytes& file, ImageInfo& info) {
    if (!file.Has(0, "GIF8")) return false;
    info = {file.Little16(6), file.Little16(8), (file.Byte(10) & 7) + 1};
    return true;
}

bool ReadPng(const Bytes& file, ImageInfo& info) {
    if (!file.Has(0, "\x89PNG\r\n\x1a\n") || !file.Has(12, "IHDR")) return false;
    // Samples of a pixel by the colour type: grey, -, RGB, palette, grey and alpha, -, RGBA.
    constexpr int samples[] = {1, 0, 3, 1, 2, 0, 4};
    const int colorType = file.Byte(25);
    info = {file.Big32(16), file.Big32(20),
            file.Byte(24) * (colorType < 7 ? samples[colorType] : 0)};
    return true;
}

bool ReadBmp(const Bytes& file, ImageInfo& info) {
    if (!file.Has(0, "BM")) return false;
    constexpr int oldHeader = 12;
    if (file.Little32(14) == oldHeader)
        info = {file.Little16(18), file.Little16(20), file.Little16(24)};
    else  // a negative height tells that the rows run downwards
        info = {file.Little32(18), std::abs(std::max(file.Little32(22), -0x7FFFFFFF)),
                file.Little16(28)};
    return true;
}

/** Frame headers are C0 to CF, less the three that hold tables or extensions. */
bool IsFrameHeader(int marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool ReadJpeg(const Bytes& file, ImageInfo& info) {
    if (file.Big16(0) != 0xFFD8) return false;
    std::size_t at = 2;
    while (at + 4 <= file.Size()) {
        if (file.Byte(at) != 0xFF) return false;
        const int marker = file.Byte(at + 1);
        if (marker == 0xFF) {  // padding
            ++at;
            continue;
        }
        const bool alone = marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
        if (IsFrameHeader(marker)) {
            info = {file.Big16(at + 7), file.Big16(at + 5), file.Byte(at + 4) * file.Byte(at + 9)};
            return true;
        }
        if (marker == 0xD9 || marker == 0xDA) return false;  // the picture itself, without a header
        const int length = alone ? 0 : file.Big16(at + 2);
        if (!alone && length < 2) return false;
        at += 2 + std::size_t(length);
    }
    return false;
}

struct Format {
    const char* extension;
    bool (*read)(const Bytes&, ImageInfo&);
};
constexpr Format kFormats[] = {
    {"gif", ReadGif}, {"jpg", ReadJpeg}, {"jpeg", ReadJpeg}, {"bmp", ReadBmp}, {"png", ReadPng}};

}  // namespace

bool ReadImageInfo(const FileSystem& files, std::string_view path, ImageInfo& info) {
    info = {};
    const std::string extension = ToLower(GetExtension(path));
    for (const Format& format : kFormats) {
        if (extension != format.extension) continue;
        std::string data;
        if (files.Read(path, data) != FileError::None) return false;
        if (format.read(Bytes(data), info) && info.width > 0 && info.height > 0) return true;
        info = {};
        return false;
    }
    return false;
}

}  // namespace pw
