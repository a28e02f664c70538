#pragma once

#include "core/Status.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace lumivale {

// The write(2) call, replaceable so that tests can make a write fail part-way.
using WriteCall = std::function<ssize_t(int fd, const void* data, size_t length)>;
// The real write(2).
ssize_t systemWrite(int fd, const void* data, size_t length);

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
    std::string path_, temporary_;
    WriteCall write_;
    int fd_ = -1;
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
