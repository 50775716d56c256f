#include "frame/SaveQuestion.h"

#include "support/TestContext.h"

namespace pw {
namespace {

const FileQuestion kProject{"Save Project As", "Projects (*.pwp)|*.pwp", "", "pwp"};
const FileQuestion kPage{"Save Page As", "HTML (*.htm;*.html)|*.htm;*.html", "", "htm", "php"};

TEST(SaveQuestion, TheNameIsTheOneThatIsWritten) {
    struct Row {
        const FileQuestion& question;
        const char* typed;
        const char* written;
    };
    const Row rows[] = {
        {kProject, "\\h\\shop", "\\h\\shop.pwp"},
        {kProject, "\\h\\example.com", "\\h\\example.com.pwp"},
        {kProject, "\\h\\Site 2.0", "\\h\\Site 2.0.pwp"},
        {kProject, "\\h\\Shop.PWP", "\\h\\Shop.PWP"},
        {kProject, "\\h\\shop.", "\\h\\shop.pwp"},
        {kProject, "\\www.dir\\shop", "\\www.dir\\shop.pwp"},
        {kPage, "\\h\\a.html", "\\h\\a.html"},
        {kPage, "\\h\\a.php", "\\h\\a.php"},
        {kPage, "\\h\\version 2.1", "\\h\\version 2.1.htm"},
        {{"", "All Files (*.*)|*.*", "", ""}, "\\h\\a.b", "\\h\\a.b"},
        {kProject, "", ""},
    };
    for (const Row& row : rows)
        EXPECT_EQ(NameToSave(row.question, row.typed), row.written) << row.typed;
}

TEST(SaveQuestion, AsksAboutTheFileThatIsThere) {
    test::TestContext test;
    const std::string taken = test.folder.Put("example.com.pwp", "another project");
    const std::string typed = test.folder.Path("example.com");
    test.dialogs.ExpectFile(typed);
    test.dialogs.ExpectMessage(Answer::No, "example.com.pwp");
    test.dialogs.ExpectFile(test.folder.Path("fresh.com"));
    EXPECT_EQ(AskSaveFile(test.frame, kProject), test.folder.Path("fresh.com.pwp"));
    EXPECT_EQ(test.dialogs.FileQuestions().back().initialPath, taken) << "asked again";
    EXPECT_EQ(test.dialogs.Messages().back().byDefault, Answer::No);
    test.dialogs.ExpectFile(typed);
    test.dialogs.ExpectMessage(Answer::Yes);
    EXPECT_EQ(AskSaveFile(test.frame, kProject), taken);
    test.dialogs.ExpectFile(typed);
    test.dialogs.ExpectMessage(Answer::No);
    test.dialogs.ExpectFile("");
    EXPECT_EQ(AskSaveFile(test.frame, kProject), "");
}

}  // namespace
}  // namespace pw
