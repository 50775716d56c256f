#include "frame/ImageInfo.h"

#include "support/TemporaryFolder.h"

namespace pw {
namespace {

/** Bytes written as hexadecimal digits; blanks are for the eye. */
std::string Hex(std::string_view digits) {
    std::string bytes;
    int nibbles = 0, value = 0;
    for (const char c : digits) {
        if (c == ' ') continue;
        value = value * 16 + (c <= '9' ? c - '0' : c - 'A' + 10);
        if (++nibbles % 2 == 0) {
            bytes += char(value);
            value = 0;
        }
    }
    return bytes;
}

TEST(ImageInfo, ReadsHeaders) {
    struct Row {
        const char* name;
        const char* file;
        std::string bytes;
        int width, height, depth;
    };
    const std::string jpegStart = Hex("FFD8 FFE0 0006 4A46 4946 ");
    const std::string frame = Hex("FFC2 000B 08 0140 0280 03 0000");
    const std::string png = Hex("89504E47 0D0A1A0A 0000000D 49484452 00000100 00000080 ");
    for (const Row& row :
         {Row{"gif", "a.GIF", "GIF89a" + Hex("4001 C800 F7"), 320, 200, 8},
          Row{"png rgba", "a.png", png + Hex("08 06"), 256, 128, 32},
          Row{"png palette", "a.png", png + Hex("04 03"), 256, 128, 4},
          Row{"jpeg", "a.jpg", jpegStart + frame, 640, 320, 24},
          Row{"jpeg with tables and padding", "a.jpeg",
              jpegStart + Hex("FFC4 0004 0000 FFFF") + frame.substr(1), 640, 320, 24},
          Row{"bmp", "a.bmp",
              "BM" + Hex("00000000 00000000 00000000 28000000 10000000 F0FFFFFF 0100 1800"), 16, 16,
              24},
          Row{"old bmp", "a.bmp",
              "BM" + Hex("00000000 00000000 00000000 0C000000 1000 2000 0100 0100"), 16, 32, 1},
          Row{"cut gif", "a.gif", "GIF89a", 0, 0, 0},
          Row{"cut jpeg", "a.jpg", jpegStart + Hex("FFC0"), 0, 0, 0},
          Row{"jpeg without a frame", "a.jpg", jpegStart + Hex("FFDA 0008"), 0, 0, 0},
          Row{"jpeg that loops", "a.jpg", jpegStart + Hex("FFE1 0000 0000"), 0, 0, 0},
          Row{"another format's content", "a.png", "GIF89a" + Hex("4001 C800 F7"), 0, 0, 0},
          Row{"another extension", "a.tif", "GIF89a" + Hex("4001 C800 F7"), 0, 0, 0}}) {
        SCOPED_TRACE(row.name);
        const test::TemporaryFolder folder;
        ImageInfo info{1, 1, 1};
        EXPECT_EQ(ReadImageInfo(*MakePosixFileSystem(), folder.Put(row.file, row.bytes), info),
                  row.width > 0);
        EXPECT_EQ(info.width, row.width);
        EXPECT_EQ(info.height, row.height);
        EXPECT_EQ(info.depth, row.depth);
    }
}

}  // namespace
}  // namespace pw
