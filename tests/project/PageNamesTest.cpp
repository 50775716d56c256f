#include "project/PageNames.h"

#include <gtest/gtest.h>

#include "support/TestProject.h"

namespace pw {
namespace {

TEST(PageNames, ATitleGoesIntoTheTreeAndTheFileOrIntoNeither) {
    test::TestProject test;
    Page* page = test.Insert("one");
    SetPageTitle(test.context, *page, "A & B");
    EXPECT_EQ(page->Title, "A & B");
    std::string bytes;
    ASSERT_EQ(test.frame.files.Read(page->Filename, bytes), FileError::None);
    EXPECT_NE(bytes.find("<title>A &amp; B</title>"), std::string::npos) << bytes;

    ASSERT_EQ(test.frame.files.RemoveFile(page->Filename), FileError::None);
    EXPECT_THROW(SetPageTitle(test.context, *page, "other"), Failure);
    EXPECT_EQ(page->Title, "A & B");
    EXPECT_FALSE(FileExists(test.frame.files, page->Filename))
        << "what can not be read is not written over";
}

}  // namespace
}  // namespace pw
