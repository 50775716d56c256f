#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <map>
#include <thread>

#include "platform/SystemInfo.h"
#include "support/TemporaryFolder.h"

namespace pw {
namespace {

using test::TemporaryFolder;

/** Sets variables of the environment for the length of a scope. */
class Environment {
  public:
    using Variables = std::map<std::string, std::string>;
    explicit Environment(const Variables& variables) {
        for (const auto& [name, value] : variables) {
            const char* old = std::getenv(name.c_str());
            if (old) old_[name] = old;
            names_.push_back(name);
            if (value.empty())
                ::unsetenv(name.c_str());
            else
                ::setenv(name.c_str(), value.c_str(), 1);
        }
    }
    ~Environment() {
        for (const auto& name : names_) {
            if (old_.count(name) > 0)
                ::setenv(name.c_str(), old_[name].c_str(), 1);
            else
                ::unsetenv(name.c_str());
        }
    }

  private:
    std::vector<std::string> names_;
    Variables old_;
};

unsigned ModeOf(const std::string& path) {
    struct stat status {};
    ::stat(ToNativePath(path).c_str(), &status);
    return status.st_mode & 0777;
}

TEST(Places, FollowTheDesktopsConvention) {
    const TemporaryFolder folder;
    folder.Put("home\\.config\\user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    folder.Put("home\\Papers\\a.txt", "");
    const Environment environment(Environment::Variables{{"HOME", folder.Native("home")},
                                                         {"XDG_CONFIG_HOME", ""},
                                                         {"XDG_DATA_HOME", folder.Native("data")},
                                                         {"XDG_CACHE_HOME", "not/absolute"}});
    const Places places = FindPlaces("");
    EXPECT_EQ(places.configFolder, folder.Path("home\\.config\\pagewick"));
    EXPECT_EQ(places.dataFolder, folder.Path("data\\pagewick"));
    EXPECT_EQ(places.temporaryFolder, folder.Path("home\\.cache\\pagewick"));
    EXPECT_EQ(places.documentsFolder, folder.Path("home\\Papers"));
    EXPECT_EQ(ModeOf(places.configFolder), 0700u);
    EXPECT_EQ(ModeOf(places.temporaryFolder), 0700u);
    EXPECT_TRUE(folder.Has("data\\pagewick"));
    EXPECT_EQ(places.lockFolder.find(folder.Path()), std::string::npos)
        << "two programs with different environments must meet";
}

TEST(Places, AProfileMovesAllOfTheUsers) {
    const TemporaryFolder folder;
    const Places places = FindPlaces(folder.Native("profile/"));
    for (const auto& place :
         {places.configFolder, places.dataFolder, places.temporaryFolder, places.documentsFolder}) {
        EXPECT_EQ(place.find(folder.Path("profile\\")), 0u) << place;
        EXPECT_NE(ModeOf(place), 0u) << place;
    }
    EXPECT_EQ(places.lockFolder, FindPlaces("").lockFolder);
}

TEST(SystemClock, CountsLocalDays) {
    const Environment environment(Environment::Variables{{"TZ", "XXX-13"}});
    ::tzset();
    const auto clock = MakeSystemClock();
    const double utc = 25569 + double(::time(nullptr)) / 86400;
    EXPECT_NEAR(clock->Now(), utc + 13.0 / 24, 3.0 / 86400);
    const double before = clock->MonotonicSeconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_GT(clock->MonotonicSeconds(), before);
}

TEST(Launcher, StartsProgramsThatExist) {
    const TemporaryFolder folder;
    const auto launcher = MakeLauncher();
    folder.Put("touch.sh", "#!/bin/sh\necho \"$1\" > \"" + folder.Native("out") + ".part\"; mv \"" +
                               folder.Native("out") + ".part\" \"" + folder.Native("out") + "\"\n");
    ::chmod(folder.Native("touch.sh").c_str(), 0700);
    EXPECT_TRUE(launcher->Start(folder.Path("touch.sh"), "\\tmp\\a page.html"));
    for (int i = 0; i < 500 && !folder.Has("out"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(folder.Get("out"), "/tmp/a page.html\n");
    EXPECT_FALSE(launcher->Start(folder.Path("none"), ""));
    EXPECT_FALSE(launcher->Start("", "x"));
    for (const char* url : {"", "--help", "www.example.com", ":x"})
        EXPECT_FALSE(launcher->OpenUrl(url)) << url;
}

}  // namespace
}  // namespace pw
