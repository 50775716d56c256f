#pragma once
// Facts about the machine, the user, the time and the places of the program.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace pw {

/** A date and time as a day count from 1899-12-30; the fraction is the time of day (local). */
using DateTime = double;

class Clock {
  public:
    virtual ~Clock() = default;
    virtual DateTime Now() const = 0;
    virtual double MonotonicSeconds() const = 0;
};
std::unique_ptr<Clock> MakeSystemClock();

/** What an error report tells about the machine. */
struct MachineFacts {
    std::string processor;       ///< family, such as "x86_64"
    std::string processorModel;  ///< as the maker calls it, or ""
    int processors = 1;
    std::uint64_t pageSize = 0;
    std::uint64_t lowestAddress = 0;
    std::uint64_t highestAddress = 0;
    std::uint64_t diskFree = 0;  ///< bytes, on the disk of the user's home
};

struct EnvironmentFact {
    std::string name;
    std::string value;
};

class SystemInfo {
  public:
    virtual ~SystemInfo() = default;
    virtual std::string ComputerName() const = 0;
    virtual std::string UserName() const = 0;  ///< login name
    virtual std::string OSName() const = 0;    ///< kernel name, version
    virtual bool IsOnline() const = 0;         ///< some interface but loopback is up
    /** The language of the user's messages as pages name it, such as "de"; "en" for none. */
    virtual std::string Language() const { return "en"; }
    virtual MachineFacts Machine() const = 0;
    /** What of the environment helps to understand a failure; nothing private. */
    virtual std::vector<EnvironmentFact> EnvironmentFacts() const = 0;
};
std::unique_ptr<SystemInfo> MakeSystemInfo();

/** Where things lie; all with backslashes. Given a profile folder, every user place is below it. */
struct Places {
    std::string programFolder;    ///< read-only data of the installation
    std::string configFolder;     ///< the settings hive
    std::string dataFolder;       ///< what the user owns: projects, templates, themes …
    std::string temporaryFolder;  ///< private to the user; run folders lie in it
    std::string documentsFolder;  ///< where file dialogs begin
    /** For locks among all programs of the user: the one place that a profile does not move. */
    std::string lockFolder;
};
/** `profile` is a native path or "". Makes the user folders, private ones with mode 0700. */
Places FindPlaces(const std::string& profile);

/** Starts programs of the desktop, which run on by themselves. */
class Launcher {
  public:
    virtual ~Launcher() = default;
    /**
     * `program` is a path with backslashes or a name to be looked for in PATH; an argument that
     * begins with a backslash is a path too. False when it cannot be started.
     */
    virtual bool Start(const std::string& program, const std::string& argument) = 0;
    /** By the desktop's own choice of program. False for anything but an address with a scheme. */
    virtual bool OpenUrl(const std::string& url) = 0;
};
std::unique_ptr<Launcher> MakeLauncher();

}  // namespace pw
