#include "core/FileOps.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace lumivale {
namespace {

std::string parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

Status writeAll(int fd, std::string_view bytes, const WriteCall& write) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return Status::failure(describeErrno(n < 0 ? errno : EIO), n < 0 ? errno : EIO);
        done += static_cast<size_t>(n);
    }
    if (fsync(fd) != 0)
        return Status::failure(describeErrno(errno), errno);
    return Status::ok();
}

void syncFolder(const std::string& folder) {
    const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

} // namespace

ssize_t systemWrite(int fd, const void* data, size_t length) { return ::write(fd, data, length); }

Status makeFolders(const std::string& path) {
    std::error_code ec;
    std::filesystem::create_directories(path, ec);
    if (ec)
        return Status::failure(ec.message(), ec.value());
    return Status::ok();
}

Status writeAtomically(const std::string& path, std::string_view bytes, const WriteCall& write) {
    const std::string folder = parentOf(path);
    if (Status made = makeFolders(folder); !made)
        return made;
    std::string temporary = path + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        return Status::failure(describeErrno(errno), errno);
    Status written = writeAll(fd, bytes, write);
    if (close(fd) != 0 && written)
        written = Status::failure(describeErrno(errno), errno);
    if (written && rename(temporary.c_str(), path.c_str()) != 0)
        written = Status::failure(describeErrno(errno), errno);
    if (!written) {
        unlink(temporary.c_str());
        return written;
    }
    syncFolder(folder);
    return Status::ok();
}

Status writeNew(const std::string& path, std::string_view bytes, const WriteCall& write) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0)
        return Status::failure(describeErrno(errno), errno);
    Status written = writeAll(fd, bytes, write);
    if (close(fd) != 0 && written)
        written = Status::failure(describeErrno(errno), errno);
    if (!written) {
        unlink(path.c_str());
        return written;
    }
    syncFolder(parentOf(path));
    return Status::ok();
}

} // namespace lumivale
