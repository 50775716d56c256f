// Loads and saves each page named on standard input and tells which do not come back byte for byte.
// With --edit each page is also loaded with one attribute and with one text changed, and must
// differ from what it was there alone, and come back whole when that is undone.
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/dom/Document.h"

namespace {

using pw::dom::Document;
using pw::dom::Node;

std::string readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** Bytes that are not part of the longest common beginning and end. */
std::string difference(const std::string& from, const std::string& to) {
    const std::size_t shorter = std::min(from.size(), to.size());
    std::size_t begin = 0;
    while (begin < shorter && from[begin] == to[begin])
        ++begin;
    std::size_t end = 0;
    while (end < shorter - begin && from[from.size() - 1 - end] == to[to.size() - 1 - end])
        ++end;
    return to.substr(begin, to.size() - begin - end);
}

/** What went wrong with an edit; "" when nothing did. */
std::string checkEdit(const std::string& bytes, const char* what,
                      const std::function<std::string(Document&)>& edit) {
    auto document = Document::parse(bytes);
    const std::string before = document->html();
    const std::string expected = edit(*document);
    if (expected.empty()) return {};
    const std::string after = document->html();
    const std::string changed = difference(before, after);
    if (changed.size() > expected.size()) {
        return std::string(what) + ": changed [" + changed.substr(0, 200) + "] instead of [" +
               expected + "]";
    }
    if (after.find(expected) == std::string::npos) return std::string(what) + ": is not written";
    document->undo();
    if (document->bytes() != bytes) return std::string(what) + ": is not undone";
    return {};
}

/** The attribute in the middle of the page. */
std::string editAttribute(Document& document) {
    std::vector<Node*> with;
    for (Node* node : document.all()) {
        if (!node->attributes().empty() && !node->attributes().back().value.empty()) {
            with.push_back(node);
        }
    }
    if (with.empty()) return {};
    Node* node = with[with.size() / 2];
    const std::string name = node->attributes().back().name;
    document.setAttribute(*node, name, "Changed-by-roundtrip");
    return "Changed-by-roundtrip";
}

/** Some letters in the middle of the text in the middle of the page. */
std::string editText(Document& document) {
    std::vector<Node*> texts;
    for (Node* node = document.root(); node; node = node->following()) {
        if (node->isText() && node->data().find_first_not_of(" \n\t") != std::string::npos) {
            texts.push_back(node);
        }
    }
    if (texts.empty()) return {};
    Node* node = texts[texts.size() / 2];
    std::size_t at = node->data().size() / 2;
    while (at > 0 && (node->data()[at] & 0xC0) == 0x80)
        --at;
    document.replaceText(*node, at, 0, "changed by roundtrip");
    return "changed by roundtrip";
}

std::string check(const std::string& bytes, bool edits) {
    pw::dom::ParseError error;
    const auto document = Document::parse(bytes, &error);
    if (!document) return "refused: " + error.message;
    if (document->bytes() != bytes) return "not identical";
    if (!edits) return {};
    std::string problem = checkEdit(bytes, "attribute", editAttribute);
    if (problem.empty()) problem = checkEdit(bytes, "text", editText);
    return problem;
}

}  // namespace

int main(int count, char** arguments) {
    const bool edits = count > 1 && std::string(arguments[1]) == "--edit";
    if (count > 2 || (count == 2 && !edits)) {
        std::cerr << "usage: roundtrip [--edit] < FILE-NAMES\n";
        return 2;
    }
    int identical = 0;
    std::vector<std::string> different;
    for (std::string name; std::getline(std::cin, name);) {
        const bool readable = std::filesystem::is_regular_file(name) && std::ifstream(name);
        const std::string problem = readable ? check(readFile(name), edits) : "cannot be read";
        if (problem.empty()) {
            ++identical;
        } else {
            different.push_back(name + "  (" + problem + ")");
        }
    }
    std::cout << identical << " identical, " << different.size() << " different\n";
    for (const std::string& name : different)
        std::cout << name << "\n";
    return different.empty() ? 0 : 1;
}
