#pragma once

// Only one process changes a data folder at a time: the window holds this lock for as long as it
// is open, a command that changes the library for as long as it runs. It is an advisory lock on
// the file "lumivale.lock" in the data folder, which the system lets go of when its holder ends,
// however it ends; the file itself names the holder, for the message a second writer gets.

#include <optional>
#include <string>
#include <sys/types.h>

namespace lumivale {

class DataFolderLock {
  public:
    enum class Role { window, command };
    struct Holder {
        Role role = Role::command;
        pid_t pid = 0;
    };
    enum class Outcome { taken, held, unavailable };

    DataFolderLock() = default;
    DataFolderLock(DataFolderLock&& other) noexcept;
    DataFolderLock& operator=(DataFolderLock&& other) noexcept;
    DataFolderLock(const DataFolderLock&) = delete;
    DataFolderLock& operator=(const DataFolderLock&) = delete;
    ~DataFolderLock();

    // Takes the lock without waiting, making the data folder when it is missing. `held` when
    // another process has it; `unavailable` when the lock file cannot be made or opened (an
    // unwritable or full folder), where there is nothing a second writer could overwrite.
    Outcome take(const std::string& dataDir, Role role);
    bool isTaken() const { return fd_ >= 0; }

    // Who holds the folder's lock, as the holder wrote it; nothing when no one holds it.
    static std::optional<Holder> holder(const std::string& dataDir);

  private:
    int fd_ = -1;
};

} // namespace lumivale
