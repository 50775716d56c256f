#pragma once
// The names of the editing commands and of the formats, as the dialogs and the view know them.
#include <string>
#include <string_view>

namespace pw {

struct BlockFormatEntry {
    const char* name;     ///< as the combo box shows it
    const char* command;  ///< of the view
    const char* tag;
};

/** By its name, without regard to case; none for an unknown one. */
const BlockFormatEntry* FindBlockFormat(std::string_view name);
/** The format that an element of this tag gives its text, "" for none. */
std::string BlockFormatOfTag(std::string_view tag);
/** The command of the view that makes and unmakes a list of this tag; none for other tags. */
const char* ListCommandOfTag(std::string_view tag);
/** All names, one a line. */
std::string BlockFormatNames();
/** What the view calls an editing command; none for one that is not the view's. */
const char* SurfaceCommand(int command);

/** The first family of a font list, without its quotes. */
std::string FirstFont(std::string_view families);
/** "#rrggbb" of "rgb(1, 2, 3)" and of a number 0x00BBGGRR; other texts as they are. */
std::string ColorText(std::string_view color);
/** The address of a folder with backslashes, for the view; addresses as they are. */
std::string AddressOfFolder(std::string_view folder);

}  // namespace pw
