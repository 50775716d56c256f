#pragma once
// Facts about the machine, the user, the time and the places of the program.
#include <memory>
#include <string>

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

class SystemInfo {
  public:
    virtual ~SystemInfo() = default;
    virtual std::string ComputerName() const = 0;
    virtual std::string UserName() const = 0;  ///< login name
    virtual std::string OSName() const = 0;    ///< kernel name, version
    virtual bool IsOnline() const = 0;         ///< some interface but loopback is up
};
std::unique_ptr<SystemInfo> MakeSystemInfo();

/** Where things lie; all with backslashes. Given a profile folder, every user place is below it. */
struct Places {
    std::string programFolder;    ///< read-only data of the installation
    std::string configFolder;     ///< the settings hive
    std::string dataFolder;       ///< what the user owns: projects, templates, themes …
    std::string temporaryFolder;  ///< private to the user; run folders lie in it
    std::string documentsFolder;  ///< where file dialogs begin
};
/** `profile` is a native path or "". Makes the user folders, private ones with mode 0700. */
Places FindPlaces(const std::string& profile);

/** Starts a program with arguments, detached; false when it cannot be started. */
class Launcher {
  public:
    virtual ~Launcher() = default;
    virtual bool Start(const std::string& program, const std::string& argument) = 0;
    virtual bool OpenUrl(const std::string& url) = 0;
};

}  // namespace pw
