#pragma once

#include "core/Status.h"

#include <cstddef>
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
Status writeAtomically(const std::string& path, std::string_view bytes, const WriteCall& write = systemWrite);

// Writes a new file that must not exist yet (O_CREAT | O_EXCL), flushed to disk. On failure
// nothing is left at `path` except a file that was already there.
Status writeNew(const std::string& path, std::string_view bytes, const WriteCall& write = systemWrite);

// Makes a folder and its missing parents.
Status makeFolders(const std::string& path);

} // namespace lumivale
