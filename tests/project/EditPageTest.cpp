#include "project/EditPage.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "project/Links.h"
#include "project/MergeVariables.h"
#include "project/Pages.h"
#include "support/TestProject.h"

namespace pw {
namespace {

using testing::HasSubstr;

class EditPageTest : public testing::Test {
  protected:
    Page* InsertFrames(const std::string& inside, ShowInsertedPage show = ShowInsertedPage::No) {
        InsertPageRequest request;
        request.sourceFile = test.folder.Put("source\\frames.htm",
                                             "<html><head><title>f</title></head>\n<frameset "
                                             "cols=*><!-- a --><frame src=\"target.htm\">"
                                             "\n<noframes><body>" +
                                                 inside + "</body></noframes></frameset></html>");
        request.show = show;
        return InsertPage(test.context, request);
    }
    test::TestProject test;
};

TEST_F(EditPageTest, ReachesWhatAClosedFramePageShowsWithoutFrames) {
    test.Insert("home");
    Page* target = test.Insert("target");
    Page* frames =
        InsertFrames("<p><a href=\"target.htm\">x</a> " + VariableMarkup("Town", "Bern") + "</p>");
    ASSERT_EQ(frames->PageType, PageType::Frames);
    ASSERT_EQ(SetCustomVariable(test.context, "Town", "Basel"), "");
    EXPECT_TRUE(UpdateMergeVariablesInPages(test.context).notUpdated.empty());
    std::string reason;
    ASSERT_TRUE(RenamePage(test.context, *target, "goal.htm", &reason)) << reason;
    ASSERT_TRUE(InsertHTMLAtBottom(test.context, frames->Key(), "<p>more</p>"));
    EXPECT_EQ(
        test.Text(frames->Filename),
        "<html><head><title>f</title></head>\n<frameset cols=*><!-- a --><frame src=\"goal.htm\">"
        "\n<noframes><body><p><a href=\"goal.htm\">x</a> " +
            VariableMarkup("Town", "Basel") +
            "</p><p>more</p></body></noframes></frameset></html>");
}

TEST_F(EditPageTest, IsOneStepOrNoneAndAllOrNothing) {
    const auto mark = [](dom::Document& page) {
        page.setAttribute(*page.body(), "class", "x");
        page.setAttribute(*page.body(), "id", "y");
    };
    const auto fail = [&](dom::Document& page) {
        mark(page);
        throw std::runtime_error("it was refused");
    };
    for (const auto show : {ShowInsertedPage::Yes, ShowInsertedPage::No}) {
        const bool isOpen = show == ShowInsertedPage::Yes;
        SCOPED_TRACE(isOpen ? "open" : "closed");
        Page* page = test.Insert(isOpen ? "open" : "closed", "<p>a</p>", {}, show);
        dom::Document* document =
            isOpen ? test.workspace.Find(page->Key())->document.get() : nullptr;
        const auto text = [&] { return isOpen ? document->html() : test.Text(page->Filename); };
        const std::string before = text();
        page->IsDirty = false;

        const auto refused = EditPage(test.context, *page, PageStep::OfTheUser, fail);
        EXPECT_THAT(refused.problem(), HasSubstr("it was refused"));
        EXPECT_EQ(text(), before);
        EXPECT_FALSE(page->IsDirty);
        const auto nothing =
            EditPage(test.context, *page, PageStep::OfTheUser, [](dom::Document&) {});
        EXPECT_TRUE(nothing && !*nothing);
        EXPECT_FALSE(page->IsDirty);

        const auto done = EditPage(test.context, *page, PageStep::OfTheProject, mark);
        EXPECT_TRUE(done && *done);
        EXPECT_THAT(text(), HasSubstr("id=\"y\""));
        EXPECT_TRUE(page->IsDirty);
        if (!isOpen) continue;
        EXPECT_FALSE(document->canUndo()) << "it belongs to the project";
        const auto step = EditPage(test.context, *page, PageStep::OfTheUser,
                                   [](dom::Document& d) { d.setAttribute(*d.body(), "id", "z"); });
        EXPECT_TRUE(step && *step);
        EXPECT_TRUE(document->undo());
        EXPECT_THAT(text(), HasSubstr("id=\"y\""));
        EXPECT_FALSE(document->canUndo());
    }
}

}  // namespace
}  // namespace pw
