#pragma once
// A whole context for a test in one line: `TestContext test;` and then `test.frame`. Files and
// folders are real and lie in a temporary profile; the hive is in memory, the clock stands still.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/headless/HeadlessDialogHost.h"
#include "platform/headless/HeadlessMessageLoop.h"
#include "platform/headless/MemoryClipboard.h"
#include "support/RefusingHive.h"
#include "support/TemporaryFolder.h"

namespace pw::test {

class SettableClock : public Clock {
  public:
    DateTime Now() const override { return now; }
    double MonotonicSeconds() const override { return seconds; }

    DateTime now = MakeDate(2026, 11, 22, 9, 30, 0);
    double seconds = 0;
};

class RecordingLauncher : public Launcher {
  public:
    bool Start(const std::string& program, const std::string& argument) override {
        started.emplace_back(program, argument);
        return works;
    }
    bool OpenUrl(const std::string& url) override {
        urls.push_back(url);
        return works;
    }

    std::vector<std::pair<std::string, std::string>> started;
    std::vector<std::string> urls;
    bool works = true;
};

struct TestContext {
    TestContext() {
        ReadSettings(frame);
        frame.runFolder = BuildPath(frame.places.temporaryFolder, "run-test");
        for (const auto& made : {frame.runFolder, frame.settings.ProjectsFolder})
            EXPECT_TRUE(MakeFolder(*files, made)) << made;
    }
    ~TestContext() { EXPECT_EQ(dialogs.Pending(), 0u) << "answers that no question has asked for"; }

    TemporaryFolder folder;
    std::unique_ptr<FileSystem> files = MakePosixFileSystem();
    std::unique_ptr<RefusingHive> hive = std::make_unique<RefusingHive>();
    std::unique_ptr<SystemInfo> system = MakeSystemInfo();
    SettableClock clock;
    HeadlessMessageLoop loop;
    HeadlessDialogHost dialogs{[](const std::string& question) {
        ADD_FAILURE() << "a question that the test does not answer: " << question;
    }};
    MemoryClipboard clipboard;
    RecordingLauncher launcher;
    FrameContext frame{{*files, *hive, clock, *system, loop, dialogs, clipboard, launcher},
                       TestPlaces(folder)};

  private:
    static Places TestPlaces(const TemporaryFolder& folder) {
        Places places = FindPlaces(folder.Native("profile"));
        places.lockFolder = folder.Path("locks");
        return places;
    }
};

}  // namespace pw::test
