#pragma once
// A disk that fails on demand: every change that a save makes, through the database or through the
// file system, is counted, and from a chosen one on they fail.
#include <sqlite3.h>

#include <string>
#include <vector>

#include "platform/FileSystem.h"

namespace pw::test {

/** Decides which change fails and how. */
struct FaultPlan {
    enum class Kind { DiskFull, IOError, NoPermission };
    enum class Length { Once, FromThenOn };

    int failAt = 0;  ///< the number, from 1, of the change that fails; 0 for none
    Kind kind = Kind::IOError;
    Length length = Length::Once;
    int seen = 0;
    bool struck = false;

    /** Counts a change; true when it is to fail. */
    bool Strikes() {
        ++seen;
        const bool now =
            failAt > 0 && (seen == failAt || (seen > failAt && length == Length::FromThenOn));
        struck = struck || now;
        return now;
    }
    int SqliteCode(int ioError) const {
        return kind == Kind::DiskFull ? SQLITE_FULL
                                      : (kind == Kind::IOError ? ioError : SQLITE_PERM);
    }
    FileError Error() const {
        return kind == Kind::DiskFull
                   ? FileError::NoSpace
                   : (kind == Kind::IOError ? FileError::IO : FileError::NoPermission);
    }
};

/** While it lives, all databases are opened through it. */
class FaultyDatabaseDisk {
  public:
    explicit FaultyDatabaseDisk(FaultPlan& plan);
    ~FaultyDatabaseDisk();
    FaultyDatabaseDisk(const FaultyDatabaseDisk&) = delete;
    FaultyDatabaseDisk& operator=(const FaultyDatabaseDisk&) = delete;

  private:
    sqlite3_vfs shim_ = {};
};

/** Passes everything on to a real file system but the changes that the plan strikes. */
class FaultyFileSystem : public FileSystem {
  public:
    FaultyFileSystem(FileSystem& real, FaultPlan& plan) : real_(real), plan_(plan) {}

    FileInfo Stat(std::string_view path) const override { return real_.Stat(path); }
    FileError Read(std::string_view path, std::string& bytes) const override {
        return real_.Read(path, bytes);
    }
    FileError Write(std::string_view path, std::string_view bytes, Durability durability) override {
        return plan_.Strikes() ? plan_.Error() : real_.Write(path, bytes, durability);
    }
    FileError Append(std::string_view path, std::string_view bytes) override {
        return plan_.Strikes() ? plan_.Error() : real_.Append(path, bytes);
    }
    FileError List(std::string_view folder, std::vector<FolderEntry>& entries) const override {
        return real_.List(folder, entries);
    }
    FileError MakeFolder(std::string_view path) override {
        return plan_.Strikes() ? plan_.Error() : real_.MakeFolder(path);
    }
    FileError RemoveFile(std::string_view path) override {
        return plan_.Strikes() ? plan_.Error() : real_.RemoveFile(path);
    }
    FileError RemoveFolder(std::string_view path) override {
        return plan_.Strikes() ? plan_.Error() : real_.RemoveFolder(path);
    }
    FileError Rename(std::string_view from, std::string_view to) override {
        return plan_.Strikes() ? plan_.Error() : real_.Rename(from, to);
    }
    FileError Replace(std::string_view from, std::string_view to) override {
        return plan_.Strikes() ? plan_.Error() : real_.Replace(from, to);
    }
    FileError Copy(std::string_view from, std::string_view to) override {
        return plan_.Strikes() ? plan_.Error() : real_.Copy(from, to);
    }
    FileError CopyTree(std::string_view from, std::string_view to) override {
        return plan_.Strikes() ? plan_.Error() : real_.CopyTree(from, to);
    }
    FileError Sync(std::string_view path) override {
        return plan_.Strikes() ? plan_.Error() : real_.Sync(path);
    }
    std::string Canonical(std::string_view path) const override { return real_.Canonical(path); }

  private:
    FileSystem& real_;
    FaultPlan& plan_;
};

}  // namespace pw::test
