#include "project/SavePage.h"

#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(SavePageAs, WritesThePageAndItsMedia) {
    TestProject test;
    EXPECT_FALSE(SavePageAs(test.context)) << "no page is open";
    test.folder.Put("source\\a.gif", "GIF89a");
    Page* page = test.Insert("one", "<img src=a.gif>", {}, ShowInsertedPage::Yes);
    auto& document = *test.workspace.Find(page->Key())->document;
    document.insertAdjacentHTML(*document.body(), "beforeEnd", "<p>typed</p>");
    test.frame.settings.HTMLPageFolder = test.folder.Path("pages");
    test.folder.Put("out\\keep.txt", "");

    test.dialogs.ExpectFile("");
    EXPECT_FALSE(SavePageAs(test.context));
    EXPECT_EQ(test.dialogs.FileQuestions().back().initialPath,
              test.folder.Path("pages\\") + GetFileName(page->Filename));
    test.dialogs.ExpectFile(test.folder.Path("out\\copy.htm"));
    EXPECT_TRUE(SavePageAs(test.context));
    EXPECT_NE(test.folder.Get("out\\copy.htm").find("<p>typed</p>"), std::string::npos);
    EXPECT_EQ(test.folder.Get("out\\media\\a.gif"), "GIF89a");

    // A name that a page can have too.
    const std::string project = test.SaveAs("one.htm");
    const std::string bytes = test.folder.Get("one.htm");
    for (const std::string& wrong : {project, test.frame.settings.PreviewFolder + "\\x.htm",
                                     test.folder.Path("out\\keep.txt\\x.htm")}) {
        test.dialogs.ExpectFile(wrong);
        if (wrong == project) test.dialogs.ExpectMessage(Answer::Yes, "already exists");
        test.dialogs.ExpectMessage(Answer::Ok, "can not be saved.");
        EXPECT_FALSE(SavePageAs(test.context)) << wrong;
    }
    EXPECT_EQ(test.folder.Get("one.htm"), bytes);
}

TEST(WriteDOMToFile, WritesTheWholeDocument) {
    TestProject test;
    const std::string bytes = "<!DOCTYPE html>\r\n<HTML><body  class=x>t</body></HTML>\n<!-- e -->";
    const auto document = dom::Document::parse(bytes);
    const std::string path = test.folder.Put("page.htm", "former");
    EXPECT_FALSE(WriteDOMToFile(test.frame, nullptr, path));
    EXPECT_FALSE(WriteDOMToFile(test.frame, document.get(), ""));
    EXPECT_FALSE(WriteDOMToFile(test.frame, document.get(), path + "\\x"));
    EXPECT_EQ(test.Text(path), "former");
    EXPECT_TRUE(WriteDOMToFile(test.frame, document.get(), path));
    EXPECT_EQ(test.Text(path), bytes);
}

}  // namespace
}  // namespace pw
