#pragma once

// The one way this program moves a file: never over another file, and across file systems only
// once a complete copy sits at the target.

#include "core/FileOps.h"
#include "core/Status.h"

#include <string>

namespace lumivale {

// Moves the file at `from` to `to`, failing (with "File exists") rather than replacing anything
// at `to`. Across file systems the file is copied beside the target under a temporary name,
// flushed, put in place without replacing, checked for size, and only then is the original
// removed; the copy keeps the permissions, times and user attributes. On any failure the
// original is untouched and no partial copy is left. `write` is the write(2) used for the copy.
Status moveNoReplace(const std::string& from, const std::string& to,
                     const WriteCall& write = systemWrite);

// Whether anything (file, folder, even a dangling link) is at the path. A path that cannot be
// checked counts as taken, so nothing is ever placed over it.
bool isTaken(const std::string& path);

} // namespace lumivale
