// The whole job of the program on a real site: make a project, take the site in, edit a page with
// the keyboard, keep it, and publish it.
#include <gtest/gtest.h>

#include "gui/EditorFixture.h"
#include "gui/ShownProgram.h"
#include "mainwindow/Explorers.h"
#include "platform/Text.h"
#include "platform/dom/TextRange.h"
#include "project/AddFiles.h"
#include "project/InsertPage.h"
#include "project/MergeVariables.h"
#include "project/Pages.h"
#include "support/LinkCheck.h"
#include "support/MarkupSelection.h"

namespace pw {
namespace {

namespace fs = std::filesystem;

const fs::path kManual = "/usr/share/doc/apache2-doc/manual/en";

constexpr int kNewProject = 3;
constexpr int kOpen = 6;
constexpr int kSave = 7;
constexpr int kPublish = 17;
constexpr int kCloseAll = 904;

/** Every file of a site, by its path in it; the program's own files beside them do not count. */
std::map<std::string, std::string> FilesBelow(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && !entry.path().filename().string().starts_with("~pw"))
            files[fs::relative(entry.path(), folder).string()] = test::ReadNative(entry.path());
    return files;
}

/** The page with the values of its references taken out: what adding a page must leave alone. */
std::string WithoutReferences(const std::string& page) {
    std::string rest;
    std::size_t from = 0;
    while (from < page.size()) {
        std::size_t at = page.size();
        for (const char* name : {" href=\"", " src=\""})
            at = std::min(at, std::min(page.find(name, from), page.size()));
        const std::size_t value = at == page.size() ? at : page.find('"', at) + 1;
        rest.append(page, from, value - from);
        from = std::min(page.find('"', value), page.size());
    }
    return rest;
}

struct WholeJobTest : testing::Test {
    test::TestContext outer;
    test::ShownProgram shown{outer};
    fs::path Scratch() { return ToNativePath(shown.program->Frame().settings.PreviewFolder); }
    Page* PageOf(const std::string& file) {
        for (const PageIndexEntry& entry : shown.program->TheProject().PageIndex())
            if (GetFileName(entry.Item->Filename) == file) return entry.Item;
        return nullptr;
    }
    /** Waits until the page in front has these bytes. */
    void ExpectPage(const std::string& bytes, const char* when) {
        const auto now = [&] {
            shown.Page().WaitUntilReady();
            return shown.Page().Document().bytes();
        };
        EXPECT_TRUE(QTest::qWaitFor([&] { return now() == bytes; }, 5000)) << when;
    }
    /** Puts the caret behind the page's heading, as a press of the mouse would. */
    void CaretBehindHeading() {
        dom::Document& document = shown.Page().Document();
        dom::Node* text = document.tags("h1").at(0)->firstChild();
        ASSERT_TRUE(text && text->isText());
        document.collapse({text, text->data().size()});
        shown.Page().WaitUntilReady();
    }
};

TEST_F(WholeJobTest, ASiteGoesInIsEditedKeptAndComesOut) {
    if (!fs::exists(kManual)) GTEST_SKIP() << "needs the package apache2-doc";
    MainContext& context = shown.Main().Context();
    shown.Press(kNewProject);

    // 1. The site goes in, with its pictures and style sheets.
    AddFilesRequest request;
    request.paths = {FromNativePath(kManual.string())};
    request.withFilesFrom = {FromNativePath(kManual.parent_path().string())};
    const AddFilesResult added = AddFiles(context.project, request);
    EXPECT_TRUE(added.problems.empty());
    context.model.IsDirty = true;
    RefillProjectExplorer(context);
    auto stored = FilesBelow(Scratch());
    // Each page but for its references, with its folder, leads to its new place.
    std::map<std::string, fs::path> places;
    for (const auto& [path, bytes] : stored)
        places[fs::path(path).parent_path().string() + "|" + WithoutReferences(bytes)] = path;
    const auto sources = test::PagesBelow(kManual);
    EXPECT_EQ(added.pageKeys.size(), sources.size());
    std::map<fs::path, fs::path> placeOf;
    for (const fs::path& source : sources) {
        const std::string folder = fs::relative(source, kManual).parent_path().string();
        const auto at = places.find(folder + "|" + WithoutReferences(test::ReadNative(source)));
        ASSERT_NE(at, places.end()) << source << " changed in more than its references";
        placeOf[source] = at->second;
    }

    // 2. A page is edited in the view, with the keys of the keyboard.
    const Page* edited = PageOf("caching.htm");
    ASSERT_TRUE(edited);
    const std::string key = edited->Key();
    shown.PressNode(key);
    ASSERT_EQ(context.CurrentPageKey, key);
    const std::string before = stored.at("caching.htm");
    const std::size_t at = before.find("</h1>");
    ASSERT_NE(at, std::string::npos);
    std::string after = before;
    after.insert(at, " in short");
    CaretBehindHeading();
    shown.View().SetFocus();
    QTest::keyClicks(shown.Keyboard(), " in short");
    ExpectPage(after, "typed");
    QTest::keyClick(shown.Keyboard(), Qt::Key_Z, Qt::ControlModifier);
    ExpectPage(before, "undone");
    QTest::keyClick(shown.Keyboard(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    ExpectPage(after, "done again");

    // 3. It is saved, closed and opened again: nothing else has changed.
    const std::string project = outer.folder.Path("manual.pwp");
    outer.dialogs.ExpectFile(project);
    shown.Press(kSave);
    EXPECT_FALSE(context.model.IsDirty);
    shown.Press(kCloseAll);
    shown.Press(kNewProject);
    ASSERT_FALSE(fs::exists(Scratch() / "caching.htm"));
    outer.dialogs.ExpectMessage(Answer::No, "lost by opening");
    outer.dialogs.ExpectFile(project);
    shown.Press(kOpen);
    stored["caching.htm"] = after;
    const auto reopened = FilesBelow(Scratch());
    for (const auto& [path, bytes] : stored) {
        const auto found = reopened.find(path);
        if (found == reopened.end())
            ADD_FAILURE() << path << " is lost";
        else
            EXPECT_TRUE(found->second == bytes) << path << " has changed";
    }
    for (const auto& [path, bytes] : reopened)
        EXPECT_TRUE(stored.count(path)) << path << " is new";

    // 4. It is published, and its links stand.
    outer.dialogs.ExpectFolder(outer.folder.Path("out"));
    outer.dialogs.ExpectMessage(Answer::Ok, "successfully published as HTML");
    shown.Press(kPublish);
    const fs::path site = fs::path(outer.folder.Native("out")) / context.model.Name;
    EXPECT_TRUE(FilesBelow(site) == reopened) << "what is published is what is kept";
    int followed = 0;
    for (const fs::path& source : sources) {
        const auto was = test::LocalLinks(source);
        const auto is = test::LocalLinks(site / placeOf[source]);
        ASSERT_EQ(was.size(), is.size()) << source;
        for (std::size_t i = 0; i < was.size(); ++i) {
            const bool leadsOut = IsPageFilename(was[i].target.string()) &&
                                  !was[i].target.string().starts_with(kManual.string() + "/");
            if (!was[i].exists || leadsOut) continue;
            ++followed;
            EXPECT_TRUE(is[i].exists) << source << ": " << is[i].value;
        }
    }
    EXPECT_GT(followed, 10000);
}

/** What is typed, and where: at the caret of a block that stands by itself. */
constexpr const char* kBlocks[] = {
    "<p>|[V] b</p>",
    "<p>a[V]|b</p>",
    "<p>a [V]|</p>",
    "<p>a|[V]b</p>",
    "<p>[V]|[V]</p>",
    "<p>[V]|</p>",
    "<p>|[V]</p>",
    "<p>a[]|b</p>",
    "<p>a<b>[V]|</b>c</p>",
    "<h2>[V]|</h2>",
    "<ul><li>a</li><li>|[V]</li></ul>",
    "<p>|<a href=\"x.htm\">link</a></p>",
    "<p>a<a href=\"x.htm\">li|nk</a>b</p>",
    "<p>a<a href=\"x.htm\">link</a>|b</p>",
    "<p>a|<img src=\"x.gif\" width=\"9\" height=\"9\">b</p>",
    "<p>a<img src=\"x.gif\" width=\"9\" height=\"9\">|</p>",
    "<table border=\"1\"><tbody><tr><td>|a</td><td>b</td></tr></tbody></table>",
    "<table border=\"1\"><tbody><tr><td>a|</td><td>[V]</td></tr></tbody></table>",
    "<table border=\"1\"><tbody><tr><td>a</td><td>[V]|</td></tr></tbody></table>",
    "<table border=\"1\"><tbody><tr><td>|</td></tr></tbody></table>",
    "<blockquote>a|b</blockquote>",
};

/** Types into a page at each boundary of what it holds, and opens it once more. */
class BoundariesTest : public WholeJobTest {
  protected:
    enum class Kind { Ordinary, Frames };

    std::string Markup(const std::string& block) {
        const std::string start = "<a type=\"omMerge\" name=\"Project Name\">";
        return ReplaceAll(ReplaceAll(ReplaceAll(block, "[V]", start + Name() + "</a>"), "[]",
                                     "<a type=\"omMerge\" name=\"Company Fax\"></a>"),
                          "|", "");
    }
    std::string& Name() { return shown.program->TheProject().Name; }
    ProjectContext& Context() { return shown.Main().Context().project; }

    /** Blocks with a paragraph between them, so that what is done to one leaves the next alone. */
    void Insert(Kind kind) {
        std::string body;
        for (const char* block : kBlocks)
            body += Markup(block) + "<p>---</p>";
        const std::string head = "<html><head><title>t</title></head>";
        InsertPageRequest request;
        request.sourceFile = outer.folder.Put(
            kind == Kind::Ordinary ? "page.htm" : "frames.htm",
            kind == Kind::Ordinary
                ? head + "<body><p>---</p>" + body + "</body></html>"
                : head +
                      "<frameset cols=\"*,*\"><frame src=\"a.htm\"><frame src=\"b.htm\">"
                      "<noframes><body><p>---</p>" +
                      body + "</body></noframes></frameset></html>");
        request.show = ShowInsertedPage::Yes;
        const Page* page = InsertPage(Context(), request);
        ASSERT_TRUE(page);
        key_ = page->Key();
        shown.Settle();
        ASSERT_EQ(shown.Page().PageKey(), key_);
    }
    /** The caret of a block, in the page: blocks are found by the paragraphs between them. */
    dom::Position Place(std::size_t index) {
        const auto marked = dom::Document::parseText(
            "<body>" + ReplaceAll(Markup(ReplaceAll(kBlocks[index], "|", "\x01")), "\x01", "|"));
        const auto path = test::detail::findMark(*marked->body(), '|');
        dom::Node* at = spacers_.at(index)->next();
        for (std::size_t i = 1; i < path.indexes.size(); ++i)
            at = at->children().at(path.indexes[i]);
        return {at, path.offset};
    }
    static std::string Token(std::size_t index) { return "q" + std::to_string(index) + "z"; }
    static int Count(const std::string& text, const std::string& what) {
        int count = 0;
        for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + 1))
            ++count;
        return count;
    }
    /** What was typed is there, once, and the page is what its own text says. */
    void Check(const char* when) {
        shown.Page().WaitUntilReady();
        const dom::Document& document = shown.Document();
        const std::string text = dom::TextRange(shown.Document()).text();
        for (std::size_t i = 0; i < std::size(kBlocks); ++i)
            EXPECT_EQ(Count(text, Token(i)), 1) << when << ": " << kBlocks[i];
        const auto again = dom::Document::parseText(document.html());
        EXPECT_EQ(again->innerHTML(*again->body()), document.innerHTML(*document.body())) << when;
        EXPECT_EQ(test::EditorFixture::parsedTree(*again->root()),
                  test::EditorFixture::parsedTree(*document.root()))
            << when;
    }

    std::string key_;
    std::vector<dom::Node*> spacers_;
};

TEST_F(BoundariesTest, WhatIsTypedIsThereOnce) {
    shown.Press(kNewProject);
    Name() = "Shop";
    UpdateProjectMergeVariables(Context());
    constexpr const char* kActions[] = {"type", "Enter", "Backspace", "Delete", "Tab", "paste"};
    for (const Kind kind : {Kind::Ordinary, Kind::Frames}) {
        for (const std::string action : kActions) {
            SCOPED_TRACE(action + (kind == Kind::Frames ? " in a frame page" : ""));
            Insert(kind);
            dom::Document& document = shown.Document();
            spacers_.clear();
            for (dom::Node* paragraph : document.tags("p"))
                if (document.innerText(*paragraph) == "---") spacers_.push_back(paragraph);
            ASSERT_EQ(spacers_.size(), std::size(kBlocks) + 1);
            shown.View().SetFocus();
            // From the last: Delete can join the block with what stands behind it.
            for (std::size_t i = std::size(kBlocks); i-- > 0;) {
                document.collapse(Place(i));
                shown.Page().WaitUntilReady();
                if (action == "paste") {
                    shown.clipboard.Set(Token(i), "");
                    shown.Page().docDHTMLEditor.ExecCommand(DECMD_PASTE);
                } else {
                    if (action == "Enter") QTest::keyClick(shown.Keyboard(), Qt::Key_Return);
                    if (action == "Backspace") QTest::keyClick(shown.Keyboard(), Qt::Key_Backspace);
                    if (action == "Delete") QTest::keyClick(shown.Keyboard(), Qt::Key_Delete);
                    if (action == "Tab") QTest::keyClick(shown.Keyboard(), Qt::Key_Tab);
                    QTest::keyClicks(shown.Keyboard(), QString::fromStdString(Token(i)));
                }
                shown.Page().WaitUntilReady();
            }
            Check("typed");
            shown.Page().CloseWindow();
            shown.Settle();
            shown.PressNode(key_);
            ASSERT_EQ(shown.Page().PageKey(), key_);
            Check("opened again");
            // A new value of the variable takes nothing of it away, open or closed.
            Name() += "s";
            UpdateProjectMergeVariables(Context());
            UpdateMergeVariablesInAllPages(Context(), "Merge Variables");
            Check("with a new value");
            EXPECT_EQ(Count(shown.Document().html(), ">" + Name() + "</a>"),
                      Count(shown.Document().html(), "\"Project Name\""));
            shown.Page().CloseWindow();
            shown.Settle();
        }
    }
}

}  // namespace
}  // namespace pw
