#include "platform/controls/Dialog.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

TEST(AskToSave, AsksOnlyWhenThereIsSomethingToLose) {
    struct Row {
        const char* name;
        bool loaded, named, page, dirty, asked;
    };
    for (const Row& row : {Row{"all of it", true, true, true, true, true},
                           Row{"not loaded", false, true, true, true, false},
                           Row{"no name", true, false, true, true, false},
                           Row{"no page", true, true, false, true, false},
                           Row{"nothing changed", true, true, true, false, false}}) {
        SCOPED_TRACE(row.name);
        TestProject test;
        if (row.page) test.Insert("one");
        test.project.IsLoaded = row.loaded;
        test.project.IsDirty = row.dirty;
        if (!row.named) test.project.Name.clear();
        if (row.asked) test.dialogs.ExpectMessage(Answer::No, "question");
        EXPECT_EQ(AskToSave(test.context, "the question", "title"),
                  row.asked ? SaveAnswer::No : SaveAnswer::NotAsked);
    }
    // What was typed but not yet taken over counts too.
    TestProject test;
    Page* page = test.Insert("one", "x", {}, ShowInsertedPage::Yes);
    test.project.IsDirty = false;
    auto& document = *test.workspace.Find(page->Key())->document;
    document.setInnerHTML(*document.body(), "y");
    test.dialogs.ExpectMessage(Answer::Cancel);
    EXPECT_EQ(AskToSave(test.context, "the question", "title"), SaveAnswer::Cancel);
}

TEST(MayGiveUpProject, FollowsTheAnswer) {
    struct Row {
        const char* name;
        GivingUp why;
        Answer answer;
        const char* file;  ///< chosen in the save dialog; none: it is not shown
        bool goesOn;
        const char* question;
    };
    for (const Row& row :
         {Row{"no", GivingUp::ForNewProject, Answer::No, nullptr, true,
              "Any changes made to this project will be lost by creating a new project.\n\nDo you "
              "want to save project 'Shop'?"},
          Row{"cancel", GivingUp::ForOpening, Answer::Cancel, nullptr, false,
              "lost by opening a project."},
          Row{"yes", GivingUp::ForExit, Answer::Yes, "shop.pwp", true, "lost by exiting."},
          Row{"yes, and no file name", GivingUp::ForExit, Answer::Yes, "", false, "exiting"}}) {
        SCOPED_TRACE(row.name);
        TestProject test;
        test.Insert("one");
        test.project.Name = "Shop";
        test.dialogs.ExpectMessage(row.answer, row.question);
        if (row.file) test.dialogs.ExpectFile(*row.file ? test.folder.Path(row.file) : "");
        EXPECT_EQ(MayGiveUpProject(test.context, row.why, "E&xit..."), row.goesOn);
        EXPECT_EQ(test.dialogs.Messages().front().title, "Exit");
        EXPECT_EQ(test.folder.Has("shop.pwp"), row.file && *row.file);
    }
    // A save that fails is no way to lose the project.
    TestProject test;
    test.Insert("one");
    test.folder.Put("file", "");
    test.frame.settings.ProjectFilename = test.folder.Path("file\\x.pwp");
    test.dialogs.ExpectMessage(Answer::Yes, "lost by exiting");
    test.dialogs.ExpectMessage(Answer::Ok, "can not be saved");
    EXPECT_FALSE(MayGiveUpProject(test.context, GivingUp::ForExit, "E&xit"));
}

TEST(MayGiveUpProject, StaysWhileTheProjectIsBusy) {
    TestProject test;
    test.Insert("one");
    test.SaveAs("one.pwp");
    test.project.IsDirty = true;
    bool asked = false;
    class Watching : public test::TestWorkspace {
      public:
        using TestWorkspace::TestWorkspace;
        void SetProgress(int) override { onProgress(); }
        std::function<void()> onProgress;
    } workspace(*test.files);
    ProjectContext context{test.frame, test.project, workspace};
    workspace.onProgress = [&] {
        asked = true;
        EXPECT_FALSE(MayGiveUpProject(context, GivingUp::ForExit, "E&xit"));
    };
    test.project.ProjectProgressChanged = [&](int value) { workspace.SetProgress(value); };
    EXPECT_TRUE(SaveProject(test.context, Proceed::Save, Silent::Yes));
    EXPECT_TRUE(asked);
}

TEST(AutoSave, SavesWhenAllConditionsHold) {
    struct Row {
        const char* name;
        const char* tag;
        int frequency;
        bool dirty, minimised, runOnce, saves;
        const char* after;
    };
    for (const Row& row : {Row{"every minute", "0", 1, true, false, false, true, "0"},
                           Row{"the count is up", "9", 10, true, false, false, true, "0"},
                           Row{"the count stands still", "8", 10, true, false, false, false, "8"},
                           Row{"also in a first run", "8", 10, true, false, true, false, "8"},
                           Row{"nothing changed", "0", 1, false, false, false, false, "0"},
                           Row{"minimised", "0", 1, true, true, false, false, "0"}}) {
        SCOPED_TRACE(row.name);
        TestProject test;
        test.Insert("one");
        const std::string path = test.SaveAs("one.pwp");
        const FileInfo before = test.files->Stat(path);
        test.project.Description = "changed";
        test.project.IsDirty = row.dirty;
        test.frame.settings.AutoSaveFrequency = row.frequency;
        test.frame.settings.RunOnce = row.runOnce;
        std::string tag = row.tag;
        AutoSaveTick(test.context, tag, row.minimised);
        EXPECT_EQ(tag, row.after);
        EXPECT_EQ(test.files->Stat(path).modified != before.modified, row.saves);
    }
}

TEST(AutoSave, AsksForTheNameOfANewProjectButNotOverADialog) {
    TestProject test;
    test.Insert("one");
    test.frame.settings.AutoSaveFrequency = 1;
    std::string tag = "0";
    Dialog dialog("frmSome", "Some");
    test.dialogs.ExpectDialog("frmSome", [&](Dialog&) { AutoSaveTick(test.context, tag, false); });
    test.dialogs.ShowModal(dialog);
    EXPECT_EQ(test.dialogs.FileQuestions().size(), 0u);
    test.dialogs.ExpectFile("");
    AutoSaveTick(test.context, tag, false);
    EXPECT_EQ(test.dialogs.FileQuestions().size(), 1u);
}

}  // namespace
}  // namespace pw
