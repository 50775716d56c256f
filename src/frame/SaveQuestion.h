#pragma once
// Under which name a file is to be saved.
#include <string>
#include <string_view>

#include "platform/DialogHost.h"

namespace pw {

struct FrameContext;

/** The path with that extension: as it is if it has it in any letter case, else with it behind. */
std::string WithExtension(std::string_view path, std::string_view extension);

/** The name that is written when the user answers `path`: what is no extension of the question's
 *  kind of file belongs to the name, as in "example.com" and "Site 2.0". */
std::string NameToSave(const FileQuestion& question, std::string_view path);

/** Asks for a name, and again while the user does not want to replace the file that has it. ""
 *  when he gives up. */
std::string AskSaveFile(FrameContext& context, FileQuestion question);

}  // namespace pw
