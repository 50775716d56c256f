#include "support/FaultyDisk.h"

namespace pw::test {
namespace {

struct ShimFile {
    sqlite3_file base;
    FaultPlan* plan;
    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

ShimFile* Shim(sqlite3_file* file) {
    return reinterpret_cast<ShimFile*>(file);
}
sqlite3_file* Real(sqlite3_file* file) {
    return Shim(file)->Real();
}
sqlite3_vfs* RealVfs(sqlite3_vfs* shim) {
    return static_cast<sqlite3_vfs*>(static_cast<void**>(shim->pAppData)[0]);
}
FaultPlan* PlanOf(sqlite3_vfs* shim) {
    return static_cast<FaultPlan*>(static_cast<void**>(shim->pAppData)[1]);
}

const sqlite3_io_methods kMethods = {
    .iVersion = 1,
    .xClose = [](sqlite3_file* f) { return Real(f)->pMethods->xClose(Real(f)); },
    .xRead = [](sqlite3_file* f, void* to, int size,
                sqlite3_int64 at) { return Real(f)->pMethods->xRead(Real(f), to, size, at); },
    .xWrite =
        [](sqlite3_file* f, const void* from, int size, sqlite3_int64 at) {
            if (Shim(f)->plan->Strikes()) return Shim(f)->plan->SqliteCode(SQLITE_IOERR_WRITE);
            return Real(f)->pMethods->xWrite(Real(f), from, size, at);
        },
    .xTruncate =
        [](sqlite3_file* f, sqlite3_int64 size) {
            if (Shim(f)->plan->Strikes()) return Shim(f)->plan->SqliteCode(SQLITE_IOERR_TRUNCATE);
            return Real(f)->pMethods->xTruncate(Real(f), size);
        },
    .xSync =
        [](sqlite3_file* f, int flags) {
            if (Shim(f)->plan->Strikes()) return Shim(f)->plan->SqliteCode(SQLITE_IOERR_FSYNC);
            return Real(f)->pMethods->xSync(Real(f), flags);
        },
    .xFileSize = [](sqlite3_file* f,
                    sqlite3_int64* size) { return Real(f)->pMethods->xFileSize(Real(f), size); },
    .xLock = [](sqlite3_file* f, int lock) { return Real(f)->pMethods->xLock(Real(f), lock); },
    .xUnlock = [](sqlite3_file* f, int lock) { return Real(f)->pMethods->xUnlock(Real(f), lock); },
    .xCheckReservedLock =
        [](sqlite3_file* f, int* held) {
            return Real(f)->pMethods->xCheckReservedLock(Real(f), held);
        },
    .xFileControl =
        [](sqlite3_file* f, int operation, void* argument) {
            return Real(f)->pMethods->xFileControl(Real(f), operation, argument);
        },
    .xSectorSize = [](sqlite3_file* f) { return Real(f)->pMethods->xSectorSize(Real(f)); },
    .xDeviceCharacteristics =
        [](sqlite3_file* f) { return Real(f)->pMethods->xDeviceCharacteristics(Real(f)); },
};

}  // namespace

FaultyDatabaseDisk::FaultyDatabaseDisk(FaultPlan& plan) {
    sqlite3_vfs* real = sqlite3_vfs_find(nullptr);
    shim_ = *real;
    shim_.iVersion = 1;
    shim_.zName = "faulty";
    shim_.pAppData = new void* [2] { real, &plan };
    shim_.szOsFile = static_cast<int>(sizeof(ShimFile)) + real->szOsFile;
    shim_.xOpen = [](sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* out) {
        file->pMethods = nullptr;
        FaultPlan* plan = PlanOf(vfs);
        if ((flags & SQLITE_OPEN_CREATE) && plan->Strikes())
            return plan->kind == FaultPlan::Kind::DiskFull ? SQLITE_FULL : SQLITE_CANTOPEN;
        const int code = RealVfs(vfs)->xOpen(RealVfs(vfs), name, Real(file), flags, out);
        if (Real(file)->pMethods) file->pMethods = &kMethods;
        Shim(file)->plan = plan;
        return code;
    };
    shim_.xDelete = [](sqlite3_vfs* vfs, const char* name, int sync) {
        if (PlanOf(vfs)->Strikes()) return SQLITE_IOERR_DELETE;
        return RealVfs(vfs)->xDelete(RealVfs(vfs), name, sync);
    };
    shim_.xAccess = [](sqlite3_vfs* vfs, const char* name, int flags, int* out) {
        return RealVfs(vfs)->xAccess(RealVfs(vfs), name, flags, out);
    };
    shim_.xFullPathname = [](sqlite3_vfs* vfs, const char* name, int size, char* out) {
        return RealVfs(vfs)->xFullPathname(RealVfs(vfs), name, size, out);
    };
    sqlite3_vfs_register(&shim_, 1);
}

FaultyDatabaseDisk::~FaultyDatabaseDisk() {
    sqlite3_vfs* real = RealVfs(&shim_);
    sqlite3_vfs_unregister(&shim_);
    sqlite3_vfs_register(real, 1);
    delete[] static_cast<void**>(shim_.pAppData);
}

}  // namespace pw::test
