#pragma once
// The files below the working folder, by their stored names. Folders are walked part by part and
// links are never followed, so that nothing outside the folder can be read or written, whatever
// lies in it. For one thread at a time.
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace pw {

struct DiskState {
    int error = 0;  ///< an errno; ENOENT when there is no such file, ELOOP for a link
    std::int64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970
};

class WorkingFiles {
  public:
    /** Throws `ProjectFailure` when there is no such folder. */
    explicit WorkingFiles(std::string_view folder);
    ~WorkingFiles();
    WorkingFiles(const WorkingFiles&) = delete;
    WorkingFiles& operator=(const WorkingFiles&) = delete;

    DiskState Stat(std::string_view name);
    /** A file descriptor for reading a regular file; -1 with `state.error` when there is none. */
    int OpenToRead(std::string_view name, DiskState& state);
    /** Makes a new file, in place of any that was there; -1 with an errno when that fails. */
    int Create(std::string_view name);
    /** 0 or an errno. Makes the folders above it too. */
    int MakeFolder(std::string_view name);
    void Remove(std::string_view name);

  private:
    enum class Missing { Fail, Make };
    /** A handle of the folder that a name lies in, and the name's last part; -1 with an errno. */
    int ParentOf(std::string_view name, Missing missing, std::string& leaf);
    int FolderHandle(std::string_view name, Missing missing);
    void ForgetFolders();

    int root_ = -1;
    std::unordered_map<std::string, int> folders_;
    std::string lastName_;
    int lastFolder_ = -1;
};

}  // namespace pw
