// The settings hive in an SQLite file, or in SQLite's own memory.
//
// A key is a row with its path as first written and its path folded for comparison; a value hangs
// on its key. Sub-keys are found by the prefix of their folded path, "software\" and so on.
#include <sqlite3.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/FileSystem.h"
#include "platform/SettingsHive.h"
#include "platform/Text.h"

namespace pw {

namespace {

constexpr const char* kSchema =
    "CREATE TABLE IF NOT EXISTS key (id INTEGER PRIMARY KEY, root INTEGER NOT NULL,"
    " folded TEXT NOT NULL, path TEXT NOT NULL, UNIQUE (root, folded));"
    "CREATE TABLE IF NOT EXISTS value (key INTEGER NOT NULL REFERENCES key ON DELETE CASCADE,"
    " folded TEXT NOT NULL, name TEXT NOT NULL, content, PRIMARY KEY (key, folded)) WITHOUT ROWID;";

/** One prepared statement for the length of a scope; parameters are bound in order. */
class Statement {
  public:
    Statement(sqlite3* database, const char* text) {
        sqlite3_prepare_v2(database, text, -1, &statement_, nullptr);
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement() { sqlite3_finalize(statement_); }

    Statement& Bind(std::string_view text) {
        sqlite3_bind_text(statement_, ++at_, text.data(), int(text.size()), SQLITE_TRANSIENT);
        return *this;
    }
    Statement& Bind(std::int64_t number) {
        sqlite3_bind_int64(statement_, ++at_, number);
        return *this;
    }
    Statement& BindValue(const HiveValue& value) {
        if (const auto* text = std::get_if<std::string>(&value)) return Bind(*text);
        if (const auto* number = std::get_if<std::uint32_t>(&value))
            return Bind(std::int64_t(*number));
        ++at_;
        return *this;
    }
    bool Row() { return sqlite3_step(statement_) == SQLITE_ROW; }
    bool Run() { return sqlite3_step(statement_) == SQLITE_DONE; }
    std::string Text(int column) const {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        return text ? std::string(text, std::size_t(sqlite3_column_bytes(statement_, column))) : "";
    }
    std::int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }
    HiveValue Value(int column) const {
        switch (sqlite3_column_type(statement_, column)) {
            case SQLITE_TEXT:
                return Text(column);
            case SQLITE_INTEGER:
                return std::uint32_t(Number(column));
            default:
                return {};
        }
    }

  private:
    sqlite3_stmt* statement_ = nullptr;
    int at_ = 0;
};

std::string TrimSeparators(std::string_view key) {
    while (!key.empty() && key.front() == '\\')
        key.remove_prefix(1);
    while (!key.empty() && key.back() == '\\')
        key.remove_suffix(1);
    return std::string(key);
}

std::string FoldedKey(std::string_view key) {
    return FoldCase(TrimSeparators(key));
}

/** What the machine's root answers. Keys and names are folded. */
struct MachineRow {
    const char* key;
    const char* name;
    std::string MachineTable::*value;
};
const MachineRow kMachineRows[] = {
    {"software\\microsoft\\internet explorer", "version", &MachineTable::engineVersion},
    {"software\\microsoft\\ie4\\setup", "path", &MachineTable::browserPath},
};

/** The first program of the list that PATH leads to, as a path of ours, or "". */
std::string FindDesktopBrowser() {
    const char* variable = std::getenv("PATH");
    const auto folders = Split(variable ? variable : "/usr/local/bin:/usr/bin:/bin", ':');
    for (const char* program : {"xdg-open", "x-www-browser", "sensible-browser", "firefox"}) {
        for (const std::string& folder : folders) {
            const std::string file = folder + "/" + program;
            if (folder.starts_with('/') && ::access(file.c_str(), X_OK) == 0)
                return FromNativePath(file);
        }
    }
    return "";
}

class SqliteHive : public SettingsHive {
  public:
    explicit SqliteHive(MachineTable machine) : machine_(std::move(machine)) {
        if (machine_.browserPath.empty()) machine_.browserPath = FindDesktopBrowser();
    }
    ~SqliteHive() override {
        if (depth_ > 0) Execute("COMMIT");
        sqlite3_close(database_);
    }

