#include "platform/DataFolderLock.h"

#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace lumivale {
namespace {

std::string lockFileOf(const std::string& dataDir) {
    return dataDir + "/lumivale.lock";
}

std::string_view roleName(DataFolderLock::Role role) {
    return role == DataFolderLock::Role::window ? "window" : "command";
}

} // namespace

DataFolderLock::DataFolderLock(DataFolderLock&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)) {}

DataFolderLock& DataFolderLock::operator=(DataFolderLock&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

DataFolderLock::~DataFolderLock() {
    if (fd_ >= 0) close(fd_);
}

DataFolderLock::Outcome DataFolderLock::take(const std::string& dataDir, Role role) {
    std::error_code ec;
    std::filesystem::create_directories(dataDir, ec);
    const int fd =
        open(lockFileOf(dataDir).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) return Outcome::unavailable;
    if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int err = errno;
        close(fd);
        return err == EWOULDBLOCK ? Outcome::held : Outcome::unavailable;
    }
    // Who holds it is only for messages, so a full disk that keeps it from being written is no
    // reason to give the lock up.
    const std::string note = std::string(roleName(role)) + " " + std::to_string(getpid()) + "\n";
    [[maybe_unused]] const bool noted =
        ftruncate(fd, 0) == 0 &&
        pwrite(fd, note.data(), note.size(), 0) == static_cast<ssize_t>(note.size());
    if (fd_ >= 0) close(fd_);
    fd_ = fd;
    return Outcome::taken;
}

std::optional<DataFolderLock::Holder> DataFolderLock::holder(const std::string& dataDir) {
    const int fd = open(lockFileOf(dataDir).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0) return std::nullopt;
    // A shared lock that can be had means no one holds the exclusive one.
    if (flock(fd, LOCK_SH | LOCK_NB) == 0) {
        close(fd);
        return std::nullopt;
    }
    char text[64] = {};
    const ssize_t n = pread(fd, text, sizeof text - 1, 0);
    close(fd);
    Holder found;
    const std::string_view note(text, n > 0 ? static_cast<size_t>(n) : 0);
    if (note.starts_with("window ")) found.role = Role::window;
    if (const size_t space = note.find(' '); space != std::string_view::npos)
        std::from_chars(note.data() + space + 1, note.data() + note.size(), found.pid);
    return found;
}

} // namespace lumivale
