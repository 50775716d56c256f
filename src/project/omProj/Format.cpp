#include "project/omProj/Format.h"

#include <cerrno>

#include "platform/FileSystem.h"
#include "platform/Text.h"
#include "project/omProj/Fields.h"

namespace pw {
namespace {

/** Collects the columns of a record. */
struct ColumnList {
    std::string sql;
    void operator()(const char* name, const std::string&) { Add(name, "TEXT"); }
    void operator()(const char* name, double) { Add(name, "REAL"); }
    void operator()(const char* name, bool) { Add(name, "INTEGER"); }
    void operator()(const char* name, int) { Add(name, "INTEGER"); }
    void operator()(const char* name, std::int64_t) { Add(name, "INTEGER"); }
    void Add(const char* name, const char* type) {
        sql.append(", ").append(name).append(" ").append(type).append(" NOT NULL");
    }
};

template <class Record>
TableDefinition Table(const char* name, const char* keys, const char* primaryKey,
                      const Record& sample) {
    ColumnList columns;
    VisitFields(columns, sample);
    return {name, std::string("CREATE TABLE ") + name + "(" + keys + columns.sql +
                      ", PRIMARY KEY(" + primaryKey + ")) STRICT, WITHOUT ROWID"};
}

std::vector<TableDefinition> MakeTables() {
    TreeContext tree;
    pw::Attachments attachments("");
    const char* counters =
        "key TEXT NOT NULL, next_page INTEGER NOT NULL, next_folder INTEGER NOT NULL";
    const char* folder =
        "key TEXT NOT NULL, next_page INTEGER NOT NULL, next_folder INTEGER NOT NULL, "
        "working_folder TEXT NOT NULL";
    const char* page =
        "key TEXT NOT NULL, digest INTEGER NOT NULL, filename TEXT NOT NULL, "
        "next_attachment INTEGER NOT NULL, is_open INTEGER NOT NULL";
    return {
        {"header",
         "CREATE TABLE header(name TEXT NOT NULL PRIMARY KEY, value ANY) STRICT, WITHOUT ROWID"},
        Table("site", counters, "key", WebSite(tree, "", 0)),
        Table("folder", folder, "key", Folder(tree, "", 0)),
        Table("page", page, "key", Page("", 0)),
        Table("attachment", "owner TEXT NOT NULL, number INTEGER NOT NULL, filename TEXT NOT NULL",
              "owner, number", Attachment(attachments, "", 0, "")),
        Table("meta_tag", "owner TEXT NOT NULL, position INTEGER NOT NULL", "owner, position",
              MetaTag()),
        Table("form", "owner TEXT NOT NULL, position INTEGER NOT NULL", "owner, position",
              FormRecord()),
        Table("form_field", "owner TEXT NOT NULL, form INTEGER NOT NULL, position INTEGER NOT NULL",
              "owner, form, position", FormField()),
        Table("merge_variable", "position INTEGER NOT NULL", "position", MergeVariable()),
        Table("task", "position INTEGER NOT NULL, key TEXT NOT NULL", "position", Task("")),
        Table("publish_record", "position INTEGER NOT NULL", "position", PublishRecord()),
        Table("add_in", "position INTEGER NOT NULL", "position", AddInRecord()),
        {"file",
         "CREATE TABLE file(id INTEGER PRIMARY KEY, name TEXT NOT NULL, size INTEGER NOT NULL, "
         "modified INTEGER NOT NULL, digest INTEGER NOT NULL) STRICT"},
        {"content", "CREATE TABLE content(id INTEGER PRIMARY KEY, bytes BLOB NOT NULL) STRICT"},
    };
}

}  // namespace

const std::vector<TableDefinition>& TablesOfFormat(std::uint32_t version) {
    static const std::vector<TableDefinition> tables = MakeTables();
    static const std::vector<TableDefinition> tablesOfFormat2 = [] {
        // Attachments did not know yet where they came from.
        std::vector<TableDefinition> older = tables;
        for (TableDefinition& table : older)
            if (table.name == "attachment")
                table.sql = ReplaceAll(table.sql, ", origin INTEGER NOT NULL", "");
        return older;
    }();
    return version == 2 ? tablesOfFormat2 : tables;
}

ProjectResult ResultOfErrno(int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return ProjectResult::DiskFull;
        case EACCES:
        case EPERM:
        case EROFS:
            return ProjectResult::NoPermission;
        default:
            return ProjectResult::IOError;
    }
}

std::string Quoted(std::string_view path) {
    return "'" + ToNativePath(path) + "'";
}

}  // namespace pw
