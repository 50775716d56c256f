#include "project/MergeVariables.h"

#include "platform/Text.h"
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
        EXPECT_EQ(UpdateMergeVariablesOnThisPage(test.context, *document).changed, 0) << row.name;
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

    EXPECT_TRUE(UpdateMergeVariablesInPages(test.context).notUpdated.empty());
    EXPECT_EQ(written(closed), closedTime) << "nothing has changed";

    test.project.CompanyName = "Bob";
    UpdateProjectMergeVariables(test.context);
    EXPECT_TRUE(UpdateMergeVariablesInPages(test.context).notUpdated.empty());
    EXPECT_THAT(test.Text(closed->Filename), testing::HasSubstr(">Bob</a>"));
    EXPECT_THAT(test.Text(open->Filename), testing::HasSubstr(">Ann</a>"));
    EXPECT_EQ(written(plain), plainTime);
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
        EXPECT_TRUE(UpdateMergeVariablesInPages(test.context).notUpdated.empty());
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
    EXPECT_FALSE(window.document->html() == anchor);
    while (window.document->undo()) {
    }
    EXPECT_THAT(window.document->html(), testing::Not(testing::HasSubstr("old")))
        << "an undo brings no former value back";
}

/** A variable whose value becomes another. */
struct Renewed {
    explicit Renewed(const char* before, const char* after) {
        EXPECT_EQ(SetCustomVariable(test.context, "V", before), "");
        EXPECT_EQ(SetCustomVariable(test.context, "V", after), "");
    }
    /** What an update makes of a paragraph; "[" and "]" stand for the variable's tags. */
    std::string Update(const std::string& paragraph, int left = 0) {
        const std::string start = "<a type=omMerge name=V>";
        const std::string body =
            "<body>" + ReplaceAll(ReplaceAll(paragraph, "[", start), "]", "</a>") + "</body>";
        const auto document = dom::Document::parseText(body);
        EXPECT_EQ(int(UpdateMergeVariablesOnThisPage(test.context, *document).left.size()), left)
            << paragraph;
        const std::string html = ReplaceAll(ReplaceAll(document->html(), start, "["), "</a>", "]");
        const std::string again = document->html();
        EXPECT_EQ(UpdateMergeVariablesOnThisPage(test.context, *document).changed, 0) << paragraph;
        EXPECT_EQ(document->html(), again);
        return html.substr(6, html.size() - 13);
    }
    TestProject test;
};

TEST(MergeVariables, WhatWasTypedIntoThemIsMovedOut) {
    const struct {
        const char* name;
        const char* before;
        const char* after;
    } rows[] = {
        {"the former value", "<p>[old]", "<p>[new]"},
        {"another text", "<p>[whatever]", "<p>[new]"},
        {"behind the former value", "<p>a[old and more]b", "<p>a[new] and moreb"},
        {"in front of it", "<p>a[the old]b", "<p>athe [new]b"},
        {"behind the present value", "<p>[new and more]", "<p>[new] and more"},
        {"in front of the present value", "<p>[the new]", "<p>the [new]"},
        {"with its markup", "<p>[old <b>and</b> <img src=x>more]",
         "<p>[new] <b>and</b> <img src=x>more"},
        {"in formatting", "<p>[<b>old and</b> more]", "<p>[new]<b> and</b> more"},
        {"lines", "<p>[old<br>more]", "<p>[new]<br>more"},
        {"references", "<p>[old &amp; more]", "<p>[new] &amp; more"},
        {"an empty anchor", "<p>a[]b", "<p>a[new]b"},
        {"letters that go on", "<p>[olden]", "<p>[new]en"},
    };
    Renewed renewed("old", "new");
    for (const auto& row : rows)
        EXPECT_EQ(renewed.Update(row.before), row.after) << row.name;
    // An anchor over paragraphs, or without an end, is another's mistake: it is left and named.
    EXPECT_EQ(renewed.Update("[old<p>more</p>]", 1), "[old<p>more</p>]");
    EXPECT_EQ(renewed.Update("<p>[old and all the rest</p>", 1), "<p>[old and all the rest</p>");
    EXPECT_EQ(renewed.Update("<div>[old</div><p>rest</p>", 2), "<div>[old</div><p>rest</p>");
    Renewed numbers("3", "1");
    EXPECT_EQ(numbers.Update("<p>[12]"), "<p>[1]") << "12 is no 1 that goes on";
    EXPECT_EQ(numbers.Update("<p>[3 pages]"), "<p>[1] pages");
    Renewed emptied("old", "");
    EXPECT_EQ(emptied.Update("<p>[old and more]"), "<p>[] and more");
}

TEST(MergeVariables, KnowTheValuesThatPagesStillShow) {
    Renewed renewed("old", "new");
    ReplaceVariablesOfType(renewed.test.context, "C", {{"W", "x"}, {"v", "newest"}});
    EXPECT_EQ(renewed.Update("<p>[old, new]"), "<p>[newest], new");
    EXPECT_EQ(renewed.Update("<p>[see new]"), "<p>see [newest]");
    renewed.test.project.Name = "Shop";
    UpdateProjectMergeVariables(renewed.test.context);
    renewed.test.project.Name = "Stall";
    UpdateProjectMergeVariables(renewed.test.context);
    const auto document =
        dom::Document::parseText("<a type=omMerge name='Project Name'>Shop &amp; Co.</a>");
    UpdateMergeVariablesOnThisPage(renewed.test.context, *document);
    EXPECT_EQ(document->html(), "<a type=omMerge name='Project Name'>Stall</a> &amp; Co.");
}

TEST(MergeVariables, ThatAreLeftAreNamed) {
    TestProject test;
    AddCustom(test, "Slogan", "new");
    test.Insert("page", "<a type=omMerge name=Slogan>old<p>text</p></a>");
    test.dialogs.ExpectMessage(Answer::Ok, "'Slogan' on page 'page'");
    UpdateMergeVariablesInAllPages(test.context, "Merge Variables");
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
