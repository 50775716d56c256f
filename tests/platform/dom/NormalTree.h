#pragma once
// The tree of a page as text, for comparing it with what the page's own text parses to.
#include <map>
#include <string>

#include "platform/Text.h"
#include "platform/dom/Document.h"

namespace pw::test {

/** Texts that touch are one, as they are to a parser; empty ones are none. */
inline void WriteNormalTree(const dom::Node& node, std::string& out) {
    std::string text;
    const auto write = [&] {
        if (!text.empty()) out += '"' + text + '"';
        text.clear();
    };
    for (const dom::Node* child = node.firstChild(); child; child = child->next()) {
        if (child->isText()) {
            text += child->data();
            continue;
        }
        write();
        if (child->isComment()) {
            out += "<!" + child->data() + ">";
            continue;
        }
        out += "<" + child->localName();
        std::map<std::string, std::string> sorted;
        for (const dom::Attribute& attribute : child->attributes())
            sorted[ToLower(attribute.name)] = attribute.value;
        for (const auto& [name, value] : sorted)
            out += " " + name + "=" + value;
        out += ">";
        WriteNormalTree(*child, out);
        out += "</>";
    }
    write();
}

inline std::string NormalTree(const dom::Document& document) {
    std::string out;
    WriteNormalTree(*document.root(), out);
    return out;
}

}  // namespace pw::test
