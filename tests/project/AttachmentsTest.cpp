#include "project/Attachments.h"

#include "support/TestProject.h"

namespace pw {
namespace {

using test::TestProject;

std::vector<std::string> Names(const Page& page) {
    std::vector<std::string> names;
    for (const Attachment& attachment : page.Attachments())
        names.push_back(GetFileName(attachment.Filename()));
    return names;
}

TEST(Attachments, FollowWhatThePageRefersTo) {
    TestProject test;
    Page* page = test.Insert("a");
    const std::string root = test.frame.settings.PreviewFolder;
    for (const char* name :
         {"body", "src", "dynsrc", "low", "table", "cell", "stale", "kept", "App.CLASS"})
        ASSERT_EQ(test.files->Write(root + "\\media\\" + name, "12345"), FileError::None);
    Attachments& list = page->Attachments();
    list.Add(root + "\\media\\stale");
    list.Add(root + "\\media\\App.CLASS");
    list.Add(root + "\\media\\kept")->State = AttachmentState::InUse;
    const auto document = dom::Document::parseText(
        "<body background=media/body><img src=media/src lowsrc=media/low><img src=media/src>"
        "<img dynsrc=media/dynsrc><img src=media/missing><img src=http://a.org/x>"
        "<table background=media/table><tr><td background=media/cell></table>"
        "<table background=media/low></table>");
    SaveAttachments(test.context, *document, root, *page);
    EXPECT_THAT(Names(*page), testing::UnorderedElementsAre("App.CLASS", "kept", "body", "src",
                                                            "dynsrc", "table", "cell"));
    for (const Attachment& attachment : list)
        EXPECT_EQ(attachment.State, AttachmentState::InUse);
    EXPECT_EQ(list.Find(root + "\\media\\src")->Size, 5);

    list.Clear();
    list.Add(root + "\\media\\stale");
    const auto frames = dom::Document::parseText(
        "<html><frameset background=media/body><frame src=a></frameset></html>");
    SaveAttachments(test.context, *frames, root, *page);
    EXPECT_EQ(list.Count(), 0);
}

TEST(Attachments, AreCopiedIntoTheProjectFirst) {
    TestProject test;
    Page* page = test.Insert("a");
    EXPECT_FALSE(AddSystemAttachment(test.context, test.folder.Path("no.gif"), *page));
    Attachment* added =
        AddSystemAttachment(test.context, test.folder.Put("out\\a b.gif", "1"), *page);
    ASSERT_TRUE(added);
    EXPECT_EQ(added->Filename(), test.frame.settings.MediaFolder + "\\a_b.gif");
    EXPECT_EQ(added->State, AttachmentState::InUse);
    added = AddSystemAttachment(test.context, test.folder.Put(".out\\.b.gif", "2"), *page);
    ASSERT_TRUE(added) << "who chooses a file means it";
    EXPECT_EQ(added->Filename(), test.frame.settings.MediaFolder + "\\_b.gif");

    EXPECT_TRUE(CopyAttachmentsTo(test.context, *page, test.folder.Path("copy")));
    EXPECT_EQ(test.folder.Get("copy\\media\\a_b.gif"), "1");
}

TEST(Attachments, ThatAreRemovedGoUnlessSomethingNeedsThem) {
    TestProject test;
    Page* page = test.Insert("a", "<img src=media/used.gif>");
    Page* other = test.Insert("b");
    const std::string media = test.frame.settings.MediaFolder;
    for (const char* name : {"gone.gif", "used.gif", "shared.gif"}) {
        ASSERT_EQ(test.files->Write(BuildPath(media, name), "x"), FileError::None);
        page->Attachments().Add(BuildPath(media, name));
    }
    other->Attachments().Add(BuildPath(media, "shared.gif"));
    while (page->Attachments().Count() > 0)
        EXPECT_TRUE(
            RemoveAttachment(test.context, *page, std::string(page->Attachments().Item(1)->Key())));
    EXPECT_FALSE(RemoveAttachment(test.context, *page, "A0001"));
    EXPECT_FALSE(FileExists(*test.files, media + "\\gone.gif"));
    EXPECT_TRUE(FileExists(*test.files, media + "\\used.gif"));
    EXPECT_TRUE(FileExists(*test.files, media + "\\shared.gif"));
}

TEST(Attachments, OfTheProjectGoByTheirState) {
    TestProject test;
    Attachments& list = test.project.Attachments();
    for (const char* name : {"a", "b", "c"})
        list.Add(test.frame.settings.PreviewFolder + "\\" + name);
    list.Item(2)->State = AttachmentState::InUse;
    RemoveProjectAttachmentsOfType(test.context, AttachmentState::Stale);
    ASSERT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Item(1)->State, AttachmentState::InUse);
}

}  // namespace
}  // namespace pw
