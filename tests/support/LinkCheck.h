#pragma once
// Follows every local link and picture of the pages in a folder.
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/Text.h"
#include "platform/dom/Document.h"
#include "project/References.h"

namespace pw::test {

namespace fs = std::filesystem;

inline std::string ReadNative(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline std::vector<fs::path> PagesBelow(const fs::path& folder) {
    std::vector<fs::path> pages;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && IsPageFilename(entry.path().string()))
            pages.push_back(entry.path());
    return pages;
}

/** A local reference in a page: to an existing file, or to a place in a page. */
struct LocalLink {
    std::string value;   ///< as written
    fs::path target;     ///< the file, normal
    std::string anchor;  ///< behind "#"
    bool exists = false;
};

inline std::vector<LocalLink> LocalLinks(const fs::path& page) {
    std::vector<LocalLink> links;
    const auto document = dom::Document::parse(ReadNative(page));
    for (const dom::Node* node : document->all()) {
        for (const char* name : {"href", "src", "background"}) {
            const std::string* value = node->attribute(name);
            if (!value || !IsLocalReference(*value)) continue;
            const SplitReference parts = SplitSuffix(*value);
            LocalLink link{*value,
                           (page.parent_path() / PercentDecode(parts.path)).lexically_normal(),
                           {},
                           false};
            const auto hash = parts.suffix.find('#');
            if (hash != std::string::npos) link.anchor = parts.suffix.substr(hash + 1);
            link.exists = fs::is_regular_file(link.target);
            links.push_back(link);
        }
    }
    return links;
}

}  // namespace pw::test
