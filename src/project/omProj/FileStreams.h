#pragma once
// Many small files to and from the disk on a thread of their own, while the caller's thread is busy
// with the database. Pieces travel in batches, since 10,000 files would otherwise spend their time
// in handing over.
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "project/omProj/WorkingFiles.h"

namespace pw {

/** A file of at most one part, or one part of a larger one. */
struct FilePiece {
    std::size_t file = 0;  ///< index in the list that the stream was given
    std::int64_t part = 0;
    std::size_t offset = 0;  ///< of the bytes in the batch
    std::size_t length = 0;
    bool last = false;
    // Of a last piece, or of a file that could not be read.
    DiskState state;
    std::uint64_t digest = 0;  ///< of the whole file
};

struct FileBatch {
    std::string bytes;
    std::vector<FilePiece> pieces;
    std::string_view BytesOf(const FilePiece& piece) const {
        return std::string_view(bytes).substr(piece.offset, piece.length);
    }
};

/** A short queue between two threads that also carries empty batches back for further use. */
class BatchQueue {
  public:
    /** Waits while the queue is full; false when the other side has stopped. */
    bool Put(std::unique_ptr<FileBatch> batch);
    /** Waits for one; null when the other side has closed and all are taken, or has stopped. */
    std::unique_ptr<FileBatch> Take();
    void Close();  ///< no more will be put
    void Stop();   ///< nobody needs them any more
    std::unique_ptr<FileBatch> Fresh();
    void Recycle(std::unique_ptr<FileBatch> batch);

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::unique_ptr<FileBatch>> ready_;
    std::vector<std::unique_ptr<FileBatch>> spare_;
    bool closed_ = false;
    bool stopped_ = false;
};

/** Reads files in the order of the list. A file that can't be read comes with its error. */
class FileSource {
  public:
    /** The names must outlive the source. */
    FileSource(std::string_view folder, std::vector<std::string_view> names);
    ~FileSource();
    /** Null behind the last one. Give it back with `Recycle`. */
    std::unique_ptr<FileBatch> Next() { return queue_.Take(); }
    void Recycle(std::unique_ptr<FileBatch> batch) { queue_.Recycle(std::move(batch)); }

  private:
    void Work();
    bool ReadFile(std::size_t index, std::unique_ptr<FileBatch>& batch);

    WorkingFiles files_;
    std::vector<std::string_view> names_;
    BatchQueue queue_;
    std::thread thread_;
};

/** What a file is to be on the disk. */
struct FileTarget {
    std::string name;
    std::int64_t size = 0;
    std::int64_t modified = 0;  ///< 0 for the time of writing
    std::uint64_t digest = 0;
};

/** Writes files and checks their sizes and checksums; removes what it wrote when it fails. */
class FileSink {
  public:
    enum class Purpose { Write, CheckOnly };
    /** The targets must outlive the sink; in `CheckOnly` the folder is not used. */
    FileSink(std::string_view folder, const std::vector<FileTarget>& targets, Purpose purpose);
    ~FileSink();
    /** Pieces of a file come in order and together. Throws `ProjectFailure` as soon as one failed.
     */
    void Add(std::size_t file, std::int64_t part, bool last, std::string_view bytes);
    /** Waits until all is written; throws `ProjectFailure`. */
    void Finish();

  private:
    void Work();
    int WritePiece(const FileBatch& batch, const FilePiece& piece);
    void ThrowFailure();

    std::unique_ptr<WorkingFiles> files_;
    const std::vector<FileTarget>& targets_;
    BatchQueue queue_;
    std::unique_ptr<FileBatch> filling_;
    // Of the worker; read by the owner after the thread was joined.
    int file_ = -1;
    std::int64_t written_ = 0;
    std::uint64_t digest_ = 0;
    std::size_t created_ = 0;  // targets from the first to before this one have been made
    int error_ = 0;            // an errno, or -1 for content that is not what it should be
    std::size_t failedFile_ = 0;
    bool finished_ = false;
    std::thread thread_;
};

}  // namespace pw
