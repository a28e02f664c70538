#pragma once

#include <QSettings>

#include <optional>
#include <string>

namespace lumivale {

// Typed reads of the user's settings: a stored value that does not parse as the key's type
// counts as absent.
namespace Settings {

inline constexpr const char* blurPrivate = "blurPrivate";
inline constexpr const char* watchFolders = "watchFolders";
inline constexpr const char* lockAfterMinutes = "lockAfterMinutes";
inline constexpr const char* welcomeDone = "welcomeDone";
inline constexpr const char* archiveFolder = "archiveFolder";

std::optional<bool> boolean(const QSettings& settings, const char* key);
std::optional<int> integer(const QSettings& settings, const char* key);
std::optional<std::string> string(const QSettings& settings, const char* key);

} // namespace Settings
} // namespace lumivale
