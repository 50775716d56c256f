#include "project/InsertPage.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/Text.h"
#include "project/CopyPages.h"
#include "project/FileAdmission.h"
#include "project/Folders.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

struct InsertTest : testing::Test {
    Page* Insert(const std::string& file, Container where = {}) {
        InsertPageRequest request;
        request.sourceFile = file;
        request.folder = where;
        return InsertPage(test.context, request, &reason);
    }
    std::string Media(const std::string& name) {
        return test.Text(test.frame.settings.MediaFolder + "\\" + name);
    }
    std::vector<std::string> AttachedNames(const Page& page) {
        std::vector<std::string> names;
        for (const Attachment& attachment : page.Attachments())
            names.push_back(GetFileName(attachment.Filename()));
        return names;
    }

    TestProject test;
    std::string reason;
};

TEST_F(InsertTest, NamesFilesAndTitles) {
    test.project.Name = "Shop";
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    const std::string mark = "[%#TITLE#%]";
    const struct {
        const char* name;
        std::string file;
        std::string title;   ///< in the source
        std::string wanted;  ///< given by the caller
        bool inFolder;
        const char* resultFile;
        const char* resultTitle;
    } rows[] = {
        {"the first page of a site", "About.html", mark, "", false, "index.htm", "Shop Home Page"},
        {"one without a title", "About.html", "", "", false, "about.htm", "Page 2"},
        {"a name that is taken", "ABOUT.htm", "Us", "", false, "page_1.htm", "Us"},
        {"a title over two lines", "b.htm", "A &amp;\n  B", "", false, "b.htm", "A & B"},
        {"a title given", "c.htm", "C", "Other", false, "c.htm", "Other"},
        {"an index when there is one", "INDEX.HTML", "I", "", false, "page_2.htm", "I"},
        {"an index of a folder", "index.html", "I", "", true, "index.htm", "I"},
        {"the mark as a second page", "d.htm", mark, "", false, "d.htm", "Page 8"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        InsertPageRequest request;
        request.sourceFile = test.folder.Put(
            "in\\" + row.file, "<title>" + row.title + "</title><body><h1>" + mark + "</h1>");
        if (row.inFolder) request.folder = Container(*folder);
        request.title = row.wanted;
        Page* page = InsertPage(test.context, request, &reason);
        ASSERT_TRUE(page) << reason;
        EXPECT_EQ(GetFileName(page->Filename), row.resultFile);
        EXPECT_EQ(page->Name, row.resultTitle);
        const auto document = dom::Document::parse(test.Text(page->Filename));
        if (row.title == mark) {
            EXPECT_EQ(document->title(), row.resultTitle);
        }
        EXPECT_EQ(page->CreatedBy, CurrentAuthor(test.context));
        EXPECT_TRUE(test.project.IsDirty);
    }
    test.frame.settings.HTMLTemplateFilename = test.folder.Put("in\\blank.htm", "<p>");
    EXPECT_EQ(GetFileName(Insert(test.frame.settings.HTMLTemplateFilename)->Filename),
              "page_3.htm");
}

TEST_F(InsertTest, NewPagesSayWhichLanguageTheyAreInAndFitAnyScreen) {
    const std::filesystem::path tests = PAGEWICK_TEST_DATA;
    const auto blank = tests.parent_path().parent_path() / "data" / "blank.htm";
    const char* const former = std::getenv("LC_ALL");
    const std::string kept = former ? former : "";
    const struct {
        const char* locale;
        const char* language;
    } rows[] = {{"de_AT.UTF-8", "de"}, {"fil.UTF-8", "fil"}, {"C", "en"}, {"<x>", "en"}};
    for (const auto& row : rows) {
        ASSERT_EQ(::setenv("LC_ALL", row.locale, 1), 0);
        const Page* page = Insert(FromNativePath(blank.string()));
        ASSERT_TRUE(page) << reason;
        const auto document = dom::Document::parse(test.Text(page->Filename));
        EXPECT_EQ(document->tags("HTML").at(0)->getAttribute("lang"), row.language) << row.locale;
        EXPECT_EQ(document->tags("META").at(1)->getAttribute("content"),
                  "width=device-width, initial-scale=1");
    }
    former ? ::setenv("LC_ALL", kept.c_str(), 1) : ::unsetenv("LC_ALL");
}

TEST_F(InsertTest, PullsMediaAndChangesNothingElse) {
    test.folder.Put("in\\a b&c.gif", "GIF89a1");
    test.folder.Put("in\\x\\pic.gif", "GIF89a2");
    test.folder.Put("in\\y\\PIC.gif", "GIF89a3");
    test.folder.Put("in\\z\\pic.gif", "GIF89a2");
    test.folder.Put("in\\grün.png", "GIF89a4");
    test.folder.Put("in\\s\\main.css",
                    "@import 'more.css'; p{background:url( ../x/pic.gif )}/* url(no) */");
    test.folder.Put("in\\s\\more.css",
                    "@import url(main.css); b{background:url(\"../y/PIC.gif\")}");
    test.folder.Put("in\\run.js", "go()");
    const std::string absolute = ReplaceAll(test.folder.Put("in\\abs.gif", "GIF89a5"), "\\", "/");
    const struct {
        const char* name;
        std::string from;
        std::string to;
    } rows[] = {
        {"blanks and signs", "<img src=\"a%20b&amp;c.gif\" ALT=x>",
         "<img src=\"media/a_b_c.gif\" ALT=x>"},
        {"a name", "<IMG src='x/pic.gif'>", "<IMG src='media/pic.gif'>"},
        {"another picture of that name", "<img src=\"y/PIC.gif\">", "<img src=\"media/PIC2.gif\">"},
        {"the same picture elsewhere", "<img src=\"z/pic.gif\">", "<img src=\"media/pic.gif\">"},
        {"a low picture", "<img lowsrc=\"x/pic.gif\">", "<img lowsrc=\"media/pic.gif\">"},
        {"letters beyond ASCII", "<img src=\"gr%C3%BCn.png\">", "<img src=\"media/grün.png\">"},
        {"a path", "<img src=\"file://" + absolute + "\">", "<img src=\"media/abs.gif\">"},
        {"one that is missing", "<img src=\"no/where.gif\">", "<img src=\"media/where.gif\">"},
        {"a table", "<table background=\"x/pic.gif\"><tr><td background=\"x/pic.gif\">",
         "<table background=\"media/pic.gif\"><tr><td background=\"media/pic.gif\">"},
        {"a style sheet", "<link rel=StyleSheet href=\"s/main.css?v=2\">",
         "<link rel=StyleSheet href=\"media/main.css?v=2\">"},
        {"a script", "<script src=\"run.js\"></script>", "<script src=\"media/run.js\"></script>"},
        {"a missing script", "<script src=\"no.js\"></script>", "<script src=\"no.js\"></script>"},
        {"styles", "<p style=\"background:url(x/pic.gif)\">",
         "<p style=\"background:url(media/pic.gif)\">"},
        {"candidates", "<img srcset=\"x/pic.gif 1x, http://a.org/b,c.gif 2x\">",
         "<img srcset=\"media/pic.gif 1x, http://a.org/b,c.gif 2x\">"},
        {"the web", "<img src=\"http://example.org/x/pic.gif\">",
         "<img src=\"http://example.org/x/pic.gif\">"},
        {"data", "<img src=\"data:image/gif;base64,R0lG\">",
         "<img src=\"data:image/gif;base64,R0lG\">"},
        {"a link", "<a href=x/pic.gif>x</a>", "<a href=x/pic.gif>x</a>"},
    };
    std::string before =
        "<!doctype html>\r\n<TITLE>t</TITLE><body  bgcolor=red background=\"x/pic.gif\">\r\n";
    std::string after = ReplaceAll(before, "x/pic", "media/pic");
    for (const auto& row : rows) {
        before += row.from + "\r\n";
        after += row.to + "\r\n";
    }
    Page* page = Insert(test.folder.Put("in\\a.htm", before));
    ASSERT_TRUE(page) << reason;
    EXPECT_EQ(test.Text(page->Filename), after);
    EXPECT_EQ(Media("pic.gif"), "GIF89a2");
    EXPECT_EQ(Media("PIC2.gif"), "GIF89a3");
    EXPECT_EQ(Media("abs.gif"), "GIF89a5");
    EXPECT_EQ(Media("main.css"), "@import 'more.css'; p{background:url( pic.gif )}/* url(no) */");
    EXPECT_EQ(Media("more.css"), "@import url(main.css); b{background:url(\"PIC2.gif\")}");
    EXPECT_THAT(AttachedNames(*page),
                testing::UnorderedElementsAre("pic.gif", "a_b_c.gif", "PIC2.gif", "grün.png",
                                              "abs.gif", "main.css", "more.css", "run.js"));

    // What was pulled survives the next scan, and a second page finds it in its place.
    Page* second = Insert(test.folder.Put("in\\b.htm", before));
    EXPECT_EQ(test.Text(second->Filename), after);
    EXPECT_EQ(AttachedNames(*second).size(), 8u);
}

TEST_F(InsertTest, HonoursABaseAddress) {
    test.folder.Put("in\\x\\a.gif", "GIF89a1");
    Page* page = Insert(
        test.folder.Put("in\\a.htm", "<head><base href=\"x/\"></head><body><img src=\"a.gif\">"));
    EXPECT_EQ(test.Text(page->Filename), "<head><base></head><body><img src=\"media/a.gif\">");
    const std::string remote = "<base href=\"http://a.org/\"><body><img src=\"x/a.gif\">";
    EXPECT_EQ(test.Text(Insert(test.folder.Put("in\\b.htm", remote))->Filename), remote);
}

TEST_F(InsertTest, KeepsTheFramesetAndPullsForTheRest) {
    test.folder.Put("in\\a.gif", "GIF89a1");
    const std::string html =
        "<html><head><title>F</title></head><frameset cols=\"*,1\"><frame src=\"a.htm\">"
        "<noframes><body><img src=\"a.gif\"></body></noframes></frameset></html>";
    Page* page = Insert(test.folder.Put("in\\f.htm", html));
    ASSERT_TRUE(page) << reason;
    EXPECT_EQ(page->PageType, PageType::Frames);
    EXPECT_EQ(test.Text(page->Filename), ReplaceAll(html, "a.gif", "media/a.gif"));
    EXPECT_THAT(AttachedNames(*page), testing::ElementsAre("a.gif"));
}

TEST_F(InsertTest, LeavesTheProjectAsItWasWhenItFails) {
    EXPECT_FALSE(Insert(test.folder.Path("in\\no.htm")));
    EXPECT_THAT(reason, testing::HasSubstr("does not exist"));
    const std::string deep(60000, '<');
    EXPECT_FALSE(Insert(test.folder.Put("in\\deep.htm", ReplaceAll(deep, "<", "<div>"))));
    EXPECT_THAT(reason, testing::HasSubstr("can not be taken in as a page"));
    EXPECT_EQ(test.project.PageCount(), 0);
}

TEST_F(InsertTest, TakesRealPagesAndKeepsTheirBytes) {
    const std::filesystem::path manual = "/usr/share/doc/apache2-doc/manual/en";
    if (!std::filesystem::exists(manual)) GTEST_SKIP() << "needs the package apache2-doc";
    for (const char* name : {"index.html", "install.html", "mod/core.html", "rewrite/tech.html"}) {
        SCOPED_TRACE(name);
        InsertPageRequest request;
        request.sourceFile = FromNativePath((manual / name).string());
        FileAdmission admission(*test.files);
        admission.AllowFolder(FromNativePath(manual.parent_path().string()),
                              FileAdmission::Taking::Everything);
        request.admission = &admission;
        Page* page = InsertPage(test.context, request, &reason);
        ASSERT_TRUE(page) << reason;
        std::ifstream in(manual / name, std::ios::binary);
        const std::string source{std::istreambuf_iterator<char>(in), {}};
        const std::string result = test.Text(page->Filename);
        // Apart from the tags of rewritten references, the lines are the same.
        const auto lines = Split(source, '\n');
        const auto resultLines = Split(result, '\n');
        ASSERT_EQ(lines.size(), resultLines.size());
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (lines[i] == resultLines[i]) continue;
            EXPECT_THAT(resultLines[i], testing::HasSubstr("media/"));
        }
    }
    EXPECT_TRUE(FileExists(*test.files, test.frame.settings.MediaFolder + "\\manual.css"));
    EXPECT_TRUE(FileExists(*test.files, test.frame.settings.MediaFolder + "\\feather.png"));
}

