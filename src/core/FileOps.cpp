#include "core/FileOps.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <random>
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

void syncFolder(const std::string& folder) {
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

// Temporary files are ".lumivale-PID-NUMBER", hidden from every listing.
constexpr std::string_view temporaryPrefix = ".lumivale-";

std::string temporaryName(const std::string& folder) {
    static std::atomic<uint64_t> counter{std::random_device{}()};
    return folder + "/" + std::string(temporaryPrefix) + std::to_string(getpid()) + "-" +
           std::to_string(counter++);
}

// The file systems that cannot make unnamed files say so with one of these.
bool noUnnamedFiles(int err) {
    return err == EOPNOTSUPP || err == EISDIR || err == EINVAL || err == ENOENT;
}

// The process that made a temporary file of this name, or 0 when it is not one.
pid_t makerOf(std::string_view name) {
    if (!name.starts_with(temporaryPrefix)) return 0;
    name.remove_prefix(temporaryPrefix.size());
    pid_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    return error == std::errc() && end != name.data() && *end == '-' ? pid : 0;
}

} // namespace

TemporaryFile::TemporaryFile(const std::string& folder, mode_t mode) : folder_(folder) {
    // An unnamed file is named through /proc, which a bare container may lack.
    static const bool procThere = access("/proc/self/fd", X_OK) == 0;
    fd_ = procThere ? open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode) : -1;
    if (fd_ >= 0 || (procThere && !noUnnamedFiles(errno))) {
        error_ = fd_ < 0 ? errno : 0;
        return;
    }
    for (int attempt = 0; attempt < 100; ++attempt) {
        named_ = temporaryName(folder);
        fd_ = open(named_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (fd_ >= 0 || errno != EEXIST) break;
    }
    if (fd_ < 0) {
        error_ = errno;
        named_.clear();
    }
}

TemporaryFile::~TemporaryFile() {
    if (fd_ >= 0) ::close(fd_);
    if (!named_.empty()) unlink(named_.c_str());
}

int TemporaryFile::close() {
    const int result = ::close(fd_);
    fd_ = -1;
    return result == 0 ? 0 : errno;
}

int TemporaryFile::linkUnnamed(const std::string& path) {
    const std::string self = "/proc/self/fd/" + std::to_string(fd_);
    return linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0
                                                                                          : errno;
}

int TemporaryFile::nameFree(std::string& name) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = temporaryName(folder_);
        if (const int err = linkUnnamed(name); err != EEXIST) return err;
    }
    return EEXIST;
}

int TemporaryFile::placeNew(const std::string& path) {
    if (named_.empty()) return linkUnnamed(path);
    // A hard link never replaces anything.
    if (link(named_.c_str(), path.c_str()) != 0) return errno;
    unlink(named_.c_str());
    named_.clear();
    return 0;
}

int TemporaryFile::replace(const std::string& path) {
    // Linux cannot put an unnamed file over another one: it takes a name for this short step.
    if (named_.empty())
        if (const int err = nameFree(named_)) return err;
    if (rename(named_.c_str(), path.c_str()) != 0) return errno;
    named_.clear();
    return 0;
}

void removeLeftovers(const std::string& folder) {
    DIR* dir = opendir(folder.c_str());
    if (!dir) return;
    while (const dirent* entry = readdir(dir)) {
        const pid_t maker = makerOf(entry->d_name);
        if (maker > 0 && kill(maker, 0) != 0 && errno == ESRCH)
            unlinkat(dirfd(dir), entry->d_name, 0);
    }
    closedir(dir);
}

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
    : path_(std::move(path)), write_(std::move(write)) {
    status_ = makeFolders(parentOf(path_));
    if (!status_) return;
    file_.emplace(parentOf(path_));
    if (file_->error()) status_ = Status::failure(describeErrno(file_->error()), file_->error());
}

AtomicFile::~AtomicFile() = default;

Status AtomicFile::append(std::string_view bytes) {
    if (!status_) return status_;
    status_ = writeAll(file_->fd(), bytes, write_);
    if (status_) {
        // Start the disk on these bytes now, so the flush at the end has little left to wait for.
        sync_file_range(file_->fd(), static_cast<off_t>(written_), static_cast<off_t>(bytes.size()),
                        SYNC_FILE_RANGE_WRITE);
        written_ += bytes.size();
    }
    return status_;
}

Status AtomicFile::commit() {
    if (!status_) return status_;
    // Once the flush went through, closing can lose nothing.
    int err = fsync(file_->fd()) != 0 ? errno : 0;
    if (!err) err = file_->replace(path_);
    if (err) return status_ = Status::failure(describeErrno(err), err);
    syncFolder(parentOf(path_));
    return status_;
}

Status writeNew(const std::string& path, std::string_view bytes, const WriteCall& write) {
    TemporaryFile file(parentOf(path), 0644);
    if (file.error()) return Status::failure(describeErrno(file.error()), file.error());
    Status written = writeAll(file.fd(), bytes, write);
    if (!written) return written;
    int err = fsync(file.fd()) != 0 ? errno : 0;
    if (!err) err = file.placeNew(path);
    if (err) return Status::failure(describeErrno(err), err);
    syncFolder(parentOf(path));
    return Status::ok();
}

} // namespace lumivale
