#pragma once
// The machine, the user and the special folders, in the forms that reports and pages carry.
#include <string>

#include "platform/SystemInfo.h"

namespace pw {

struct FrameContext;

std::string GetComputerName(const SystemInfo& system);
std::string GetUserName(const SystemInfo& system);
/** "Linux 6.1 Build 0, 13-amd64": name, version, build and the rest. */
std::string GetOSInfo(const SystemInfo& system);
/** Lines about processor, memory and disk, each ended by CR LF. */
std::string GetSystemInfo(const SystemInfo& system);
bool IsOnline(const SystemInfo& system);

enum class SpecialFolder { Windows = 0, System = 1, Temporary = 2 };
/** Temporary is the folder of this run; the other two are the program's own read-only folder. */
std::string GetSpecialFolder(const FrameContext& context, SpecialFolder folder);
inline std::string GetTempFolder(const FrameContext& context) {
    return GetSpecialFolder(context, SpecialFolder::Temporary);
}
inline std::string GetSystemFolder(const FrameContext& context) {
    return GetSpecialFolder(context, SpecialFolder::System);
}
inline std::string GetWindowsFolder(const FrameContext& context) {
    return GetSpecialFolder(context, SpecialFolder::Windows);
}

}  // namespace pw
