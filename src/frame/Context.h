#pragma once
// What every floor may know: the world outside, by reference, and the objects of the whole run.
#include <string>

#include "frame/Branding.h"
#include "frame/ErrorLog.h"
#include "frame/Settings.h"
#include "frame/Versions.h"
#include "platform/Clipboard.h"
#include "platform/DialogHost.h"
#include "platform/FileSystem.h"
#include "platform/MessageLoop.h"
#include "platform/SettingsHive.h"
#include "platform/SystemInfo.h"

namespace pw {

constexpr const char* kApplicationTitle = "Pagewick";

/** The outer world; whoever makes the context owns these and keeps them longer than it. */
struct World {
    FileSystem& files;
    SettingsHive& hive;
    Clock& clock;
    SystemInfo& system;
    MessageLoop& loop;
    DialogHost& dialogs;
    Clipboard& clipboard;
    Launcher& launcher;
};

struct FrameContext {
    FrameContext(const World& world, Places where)
        : files(world.files),
          hive(world.hive),
          clock(world.clock),
          system(world.system),
          loop(world.loop),
          dialogs(world.dialogs),
          clipboard(world.clipboard),
          launcher(world.launcher),
          places(std::move(where)),
          brand(world.files, kApplicationTitle),
          errorLog(*this),
          faults(*this) {
        dialogs.SetFaults(&faults);
    }
    ~FrameContext() {
        if (dialogs.Faults() == &faults) dialogs.SetFaults(nullptr);
    }
    FrameContext(const FrameContext&) = delete;
    FrameContext& operator=(const FrameContext&) = delete;

    FileSystem& files;
    SettingsHive& hive;
    Clock& clock;
    SystemInfo& system;
    MessageLoop& loop;
    DialogHost& dialogs;
    Clipboard& clipboard;
    Launcher& launcher;

    Places places;
    /** This run's own folder below the temporary folder; the scratch root lies in it. */
    std::string runFolder;
    std::string helpFile;
    const std::string applicationTitle = kApplicationTitle;
    const Version version = ProgramVersion();

    Settings settings;
    CBrand brand;
    ErrorLog errorLog;
    FaultReport faults;
};

}  // namespace pw
