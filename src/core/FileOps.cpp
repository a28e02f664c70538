#include "core/FileOps.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace lumivale {
namespace {

std::string parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

Status writeAll(int fd, std::string_view bytes, const WriteCall& write) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return Status::failure(describeErrno(n < 0 ? errno : EIO), n < 0 ? errno : EIO);
        done += static_cast<size_t>(n);
    }
    return Status::ok();
}

Status syncAndClose(int fd) {
    Status status = Status::ok();
    if (fsync(fd) != 0) status = Status::failure(describeErrno(errno), errno);
    if (close(fd) != 0 && status) status = Status::failure(describeErrno(errno), errno);
    return status;
}

void syncFolder(const std::string& folder) {
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

} // namespace

ssize_t systemWrite(int fd, const void* data, size_t length) {
    return ::write(fd, data, length);
}

Status makeFolders(const std::string& path) {
    std::error_code ec;
    std::filesystem::create_directories(path, ec);
    if (ec) return Status::failure(ec.message(), ec.value());
    return Status::ok();
}

Status writeAtomically(const std::string& path, std::string_view bytes, const WriteCall& write) {
    AtomicFile file(path, write);
    file.append(bytes);
    return file.commit();
}

AtomicFile::AtomicFile(std::string path, WriteCall write)
    : path_(std::move(path)), temporary_(path_ + ".XXXXXX"), write_(std::move(write)) {
    status_ = makeFolders(parentOf(path_));
    if (!status_) return;
    fd_ = mkostemp(temporary_.data(), O_CLOEXEC);
    if (fd_ < 0) status_ = Status::failure(describeErrno(errno), errno);
}

AtomicFile::~AtomicFile() {
    if (fd_ >= 0) {
        close(fd_);
        unlink(temporary_.c_str());
    }
}

Status AtomicFile::append(std::string_view bytes) {
    if (!status_) return status_;
    status_ = writeAll(fd_, bytes, write_);
    if (status_) {
        // Start the disk on these bytes now, so the flush at the end has little left to wait for.
        sync_file_range(fd_, static_cast<off_t>(written_), static_cast<off_t>(bytes.size()),
                        SYNC_FILE_RANGE_WRITE);
        written_ += bytes.size();
    }
    return status_;
}

Status AtomicFile::commit() {
    if (!status_) return status_;
    status_ = syncAndClose(std::exchange(fd_, -1));
    if (status_ && rename(temporary_.c_str(), path_.c_str()) != 0)
        status_ = Status::failure(describeErrno(errno), errno);
    if (!status_) {
        unlink(temporary_.c_str());
        return status_;
    }
    syncFolder(parentOf(path_));
    return status_;
}

Status writeNew(const std::string& path, std::string_view bytes, const WriteCall& write) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) return Status::failure(describeErrno(errno), errno);
    Status written = writeAll(fd, bytes, write);
    if (written)
        written = syncAndClose(fd);
    else
        close(fd);
    if (!written) {
        unlink(path.c_str());
        return written;
    }
    syncFolder(parentOf(path));
    return Status::ok();
}

} // namespace lumivale
