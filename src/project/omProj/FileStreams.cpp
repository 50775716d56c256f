#include "project/omProj/FileStreams.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/posix/Descriptor.h"
#include "project/omProj/Digest.h"
#include "project/omProj/Format.h"

namespace pw {
namespace {

constexpr std::size_t kBatchSize = 1 << 20;  // bytes
constexpr std::size_t kQueueLength = 4;
constexpr int kDamaged = -1;

}  // namespace

// The queue
// ----------------------------------------------------------------------------------------

bool BatchQueue::Put(std::unique_ptr<FileBatch> batch) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopped_ || ready_.size() < kQueueLength; });
    if (stopped_) return false;
    ready_.push_back(std::move(batch));
    changed_.notify_all();
    return true;
}

std::unique_ptr<FileBatch> BatchQueue::Take() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopped_ || closed_ || !ready_.empty(); });
    if (stopped_ || ready_.empty()) return nullptr;
    std::unique_ptr<FileBatch> batch = std::move(ready_.front());
    ready_.pop_front();
    changed_.notify_all();
    return batch;
}

void BatchQueue::Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    changed_.notify_all();
}

void BatchQueue::Stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    changed_.notify_all();
}

std::unique_ptr<FileBatch> BatchQueue::Fresh() {
    const std::lock_guard lock(mutex_);
    if (spare_.empty()) return std::make_unique<FileBatch>();
    std::unique_ptr<FileBatch> batch = std::move(spare_.back());
    spare_.pop_back();
    return batch;
}

void BatchQueue::Recycle(std::unique_ptr<FileBatch> batch) {
    batch->bytes.clear();
    batch->pieces.clear();
    const std::lock_guard lock(mutex_);
    if (spare_.size() < kQueueLength) spare_.push_back(std::move(batch));
}

// Reading
// ------------------------------------------------------------------------------------------

FileSource::FileSource(std::string_view folder, std::vector<std::string_view> names)
    : files_(folder), names_(std::move(names)), thread_([this] { Work(); }) {}

FileSource::~FileSource() {
    queue_.Stop();
    thread_.join();
}

void FileSource::Work() {
    std::unique_ptr<FileBatch> batch = queue_.Fresh();
    for (std::size_t index = 0; index < names_.size(); ++index)
        if (!ReadFile(index, batch)) return;
    if (!batch->pieces.empty() && !queue_.Put(std::move(batch))) return;
    queue_.Close();
}

/** False when nobody wants more. */
bool FileSource::ReadFile(std::size_t index, std::unique_ptr<FileBatch>& batch) {
    FilePiece piece;
    piece.file = index;
    const int file = files_.OpenToRead(names_[index], piece.state);
    for (;; ++piece.part) {
        piece.offset = batch->bytes.size();
        piece.length = 0;
        piece.last = true;
        if (file >= 0) {
            // One byte more than the file has: reading less then tells that this was its end.
            const std::int64_t left = piece.state.size - piece.part * kPartSize;
            const std::size_t room =
                static_cast<std::size_t>(std::clamp<std::int64_t>(left + 1, 1, kPartSize));
            batch->bytes.resize(piece.offset + room);
            ssize_t got = 1;
            while (piece.length < room && got > 0) {
                got = Repeat([&] {
                    return read(file, batch->bytes.data() + piece.offset + piece.length,
                                room - piece.length);
                });
                if (got > 0) piece.length += static_cast<std::size_t>(got);
            }
            if (got < 0) piece.state.error = errno;
            piece.last = got < 0 || piece.length < room;
            if (piece.length == room && left < kPartSize) {
                // It grew while it was read; what it is now comes with the next save.
                --piece.length;
                piece.last = true;
                piece.state.modified = 0;
            }
            batch->bytes.resize(piece.offset + piece.length);
            piece.digest = Digest(batch->BytesOf(piece), piece.digest);
            if (piece.last) piece.state.size = piece.part * kPartSize + piece.length;
        }
        batch->pieces.push_back(piece);
        if (batch->bytes.size() >= kBatchSize) {
            if (!queue_.Put(std::move(batch))) {
                if (file >= 0) close(file);
                return false;
            }
            batch = queue_.Fresh();
        }
        if (piece.last) break;
    }
    if (file >= 0) close(file);
    return true;
}