TEST_F(InsertTest, CopiesPagesToOtherFolders) {
    test.folder.Put("source\\a.gif", "GIF89a1");
    Page* target = test.Insert("target");
    Page* page = test.Insert("page", "<img src=a.gif><a href=\"index.htm#x\">x</a>");
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    ASSERT_TRUE(target->IsDefault);

    ASSERT_TRUE(CopyPage(test.context, page->Key()));
    Page* copy = PastePage(test.context, folder->Key(), &reason);
    ASSERT_TRUE(copy) << reason;
    EXPECT_EQ(copy->Name, "Copy of page");
    EXPECT_EQ(copy->Filename, test.frame.settings.PreviewFolder + "\\Docs\\page.htm");
    EXPECT_THAT(test.Text(copy->Filename),
                testing::HasSubstr("<img src=media/a.gif><a href=\"../index.htm#x\">"));
    EXPECT_TRUE(
        FileExists(*test.files, test.frame.settings.PreviewFolder + "\\Docs\\media\\a.gif"));
    EXPECT_TRUE(test.workspace.Find(copy->Key())) << "a pasted page is shown";

    const std::string file = copy->Filename;
    ASSERT_TRUE(CutPage(test.context, copy->Key()));
    EXPECT_EQ(folder->Pages().Count(), 0);
    Page* moved = PastePage(test.context, "W0001", &reason);
    ASSERT_TRUE(moved) << reason;
    EXPECT_EQ(moved->Name, "Copy of page") << "moving makes no copy of a copy";
    EXPECT_EQ(GetFileName(moved->Filename), "page_1.htm");
    EXPECT_THAT(test.Text(moved->Filename), testing::HasSubstr("<a href=\"index.htm#x\">"));
    EXPECT_FALSE(CopyPage(test.context, "W0001P0099"));
}

