#pragma once

#include <string>
#include <string_view>

namespace lumivale {

// The user's Desktop and Pictures folders as the freedesktop user-dirs file names them
// (~/.config/user-dirs.dirs), as absolute paths without a trailing "/".
struct UserDirs {
    std::string desktop;
    std::string pictures;

    // The folders named by the text of a user-dirs file; a folder it does not name, or names
    // in a form other than "$HOME/…" or "/…", is home + "/Desktop" or home + "/Pictures".
    static UserDirs parse(std::string_view text, const std::string& home);
    // The folders named by configHome + "/user-dirs.dirs"; a missing file gives the defaults.
    static UserDirs load(const std::string& configHome, const std::string& home);

    bool operator==(const UserDirs&) const = default;
};

// The user's configuration folder: `xdgConfigHome` (the value of XDG_CONFIG_HOME, may be null)
// when it is an absolute path, else home + "/.config".
std::string configHomeFor(const std::string& home, const char* xdgConfigHome);

} // namespace lumivale
