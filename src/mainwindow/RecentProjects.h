#pragma once
// The projects opened or saved last, newest first, kept in the settings.
#include <string>
#include <vector>

namespace pw {

struct FrameContext;

constexpr int kRecentProjects = 8;

/** All of them, whether they still exist or not: looking may take its time. */
std::vector<std::string> ListedProjects(const FrameContext& context);
/** Those that still exist. */
std::vector<std::string> RecentProjects(const FrameContext& context);
void AddRecentProject(FrameContext& context, const std::string& path);
void RemoveRecentProject(FrameContext& context, const std::string& path);
/** The path as it fits on a menu: native, without the first folders of a long one. */
std::string MenuPath(const std::string& path);

}  // namespace pw
