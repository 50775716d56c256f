#pragma once
// The project file as a database: opening it so that a stranger's file can do no harm, and
// statements. Everything throws `ProjectFailure`. Paths are native here.
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace pw {

class ProjectDatabase;

/** A prepared statement; columns count from 0. Text and blobs bound must live until `Run`. */
class ProjectStatement {
  public:
    ProjectStatement(ProjectDatabase& database, std::string_view sql);
    ~ProjectStatement();
    ProjectStatement(const ProjectStatement&) = delete;
    ProjectStatement& operator=(const ProjectStatement&) = delete;

    ProjectStatement& Bind(std::string_view text);
    ProjectStatement& Bind(std::int64_t number);
    ProjectStatement& Bind(double number);
    ProjectStatement& BindBlob(std::string_view bytes);
    /** The next row; false behind the last one, when it is ready to be bound anew. */
    bool Next();
    /** For statements without rows. */
    void Run();
    void Reset();

    /** Each throws `Damaged` when the value is of another type. */
    std::string_view Text(int column) const;
    std::int64_t Integer(int column) const;
    double Real(int column) const;
    std::string_view Blob(int column) const;

  private:
    ProjectDatabase& database_;
    sqlite3_stmt* statement_ = nullptr;
    int bound_ = 0;
};

class ProjectDatabase {
  public:
    enum class Mode {
        Read,    ///< a leftover journal of a crash is rolled back even so
        Update,  ///< an existing file
        Create   ///< a new file that nobody else sees: not synced, no journal
    };
    /** `pageSize` is for `Create`. */
    ProjectDatabase(const std::string& nativePath, Mode mode, int pageSize = 0);
    ~ProjectDatabase();
    ProjectDatabase(const ProjectDatabase&) = delete;
    ProjectDatabase& operator=(const ProjectDatabase&) = delete;

    void Execute(std::string_view sql);
    std::int64_t Number(std::string_view sql);
    /** Throws `Damaged` unless the tables are exactly those of the format. */
    void CheckSchema();
    void CreateSchema(std::uint32_t applicationId);
    /** A rolled back transaction that could not be undone shows as a journal left beside the file.
     */
    void Rollback() noexcept;
    [[noreturn]] void Fail(int code) const;
    sqlite3* Handle() const { return handle_; }

  private:
    void Open(const std::string& nativePath, Mode mode);
    void Close();

    sqlite3* handle_ = nullptr;
};

/** By which a file is known again: as soon as another program has touched it, something differs. */
struct FileMark {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970
    std::uint32_t changes = 0;  ///< the database's count of its transactions

    bool operator==(const FileMark&) const = default;
    /** The mark of no file is not the mark of any. */
    bool IsKnown() const { return inode != 0; }
    std::string Text() const;
    /** Unknown when the text is no mark. */
    static FileMark FromText(std::string_view text);
};

/** What the first bytes of a file say, read without opening it as a database. */
struct ProjectFileHeader {
    FileMark mark;
    std::uint32_t applicationId = 0;
    std::uint32_t formatVersion = 0;
    int pageSize = 0;
    std::int64_t fileSize = 0;
};
/** Throws unless the file can be opened and is of the kind and format wanted. */
ProjectFileHeader CheckHeader(const std::string& nativePath, std::uint32_t applicationId);

}  // namespace pw