    /** An SQLite result code. `file` may be ":memory:". */
    int Open(const std::string& file) {
        sqlite3_close(database_);
        constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
        if (const int code = sqlite3_open_v2(file.c_str(), &database_, flags, nullptr)) return code;
        // The window and the command line may write at the same moment.
        sqlite3_busy_timeout(database_, 3000);
        if (const int code = Check()) return code;
        for (const char* command : {"PRAGMA foreign_keys=ON", kSchema}) {
            if (const int code = Execute(command)) return code;
        }
        return SQLITE_OK;
    }

    HiveValue Get(std::uint32_t root, std::string_view key, std::string_view name) const override {
        if (root == kMachineRoot) return MachineValue(FoldedKey(key), FoldCase(name));
        Statement query(database_,
                        "SELECT content FROM value JOIN key ON key.id = value.key"
                        " WHERE root = ? AND key.folded = ? AND value.folded = ?");
        query.Bind(std::int64_t(root)).Bind(FoldedKey(key)).Bind(FoldCase(name));
        return query.Row() ? query.Value(0) : HiveValue();
    }

    bool Set(std::uint32_t root, std::string_view key, std::string_view name,
             const HiveValue& value) override {
        if (std::holds_alternative<std::monostate>(value)) return DeleteValue(root, key, name);
        if (!CreateKey(root, key)) return false;
        return Statement(database_,
                         "INSERT INTO value (key, folded, name, content)"
                         " SELECT id, ?3, ?4, ?5 FROM key WHERE root = ?1 AND folded = ?2"
                         " ON CONFLICT DO UPDATE SET content = excluded.content")
            .Bind(std::int64_t(root))
            .Bind(FoldedKey(key))
            .Bind(FoldCase(name))
            .Bind(name)
            .BindValue(value)
            .Run();
    }

    bool CreateKey(std::uint32_t root, std::string_view key) override {
        if (root == kMachineRoot) return false;
        const std::string path = TrimSeparators(key);
        if (path.empty()) return true;
        // Its parents are keys as well.
        for (auto end = path.find('\\');; end = path.find('\\', end + 1)) {
            const std::string part = path.substr(0, end);
            const bool made =
                Statement(database_,
                          "INSERT OR IGNORE INTO key (root, folded, path) VALUES (?, ?, ?)")
                    .Bind(std::int64_t(root))
                    .Bind(FoldCase(part))
                    .Bind(part)
                    .Run();
            if (!made) return false;
            if (end == path.npos) return true;
        }
    }

    bool DeleteKey(std::uint32_t root, std::string_view key) override {
        if (root == kMachineRoot || !KeyExists(root, key)) return false;
        const std::string folded = FoldedKey(key);
        return Statement(database_,
                         "DELETE FROM key WHERE root = ?1 AND"
                         " (folded = ?2 OR substr(folded, 1, length(?2) + 1) = ?2 || '\\')")
            .Bind(std::int64_t(root))
            .Bind(folded)
            .Run();
    }

    bool DeleteValue(std::uint32_t root, std::string_view key, std::string_view name) override {
        if (root == kMachineRoot) return false;
        return Statement(database_,
                         "DELETE FROM value WHERE folded = ?3 AND"
                         " key = (SELECT id FROM key WHERE root = ?1 AND folded = ?2)")
                   .Bind(std::int64_t(root))
                   .Bind(FoldedKey(key))
                   .Bind(FoldCase(name))
                   .Run() &&
               sqlite3_changes(database_) > 0;
    }

    bool KeyExists(std::uint32_t root, std::string_view key) const override {
        const std::string folded = FoldedKey(key);
        if (folded.empty()) return true;
        if (root == kMachineRoot) {
            for (const MachineRow& row : kMachineRows) {
                const std::string_view known = row.key;
                if (known == folded || known.starts_with(folded + "\\")) return true;
            }
            return false;
        }
        Statement query(database_, "SELECT 1 FROM key WHERE root = ? AND folded = ?");
        return query.Bind(std::int64_t(root)).Bind(folded).Row();
    }

