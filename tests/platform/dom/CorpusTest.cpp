// Real pages, of manuals that the tests' dependencies install.
#include <filesystem>
#include <fstream>

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

}  // namespace
}  // namespace pw::dom
