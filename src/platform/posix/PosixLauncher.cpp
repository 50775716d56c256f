#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/FileSystem.h"
#include "platform/SystemInfo.h"

extern char** environ;

namespace pw {

namespace {

bool IsPath(const std::string& text) {
    return !text.empty() && text.front() == '\\';
}

/** "http:", "mailto:" and the like, so that no address is ever read as an option. */
bool HasScheme(const std::string& url) {
    const auto colon = url.find(':');
    if (colon == url.npos || colon == 0) return false;
    for (std::size_t i = 0; i < colon; ++i) {
        const char c = char(url[i] | 32);
        const bool letter = c >= 'a' && c <= 'z';
        const bool other = (url[i] >= '0' && url[i] <= '9') || url[i] == '+' || url[i] == '.';
        if (!letter && (i == 0 || !other)) return false;
    }
    return true;
}

class PosixLauncher : public Launcher {
  public:
    ~PosixLauncher() override { Reap(); }

    bool Start(const std::string& program, const std::string& argument) override {
        Reap();
        if (program.empty()) return false;
        std::string file = IsPath(program) ? ToNativePath(program) : program;
        std::string word = IsPath(argument) ? ToNativePath(argument) : argument;
        char* words[] = {file.data(), word.empty() ? nullptr : word.data(), nullptr};
        // A session of its own: the started program outlives this one and its terminal.
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        pid_t child = 0;
        const int error =
            ::posix_spawnp(&child, file.c_str(), &actions, &attributes, words, environ);
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
        if (error == 0) children_.push_back(child);
        return error == 0;
    }

    bool OpenUrl(const std::string& url) override {
        return HasScheme(url) && Start("xdg-open", url);
    }

  private:
    /** Takes leave of the programs that have ended; those that run are left alone. */
    void Reap() {
        std::erase_if(children_,
                      [](pid_t child) { return ::waitpid(child, nullptr, WNOHANG) != 0; });
    }

    std::vector<pid_t> children_;
};

}  // namespace

std::unique_ptr<Launcher> MakeLauncher() {
    return std::make_unique<PosixLauncher>();
}

}  // namespace pw
