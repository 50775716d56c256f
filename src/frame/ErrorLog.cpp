#include "frame/ErrorLog.h"

#include <new>
#include <utility>

#include "frame/Context.h"
#include "frame/FunctionLibrary.h"
#include "platform/Text.h"

namespace pw {

namespace {

constexpr const char* kLineEnd = "\r\n";

/** Values come from exceptions and from the user: a line end in one would forge another line. */
std::string OneLine(std::string_view text) {
    return ReplaceAll(ReplaceAll(text, "\r", " "), "\n", " ");
}

}  // namespace

Failure CurrentFailure() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return {Failure::kOutOfMemory, "Out of memory"};
    } catch (const std::exception& exception) {
        return Failure(exception.what());
    } catch (...) {
        return {Failure::kUnknown, "Unknown failure"};
    }
}

void ErrorLog::LogError(std::string_view customText, int errorNumber, std::string_view moduleDot,
                        std::string_view procedure) {
    LogError(customText, Failure(errorNumber, ""), moduleDot, procedure);
}

void ErrorLog::LogError(std::string_view customText, const Failure& failure,
                        std::string_view moduleDot, std::string_view procedure) {
    // A logger that failed would take the failing routine down with it: it gives up quietly.
    try {
        ++count_;
        lastTag_ = std::string(moduleDot) + std::string(procedure);
        WriteTextFile(context_.files, Record(customText, failure), Path(), WriteMode::Append);
    } catch (...) {
    }
}

std::string ErrorLog::Path() const {
    // COMPAT: the log of the projects folder is the one that is sent along with a publication.
    const std::string& projects = context_.settings.ProjectsFolder;
    const bool stands = !projects.empty() && FolderExists(context_.files, projects);
    return BuildPath(stands ? projects : context_.places.dataFolder, "error.log");
}

std::string ErrorLog::Record(std::string_view customText, const Failure& failure) const {
    std::string record;
    const auto line = [&record](std::string_view label, std::string_view value) {
        record += std::string(label) + OneLine(value) + kLineEnd;
    };
    const Settings& settings = context_.settings;

    line("[ERROR INFO]", "");
    line("Date=", FormatDate(context_.clock.Now(), DateStyle::GeneralDate));
    line("Error=", std::to_string(failure.Number()) + " " + failure.what());
    line("Procedure=", lastTag_);
    line("Custom Error=", customText);

    line("[APP INFO]", "");
    line("Version=", GetVersionString());
    line("Campaign Code=", settings.CampaignCode);
    line("Company=", settings.UserCompany);
    line("E-mail=", settings.UserEmail);
    const auto author = projectAuthor ? projectAuthor() : std::nullopt;
    if (author) line("Author Name=", *author);

    line("[SYSTEM INFO]", "");
    line("Computer=", GetComputerName(context_.system));
    line("User=", GetUserName(context_.system));
    line("", GetOSInfo(context_.system));
    record += GetSystemInfo(context_.system);
    for (const EnvironmentFact& fact : context_.system.EnvironmentFacts())
        line(fact.name + "=", fact.value);
    return record;
}

// --- Handlers -----------------------------------------------------------------------------------

void FaultReport::Log(const std::string& moduleDot, const std::string& procedure) {
    context_.errorLog.LogError("", CurrentFailure(), moduleDot, procedure);
}

void FaultReport::HandlerFailed(const std::string& moduleDot, const std::string& procedure) {
    const Failure failure = CurrentFailure();
    context_.errorLog.LogError("", failure, moduleDot, procedure);
    if (std::exchange(telling_, true)) return;
    // Whoever could not even tell it has at least logged it.
    try {
        Tell(failure);
    } catch (...) {
    }
    telling_ = false;
}

void FaultReport::Tell(const Failure& failure) {
    std::string reason = failure.what();
    if (!reason.empty() && reason.back() != '.') reason += '.';
    context_.dialogs.MsgBox(
        {"This could not be done: something went wrong that was not foreseen.\n\n" + reason +
             "\n\nPlease try again. The error log '" + ToNativePath(context_.errorLog.Path()) +
             "' tells more.",
         context_.brand.FormCaption(), Icon::Stop, Buttons::Ok});
}

}  // namespace pw