    std::string EnumKey(std::uint32_t root, std::string_view key, int index) const override {
        if (index < 0) return "";
        std::string prefix = FoldedKey(key);
        if (!prefix.empty()) prefix += '\\';
        Statement query(database_,
                        "SELECT path FROM key WHERE root = ?1"
                        " AND substr(folded, 1, length(?2)) = ?2"
                        " AND instr(substr(folded, length(?2) + 1), '\\') = 0"
                        " ORDER BY folded LIMIT 1 OFFSET ?3");
        query.Bind(std::int64_t(root)).Bind(prefix).Bind(std::int64_t(index));
        if (!query.Row()) return "";
        const std::string path = query.Text(0);
        return path.substr(path.rfind('\\') + 1);  // npos + 1 is the start
    }

    void Begin() override {
        if (depth_++ == 0) isBatch_ = Execute("BEGIN IMMEDIATE") == SQLITE_OK;
    }
    bool Commit() override {
        if (depth_ == 0 || --depth_ > 0) return true;
        // Where it could not begin, each write has been kept or refused by itself.
        if (!isBatch_) return true;
        isBatch_ = false;
        // On a full disk SQLite has taken back everything by itself, and knows of no batch.
        if (Execute("COMMIT") == SQLITE_OK) return true;
        Execute("ROLLBACK");
        return false;
    }

  private:
    int Execute(const char* command) {
        return sqlite3_exec(database_, command, nullptr, nullptr, nullptr);
    }

    int Check() {
        Statement check(database_, "PRAGMA quick_check(1)");
        if (check.Row() && check.Text(0) == "ok") return SQLITE_OK;
        const int code = sqlite3_errcode(database_);
        return code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE ? SQLITE_CORRUPT
                                                                              : code;
    }

    HiveValue MachineValue(const std::string& key, const std::string& name) const {
        for (const MachineRow& row : kMachineRows) {
            if (key != row.key || name != row.name) continue;
            const std::string& text = machine_.*row.value;
            return text.empty() ? HiveValue() : HiveValue(text);
        }
        return {};
    }

    MachineTable machine_;
    sqlite3* database_ = nullptr;
    int depth_ = 0;
    bool isBatch_ = false;
};

bool IsDamage(int code) {
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_ERROR;
}

/** A name beside the file that is not taken. */
std::string NameForDamaged(const std::string& file) {
    char stamp[32] = {};
    const time_t now = ::time(nullptr);
    struct tm local {};
    ::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", ::localtime_r(&now, &local));
    std::string name = file + ".damaged-" + stamp;
    struct stat status;
    for (int i = 2; ::lstat(name.c_str(), &status) == 0; ++i)
        name = file + ".damaged-" + stamp + "-" + std::to_string(i);
    return name;
}

}  // namespace

std::unique_ptr<SettingsHive> MakeMemoryHive(const MachineTable& machine) {
    auto hive = std::make_unique<SqliteHive>(machine);
    hive->Open(":memory:");
    return hive;
}

std::unique_ptr<SettingsHive> MakeFileHive(const std::string& nativePath, std::string* message,
                                           const MachineTable& machine) {
    const auto tell = [&](const std::string& text) {
        if (message) *message = text;
    };
    auto hive = std::make_unique<SqliteHive>(machine);
    // Accounts and passwords lie in it: it must never be readable for others, not even at first.
    const mode_t before = ::umask(0077);
    int code = hive->Open(nativePath);
    if (IsDamage(code)) {
        const std::string aside = NameForDamaged(nativePath);
        hive = std::make_unique<SqliteHive>(machine);
        if (::rename(nativePath.c_str(), aside.c_str()) == 0) {
            ::unlink((nativePath + "-journal").c_str());
            code = hive->Open(nativePath);
            if (code == SQLITE_OK)
                tell("The settings were damaged and have been set aside as '" + aside +
                     "'.\n\nThe program starts with its standard settings.");
        }
    }
    ::umask(before);
    if (code == SQLITE_OK) {
        ::chmod(nativePath.c_str(), 0600);
        return hive;
    }
    tell("The settings in '" + nativePath + "' can not be opened: " + sqlite3_errstr(code) +
         ".\n\nThe program starts with its standard settings, and changes to them will not be "
         "kept.");
    hive.reset();
    return MakeMemoryHive(machine);
}

}  // namespace pw
