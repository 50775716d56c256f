#include "project/DroppedFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Text.h"
#include "project/Attachments.h"
#include "project/Folders.h"
#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using std::string_literals::operator""s;
using testing::HasSubstr;

/** The header of a picture of that size. */
std::string Gif(char width, char height) {
    return std::string("GIF89a") + width + '\0' + height + '\0' + "\xF0\0\0;"s;
}

struct DroppedFilesTest : testing::Test {
    TakenFiles Take(const std::vector<std::string>& files) {
        return TakeFiles(test.context, page->Key(), files);
    }
    std::string Media(const std::string& name) {
        return test.Text(BuildPath(GetParentFolder(page->Filename), "media\\" + name));
    }
    test::TestProject test;
    const test::TemporaryFolder& in = test.folder;
    Page* page = test.Insert("index");
};

TEST_F(DroppedFilesTest, PicturesGoToTheMediaFolderUnderFreeNames) {
    const std::string first = in.Put("a\\My photo.GIF", Gif(9, 7));
    const std::string second = in.Put("b\\My photo.GIF", Gif(5, 4));
    EXPECT_EQ(Take({first}).html,
              "<img src=\"media/My_photo.GIF\" alt=\"My photo\" width=\"9\" height=\"7\">");
    EXPECT_EQ(Take({second, first}).html,
              "<img src=\"media/My_photo2.GIF\" alt=\"My photo\" width=\"5\" height=\"4\"> "
              "<img src=\"media/My_photo.GIF\" alt=\"My photo\" width=\"9\" height=\"7\">")
        << "an equal file is used again, another one is never overwritten";
    EXPECT_EQ(Media("My_photo.GIF"), Gif(9, 7));
    EXPECT_EQ(Media("My_photo2.GIF"), Gif(5, 4));
    EXPECT_EQ(Take({in.Put("x\"<.svg", "<svg/>")}).html,
              "<img src=\"media/x__.svg\" alt=\"x&quot;<\">");
}

TEST_F(DroppedFilesTest, OtherFilesAreLinkedAndStayWithThePage) {
    const TakenFiles taken = Take({in.Put("price list.pdf", "%PDF")});
    EXPECT_EQ(taken.html, "<a href=\"media/price_list.pdf\">price list.pdf</a>");
    EXPECT_TRUE(taken.problems.empty());
    const auto document = dom::Document::parse("<html><body></body></html>");
    SaveAttachments(test.context, *document, "", *page);
    ASSERT_EQ(page->Attachments().Count(), 1) << "no scan finds it, and none may drop it";
    EXPECT_EQ(GetFileName(page->Attachments().Item(1)->Filename()), "price_list.pdf");
}

TEST_F(DroppedFilesTest, PagesBecomePagesOfTheProject) {
    const std::string first =
        in.Put("in\\first.html", "<title>One &amp; all</title><a href=second.html>s</a>");
    const std::string second = in.Put("in\\second.html", "<title>Two</title><img src=a.gif>");
    in.Put("in\\a.gif", Gif(1, 2));
    const TakenFiles taken = Take({first, second});
    EXPECT_TRUE(taken.addedPages);
    EXPECT_EQ(taken.html,
              "<a href=\"first.htm\">One &amp; all</a><br>"
              "<a href=\"second.htm\">Two</a>");
    EXPECT_EQ(test.project.PageIndex().Count(), 3);
    EXPECT_THAT(test.Text(BuildPath(GetParentFolder(page->Filename), "first.htm")),
                HasSubstr("<a href=second.htm>"));
    EXPECT_EQ(Media("a.gif"), Gif(1, 2));
}

TEST_F(DroppedFilesTest, WhatCannotBeTakenSaysWhy) {
    const std::string huge = in.Put("film.mp4", "x");
    std::filesystem::resize_file(ToNativePath(huge), 100'000'001);
    struct Row {
        const char* name;
        std::string path;
        const char* says;
    };
    const std::string picture = in.Put("good.gif", Gif(1, 1));
    const Row rows[] = {
        {"a folder", in.Path("a folder"), "'a folder' is a folder.\n\nPlease open it"},
        {"missing", in.Path("gone.png"), "'gone.png' does not exist."},
        {"empty", in.Put("empty.png", ""), "'empty.png' is empty."},
        {"huge", huge, "'film.mp4' is larger than 100 MB"},
    };
    in.Put("a folder\\x", "x");
    for (const Row& row : rows) {
        const TakenFiles taken = Take({row.path, picture});
        ASSERT_EQ(taken.problems.size(), 1u) << row.name;
        EXPECT_THAT(taken.problems[0], HasSubstr(row.says));
        EXPECT_THAT(taken.html, HasSubstr("good.gif")) << "the others are taken all the same";
    }
}