// Writing
// ------------------------------------------------------------------------------------------

FileSink::FileSink(std::string_view folder, const std::vector<FileTarget>& targets, Purpose purpose)
    : files_(purpose == Purpose::Write ? std::make_unique<WorkingFiles>(folder) : nullptr),
      targets_(targets),
      filling_(queue_.Fresh()),
      thread_([this] { Work(); }) {}

FileSink::~FileSink() {
    if (thread_.joinable()) {
        queue_.Stop();
        thread_.join();
    }
    if (file_ >= 0) close(file_);
    if (!finished_ && files_)
        for (std::size_t index = 0; index < created_; ++index)
            files_->Remove(targets_[index].name);
}

void FileSink::Add(std::size_t file, std::int64_t part, bool last, std::string_view bytes) {
    FilePiece piece;
    piece.file = file;
    piece.part = part;
    piece.last = last;
    piece.offset = filling_->bytes.size();
    piece.length = bytes.size();
    filling_->bytes.append(bytes);
    filling_->pieces.push_back(piece);
    if (filling_->bytes.size() < kBatchSize) return;
    if (!queue_.Put(std::move(filling_))) ThrowFailure();
    filling_ = queue_.Fresh();
}

void FileSink::Finish() {
    if (!filling_->pieces.empty() && !queue_.Put(std::move(filling_))) ThrowFailure();
    queue_.Close();
    thread_.join();
    if (error_) ThrowFailure();
    finished_ = true;
}

void FileSink::ThrowFailure() {
    if (thread_.joinable()) thread_.join();
    if (error_ == kDamaged) throw ProjectFailure(ProjectResult::Damaged);
    const ProjectResult result = ResultOfErrno(error_);
    throw ProjectFailure(result, "The file '" + targets_[failedFile_].name +
                                     "' can not be written: " + std::strerror(error_) + ". " +
                                     Describe(result, error_));
}

void FileSink::Work() {
    while (std::unique_ptr<FileBatch> batch = queue_.Take()) {
        for (const FilePiece& piece : batch->pieces) {
            error_ = WritePiece(*batch, piece);
            if (!error_) continue;
            failedFile_ = piece.file;
            queue_.Stop();
            return;
        }
        queue_.Recycle(std::move(batch));
    }
}

/** 0, an errno or `kDamaged`. */
int FileSink::WritePiece(const FileBatch& batch, const FilePiece& piece) {
    const FileTarget& target = targets_[piece.file];
    const std::string_view bytes = batch.BytesOf(piece);
    // 1. A new file begins.
    if (piece.part == 0) {
        written_ = 0;
        digest_ = 0;
    }
    written_ += static_cast<std::int64_t>(bytes.size());
    digest_ = Digest(bytes, digest_);
    // 2. What is not whole does not get to the disk where that can be told in time.
    if (piece.last && (written_ != target.size || digest_ != target.digest)) return kDamaged;
    if (!files_) return 0;
    if (piece.part == 0) {
        file_ = files_->Create(target.name);
        if (file_ < 0) return errno;
        created_ = piece.file + 1;
    }
    // 3. The bytes.
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t put =
            Repeat([&] { return write(file_, bytes.data() + at, bytes.size() - at); });
        if (put < 0) return errno;
        at += static_cast<std::size_t>(put);
    }
    if (!piece.last) return 0;
    // 4. The time it had, by which the next save knows that it is unchanged.
    if (target.modified > 0) {
        const timespec when = {target.modified / 1'000'000'000, target.modified % 1'000'000'000};
        const timespec times[2] = {when, when};
        if (futimens(file_, times) != 0) return errno;
    }
    const int closed = close(file_);
    file_ = -1;
    return closed == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace pw
