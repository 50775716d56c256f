#include "frame/Branding.h"

#include "support/TemporaryFolder.h"

namespace pw {
namespace {

std::string Padded(std::string text, char filler = ' ') {
    text.resize(128, filler);
    return text;
}

TEST(Branding, ReadsTheFileFromItsEnd) {
    struct Row {
        const char* name;
        std::string bytes;
        const char* company;
        const char* second;
        const char* caption;
    };
    const std::string own = "the distributor's own";
    const std::string block = Padded("Example Net", '\0') + Padded(" two ");
    const std::string latin = Padded("Caf\xE9") + Padded("");
    for (const Row& row :
         {Row{"behind other data", own + block + std::string("\x16\0\0\0", 4), "Example Net", "two",
              "Pagewick provided by Example Net"},
          Row{"at the start", block + std::string("\1\0\0\0", 4), "Example Net", "two",
              "Pagewick provided by Example Net"},
          Row{"of an older character set", latin + std::string("\1\0\0\0", 4), "Caf\xC3\xA9", "",
              "Pagewick provided by Caf\xC3\xA9"},
          Row{"position 0", block + std::string(4, '\0'), "", "", "Pagewick"},
          Row{"position beyond the end", block + "\xFF\xFF\xFF\xFF", "", "", "Pagewick"},
          Row{"too short", "abc", "", "", "Pagewick"}, Row{"empty", "", "", "", "Pagewick"}}) {
        SCOPED_TRACE(row.name);
        const test::TemporaryFolder folder;
        const auto files = MakePosixFileSystem();
        CBrand brand(*files, "Pagewick");
        brand.SetBrandFile(folder.Put("cobrand.ocb", row.bytes));
        EXPECT_TRUE(brand.IsValid());
        EXPECT_EQ(brand.CompanyName(), row.company);
        EXPECT_EQ(brand.SecondText(), row.second);
        EXPECT_EQ(brand.FormCaption(), row.caption);
        brand.SetBrandFile(folder.Path("none"));
        EXPECT_FALSE(brand.IsValid());
        EXPECT_EQ(brand.FormCaption(), "Pagewick");
        EXPECT_EQ(brand.BrandFile(), folder.Path("none"));
    }
}

}  // namespace
}  // namespace pw
