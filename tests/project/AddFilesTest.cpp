#include "project/AddFiles.h"

#include "project/Folders.h"
#include "support/LinkCheck.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

struct AddFilesTest : testing::Test {
    AddFilesResult Add(const std::vector<std::string>& names, const std::string& folderKey = "") {
        AddFilesRequest request;
        for (const auto& name : names)
            request.paths.push_back(test.folder.Path(name));
        request.folderKey = folderKey;
        return AddFiles(test.context, request);
    }
    std::string Page(const std::string& name) {
        return test.Text(test.frame.settings.PreviewFolder + "\\" + name);
    }

    TestProject test;
};

TEST_F(AddFilesTest, KeepsTheLinksAmongThePages) {
    test.folder.Put("site\\index.html",
                    "<a href=About.html>1</a><a href='Sub Dir/b.html?x#y'>2</a><a href=Sub%20Dir/>3"
                    "</a><a href=#z>4</a><a href=http://a.org/About.html>5</a><a href=no.html>6</a>"
                    "<iframe src=About.html></iframe><meta http-equiv=refresh content='1; "
                    "url=About.html'><a href=paper.pdf>7</a><a href=../outside.html>8</a>");
    test.folder.Put("site\\About.html", "<title>About</title><a href=./index.html>1</a>");
    test.folder.Put("site\\about.htm", "<title>other</title>");
    test.folder.Put("site\\paper.pdf", "pdf");
    test.folder.Put("site\\Sub Dir\\index.html", "<a href=../index.html>1</a>");
    test.folder.Put("site\\Sub Dir\\b.html", "<a href=../About.html>1</a><a href=b.html#q>2</a>");
    test.folder.Put("site\\images\\a.gif", "no page here");
    test.folder.Put("site\\.git\\index.html", "hidden");
    test.folder.Put("site\\media\\m.html", "<a href=../index.html>1</a>");
    test.folder.Put("outside.html", "");

    const AddFilesResult result = Add({"site"});
    for (const auto& problem : result.problems)
        ADD_FAILURE() << problem.reason;
    EXPECT_EQ(result.pageKeys.size(), 6u);
    EXPECT_EQ(result.folders, 2);
    EXPECT_EQ(
        Page("index.htm"),
        "<a href=about.htm>1</a><a href='Sub%20Dir/b.htm?x#y'>2</a><a href=Sub%20Dir/index.htm>3"
        "</a><a href=#z>4</a><a href=http://a.org/About.html>5</a><a href=no.html>6</a>"
        "<iframe src=about.htm></iframe><meta http-equiv=refresh content='1; "
        "url=about.htm'><a href=media/paper.pdf>7</a><a href=../outside.html>8</a>");
    EXPECT_EQ(Page("about.htm"), "<title>About</title><a href=index.htm>1</a>");
    EXPECT_EQ(Page("page_1.htm"), "<title>other</title>");
    EXPECT_EQ(Page("Sub Dir\\b.htm"), "<a href=../about.htm>1</a><a href=b.htm#q>2</a>");
    EXPECT_EQ(Page("media_pages\\m.htm"), "<a href=../index.htm>1</a>");
    EXPECT_EQ(Page("media\\paper.pdf"), "pdf");
    const pw::Page* index = GetDefaultPage(test.context, "W0001");
    ASSERT_TRUE(index);
    EXPECT_EQ(GetFileName(index->Filename), "index.htm");
    const Folder* sub = test.project.WebSites().Item(1)->Sections().Item(1);
    EXPECT_EQ(sub->Name, "Sub Dir");
    EXPECT_TRUE(GetDefaultPage(test.context, sub->Key()));
}

TEST_F(AddFilesTest, GoesOnWithWhatIsThere) {
    test.Insert("index");
    Folder* docs = AddFolder(test.context, {}, {"Docs"});
    test.folder.Put("a.html", "<title>a</title><a href=x/b.html>b</a>");
    test.folder.Put("x\\b.html", "<title>b</title><a href=../a.html>a</a>");
    test.folder.Put("x\\index.html", "<title>i</title>");
    AddFilesResult result = Add({"a.html", "x\\b.html", "a.html"}, docs->Key());
    EXPECT_EQ(result.pageKeys.size(), 2u) << "a page given twice is taken once";
    EXPECT_EQ(Page("Docs\\a.htm"), "<title>a</title><a href=b.htm>b</a>");
    EXPECT_FALSE(GetDefaultPage(test.context, docs->Key()));

    result = Add({"x"});
    EXPECT_EQ(result.pageKeys.size(), 2u);
    EXPECT_EQ(Page("page_1.htm"), "<title>i</title>") << "there is a default page already";
    test.folder.Put("again\\DOCS\\c.html", "<title>c</title>");
    EXPECT_EQ(Add({"again"}).folders, 0);
    EXPECT_EQ(Page("Docs\\c.htm"), "<title>c</title>");
}

TEST_F(AddFilesTest, LeavesTheSecretsOfTheMachineAlone) {
    test.folder.Put(".keys\\id.txt", "secret");
    const std::string html =
        "<title>a</title><a href=../.keys/id.txt>1</a><a href=/etc/passwd>2</a>"
        "<script src=../.keys/id.txt></script>";
    test.folder.Put("site\\a.html", html);
    EXPECT_EQ(Add({"site"}).pageKeys.size(), 1u);
    EXPECT_EQ(Page("index.htm"), html);
    test.folder.Put(".hidden\\b.html", "<title>b</title><img src=b.gif>");
    test.folder.Put(".hidden\\b.gif", "x");
    Add({".hidden"});
    EXPECT_EQ(Page("media\\b.gif"), "x");
}

TEST_F(AddFilesTest, ReportsWhatItCanNotTakeAndTakesTheRest) {
    test.folder.Put("site\\good.html", "<title>good</title><img src=a.gif>");
    test.folder.Put("site\\a.gif", "x");
    test.folder.Put("site\\deep.html", ReplaceAll(std::string(60000, '<'), "<", "<div>"));
    test.folder.Put("site\\binary.html", std::string("\0\1\2\xff\xfe", 5));
    test.folder.Put("site\\empty.html", "");
    std::filesystem::create_directory_symlink(test.folder.Native("site"),
                                              test.folder.Native("site/loop"));
    const AddFilesResult result = Add({"site", "no such file", "site\\a.gif"});
    std::string problems;
    for (const auto& problem : result.problems)
        problems += problem.reason + "\n";
    EXPECT_EQ(result.problems.size(), 4u) << problems;
    EXPECT_THAT(problems, testing::HasSubstr("deep.html"));
    EXPECT_THAT(problems, testing::HasSubstr("no such file"));
    EXPECT_THAT(problems, testing::HasSubstr("a.gif' is no HTML page"));
    EXPECT_THAT(problems, testing::HasSubstr("loop"));
    EXPECT_EQ(result.pageKeys.size(), 3u);
    EXPECT_EQ(Page("media\\a.gif"), "x");
}

}  // namespace
}  // namespace pw
