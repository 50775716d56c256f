#include "editing/frmVariables.h"

#include "platform/Text.h"
#include "project/MergeVariables.h"
#include "project/frmNameValue.h"
#include "project/frmProject.h"
#include "support/TestProject.h"

namespace pw {
namespace {

constexpr std::size_t kInsert = 0;
constexpr std::size_t kAdd = 1;
constexpr std::size_t kModify = 2;
constexpr std::size_t kRemove = 3;
constexpr int kCustomTab = 1;

struct VariablesTest : testing::Test, test::TestProject {
    VariablesTest() { project.CompanyName = "Acme"; }

    void Show(const std::function<void(frmVariables&)>& act) {
        frmVariables dialog(context);
        dialogs.ExpectDialog("frmVariables",
                             [&](Dialog& shown) { act(static_cast<frmVariables&>(shown)); });
        dialogs.ShowModal(dialog);
    }
    /** The next prompt gets this entry; it must be taken. */
    void ExpectEntry(const std::string& title, const NameValue& before, const NameValue& entry) {
        dialogs.ExpectDialog("frmNameValue", [=](Dialog& shown) {
            auto& prompt = static_cast<frmNameValue&>(shown);
            EXPECT_EQ(prompt.Title(), title);
            EXPECT_EQ(prompt.txtName.Text(), before.name);
            EXPECT_EQ(prompt.txtValue.Text(), before.value);
            prompt.txtName.UserSetText(entry.name);
            prompt.txtValue.UserSetText(entry.value);
            prompt.cmdOK.UserClick();
            EXPECT_FALSE(prompt.IsOpen());
        });
    }
    std::string Customs() {
        std::string all;
        for (const MergeVariable& variable : project.MergeVariables())
            if (variable.Type == "C") all += variable.Name + "=" + variable.Value + ";";
        return all;
    }
    static std::string Enabled(const frmVariables& dialog) {
        std::string enabled;
        for (std::size_t i = 0; i < 4; ++i)
            enabled += dialog.cmdVariable[i].Enabled() ? "IAMR"[i] : '-';
        return enabled;
    }
};

TEST_F(VariablesTest, ButtonsFollowTheListAndThePage) {
    ASSERT_EQ(SetCustomVariable(context, "Slogan", "old"), "");
    Show([&](frmVariables& dialog) {
        EXPECT_EQ(dialog.lvwStandard.Count(), 26);
        EXPECT_EQ(dialog.lvwStandard.Row(13).cells,
                  (std::vector<std::string>{"Company Name", "Acme"}));
        EXPECT_EQ(Enabled(dialog), "--M-") << "standard ones are changed in the properties";
        dialog.lvwStandard.UserSelect(13);
        EXPECT_EQ(Enabled(dialog), "--M-") << "without a page nothing can be inserted";
        dialog.tabVariables.UserSelect(kCustomTab);
        EXPECT_EQ(Enabled(dialog), "-A--");
        dialog.lvwCustom.UserSelect(0);
        EXPECT_EQ(Enabled(dialog), "-AMR");
        dialog.cmdProcess.UserClick();
        EXPECT_FALSE(dialog.IsOpen());
    });
    Insert("page", "<p>text</p>", {}, ShowInsertedPage::Yes);
    Show([&](frmVariables& dialog) {
        dialog.Select("company name");
        EXPECT_EQ(Enabled(dialog), "I-M-");
        dialog.Select("slogan");
        EXPECT_EQ(dialog.tabVariables.Selected(), kCustomTab);
        EXPECT_EQ(Enabled(dialog), "IAMR");
    });
}

TEST_F(VariablesTest, InsertsAtTheCaret) {
    ASSERT_EQ(SetCustomVariable(context, "R&D", "a < b"), "");
    ASSERT_EQ(SetCustomVariable(context, "Empty", ""), "");
    Page* page = Insert("page", "<p id=p>text</p>", {}, ShowInsertedPage::Yes);
    dom::Document& document = *workspace.Find(page->Key())->document;
    document.collapse({document.elementById("p")->firstChild(), 2});
    Show([&](frmVariables& dialog) {
        dialog.Select("Empty");
        dialog.cmdVariable[kInsert].UserClick();
        dialog.Select("R&D");
        dialog.lvwCustom.DblClick();
        dialog.cmdProcess.UserClick();
    });
    EXPECT_EQ(document.innerHTML(*document.body()),
              "<p id=p>te<A type=omMerge name=\"R&amp;D\">a &lt; b</A>xt</p>");
    EXPECT_EQ(UpdateMergeVariablesOnThisPage(context, document).changed, 0);

    // Not into a link or another variable, which would swallow it with its next value.
    for (const char* holder : {"<a href=x>link</a>", "<a type=omMerge name=Year>2026</a>"}) {
        document.setInnerHTML(*document.body(), std::string("<p>") + holder + "</p>");
        dom::Node* text = document.body()->firstChild()->firstChild()->firstChild();
        document.collapse({text, text->data().size()});
        Show([&](frmVariables& dialog) {
            dialog.Select("R&D");
            for (int i = 0; i < 2; ++i)
                dialog.cmdVariable[kInsert].UserClick();
        });
        const std::string inserted = "<A type=omMerge name=\"R&amp;D\">a &lt; b</A>";
        EXPECT_EQ(document.innerHTML(*document.body()),
                  std::string("<p>") + holder + inserted + inserted + "</p>");
    }
}

TEST_F(VariablesTest, TakeThePlaceOfSelectedTextInALink) {
    ASSERT_EQ(SetCustomVariable(context, "V", "v"), "");
    Page* page = Insert("page", "<p>text</p>", {}, ShowInsertedPage::Yes);
    dom::Document& document = *workspace.Find(page->Key())->document;
    const struct {
        std::size_t from;
        std::size_t to;
        const char* after;
    } rows[] = {
        {0, 4, "<p>a[]<a href=x>link</a>b</p>"},
        {4, 8, "<p>a<a href=x>text</a>[]b</p>"},
        {2, 6, "<p>a<a href=x>te</a>[]<a href=x>nk</a>b</p>"},
        {0, 8, "<p>a[]b</p>"},
    };
    for (const auto& row : rows) {
        document.setInnerHTML(*document.body(), "<p>a<a href=x>textlink</a>b</p>");
        const std::string before = document.html();
        dom::Node* text = document.tags("a").at(0)->firstChild();
        document.setSelection(
            {dom::SelectionType::Text, {text, row.from}, {text, row.to}, nullptr});
        Show([&](frmVariables& dialog) {
            dialog.Select("V");
            dialog.cmdVariable[kInsert].UserClick();
        });
        const std::string after =
            ReplaceAll(document.innerHTML(*document.body()), "href=\"x\"", "href=x");
        EXPECT_EQ(after, ReplaceAll(row.after, "[]", "<A type=omMerge name=\"V\">v</A>"));
        EXPECT_TRUE(document.undo());
        EXPECT_EQ(document.html(), before) << "one step";
    }
}

TEST_F(VariablesTest, CustomOnesAreWrittenOnClose) {
    ASSERT_EQ(SetCustomVariable(context, "Slogan", "old"), "");
    ASSERT_EQ(SetCustomVariable(context, "Gone", "text"), "");
    const auto anchor = [](const std::string& name, const std::string& value) {
        return "<a type=omMerge name=" + name + ">" + value + "</a>";
    };
    Page* closed = Insert("closed", anchor("Slogan", "old") + anchor("Gone", "text"));
    Page* plain = Insert("plain", anchor("Gone", "text"));
    Page* open = Insert("open", anchor("Slogan", "old"), {}, ShowInsertedPage::Yes);
    const auto before = Age(plain->Filename);
    project.IsDirty = false;

    dialogs.ExpectMessage(Answer::No, "remove custom merge variable 'Gone'?");
    dialogs.ExpectMessage(Answer::Yes, "remove custom merge variable 'Gone'?");
    Show([&](frmVariables& dialog) {
        dialog.tabVariables.UserSelect(kCustomTab);
        ExpectEntry("Add Variable", {}, {" New one ", " x "});
        dialog.cmdVariable[kAdd].UserClick();
        EXPECT_EQ(dialog.lvwCustom.Selected(), 2);
        dialog.lvwCustom.UserSelect(0);
        ExpectEntry("Modify Variable", {"Slogan", "old"}, {"SLOGAN", "new"});
        dialog.cmdVariable[kModify].UserClick();
        dialog.lvwCustom.UserSelect(1);
        dialog.cmdVariable[kRemove].UserClick();
        EXPECT_EQ(dialog.lvwCustom.Count(), 3);
        dialog.cmdVariable[kRemove].UserClick();
        EXPECT_EQ(Customs(), "Slogan=old;Gone=text;") << "nothing is written before Close";
        dialog.cmdProcess.UserClick();
    });
    EXPECT_EQ(Customs(), "SLOGAN=new;New one=x;");
    EXPECT_TRUE(project.IsDirty);
    EXPECT_THAT(Text(closed->Filename),
                testing::HasSubstr(anchor("Slogan", "new") + anchor("Gone", "text")))
        << "what is removed stays in the pages as text";
    EXPECT_EQ(files->Stat(plain->Filename).modified, before);
    auto& window = *workspace.Find(open->Key());
    EXPECT_THAT(window.document->html(), testing::HasSubstr(anchor("Slogan", "new")));
    EXPECT_TRUE(window.IsDirty());
    EXPECT_THAT(Text(open->Filename), testing::HasSubstr(anchor("Slogan", "old")));
}

TEST_F(VariablesTest, RefusesNamesAndMoreThanAHundred) {
    for (int i = 1; i < kMostCustomVariables; ++i)
        ASSERT_EQ(SetCustomVariable(context, "v" + std::to_string(i), ""), "");
    const struct {
        const char* name;
        const char* says;
    } rows[] = {{"V7", "A variable with this name already exists. Please use a different name."},
                {"company name", "already exists"},
                {"a\"b", "Invalid name."},
                {"a<b", "Invalid name."}};
    Show([&](frmVariables& dialog) {
        dialog.tabVariables.UserSelect(kCustomTab);
        dialogs.ExpectDialog("frmNameValue", [&](Dialog& shown) {
            auto& prompt = static_cast<frmNameValue&>(shown);
            prompt.txtName.UserSetText("  ");
            EXPECT_FALSE(prompt.cmdOK.Enabled());
            for (const auto& row : rows) {
                dialogs.ExpectMessage(Answer::Ok, row.says);
                prompt.txtName.UserSetText(row.name);
                prompt.cmdOK.UserClick();
                EXPECT_TRUE(prompt.IsOpen()) << row.name;
            }
            prompt.txtName.UserSetText("v100");
            prompt.cmdOK.UserClick();
        });
        dialog.cmdVariable[kAdd].UserClick();
        EXPECT_EQ(dialog.lvwCustom.Count(), kMostCustomVariables);
        EXPECT_FALSE(dialog.cmdVariable[kAdd].Enabled());
        // A variable may keep its own name.
        ExpectEntry("Modify Variable", {"v100", ""}, {"V100", "x"});
        dialog.cmdVariable[kModify].UserClick();
        EXPECT_TRUE(dialog.Form_QueryUnload()) << "the frame's button is Close, too";
    });
    EXPECT_THAT(Customs(), testing::EndsWith("V100=x;"));
    EXPECT_THAT(SetCustomVariable(context, "one more", ""), testing::HasSubstr("at most 100"));
}

TEST_F(VariablesTest, StandardOnesAreChangedInTheProperties) {
    Page* page = Insert("page", "<a type=omMerge name='Company Name'>Acme</a>");
    Show([&](frmVariables& dialog) {
        dialogs.ExpectDialog("frmProject", [&](Dialog& shown) {
            auto& properties = static_cast<frmProject&>(shown);
            properties.txtCompanyName.UserSetText("Best & Co");
            properties.cmdOK.UserClick();
        });
        dialog.cmdVariable[kModify].UserClick();
        EXPECT_EQ(dialog.lvwStandard.Row(13).cells[1], "Best & Co");
        dialog.cmdProcess.UserClick();
    });
    EXPECT_THAT(Text(page->Filename), testing::HasSubstr(">Best &amp; Co</a>"));
    EXPECT_EQ(workspace.Count("RefillProjectExplorer"), 1);
}

}  // namespace
}  // namespace pw
