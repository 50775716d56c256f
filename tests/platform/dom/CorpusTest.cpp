// Real pages, of manuals that the tests' dependencies install.
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "platform/dom/Document.h"

namespace pw::dom {
namespace {

std::vector<std::filesystem::path> pagesBelow(const char* folder) {
    std::vector<std::filesystem::path> pages;
    std::error_code error;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             folder, std::filesystem::directory_options::follow_directory_symlink, error)) {
        if (!entry.is_regular_file()) continue;
        if (entry.path().filename().string().find(".html") != std::string::npos) {
            pages.push_back(entry.path());
        }
    }
    std::sort(pages.begin(), pages.end());
    return pages;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Corpus, RealPagesComeBackAndDifferOnlyWhereTheyWereEdited) {
    std::vector<std::filesystem::path> pages = pagesBelow("/usr/share/doc/apache2-doc/manual");
    ASSERT_GT(pages.size(), 500u) << "install apache2-doc (scripts/install-deps does)";
    const auto more = pagesBelow("/usr/share/developers-reference");
    ASSERT_GT(more.size(), 5u) << "install developers-reference (scripts/install-deps does)";
    pages.insert(pages.end(), more.begin(), more.end());
    // A sample; the roundtrip tool goes through all of them.
    for (std::size_t i = 0; i < pages.size(); i += 23) {
        SCOPED_TRACE(pages[i].string());
        const std::string bytes = readFile(pages[i]);
        const auto page = Document::parse(bytes);
        ASSERT_TRUE(page);
        ASSERT_TRUE(page->bytes() == bytes);
        const std::string html = page->html();
        ASSERT_FALSE(page->links().empty());
        Node* link = page->links()[page->links().size() / 2];
        page->setAttribute(*link, "href", "elsewhere.html");
        const std::string edited = page->html();
        const auto [from, to] =
            std::mismatch(html.begin(), html.end(), edited.begin(), edited.end());
        const auto [fromEnd, toEnd] =
            std::mismatch(html.rbegin(), html.rend(), edited.rbegin(), edited.rend());
        EXPECT_LE(toEnd.base() - to, 14) << "more than the address changed";
        page->undo();
        EXPECT_TRUE(page->bytes() == bytes);
    }
}

/** A change of a page's text, as one would type it in the middle. */
struct SourceChange {
    const char* name;
    const char* mark;         ///< where it happens: at the middle one of these
    const char* end;          ///< up to and with this, what stands there goes; "": nothing goes
    const char* insert;       ///< comes in front of what is left
    std::size_t mostRemoved;  ///< nodes that may go
    std::size_t mostAdded;
};

/** "" when the page has no such place. */
std::string changed(std::string html, const SourceChange& change) {
    const std::size_t at = html.find(change.mark, html.size() / 2);
    if (at == html.npos) return {};
    std::size_t end = at;
    if (*change.end) {
        end = html.find(change.end, at);
        if (end == html.npos) return {};
        end += std::string_view(change.end).size();
    }
    return html.replace(at, end - at, change.insert);
}

std::set<NodeId> idsOf(const Document& page) {
    std::set<NodeId> ids;
    for (const Node* node = page.root(); node; node = node->following())
        ids.insert(node->id());
    return ids;
}

struct Counter : DocumentObserver {
    void documentChanged(const Change&) override { ++changes; }
    void documentReloaded() override { ++reloads; }
    int changes = 0;
    int reloads = 0;
};

TEST(Corpus, AnEditOfTheSourceLeavesTheRestOfThePageAlone) {
    const std::vector<std::filesystem::path> pages =
        pagesBelow("/usr/share/doc/apache2-doc/manual");
    ASSERT_GT(pages.size(), 500u) << "install apache2-doc (scripts/install-deps does)";
    const SourceChange rows[] = {
        {"a word", "</p>", "", " more", 0, 1},
        {"an attribute", " href=\"", "", " target=_top", 0, 0},
        {"blanks in a tag", "<p>", ">", "<p  >", 0, 0},
        {"a new paragraph", "</p>", ">", "</p>\n<p>A <b>new</b> one.</p>\n", 0, 7},
        {"around a paragraph", "<p>", "", "<hr><!-- here -->", 0, 2},
        {"a list item goes", "<li>", "</li>", "", 60, 1},
        {"a row goes", "<tr", "</tr>", "", 60, 1},
        {"a comment is opened and closed", "<p>", "", "<!-- <p>out</p> -->", 0, 1},
    };
    std::map<std::string, int> tried;
    for (std::size_t i = 0; i < pages.size(); i += 97) {
        const auto page = Document::parse(readFile(pages[i]));
        ASSERT_TRUE(page);
        const std::string html = page->html();
        const std::set<NodeId> before = idsOf(*page);
        Counter counter;
        page->addObserver(&counter);
        for (const SourceChange& row : rows) {
            const std::string text = changed(html, row);
            if (text.empty()) continue;
            SCOPED_TRACE(pages[i].string() + ": " + row.name);
            ++tried[row.name];
            counter = {};
            ASSERT_TRUE(page->setHtml(text));
            EXPECT_TRUE(page->html() == text);
            const std::set<NodeId> after = idsOf(*page);
            std::vector<NodeId> removed;
            std::vector<NodeId> added;
            std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                                std::back_inserter(removed));
            std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                                std::back_inserter(added));
            EXPECT_LE(removed.size(), row.mostRemoved);
            EXPECT_LE(added.size(), row.mostAdded);
            EXPECT_LE(counter.changes, 12);
            EXPECT_EQ(counter.reloads, 0);
            page->undo();
            EXPECT_TRUE(page->html() == html);
            EXPECT_TRUE(idsOf(*page) == before);
            EXPECT_FALSE(page->isDirty());
        }
        page->removeObserver(&counter);
    }
    for (const SourceChange& row : rows)
        EXPECT_GT(tried[row.name], 3) << row.name;
}

}  // namespace
}  // namespace pw::dom
