#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "platform/SystemInfo.h"
#include "platform/Text.h"
#include "platform/posix/Home.h"

namespace pw {

namespace {

/** The text behind the colon of the first line that begins with `label`. */
std::string LineOfFile(const char* file, std::string_view label) {
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line)) {
        if (line.compare(0, label.size(), label) != 0) continue;
        const auto colon = line.find(':');
        return Trim(colon == line.npos ? line : line.substr(colon + 1));
    }
    return "";
}

bool ReachesBeyondThisMachine(const ifaddrs& interface) {
    constexpr unsigned up = IFF_UP | IFF_RUNNING;
    if ((interface.ifa_flags & up) != up || (interface.ifa_flags & IFF_LOOPBACK)) return false;
    if (!interface.ifa_addr) return false;
    if (interface.ifa_addr->sa_family == AF_INET) return true;
    if (interface.ifa_addr->sa_family != AF_INET6) return false;
    const auto& address = reinterpret_cast<const sockaddr_in6*>(interface.ifa_addr)->sin6_addr;
    return !IN6_IS_ADDR_LINKLOCAL(&address);
}

class PosixSystemInfo : public SystemInfo {
  public:
    std::string ComputerName() const override {
        char name[256] = {};
        return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
    }

    std::string UserName() const override {
        const passwd* user = ::getpwuid(::geteuid());
        return user && user->pw_name ? user->pw_name : std::to_string(::geteuid());
    }

    std::string Language() const override {
        // In the order in which the system looks: "de_AT.UTF-8", "C", "pt_BR@euro".
        for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
            const char* value = std::getenv(name);
            if (!value || !*value) continue;
            std::string language(value);
            language.resize(std::min(language.find_first_of("_.@"), language.size()));
            const bool isName = (language.size() == 2 || language.size() == 3) &&
                                std::all_of(language.begin(), language.end(),
                                            [](char c) { return c >= 'a' && c <= 'z'; });
            return isName ? language : "en";
        }
        return "en";
    }
    std::string OSName() const override {
        utsname system{};
        if (::uname(&system) != 0) return "";
        return std::string(system.sysname) + " " + system.release;
    }

    bool IsOnline() const override {
        ifaddrs* first = nullptr;
        if (::getifaddrs(&first) != 0) return false;
        bool online = false;
        for (const ifaddrs* at = first; at && !online; at = at->ifa_next)
            online = ReachesBeyondThisMachine(*at);
        ::freeifaddrs(first);
        return online;
    }

    MachineFacts Machine() const override {
        MachineFacts facts;
        utsname system{};
        if (::uname(&system) == 0) facts.processor = system.machine;
        facts.processorModel = LineOfFile("/proc/cpuinfo", "model name");
        facts.processors = int(std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN)));
        facts.pageSize = std::uint64_t(std::max(0L, ::sysconf(_SC_PAGESIZE)));
        facts.lowestAddress =
            std::strtoull(LineOfFile("/proc/sys/vm/mmap_min_addr", "").c_str(), nullptr, 10);
        // The lower half of the 48 bits that processors of 64 bits translate belongs to programs.
        facts.highestAddress =
            sizeof(void*) == 8 ? 0x7FFFFFFFFFFFull - facts.pageSize : 0xBFFFFFFFull;
        struct statvfs disk {};
        if (::statvfs(NativeHome().c_str(), &disk) == 0)
            facts.diskFree = std::uint64_t(disk.f_bavail) * disk.f_frsize;
        return facts;
    }

    std::vector<EnvironmentFact> EnvironmentFacts() const override {
        std::vector<EnvironmentFact> facts;
        for (const char* name :
             {"LANG", "XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE", "QT_QPA_PLATFORM"}) {
            if (const char* value = std::getenv(name)) facts.push_back({name, value});
        }
        return facts;
    }
};

}  // namespace

std::unique_ptr<SystemInfo> MakeSystemInfo() {
    return std::make_unique<PosixSystemInfo>();
}

}  // namespace pw
