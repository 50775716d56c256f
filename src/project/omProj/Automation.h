#pragma once
// Members of the object model that are called by name at run time, as add-ins do and the routines
// that take a folder or a site alike. One table behind these calls knows them: `WebSites`,
// `Sections`, `AddSection`, `Pages`, `Attachments`, `Count`, `Item`, `Remove`, `Id`, `Filename`,
// `Expanded`, `WorkingFolder`, `Name` and `RemoveMetaTag`. Names are compared without regard to
// case. An object does not own what it refers to.
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "project/omProj/Project.h"

namespace pw {

using AutomationObject = std::variant<std::monostate, Project*, WebSites*, WebSite*, Sections*,
                                      Folder*, Pages*, Page*, Attachments*, Attachment*>;
using AutomationValue =
    std::variant<std::monostate, bool, std::int64_t, std::string, AutomationObject>;

struct AutomationReply {
    bool worked = false;  ///< false: no such member, wrong arguments, or no such item
    AutomationValue value;
};

bool HasMember(const AutomationObject& object, std::string_view name);
/** Reads a property or calls a method. `Item` and `Remove` take an index or a key. */
AutomationReply CallMember(const AutomationObject& object, std::string_view name,
                           const std::vector<AutomationValue>& arguments = {});
/** Sets a property; false when there is no such property or the value is of another type. */
bool LetMember(const AutomationObject& object, std::string_view name, const AutomationValue& value);

}  // namespace pw
