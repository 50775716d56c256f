#include "project/omProj/Database.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <map>

#include "platform/Text.h"
#include "platform/posix/Descriptor.h"
#include "project/omProj/Format.h"

namespace pw {
namespace {

constexpr int kBusyMilliseconds = 3000;
constexpr int kLongestValue = 64 << 20;  // bytes; no part and no text comes near

constexpr std::size_t kHeaderSize = 100;
constexpr char kMagic[] = "SQLite format 3";

std::uint32_t BigEndian(const unsigned char* at) {
    return std::uint32_t{at[0]} << 24 | at[1] << 16 | at[2] << 8 | at[3];
}

ProjectResult ResultOfCode(int code, int systemError) {
    switch (code & 0xFF) {
        case SQLITE_FULL:
            return ProjectResult::DiskFull;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return ProjectResult::InUse;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return ProjectResult::NoPermission;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_SCHEMA:
        case SQLITE_MISMATCH:
        case SQLITE_FORMAT:
            return ProjectResult::Damaged;
        case SQLITE_TOOBIG:
            return ProjectResult::TooLarge;
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:
            return systemError ? ResultOfErrno(systemError) : ProjectResult::IOError;
        default:
            return ProjectResult::Failed;
    }
}

/**
 * The database library's own access to the disk, but blind to write-ahead logs. A project never has
 * one; but the library would read any that lies beside the file, whatever its header says, and a
 * stranger's would be taken for the newest state of the project.
 */
const char* DiskWithoutLogs() {
    static constexpr const char* kName = "pagewick";
    static sqlite3_vfs* base = nullptr;
    static sqlite3_vfs blind = {};
    sqlite3_vfs* current = sqlite3_vfs_find(nullptr);
    if (base == current && blind.pAppData == current->pAppData) return kName;
    if (base) sqlite3_vfs_unregister(&blind);
    base = current;
    blind = *base;
    blind.pNext = nullptr;
    blind.zName = kName;
    blind.xAccess = [](sqlite3_vfs*, const char* name, int flags, int* out) {
        if (!std::string_view(name).ends_with("-wal")) return base->xAccess(base, name, flags, out);
        *out = 0;
        return SQLITE_OK;
    };
    sqlite3_vfs_register(&blind, 0);
    return kName;
}

/**
 * The library takes a page that the disk failed to read for a damaged one. What it keeps of the
 * last failed call tells the two apart.
 */
int ReadFailure(sqlite3* handle, int code) {
    const int kind = code & 0xFF;
    if (!handle || (kind != SQLITE_CORRUPT && kind != SQLITE_NOTADB)) return 0;
    int error = 0;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_LAST_ERRNO, &error);
    return error == EIO || error == ENXIO || error == ERANGE ? error : 0;
}

}  // namespace

// Statements
// ---------------------------------------------------------------------------------------

ProjectStatement::ProjectStatement(ProjectDatabase& database, std::string_view sql)
    : database_(database) {
    const int code = sqlite3_prepare_v3(database.Handle(), sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement_, nullptr);
    if (code != SQLITE_OK) database.Fail(code);
}

ProjectStatement::~ProjectStatement() {
    sqlite3_finalize(statement_);
}

ProjectStatement& ProjectStatement::Bind(std::string_view text) {
    // A null pointer would mean no value at all.
    sqlite3_bind_text64(statement_, ++bound_, text.data() ? text.data() : "", text.size(),
                        SQLITE_STATIC, SQLITE_UTF8);
    return *this;
}

ProjectStatement& ProjectStatement::Bind(std::int64_t number) {
    sqlite3_bind_int64(statement_, ++bound_, number);
    return *this;
}

ProjectStatement& ProjectStatement::Bind(double number) {
    sqlite3_bind_double(statement_, ++bound_, std::isfinite(number) ? number : 0);
    return *this;
}

ProjectStatement& ProjectStatement::BindBlob(std::string_view bytes) {
    sqlite3_bind_blob64(statement_, ++bound_, bytes.data() ? bytes.data() : "", bytes.size(),
                        SQLITE_STATIC);
    return *this;
}

bool ProjectStatement::Next() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    const bool done = code == SQLITE_DONE;
    Reset();
    if (!done) database_.Fail(code);
    return false;
}

void ProjectStatement::Run() {
    while (Next()) {
    }
}

void ProjectStatement::Reset() {
    sqlite3_reset(statement_);
    bound_ = 0;
}

