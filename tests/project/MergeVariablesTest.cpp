#include "project/MergeVariables.h"

#include "project/PageCleaning.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

void AddCustom(TestProject& test, const std::string& name, const std::string& value) {
    MergeVariable* variable = test.project.MergeVariables().Add();
    variable->Name = name;
    variable->Value = value;
}

TEST(MergeVariables, OfTheProjectStandBehindTheCustomOnes) {
    TestProject test;
    test.project.Name = "Shop";
    test.project.VersionMajor = 3;
    test.project.Created = MakeDate(2026, 1, 2, 3, 4, 5);
    test.frame.settings.ProjectFilename = "\\home\\ann\\shop.pwp";
    UpdateProjectMergeVariables(test.context);
    AddCustom(test, "Custom", "x");
    UpdateProjectMergeVariables(test.context);
    MergeVariables& variables = test.project.MergeVariables();
    ASSERT_EQ(variables.Count(), 27);
    EXPECT_EQ(variables.Item(1)->Name, "Custom");
    const struct {
        int index;
        const char* name;
        const char* value;
    } rows[] = {
        {2, "Project Name", "Shop"},         {7, "Project Version Number", "3.0.0"},
        {8, "Project Filename", "shop.pwp"}, {9, "Project Pages", "0"},
        {11, "Project Created", "20260102"}, {27, "WHP Web Address", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(variables.Item(row.index)->Name, row.name);
        EXPECT_EQ(variables.Item(row.index)->Value, row.value) << row.name;
        EXPECT_EQ(variables.Item(row.index)->Type, "S");
    }
    RemoveVariablesOfType(test.context, "S");
    EXPECT_EQ(variables.Count(), 1);
}

TEST(MergeVariables, AreBroughtUpToDateInAPage) {
    TestProject test;
    test.project.CompanyName = "Ann & <Co>";
    AddCustom(test, "Lines", "one\r\ntwo");
    AddCustom(test, "Same", "same");
    UpdateProjectMergeVariables(test.context);
    const struct {
        const char* name;
        bool buildMode;
        const char* before;
        const char* after;
    } rows[] = {
        {"another value", false, "<A type=omMerge name=\"Company Name\">x</A>",
         "<A type=omMerge name=\"Company Name\">Ann &amp; &lt;Co&gt;</A>"},
        {"other letters", false, "<a TYPE=OMMERGE name=\"company NAME\">x</a>",
         "<a TYPE=OMMERGE name=\"company NAME\">Ann &amp; &lt;Co&gt;</a>"},
        {"lines", false, "<a type=omMerge name=lines></a>",
         "<a type=omMerge name=lines>one<br>two</a>"},
        {"the same value", false, "<a type=omMerge name=Same><b>same</b></a>",
         "<a type=omMerge name=Same><b>same</b></a>"},
        {"an unknown one", false, "<a type=omMerge name=Gone>x</a>",
         "<a type=omMerge name=Gone>x</a>"},
        {"a link", false, "<a name=Same>x</a>", "<a name=Same>x</a>"},
        {"a custom one while building", true, "<a type=omMerge name=Same>x</a>", "same"},
        {"one that fits while building", true, "<a type=omMerge name=Same><b>same</b></a>",
         "<b>same</b>"},
        {"a standard one while building", true, "<a type=omMerge name=\"Company Name\">x</a>",
         "<a type=omMerge name=\"Company Name\">Ann &amp; &lt;Co&gt;</a>"},
    };
    for (const auto& row : rows) {
        test.project.BuildMode = row.buildMode;
        const auto page = [](const char* markup) {
            return "<html><body><p>" + std::string(markup) + "</p></body></html>";
        };
        const auto document = dom::Document::parseText(page(row.before));
        UpdateMergeVariablesOnThisPage(test.context, *document);
        EXPECT_EQ(document->html(), page(row.after)) << row.name;
        EXPECT_EQ(UpdateMergeVariablesOnThisPage(test.context, *document), 0) << row.name;
    }
}

TEST(MergeVariables, AreWrittenIntoTheClosedPagesThatShowThem) {
    TestProject test;
    test.project.CompanyName = "Ann";
    const std::string anchor = "<a type=omMerge name=\"Company Name\">x</a>";
    Page* plain = test.Insert("plain");
    Page* closed = test.Insert("closed", anchor);
    Page* open = test.Insert("open", anchor, {}, ShowInsertedPage::Yes);
    EXPECT_THAT(test.Text(closed->Filename), testing::HasSubstr(">Ann</a>"))
        << "an inserted page shows the values of its project";
    const auto written = [&](const Page* page) {
        return test.files->Stat(page->Filename).modified;
    };
    const auto plainTime = test.Age(plain->Filename);
    const auto closedTime = test.Age(closed->Filename);

    EXPECT_TRUE(UpdateMergeVariablesInClosedPages(test.context, PagesToUpdate::All).empty());
    EXPECT_EQ(written(closed), closedTime) << "nothing has changed";

    test.project.CompanyName = "Bob";
    UpdateProjectMergeVariables(test.context);
    EXPECT_TRUE(UpdateMergeVariablesInClosedPages(test.context, PagesToUpdate::ClosedOnly).empty());
    EXPECT_THAT(test.Text(closed->Filename), testing::HasSubstr(">Bob</a>"));
    EXPECT_THAT(test.Text(open->Filename), testing::HasSubstr(">Ann</a>"));
    EXPECT_EQ(written(plain), plainTime);
    UpdateMergeVariablesInOpenPages(test.context);
    EXPECT_THAT(test.workspace.Find(open->Key())->document->html(), testing::HasSubstr(">Bob</a>"));
}

TEST(MergeVariables, PagesThatShowThemAreNeitherParsedNorWrittenAnew) {
    TestProject test;
    test.project.BuildMode = false;
    AddCustom(test, "Lines", "one\r\ntwo & <3>");
    AddCustom(test,
              "Gr\xC3\xB6\xC3\x9F"
              "e",
              "gro\xC3\x9F");
    Page* page = test.Insert("page");
    const auto write = [&](const std::string& bytes) {
        EXPECT_EQ(test.files->Write(page->Filename, bytes), FileError::None);
        const auto before = test.Age(page->Filename);
        EXPECT_TRUE(UpdateMergeVariablesInClosedPages(test.context, PagesToUpdate::All).empty());
        return test.files->Stat(page->Filename).modified == before
                   ? "untouched"
                   : dom::decode(test.Text(page->Filename)).text;
    };
    const auto anchor = [](const std::string& name, const std::string& text) {
        return "<p><a type=omMerge name=" + name + ">" + text + "</a>";
    };
    const std::string shown = anchor("lines", "one<br>two &amp; &lt;3&gt;");
    EXPECT_EQ(write(shown), "untouched");
    EXPECT_EQ(write(anchor("lines", "one<BR>two &amp; &lt;3&gt;")), "untouched");
    EXPECT_EQ(write("<!-- " + anchor("lines", "x") + " -->" + shown), "untouched");
    EXPECT_EQ(write(anchor("lines", "one")), shown);
    // In other encodings, too.
    const std::string size = anchor(
        "Gr\xC3\xB6\xC3\x9F"
        "e",
        "x");
    for (const char* name : {"windows-1252", "utf-16le"}) {
        const dom::Encoding encoding{name, name == std::string("utf-16le")};
        EXPECT_THAT(write(dom::encode(size, encoding)), testing::HasSubstr(">gro\xC3\x9F</a>"));
    }
    EXPECT_EQ(write(anchor("lin&#101;s", "x")), anchor("lin&#101;s", "one<br>two &amp; &lt;3&gt;"));
    EXPECT_EQ(write("<p><a type=\"om&#77;erge\" name=Lines></a>"),
              "<p><a type=\"om&#77;erge\" name=Lines>one<br>two &amp; &lt;3&gt;</a>");
}

TEST(MergeVariables, OfPagesInOtherViewsAndOnFullDisks) {
    TestProject test;
    AddCustom(test, "Slogan", "new");
    const std::string anchor = "<a type=omMerge name=Slogan>old</a>";
    Page* open = test.Insert("open", "<p>x", {}, ShowInsertedPage::Yes);
    Page* broken = test.Insert("broken");
    auto& window = *test.workspace.Find(open->Key());
    ASSERT_TRUE(window.SetHTML(anchor));
    window.viewState = 2;
    ASSERT_EQ(test.files->RemoveFile(broken->Filename), FileError::None);
    ASSERT_EQ(test.files->MakeFolder(broken->Filename), FileError::None);
    test.dialogs.ExpectMessage(Answer::Ok, "could not be brought up to date on 'broken'.");
    UpdateMergeVariablesInAllPages(test.context, "Merge Variables");
    EXPECT_EQ(window.document->html(), "<a type=omMerge name=Slogan>new</a>");
    EXPECT_EQ(window.viewState, 2);
    EXPECT_TRUE(open->IsDirty);
    EXPECT_TRUE(window.document->undo());
    EXPECT_EQ(window.document->html(), anchor);
}

TEST(PageCleaning, GivesPicturesTheirVirtualPathsAndLinesTheirEnds) {
    TestProject test;
    Page* page = test.Insert("a");
    const std::string media = test.frame.settings.MediaFolder;
    const auto document = dom::Document::parseText("<body>\n<img src=\"" + media +
                                                   "\\a b.gif\">\r\n<img src='media/b c.gif'>\r");
    EXPECT_EQ(UpdateHTML(test.context, *document, page->Key()),
              "<body>\r\n<img src=\"media/a%20b.gif\">\r\n<img src='media/b c.gif'>\r\n");
    EXPECT_THAT(document->html(), testing::StartsWith("<body>\n<img src=\"media/a%20b.gif\">\r\n"))
        << "the file keeps its line ends";
}

}  // namespace
}  // namespace pw
