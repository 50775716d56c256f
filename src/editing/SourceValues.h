#pragma once
// The value of a field that names a picture, a film or a sound: a path on disk for what is a file
// of this machine, and for anything else (an address of the web) the text as a page writes it.
#include <optional>
#include <string>
#include <string_view>

namespace pw {

class Page;
struct ProjectContext;

/** Text from a field or an attribute as such a value. What is relative starts from the page of that
 *  key. The file need not exist. */
std::string SourceValue(const ProjectContext& context, std::string_view text,
                        std::string_view pageKey);

/** The value as a field shows it: a file of the project as the page reaches it, another file by its
 *  path in the system's form. SourceValue of this is the value again. */
std::string ShownSource(const ProjectContext& context, std::string_view value,
                        std::string_view pageKey);

/** Why a value can't be used in a page, as a message for the user; "" for one that can. */
std::string SourceProblem(const ProjectContext& context, std::string_view value);

/** What the page writes for the value. A file from outside of the project is copied into the page's
 *  media first, and every file is noted as the page's. None when that fails. */
std::optional<std::string> TakeSource(ProjectContext& context, std::string_view value, Page& page);

}  // namespace pw
