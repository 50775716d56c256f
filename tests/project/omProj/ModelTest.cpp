#include <map>

#include "project/omProj/Automation.h"
#include "project/omProj/Project.h"

namespace pw {
namespace {

class ObjectModel : public ::testing::Test {
  protected:
    std::unique_ptr<FileSystem> files = MakePosixFileSystem();
    Project project{*files};
    WebSite* site = project.WebSites().Add();
};

TEST_F(ObjectModel, FindsItemsByBlockKeyAndIndex) {
    Folder* folder = site->Sections().Add();
    Page* first = folder->Pages().Add();
    Page* second = folder->Pages().Add();
    Page* third = folder->Pages().Add();
    EXPECT_EQ(third->Key(), "W0001F0001P0003");
    EXPECT_EQ(third->ParentFolderKey(), "W0001F0001");
    folder->Pages().Remove("P0001");
    struct Row {
        const char* key;
        Page* expected;
    };
    for (const Row& row : {Row{"P0002", second}, Row{"W0001F0001P0003", third},
                           Row{"P0001", nullptr}, Row{"P0004", nullptr}, Row{"P9999", nullptr},
                           Row{"F0002", nullptr}, Row{"W0002F0001P0003", nullptr},
                           Row{"P00a2", nullptr}, Row{"0002", nullptr}, Row{"", nullptr}})
        EXPECT_EQ(folder->Pages().Item(row.key), row.expected) << row.key;
    EXPECT_EQ(folder->Pages().Item(1), second);
    EXPECT_EQ(folder->Pages().Item(0), nullptr);
    EXPECT_EQ(folder->Pages().Item(3), nullptr);
    EXPECT_EQ(project.FindPage("W0001F0001P0003"), third);
    EXPECT_EQ(project.FindFolder("W0001F0001"), folder);
    EXPECT_EQ(project.FindFolder("W0001"), nullptr);
    EXPECT_EQ(project.FindWebSite("W0001"), site);
    static_cast<void>(first);
}

TEST_F(ObjectModel, KeepsTheIndexOfPagesAsTheTreeChanges) {
    const auto keys = [&] {
        std::string all;
        for (const PageIndexEntry& entry : project.PageIndex())
            all += entry.Key() + " ";
        return all;
    };
    site->Pages().Add();
    Folder* folder = site->Sections().Add();
    folder->Pages().Add();
    folder->Sections().Add()->Pages().Add();
    site->Pages().Add();
    EXPECT_EQ(keys(), "W0001P0001 W0001F0001P0001 W0001F0001F0001P0001 W0001P0002 ");
    const std::unique_ptr<Folder> removed = site->Sections().Remove(1);
    EXPECT_EQ(keys(), "W0001P0001 W0001P0002 ");
    EXPECT_EQ(removed->Pages().Count(), 1) << "the caller still has what was removed";
    site->Pages().Remove(1);
    EXPECT_EQ(keys(), "W0001P0002 ");
    project.WebSites().Remove(1);
    EXPECT_EQ(project.PageCount(), 0);
}

TEST_F(ObjectModel, RefusesMoreThanFourDigitsCanCount) {
    for (int number = 1; number <= kMaximumItems; ++number)
        ASSERT_TRUE(site->Pages().Add());
    site->Pages().Remove(1);
    EXPECT_EQ(site->Pages().Add(), nullptr) << "a number is never given twice";
    EXPECT_EQ(project.LastResult(), ProjectResult::CollectionFull);
    EXPECT_NE(project.LastMessage().find("9,999"), std::string::npos);
    EXPECT_EQ(site->Pages().Item("P9999")->Key(), "W0001P9999");
    EXPECT_EQ(site->Pages().IndexOf("P9999"), kMaximumItems - 1);

    Sections* sections = &site->Sections();
    int depth = 0;
    for (Folder* folder = sections->Add(); folder; folder = sections->Add(), ++depth)
        sections = &folder->Sections();
    EXPECT_EQ(depth, kMaximumDepth);
    EXPECT_EQ(project.LastResult(), ProjectResult::TooDeep);
}

TEST_F(ObjectModel, AttachmentsAreASetByPath) {
    Attachments& attachments = site->Pages().Add()->Attachments();
    Attachment* a = attachments.Add("\\m\\a.gif");
    Attachment* b = attachments.Add("\\m\\b.gif");
    EXPECT_EQ(attachments.Add("\\m\\a.gif"), a);
    EXPECT_EQ(attachments.Count(), 2);
    EXPECT_FALSE(b->SetFilename("\\m\\a.gif"));
    EXPECT_TRUE(b->SetFilename("\\m\\c.gif"));
    EXPECT_EQ(attachments.Find("\\m\\b.gif"), nullptr);
    EXPECT_EQ(attachments.Find("\\m\\c.gif"), b);
    EXPECT_EQ(b->Key(), "W0001P0001A0002");
    attachments.Remove("A0001");
    EXPECT_EQ(attachments.Add("\\m\\a.gif")->Id(), 3);
}

TEST_F(ObjectModel, InitialisesOnlyWithTheProgramItWasBuiltFor) {
    EXPECT_EQ(project.Initialize("BQMAZXLKVD", 2, 0), 0);
    EXPECT_GE(project.Initialize("BQMAZXLKVX", 2, 0), 1);
    EXPECT_GE(project.Initialize("BQMAZXLKVD", 1, 9), 1);
}

TEST_F(ObjectModel, NotesEachAddInOnce) {
    EXPECT_TRUE(project.RegisterAddIn("{1}", "Map", "Acme", "1.0", "Ann", "a@x", 3, true));
    EXPECT_TRUE(project.RegisterAddIn("{1}", "Map", "Acme", "1.1", "Ann", "a@x", 3, true));
    ASSERT_EQ(project.AddIns().Count(), 1);
    EXPECT_EQ(project.AddIns().Item(1)->Version, "1.1");
}

TEST_F(ObjectModel, FillsTheExplorer) {
    struct Nodes : ExplorerNodes {
        std::string text;
        void Clear() override { text.clear(); }
        void Add(const std::string& parent, const std::string& key, const std::string& caption,
                 const std::string& tag, ExplorerImage image, bool expanded) override {
            text += parent + ">" + key + " " + caption + " [" + tag + "] " +
                    std::to_string(static_cast<int>(image)) + (expanded ? "+" : "") + "\n";
        }
    } nodes;
    project.Name = "Shop";
    site->Name = "Web Site";
    site->Expanded = true;
    Folder* folder = site->Sections().Add();
    folder->Name = "News";
    folder->Pages().Add()->Name = "Today";
    Page* page = site->Pages().Add();
    page->Name = "Home";
    page->Filename = "\\s\\index.htm";
    page->IsDefault = true;
    project.FillExplorer(nodes);
    EXPECT_EQ(nodes.text,
              ">R Shop [] 0+\n"
              "R>W0001 Web Site [] 1+\n"
              "W0001>W0001P0001 Home [\\s\\index.htm] 4\n"
              "W0001>W0001F0001 News [] 2\n"
              "W0001F0001>W0001F0001P0001 Today [] 3\n");
}

TEST_F(ObjectModel, AnswersCallsByName) {
    const AutomationObject whole = &project;
    const AutomationObject sites = std::get<AutomationObject>(CallMember(whole, "websites").value);
    const AutomationObject first =
        std::get<AutomationObject>(CallMember(sites, "Item", {std::string("W0001")}).value);
    ASSERT_EQ(std::get<WebSite*>(first), site);
    const AutomationObject folder =
        std::get<AutomationObject>(CallMember(first, "AddSection").value);
    EXPECT_TRUE(LetMember(folder, "Name", std::string("News")));
    EXPECT_TRUE(LetMember(folder, "Expanded", true));
    EXPECT_FALSE(LetMember(folder, "Expanded", std::string("yes")));
    EXPECT_EQ(site->Sections().Item(1)->Name, "News");
    EXPECT_EQ(CallMember(folder, "Id").value, AutomationValue(std::int64_t{1}));
    const AutomationObject pages = std::get<AutomationObject>(CallMember(folder, "Pages").value);
    Page* page = site->Sections().Item(1)->Pages().Add();
    EXPECT_EQ(CallMember(pages, "Count").value, AutomationValue(std::int64_t{1}));
    const AutomationObject held = page;
    EXPECT_TRUE(LetMember(held, "Filename", std::string("\\a.htm")));
    page->MetaTags().Add()->Name = "Author";
    EXPECT_TRUE(CallMember(held, "RemoveMetaTag", {std::string("author")}).worked);
    EXPECT_FALSE(CallMember(held, "RemoveMetaTag", {std::string("author")}).worked);
    const AutomationObject file = page->Attachments().Add("\\m\\a.gif");
    EXPECT_TRUE(LetMember(file, "Filename", std::string("\\m\\b.gif")));
    EXPECT_EQ(CallMember(file, "Filename").value, AutomationValue(std::string("\\m\\b.gif")));
    EXPECT_TRUE(CallMember(pages, "Remove", {std::int64_t{1}}).worked);
    EXPECT_FALSE(CallMember(pages, "Item", {std::int64_t{1}}).worked);

    EXPECT_TRUE(HasMember(folder, "WorkingFolder"));
    EXPECT_FALSE(HasMember(first, "WorkingFolder")) << "a site has none";
    EXPECT_FALSE(HasMember(folder, "Nonsense"));
    EXPECT_FALSE(HasMember(AutomationObject{}, "Name"));
    EXPECT_FALSE(CallMember(AutomationObject{}, "Name").worked);
}

}  // namespace
}  // namespace pw
