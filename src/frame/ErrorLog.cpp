#include "frame/ErrorLog.h"

#include <new>

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
        const std::string& folder = context_.settings.ProjectsFolder;
        if (folder.empty() || !FolderExists(context_.files, folder)) return;
        WriteTextFile(context_.files, Record(customText, failure), BuildPath(folder, "error.log"),
                      WriteMode::Append);
    } catch (...) {
    }
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

}  // namespace pw