TEST_F(DroppedFilesTest, PastedReferencesAreTakenOver) {
    Folder* news = AddFolder(test.context, Container(*test.project.WebSites().Item(1)),
                             {"news", "", ContainerKind::Plain});
    ASSERT_TRUE(news);
    page = test.Insert("today", "", Container(*news));
    const AddressAdopter adopter = AdoptIntoPage(test.context, page->Key());
    const std::string root = test.frame.settings.PreviewFolder;
    const std::string secret = in.Put("secret.txt", "x");
    const std::string fake = in.Put("fake.png", "key");
    const std::string real = in.Put("lu 1.gif", Gif(3, 3));
    const auto address = [](const std::string& path) {
        return "file://" + ReplaceAll(ToNativePath(path), " ", "%20");
    };
    using Result = std::optional<std::string>;
    EXPECT_EQ(adopter.picture(address(real)), Result("media/lu_1.gif"));
    EXPECT_EQ(adopter.picture(address(in.Path("gone.gif"))), Result());
    EXPECT_EQ(adopter.picture(address(secret)), Result());
    EXPECT_EQ(adopter.picture(address(fake)), Result()) << "a page may name any file";
    EXPECT_EQ(adopter.picture(address(in.Put(".cache\\h.gif", Gif(3, 3)))), Result());
    EXPECT_EQ(adopter.picture(ToNativePath(real)), Result()) << "that would be one of a server";
    EXPECT_EQ(adopter.picture("file:///dev/zero"), Result());
    EXPECT_EQ(adopter.picture("<?= $x ?>.gif"), Result());
    EXPECT_EQ(adopter.picture("data:image/gif;base64,R0lGODlh"), Result("media/picture.gif"));
    EXPECT_EQ(Media("picture.gif"), "GIF89a");
    EXPECT_EQ(adopter.picture("data:image/png;base64,***"), Result());
    EXPECT_EQ(adopter.link(address(root) + "/index.htm#x"), Result("../index.htm#x"));
    EXPECT_EQ(adopter.link(address(secret)), Result());
}

TEST_F(DroppedFilesTest, WhatDroppedFilesNameIsAskedFor) {
    in.Put("out.gif", Gif(1, 2));
    in.Put("in\\own.gif", Gif(1, 3));
    in.Put("in\\table.xls", "1,2");
    const std::string css = "p{background:url(../out.gif)}b{background:url(own.gif)}";
    const std::string style = in.Put("in\\s.css", css);
    const std::string html =
        in.Put("in\\new.html", "<title>N</title><a href=table.xls>t</a><img src=../out.gif>");
    TakenFiles taken = Take({style, html});
    EXPECT_EQ(taken.html, "<a href=\"media/s.css\">s.css</a><br><a href=\"new.htm\">N</a>");
    EXPECT_EQ(Media("s.css"), css);
    std::vector<std::string> files;
    for (const LeftOutFile& file : taken.leftOut)
        files.push_back(GetFileName(file.file));
    EXPECT_THAT(files, testing::UnorderedElementsAre("out.gif", "out.gif", "table.xls"));
    EXPECT_TRUE(taken.takeLeftOut({in.Path("out.gif"), in.Path("in\\table.xls")}).empty());
    EXPECT_EQ(Media("s.css"), ReplaceAll(css, "../out", "out"));
    EXPECT_EQ(test.Text(BuildPath(GetParentFolder(page->Filename), "new.htm")),
              "<title>N</title><a href=media/table.xls>t</a><img src=media/out.gif>");
    EXPECT_EQ(Media("table.xls"), "1,2");
}

TEST_F(DroppedFilesTest, APictureWithoutAFileGetsAName) {
    const TakenFiles taken = TakePicture(test.context, page->Key(), Gif(2, 2), "gif");
    EXPECT_EQ(taken.html, "<img src=\"media/picture.gif\" alt=\"\" width=\"2\" height=\"2\">");
    EXPECT_EQ(TakePicture(test.context, page->Key(), Gif(2, 2), "gif").html, taken.html);
    EXPECT_EQ(Media("picture.gif"), Gif(2, 2));
}

}  // namespace
}  // namespace pw
