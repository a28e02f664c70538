#pragma once

// The freedesktop.org Trash, shared with file managers, `gio trash` and trash-cli: a file goes to
// the home Trash ($XDG_DATA_HOME/Trash) when it lives on the same file system, otherwise to the
// Trash at the top of its own mount ($topdir/.Trash/$uid or $topdir/.Trash-$uid).

#include "core/Date.h"
#include "core/TidyRun.h"

#include <string>

namespace lumivale::Trash {

// The home Trash folder: $XDG_DATA_HOME/Trash, or ~/.local/share/Trash.
std::string homeTrash();

// Puts the file (or folder) at `path` in the Trash that serves it, deleted at `when` (written
// in local time): its ".trashinfo" is made first, then the file is moved in without replacing
// anything, under a numbered name when the name is taken. Gives the file's place in the Trash.
TrashOutcome put(const std::string& path, Date when);

// The standard trasher of the application: `put` with the current time.
TrashOutcome systemTrash(const std::string& path);

// The "Path=" text of a .trashinfo: the bytes of the path, percent-encoded except for letters,
// digits, "-._~" and "/".
std::string encodePath(std::string_view path);

} // namespace lumivale::Trash
