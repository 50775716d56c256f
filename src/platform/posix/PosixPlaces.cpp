#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/FileSystem.h"
#include "platform/SystemInfo.h"
#include "platform/Text.h"
#include "platform/posix/Home.h"

namespace pw {

namespace {

namespace fs = std::filesystem;

/** A base folder of the desktop's convention. A value that is not absolute is to be ignored. */
std::string BaseFolder(const char* variable, const char* belowHome) {
    const char* value = std::getenv(variable);
    if (value && value[0] == '/') return value;
    return NativeHome() + "/" + belowHome;
}

/** The user's documents as the desktop keeps them in user-dirs.dirs, or the home folder. */
std::string DocumentsFolder() {
    std::ifstream in(BaseFolder("XDG_CONFIG_HOME", ".config") + "/user-dirs.dirs");
    std::string line;
    while (std::getline(in, line)) {
        constexpr std::string_view label = "XDG_DOCUMENTS_DIR=\"";
        const auto start = line.find(label);
        const auto end = line.rfind('"');
        if (start != 0 || end < label.size()) continue;
        std::string folder = line.substr(label.size(), end - label.size());
        if (folder.compare(0, 5, "$HOME") == 0) folder = NativeHome() + folder.substr(5);
        std::error_code ignored;
        if (fs::is_directory(folder, ignored)) return folder;
    }
    return NativeHome();
}

std::string ProgramFolder() {
    std::error_code error;
    const fs::path executable = fs::read_symlink("/proc/self/exe", error);
    if (!error) {
        const fs::path installed =
            (executable.parent_path() / PAGEWICK_RELATIVE_DATA).lexically_normal();
        if (fs::is_directory(installed, error)) return installed.string();
    }
    return PAGEWICK_BUILD_DATA;
}

/** Makes a folder and its parents; a private one is kept from other users even if it was there. */
void Make(const std::string& folder, mode_t mode) {
    std::error_code ignored;
    fs::create_directories(fs::path(folder).parent_path(), ignored);
    ::mkdir(folder.c_str(), mode);
    if (mode == 0700) ::chmod(folder.c_str(), mode);
}

/**
 * Two programs must meet here whatever environment they were started in, so the account's own home
 * counts and not $HOME or a variable of the session.
 */
std::string LockFolder() {
    const std::string home = NativeAccountHome();
    if (!home.empty() && ::access(home.c_str(), W_OK) == 0) return home + "/.cache/pagewick/locks";
    return "/run/user/" + std::to_string(::geteuid()) + "/pagewick";
}

}  // namespace

std::string NativeAccountHome() {
    const passwd* user = ::getpwuid(::geteuid());
    return user && user->pw_dir ? user->pw_dir : "";
}

std::string NativeHome() {
    const char* home = std::getenv("HOME");
    if (home && home[0] == '/') return home;
    const std::string account = NativeAccountHome();
    return account.empty() ? "/" : account;
}

Places FindPlaces(const std::string& profile) {
    std::string config, data, temporary, documents;
    if (profile.empty()) {
        config = BaseFolder("XDG_CONFIG_HOME", ".config") + "/pagewick";
        data = BaseFolder("XDG_DATA_HOME", ".local/share") + "/pagewick";
        temporary = BaseFolder("XDG_CACHE_HOME", ".cache") + "/pagewick";
        documents = DocumentsFolder();
    } else {
        std::error_code ignored;
        fs::path root = fs::absolute(profile, ignored).lexically_normal();
        if (!root.has_filename()) root = root.parent_path();
        config = (root / "config").string();
        data = (root / "data").string();
        temporary = (root / "cache").string();
        documents = (root / "documents").string();
        Make(documents, 0777);
    }
    Make(config, 0700);
    Make(data, 0777);
    Make(temporary, 0700);
    return {
        FromNativePath(ProgramFolder()), FromNativePath(config),    FromNativePath(data),
        FromNativePath(temporary),       FromNativePath(documents), FromNativePath(LockFolder())};
}

}  // namespace pw