TEST_F(InsertTest, LetsLinksFollowAPageThatIsCutAndPasted) {
    Page* home = test.Insert("home");
    Page* page = test.Insert("page");
    Folder* folder = AddFolder(test.context, {}, {"Docs"});
    const std::string from = page->Filename;
    ASSERT_EQ(test.files->Write(home->Filename,
                                "<a href=page.htm?x#y>1</a><form action=/page.htm></form>"
                                "<a href=page.html>2</a>"),
              FileError::None);
    ASSERT_EQ(test.files->Write(page->Filename,
                                "<title>page</title><a href=\"page.htm#z\">1</a>"
                                "<a href=\"index.htm#z\">2</a><a href=gone.htm>3</a>"),
              FileError::None);

    ASSERT_TRUE(CutPage(test.context, page->Key()));
    Page* moved = PastePage(test.context, folder->Key(), &reason);
    ASSERT_TRUE(moved) << reason;
    EXPECT_EQ(reason, "");
    EXPECT_EQ(test.Text(home->Filename),
              "<a href=Docs/page.htm?x#y>1</a><form action=/Docs/page.htm></form>"
              "<a href=page.html>2</a>");
    EXPECT_EQ(test.workspace.Find(moved->Key())->Document().html(),
              "<title>page</title><a href=\"page.htm#z\">1</a>"
              "<a href=\"../index.htm#z\">2</a><a href=../gone.htm>3</a>");
    // Pasted once more it is a copy, and nothing follows.
    ASSERT_TRUE(PastePage(test.context, "W0001", &reason)) << reason;
    EXPECT_THAT(test.Text(home->Filename), testing::StartsWith("<a href=Docs/page.htm?x#y>"));
}

}  // namespace
}  // namespace pw