std::string_view ProjectStatement::Text(int column) const {
    if (sqlite3_column_type(statement_, column) != SQLITE_TEXT)
        throw ProjectFailure(ProjectResult::Damaged);
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {text ? text : "", static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::int64_t ProjectStatement::Integer(int column) const {
    if (sqlite3_column_type(statement_, column) != SQLITE_INTEGER)
        throw ProjectFailure(ProjectResult::Damaged);
    return sqlite3_column_int64(statement_, column);
}

double ProjectStatement::Real(int column) const {
    const int type = sqlite3_column_type(statement_, column);
    if (type != SQLITE_FLOAT && type != SQLITE_INTEGER)
        throw ProjectFailure(ProjectResult::Damaged);
    return sqlite3_column_double(statement_, column);
}

std::string_view ProjectStatement::Blob(int column) const {
    if (sqlite3_column_type(statement_, column) != SQLITE_BLOB)
        throw ProjectFailure(ProjectResult::Damaged);
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
    const int size = sqlite3_column_bytes(statement_, column);
    if (!bytes && size > 0) database_.Fail(SQLITE_NOMEM);
    return {bytes ? bytes : "", static_cast<std::size_t>(size)};
}

// Databases
// ----------------------------------------------------------------------------------------

ProjectDatabase::ProjectDatabase(const std::string& nativePath, Mode mode, int pageSize) {
    try {
        Open(nativePath, mode);
        if (mode == Mode::Create) {
            Execute("PRAGMA page_size=" + std::to_string(pageSize));
            Execute("PRAGMA journal_mode=OFF");
            Execute("PRAGMA synchronous=OFF");
            Execute("PRAGMA locking_mode=EXCLUSIVE");
        } else {
            sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
            Execute("PRAGMA synchronous=FULL");
            Execute("PRAGMA journal_mode=DELETE");
            // What a user removed shall not travel on in the gaps of the file.
            Execute("PRAGMA secure_delete=FAST");
        }
    } catch (...) {
        Close();
        throw;
    }
}

ProjectDatabase::~ProjectDatabase() {
    Close();
}

void ProjectDatabase::Open(const std::string& nativePath, Mode mode) {
    const int flags = mode == Mode::Read     ? SQLITE_OPEN_READONLY
                      : mode == Mode::Update ? SQLITE_OPEN_READWRITE
                                             : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    const auto openWith = [&](int with) {
        const int code = sqlite3_open_v2(nativePath.c_str(), &handle_,
                                         with | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE,
                                         DiskWithoutLogs());
        if (code != SQLITE_OK) Fail(code);
        sqlite3_extended_result_codes(handle_, 1);
        sqlite3_busy_timeout(handle_, kBusyMilliseconds);
        sqlite3_limit(handle_, SQLITE_LIMIT_LENGTH, kLongestValue);
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
        Execute("PRAGMA cell_size_check=ON");
        Execute("PRAGMA mmap_size=0");
        Execute("PRAGMA temp_store=MEMORY");
    };
    openWith(flags);
    if (mode != Mode::Read) return;
    // A file that a crash left in the middle of a save is put back first, which takes writing.
    const int code =
        sqlite3_exec(handle_, "SELECT 1 FROM sqlite_schema", nullptr, nullptr, nullptr);
    if (code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY) {
        Close();
        openWith(SQLITE_OPEN_READWRITE);
    } else if (code != SQLITE_OK) {
        Fail(code);
    }
}

void ProjectDatabase::Close() {
    sqlite3_close_v2(handle_);
    handle_ = nullptr;
}

void ProjectDatabase::Execute(std::string_view sql) {
    const int code = sqlite3_exec(handle_, std::string(sql).c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Fail(code);
}

std::int64_t ProjectDatabase::Number(std::string_view sql) {
    ProjectStatement statement(*this, sql);
    return statement.Next() ? statement.Integer(0) : 0;
}

void ProjectDatabase::CheckSchema() {
    std::map<std::string, std::string, std::less<>> expected;
    const auto version = static_cast<std::uint32_t>(Number("PRAGMA user_version"));
    for (const TableDefinition& table : TablesOfFormat(version))
        expected.emplace(table.name, table.sql);
    ProjectStatement rows(*this, "SELECT type, name, sql FROM sqlite_schema");
    std::size_t found = 0;
    while (rows.Next()) {
        const auto table = expected.find(rows.Text(1));
        if (rows.Text(0) != "table" || table == expected.end() || table->second != rows.Text(2))
            throw ProjectFailure(ProjectResult::Damaged);
        ++found;
    }
    if (found != expected.size()) throw ProjectFailure(ProjectResult::Damaged);
}

void ProjectDatabase::CreateSchema(std::uint32_t applicationId) {
    Execute("PRAGMA application_id=" + std::to_string(applicationId));
    Execute("PRAGMA user_version=" + std::to_string(kFormatVersion));
    for (const TableDefinition& table : TablesOfFormat())
        Execute(table.sql);
}

void ProjectDatabase::Rollback() noexcept {
    if (handle_ && !sqlite3_get_autocommit(handle_))
        sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
}

void ProjectDatabase::Fail(int code) const {
    const int unread = ReadFailure(handle_, code);
    const int full = unread    ? SQLITE_IOERR_READ
                     : handle_ ? sqlite3_extended_errcode(handle_)
                               : code;
    const int systemError = unread ? unread : handle_ ? sqlite3_system_errno(handle_) : 0;
    const ProjectResult result = ResultOfCode(unread ? full : code, systemError);
    std::string message = Describe(result, systemError);
    if (result == ProjectResult::Failed || result == ProjectResult::IOError) {
        message += " (";
        message += sqlite3_errstr(full ? full : code);
        if (systemError) message.append(", ").append(std::strerror(systemError));
        message += ")";
    }
    throw ProjectFailure(result, message);
}

// Marks
// --------------------------------------------------------------------------------------------

std::string FileMark::Text() const {
    std::string text;
    for (const std::int64_t part : {std::int64_t(device), std::int64_t(inode), size, modified})
        text += std::to_string(part) + " ";
    return text + std::to_string(changes);
}

FileMark FileMark::FromText(std::string_view text) {
    const std::vector<std::string> parts = Split(text, ' ');
    std::int64_t numbers[5] = {};
    if (parts.size() != std::size(numbers)) return {};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const char* end = parts[i].data() + parts[i].size();
        const auto read = std::from_chars(parts[i].data(), end, numbers[i]);
        if (read.ec != std::errc() || read.ptr != end) return {};
    }
    return {std::uint64_t(numbers[0]), std::uint64_t(numbers[1]), numbers[2], numbers[3],
            std::uint32_t(numbers[4])};
}

// The first bytes
// ----------------------------------------------------------------------------------

ProjectFileHeader CheckHeader(const std::string& nativePath, std::uint32_t applicationId) {
    const Descriptor file(
        Repeat([&] { return open(nativePath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
    if (!file)
        throw ProjectFailure(errno == ENOENT || errno == ENOTDIR ? ProjectResult::NotFound
                                                                 : ResultOfErrno(errno));
    struct stat state = {};
    unsigned char bytes[kHeaderSize] = {};
    const bool regular = fstat(file.Get(), &state) == 0 && S_ISREG(state.st_mode);
    ssize_t got = 0;
    for (ssize_t more = regular ? 1 : 0; more > 0 && got < ssize_t{sizeof bytes}; got += more) {
        more = Repeat(
            [&] { return pread(file.Get(), bytes + got, sizeof bytes - std::size_t(got), got); });
        if (more < 0) throw ProjectFailure(ResultOfErrno(errno));
    }

    ProjectFileHeader header;
    const bool magic = got >= 16 && std::memcmp(bytes, kMagic, sizeof kMagic) == 0;
    if (!magic) throw ProjectFailure(ProjectResult::NotAProject);
    if (got < static_cast<ssize_t>(sizeof bytes)) throw ProjectFailure(ProjectResult::Damaged);
    header.mark = {state.st_dev, state.st_ino, state.st_size,
                   std::int64_t{state.st_mtim.tv_sec} * 1'000'000'000 + state.st_mtim.tv_nsec,
                   BigEndian(bytes + 24)};
    header.applicationId = BigEndian(bytes + 68);
    header.formatVersion = BigEndian(bytes + 60);
    header.pageSize = bytes[16] << 8 | bytes[17];
    if (header.pageSize == 1) header.pageSize = 65536;
    header.fileSize = state.st_size;
    if (header.applicationId != applicationId) throw ProjectFailure(ProjectResult::NotAProject);
    if (header.formatVersion < kOldestFormat) throw ProjectFailure(ProjectResult::OlderFormat);
    if (header.formatVersion > kFormatVersion) throw ProjectFailure(ProjectResult::NewerFormat);
    // A write-ahead log would be made beside the file by merely looking at it.
    if (bytes[18] != 1 || bytes[19] != 1) throw ProjectFailure(ProjectResult::Damaged);
    return header;
}

}  // namespace pw
