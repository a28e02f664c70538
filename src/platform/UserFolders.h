#pragma once

#include "core/UserDirs.h"

#include <string>

namespace lumivale::UserFolders {

// The user's configuration folder: $XDG_CONFIG_HOME when it is an absolute path, else
// home + "/.config".
std::string configHome(const std::string& home);

// The user's Desktop and Pictures folders, from the user-dirs file of the configuration folder.
UserDirs dirs(const std::string& home);

} // namespace lumivale::UserFolders
