#pragma once

#include "core/Status.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace lumivale {

// The write(2) call, replaceable so that tests can make a write fail part-way.
using WriteCall = std::function<ssize_t(int fd, const void* data, size_t length)>;
// The real write(2).
ssize_t systemWrite(int fd, const void* data, size_t length);

// A file being written that takes its name only once complete, so a process killed while
// writing leaves nothing behind: it has no name at all where the file system allows
// (O_TMPFILE), else a hidden name beside its target that says which process made it (see
// removeLeftovers).
class TemporaryFile {
  public:
    // Opens a new file with these permissions in `folder`; error() says why when it could not.
    explicit TemporaryFile(const std::string& folder, mode_t mode = 0600);
    // Closes the file and removes it unless it was put in place.
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int fd() const { return fd_; }
    // The error number of the open, or 0.
    int error() const { return error_; }
    // Gives the file the name `path`, replacing what was there; 0 or the error number.
    int replace(const std::string& path);
    // Gives the file the name `path` only when nothing is there; 0 or the error number (EEXIST).
    int placeNew(const std::string& path);
    // Closes the file now, reporting the error that a late write may only show here.
    int close();

  private:
    std::string folder_, named_;
    int fd_ = -1;
    int error_ = 0;

    // Gives the unnamed file the name `path`, never replacing anything; 0 or the error number.
    int linkUnnamed(const std::string& path);
    // Gives the unnamed file a free temporary name; 0 or the error number.
    int nameFree(std::string& name);
};

// Removes the temporary files that processes no longer running left in `folder` (a machine that
// lost power, a process that was killed between naming its file and putting it in place).
void removeLeftovers(const std::string& folder);

// Replaces the file at `path` with `bytes` or leaves it as it was: a temporary file in the same
// folder is written, flushed, renamed over the target, and the folder is flushed. Makes the
// folder (and its parents) first.
Status writeAtomically(const std::string& path, std::string_view bytes,
                       const WriteCall& write = systemWrite);

// The same atomic replacement for a file written in pieces, so a large file never has to sit in
// memory whole. The disk starts on each piece as it comes, while the next one is made.
class AtomicFile {
  public:
    // Makes the folder and opens a temporary file beside `path`.
    explicit AtomicFile(std::string path, WriteCall write = systemWrite);
    // Removes the temporary file unless it was committed.
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    // Adds bytes; after the first failure nothing more is written and the failure is kept.
    Status append(std::string_view bytes);
    // Flushes the file and renames it over `path`; the first failure of any step, if one came.
    Status commit();

  private:
    std::string path_;
    WriteCall write_;
    std::optional<TemporaryFile> file_;
    Status status_;
    uint64_t written_ = 0;
};

// Writes a new file that must not exist yet (O_CREAT | O_EXCL), flushed to disk. On failure
// nothing is left at `path` except a file that was already there.
Status writeNew(const std::string& path, std::string_view bytes,
                const WriteCall& write = systemWrite);

// Makes a folder and its missing parents.
Status makeFolders(const std::string& path);

} // namespace lumivale
