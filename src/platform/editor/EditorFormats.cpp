#include "platform/editor/EditorFormats.h"

#include <cstdio>
#include <cstdlib>

#include "platform/FileSystem.h"
#include "platform/Text.h"
#include "platform/editor/HtmlEditor.h"

namespace pw {

namespace {

constexpr char kFormatBlock[] = "formatBlock";
constexpr char kOrdered[] = "insertOrderedList";
constexpr char kUnordered[] = "insertUnorderedList";

constexpr BlockFormatEntry kBlockFormats[] = {
    {"Normal", kFormatBlock, "p"},        {"Formatted", kFormatBlock, "pre"},
    {"Address", kFormatBlock, "address"}, {"Heading 1", kFormatBlock, "h1"},
    {"Heading 2", kFormatBlock, "h2"},    {"Heading 3", kFormatBlock, "h3"},
    {"Heading 4", kFormatBlock, "h4"},    {"Heading 5", kFormatBlock, "h5"},
    {"Heading 6", kFormatBlock, "h6"},    {"Numbered List", kOrdered, "ol"},
    {"Bulleted List", kUnordered, "ul"},  {"Directory List", kUnordered, "dir"},
    {"Menu List", kUnordered, "menu"},    {"Definition Term", kFormatBlock, "dt"},
    {"Definition", kFormatBlock, "dd"},   {"Paragraph", kFormatBlock, "p"},
};

struct CommandEntry {
    EditorCommand command;
    const char* name;
};
constexpr CommandEntry kCommands[] = {
    {DECMD_BOLD, "bold"},
    {DECMD_ITALIC, "italic"},
    {DECMD_UNDERLINE, "underline"},
    {DECMD_JUSTIFYLEFT, "justifyLeft"},
    {DECMD_JUSTIFYCENTER, "justifyCenter"},
    {DECMD_JUSTIFYRIGHT, "justifyRight"},
    {DECMD_ORDERLIST, kOrdered},
    {DECMD_UNORDERLIST, kUnordered},
    {DECMD_INDENT, "indent"},
    {DECMD_OUTDENT, "outdent"},
    {DECMD_REMOVEFORMAT, "removeFormat"},
    {DECMD_HYPERLINK, "createLink"},
    {DECMD_SETBLOCKFMT, kFormatBlock},
    {DECMD_GETFONTNAME, "fontName"},
    {DECMD_SETFONTNAME, "fontName"},
    {DECMD_GETFONTSIZE, "fontSize"},
    {DECMD_SETFONTSIZE, "fontSize"},
    {DECMD_GETFORECOLOR, "foreColor"},
    {DECMD_SETFORECOLOR, "foreColor"},
    {DECMD_GETBACKCOLOR, "backColor"},
    {DECMD_SETBACKCOLOR, "backColor"},
};

std::string hexColor(unsigned red, unsigned green, unsigned blue) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", red & 255U, green & 255U, blue & 255U);
    return text;
}

}  // namespace

const BlockFormatEntry* FindBlockFormat(std::string_view name) {
    for (const BlockFormatEntry& entry : kBlockFormats)
        if (EqualsNoCase(entry.name, name)) return &entry;
    return nullptr;
}

std::string BlockFormatOfTag(std::string_view tag) {
    for (const BlockFormatEntry& entry : kBlockFormats)
        if (tag == entry.tag) return entry.name;
    return {};
}

const char* ListCommandOfTag(std::string_view tag) {
    for (const BlockFormatEntry& entry : kBlockFormats)
        if (tag == entry.tag && entry.command != kFormatBlock) return entry.command;
    return nullptr;
}

std::string BlockFormatNames() {
    std::string names;
    for (const BlockFormatEntry& entry : kBlockFormats) {
        if (!names.empty()) names += '\n';
        names += entry.name;
    }
    return names;
}

const char* SurfaceCommand(int command) {
    for (const CommandEntry& entry : kCommands)
        if (entry.command == command) return entry.name;
    return nullptr;
}

std::string FirstFont(std::string_view families) {
    std::string first = Trim(families.substr(0, families.find(',')));
    if (first.size() >= 2 && (first.front() == '"' || first.front() == '\''))
        first = first.substr(1, first.size() - 2);
    return first;
}

std::string ColorText(std::string_view color) {
    const std::string text(color);
    if (text.empty()) return text;
    unsigned red = 0, green = 0, blue = 0;
    if (std::sscanf(text.c_str(), "rgb(%u,%u,%u)", &red, &green, &blue) == 3 ||
        std::sscanf(text.c_str(), "rgba(%u,%u,%u", &red, &green, &blue) == 3)
        return hexColor(red, green, blue);
    if (text.find_first_not_of("0123456789") == std::string::npos) {
        const unsigned long value = std::strtoul(text.c_str(), nullptr, 10);
        return hexColor(value & 255U, (value >> 8U) & 255U, (value >> 16U) & 255U);
    }
    return text;
}

std::string AddressOfFolder(std::string_view folder) {
    if (!folder.starts_with('\\')) return std::string(folder);
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string address = "file://";
    for (const char c : ToNativePath(folder)) {
        if (kPlain.find(c) != std::string_view::npos) {
            address += c;
        } else {
            char code[4];
            std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(c));
            address += code;
        }
    }
    if (address.back() != '/') address += '/';
    return address;
}

}  // namespace pw
