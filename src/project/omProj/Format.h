#pragma once
// The project file's numbers, tables and limits; docs/project-file.md tells the layout in words.
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "project/omProj/Results.h"

namespace pw {

constexpr std::uint16_t kFormatVersion = 3;           ///< in `user_version`
constexpr std::uint16_t kOldestFormat = 2;            ///< that is read
constexpr std::uint32_t kProjectId = 0x50577072;      ///< "PWpr", in `application_id`
constexpr std::uint32_t kJournalId = 0x50577472;      ///< "PWtr": a tree without files
constexpr std::int64_t kPartSize = 4 << 20;           ///< most bytes of a file in one row
constexpr std::int64_t kPartsPerFile = 1024;          ///< rows reserved for each file
constexpr std::int64_t kMaximumFileSize = 1LL << 32;  ///< of one page or media file
constexpr std::string_view kTemplateKey = "T";        ///< the default template's key in the file
constexpr std::string_view kProjectOwner = "";        ///< owner of the project's own attachments

/** Why reading or writing a project file stops. Thrown inside this folder only. */
struct ProjectFailure {
    ProjectFailure(ProjectResult why, std::string text = {})
        : result(why), message(text.empty() ? Describe(why) : std::move(text)) {}
    ProjectResult result;
    std::string message;
};

/** Runs a routine and turns whatever it throws into a result. */
template <class Body>
ProjectFailure Guard(Body body) {
    try {
        body();
        return ProjectFailure(ProjectResult::Success);
    } catch (const ProjectFailure& failure) {
        return failure;
    } catch (const std::exception& error) {
        return ProjectFailure(ProjectResult::Failed,
                              Describe(ProjectResult::Failed) + " (" + error.what() + ")");
    }
}

struct TableDefinition {
    std::string name;
    std::string sql;  ///< as `sqlite_schema` holds it
};
/** All tables of a file of that format. A file whose schema is not exactly this is not opened. */
const std::vector<TableDefinition>& TablesOfFormat(std::uint32_t version = kFormatVersion);

/** What a system error number means for a project. */
ProjectResult ResultOfErrno(int error);
/** A file's name as messages show it: in quotes, in the system's own form. */
std::string Quoted(std::string_view path);

}  // namespace pw
