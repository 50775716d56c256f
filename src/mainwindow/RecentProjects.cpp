#include "mainwindow/RecentProjects.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "frame/RecentList.h"

namespace pw {

namespace {

constexpr const char* kSection = "Recent";
constexpr const char* kValue = "File";

}  // namespace

std::vector<std::string> ListedProjects(const FrameContext& context) {
    return RecentList(context.hive, kSection, kValue, kRecentProjects);
}

std::vector<std::string> RecentProjects(const FrameContext& context) {
    std::vector<std::string> paths = ListedProjects(context);
    std::erase_if(paths, [&](const auto& path) { return !FileExists(context.files, path); });
    return paths;
}

void AddRecentProject(FrameContext& context, const std::string& path) {
    AddToRecentList(context.hive, kSection, kValue, kRecentProjects, path);
}

void RemoveRecentProject(FrameContext& context, const std::string& path) {
    RemoveFromRecentList(context.hive, kSection, kValue, kRecentProjects, path);
}

std::string MenuPath(const std::string& path) {
    constexpr std::size_t kRoom = 48;  // bytes
    const std::string native = ToNativePath(path);
    std::size_t start = 0;
    while (native.size() - start > kRoom) {
        const std::size_t slash = native.find('/', start + 1);
        if (slash == std::string::npos) break;
        start = slash;
    }
    return start == 0 ? native : "\u2026" + native.substr(start);
}

}  // namespace pw
