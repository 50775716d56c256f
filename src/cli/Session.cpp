#include "cli/Session.h"

#include <filesystem>
#include <iostream>

#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "frame/FunctionLibrary.h"
#include "frame/SaveQuestion.h"
#include "frame/Settings.h"
#include "frame/Startup.h"
#include "project/Lifecycle.h"
#include "project/Recovery.h"
#include "project/References.h"
#include "project/Scratch.h"

namespace pw::cli {

namespace {

std::string HiveFile(const Places& places) {
    return ToNativePath(BuildPath(places.configFolder, kSettingsFile));
}

}  // namespace

std::string PathFromArgument(const std::string& argument) {
    if (argument.find('\\') != argument.npos)
        throw CommandFailure{"'" + argument +
                             "' has a backslash in its name, which can not be used here. "
                             "Please rename it."};
    if (argument.empty()) throw CommandFailure{"An empty name is no file."};
    std::error_code error;
    const auto absolute = std::filesystem::absolute(argument, error);
    return NormalizePath(FromNativePath(error ? argument : absolute.string()));
}

std::string ProjectFromArgument(const std::string& argument) {
    const std::string path = PathFromArgument(argument);
    const auto files = MakePosixFileSystem();
    const std::string whole = WithExtension(path, kProjectExtension);
    return !FileExists(*files, path) && FileExists(*files, whole) ? whole : path;
}

Session::Session(const std::string& profile)
    : files_(MakePosixFileSystem()),
      clock_(MakeSystemClock()),
      system_(MakeSystemInfo()),
      launcher_(MakeLauncher()),
      dialogs_(std::cerr) {
    files_->isCancelled = IsInterrupted;
    const Places places = FindPlaces(profile);
    std::string message;
    hive_ = MakeFileHive(HiveFile(places), &message);
    if (!message.empty()) std::cerr << message << "\n";
    frame_ = std::make_unique<FrameContext>(
        World{*files_, *hive_, *clock_, *system_, loop_, dialogs_, clipboard_, *launcher_}, places);
    ReadSettings(*frame_);
    runFolder_ = RunFolder::Create(*files_, places.temporaryFolder);
    if (!runFolder_)
        throw CommandFailure{"No working folder can be made in '" +
                             ToNativePath(places.temporaryFolder) + "'."};
    frame_->runFolder = runFolder_->Path();
    // What a run that was killed has left.
    SweepAbandonedRuns(*frame_);
    project_ = std::make_unique<pw::Project>(*files_);
    project_->Initialize(kAccessCode, frame_->version.major, frame_->version.minor);
    project_->ProjectProgressChanged = [](int value) {
        // At the end everything is written: too late to say that nothing was changed.
        if (value < 100) ThrowIfInterrupted();
        ShowProgress("Project", value, 100);
    };
    project_->LogMessage = [](const std::string&, const std::string& text) {
        std::cerr << text << "\n";
    };
    context_ = std::make_unique<ProjectContext>(*frame_, *project_, workspace_);
    if (!CreateWorkingFolders(*frame_))
        throw CommandFailure{"The working folder can not be made in '" +
                             ToNativePath(frame_->runFolder) + "'."};
}

Session::~Session() {
    context_.reset();
    project_.reset();
    if (runFolder_ && runFolder_->Remove() != FileError::None)
        std::cerr << "The working folder '" << ToNativePath(runFolder_->Path())
                  << "' could not be removed.\n";
}

void Session::NewProject(const std::string& file, const std::string& name) {
    if (files_->Stat(file).exists)
        throw CommandFailure{"'" + ToNativePath(file) + "' exists already."};
    InitNewProject(*context_);
    project_->Name = name;
    project_->IsLoaded = true;
    frame_->settings.ProjectFilename = file;
}

void Session::Open(const std::string& file) {
    const bool isOpen = OpenProject(*context_, file, Silent::No);
    EndProgress();
    ThrowIfInterrupted();
    if (!isOpen) throw CommandFailure{};
}

void Session::Save() {
    ThrowIfInterrupted();
    const bool isSaved = SaveProject(*context_, Proceed::Save, Silent::No);
    EndProgress();
    if (!isSaved) ThrowIfInterrupted();
    if (!isSaved) throw CommandFailure{};
}

}  // namespace pw::cli
