#pragma once

#include <optional>
#include <string>

namespace lumivale::ScreenshotFolder {

// The save location of the first screenshot tool whose settings under `configHome` name one,
// as the tool wrote it ("$HOME" in a KDE entry marked for expansion becomes `home`): Spectacle
// (only in a KDE session), Flameshot, the Xfce screenshooter, then gnome-screenshot's GSettings
// key. An empty setting counts as none.
std::optional<std::string> storedLocation(const std::string& home, const std::string& configHome,
                                          bool kdeSession);

// The folder where screenshots are saved for the user of `home`, with the settings read
// from `configHome`; without a usable setting, the Pictures folder + "/Screenshots".
std::string locate(const std::string& home, const std::string& configHome, bool kdeSession);

// Whether the desktop session named by XDG_CURRENT_DESKTOP (may be null) is KDE Plasma.
bool isKdeSession(const char* xdgCurrentDesktop);

// The folder where screenshots are saved for the user of `home`, from this session's settings.
std::string current(const std::string& home);

} // namespace lumivale::ScreenshotFolder
