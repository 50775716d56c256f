// From the start of the process until a page is ready for typing: the program beside a bare browser
// view that loads the same page, in turn, several times. Prints one row of the table of benches.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "BenchBasics.h"
#include "frame/FunctionLibrary.h"
#include "frame/Settings.h"
#include "platform/FileSystem.h"
#include "platform/SettingsHive.h"
#include "platform/SystemInfo.h"

extern char** environ;

namespace {

/** Seconds until the program prints "ready"; it is ended then. */
double SecondsToReady(const std::vector<std::string>& command) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("pipe failed");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    std::vector<char*> arguments;
    for (const auto& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
        throw std::runtime_error("cannot start " + command[0]);
    }
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    std::string printed;
    char buffer[256];
    while (printed.find("ready") == std::string::npos) {
        const auto count = read(ends[0], buffer, sizeof buffer);
        if (count <= 0) throw std::runtime_error(command[0] + " ended before it was ready");
        printed.append(buffer, std::size_t(count));
    }
    const auto end = std::chrono::steady_clock::now();
    close(ends[0]);
    kill(child, SIGTERM);
    int status = 0;
    waitpid(child, &status, 0);
    return std::chrono::duration<double>(end - begin).count();
}

/** The first start asks for the user's name; it is not what is measured. */
void WriteUserDetails(const std::string& profile) {
    const pw::Places places = pw::FindPlaces(profile);
    const auto hive = pw::MakeFileHive(
        pw::ToNativePath(pw::BuildPath(places.configFolder, pw::kSettingsFile)), nullptr);
    const std::string key = std::string(pw::kSettingsKey) + "\\General";
    for (const auto& [name, value] : {std::pair{"First Name", "Ann"},
                                      {"Last Name", "Smith"},
                                      {"User E-mail", "ann@example.org"}}) {
        if (!hive->Set(pw::kUserRoot, key, name, std::string(value))) {
            throw std::runtime_error("the profile can not be written");
        }
    }
}

}  // namespace

int main() {
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("pw-start-" + std::to_string(getpid()));
    fs::create_directories(folder);
    const fs::path page = folder / "page.htm";
    {
        std::ofstream out(page);
        out << "<html><head><title>Start</title></head><body>";
        for (int i = 0; i < 200; ++i) {
            out << "<p>Paragraph " << i << " with <b>some</b> text to lay out.</p>\n";
        }
        out << "</body></html>";
    }
    setenv("PAGEWICK_REPORT_READY", "1", 1);
    const std::string profile = (folder / "profile").string();
    WriteUserDetails(profile);
    constexpr int kRuns = 7;
    std::vector<double> ours;
    std::vector<double> rival;
    for (int run = 0; run <= kRuns; ++run) {
        const double program =
            SecondsToReady({PAGEWICK_PROGRAM, "--profile", profile, page.string()});
        const double bare = SecondsToReady({PAGEWICK_BARE_VIEW, page.string()});
        if (run == 0) continue;  // warms the disk's cache and makes the profile
        ours.push_back(program);
        rival.push_back(bare);
    }
    fs::remove_all(folder);
    const double a = pw::bench::median(ours);
    const double b = pw::bench::median(rival);
    std::printf("start to a page ready for typing\t%.3f s\t%.3f s\t%.2f\t1.5\n", a, b, a / b);
    return 0;
}
