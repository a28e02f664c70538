#include "core/FileMove.h"

#include "core/PathName.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace lumivale {
namespace {

Status failure(int err) {
    return Status::failure(describeErrno(err), err);
}

int renameNoReplace(const char* from, const char* to) {
#if defined(__GLIBC__) && (__GLIBC__ > 2 || (__GLIBC__ == 2 && __GLIBC_MINOR__ >= 28))
    return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
#else
    return static_cast<int>(
        ::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 1 /* NOREPLACE */));
#endif
}

// Gives the file at `from` the name `to` on the same file system without replacing anything;
// 0 or the error number.
int placeNoReplace(const std::string& from, const std::string& to) {
    if (renameNoReplace(from.c_str(), to.c_str()) == 0) return 0;
    const int err = errno;
    if (err != EINVAL && err != ENOSYS) return err;
    // Some file systems have no no-replace rename; a hard link never replaces either.
    if (link(from.c_str(), to.c_str()) != 0) return errno;
    if (unlink(from.c_str()) != 0) {
        const int unlinkErr = errno;
        unlink(to.c_str());
        return unlinkErr;
    }
    return 0;
}

void syncFolder(std::string_view folder) {
    const int fd = open(std::string(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
}

class FileHandle {
  public:
    explicit FileHandle(int fd) : fd_(fd) {}
    ~FileHandle() {
        if (fd_ >= 0) ::close(fd_);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

int copyBytes(int in, int out, const WriteCall& write) {
    std::vector<char> buffer(1 << 20);
    for (;;) {
        const ssize_t got = read(in, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return errno;
        if (got == 0) return 0;
        for (ssize_t done = 0; done < got;) {
            const ssize_t put = write(out, buffer.data() + done, static_cast<size_t>(got - done));
            if (put < 0 && errno == EINTR) continue;
            if (put <= 0) return put < 0 ? errno : EIO;
            done += put;
        }
    }
}

// The user attributes travel with the file (the screen-capture mark among them); a target file
// system without them simply goes without.
void copyUserAttributes(int in, int out) {
    const ssize_t length = flistxattr(in, nullptr, 0);
    if (length <= 0) return;
    std::vector<char> names(static_cast<size_t>(length));
    const ssize_t got = flistxattr(in, names.data(), names.size());
    for (size_t at = 0; got > 0 && at < static_cast<size_t>(got);) {
        const char* name = names.data() + at;
        at += std::string_view(name).size() + 1;
        if (std::string_view(name).rfind("user.", 0) != 0) continue;
        const ssize_t size = fgetxattr(in, name, nullptr, 0);
        if (size < 0) continue;
        std::vector<char> value(static_cast<size_t>(size));
        if (fgetxattr(in, name, value.data(), value.size()) == size)
            fsetxattr(out, name, value.data(), value.size(), 0);
    }
}

// Fills the open temporary file `out` with a complete copy of `in` (contents, owner where
// allowed, permissions, user attributes, times) and flushes it; 0 or the error number.
int fillCopy(int in, const struct stat& source, int out, const WriteCall& write) {
    if (const int err = copyBytes(in, out, write)) return err;
    // Only root may give the copy another owner; everyone else's copy is theirs, as with mv.
    if (fchown(out, source.st_uid, source.st_gid) != 0 && errno != EPERM) return errno;
    if (fchmod(out, source.st_mode & 07777) != 0) return errno;
    copyUserAttributes(in, out);
    const std::array<timespec, 2> times = {source.st_atim, source.st_mtim};
    if (futimens(out, times.data()) != 0) return errno;
    if (fsync(out) != 0) return errno;
    return 0;
}

Status moveAcross(const std::string& from, const std::string& to, const WriteCall& write) {
    struct stat source {};
    if (lstat(from.c_str(), &source) != 0) return failure(errno);
    if (!S_ISREG(source.st_mode))
        return Status::failure("Only a file can be moved to another drive.", EXDEV);
    FileHandle in(open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (in.get() < 0 || fstat(in.get(), &source) != 0) return failure(errno);
    if (isTaken(to)) return failure(EEXIST);

    const std::string_view folder = parentPath(to);
    TemporaryFile out{std::string(folder)};
    if (out.error()) return failure(out.error());
    int err = fillCopy(in.get(), source, out.fd(), write);
    if (!err) err = out.placeNew(to);
    if (err) return failure(err);
    // The copy now stands at `to`; from here on a failure removes it again.
    struct stat copy {};
    if (fstat(out.fd(), &copy) != 0)
        err = errno;
    else if (copy.st_size != source.st_size)
        err = EIO;
    if (const int closeErr = out.close(); !err) err = closeErr;
    if (!err && unlink(from.c_str()) != 0) err = errno;
    if (err) {
        unlink(to.c_str());
        return failure(err);
    }
    syncFolder(folder);
    syncFolder(parentPath(from));
    return Status::ok();
}

} // namespace

bool isTaken(const std::string& path) {
    struct stat st {};
    if (lstat(path.c_str(), &st) == 0) return true;
    return errno != ENOENT && errno != ENOTDIR;
}

Status moveNoReplace(const std::string& from, const std::string& to, const WriteCall& write) {
    const int err = placeNoReplace(from, to);
    if (err == EXDEV) return moveAcross(from, to, write);
    return err ? failure(err) : Status::ok();
}

} // namespace lumivale
