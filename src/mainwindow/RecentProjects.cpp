#include "mainwindow/RecentProjects.h"

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"

namespace pw {

namespace {

constexpr const char* kSection = "Recent";

std::string ValueName(int number) {
    return "File " + std::to_string(number);
}

std::vector<std::string> Stored(const FrameContext& context) {
    std::vector<std::string> paths;
    for (int number = 1; number <= kRecentProjects; ++number) {
        std::string path = RegText(context.hive, kSection, ValueName(number));
        if (!path.empty()) paths.push_back(std::move(path));
    }
    return paths;
}

}  // namespace

std::vector<std::string> RecentProjects(const FrameContext& context) {
    std::vector<std::string> paths = Stored(context);
    std::erase_if(paths, [&](const auto& path) { return !FileExists(context.files, path); });
    return paths;
}

void AddRecentProject(FrameContext& context, const std::string& path) {
    if (path.empty()) return;
    std::vector<std::string> paths = Stored(context);
    if (!paths.empty() && paths.front() == path) return;
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    if (paths.size() > kRecentProjects) paths.resize(kRecentProjects);

    const HiveBatch batch(context.hive);
    for (std::size_t i = 0; i < paths.size(); ++i)
        SetRegText(context.hive, kSection, ValueName(int(i) + 1), paths[i]);
}

}  // namespace pw
