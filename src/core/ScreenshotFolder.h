#pragma once

#include "core/UserDirs.h"

#include <functional>
#include <optional>
#include <string>

namespace lumivale::ScreenshotFolder {

// Tells whether a path is an existing folder.
using FolderTest = std::function<bool(const std::string&)>;

// The real folder test: something exists at the path and it is a folder (links followed).
bool isFolder(const std::string& path);

// Where screenshots go when no tool names a folder: the Pictures folder + "/Screenshots".
std::string defaultFolder(const UserDirs& dirs);

// The folder that a stored screenshot location names, as an absolute path without a trailing
// "/" (except "/" itself): a plain path, a "file://" URL, "~" or "~/…" under home; nothing, a
// relative path or anything that is not a folder by `isFolder` gives `fallback`.
std::string resolve(std::optional<std::string> raw, const std::string& home,
                    const FolderTest& isFolder, const std::string& fallback);

// A short name for a folder: its path below home with the pieces joined by " › ", "Home" for
// home itself, else its full path.
std::string displayName(const std::string& path, const std::string& home);

// Whether the folder also holds things other than screenshots (home, the Desktop or the
// Pictures folder itself), so that only screenshots are taken from it.
bool isShared(const std::string& folder, const std::string& home, const UserDirs& dirs);

} // namespace lumivale::ScreenshotFolder
