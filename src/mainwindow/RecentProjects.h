#pragma once
// The projects opened or saved last, newest first, kept in the settings.
#include <string>
#include <vector>

namespace pw {

struct FrameContext;

constexpr int kRecentProjects = 8;

/** Those that still exist. */
std::vector<std::string> RecentProjects(const FrameContext& context);
void AddRecentProject(FrameContext& context, const std::string& path);

}  // namespace pw
