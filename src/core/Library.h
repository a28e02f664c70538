#pragma once

#include "core/Shot.h"
#include "core/Status.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lumivale {

// Every known shot, keyed by its path, and the user's folder lists. It lives in the data folder
// as "library.plist", a binary property list.
struct Library {
    static constexpr int64_t currentVersion = 1;

    int64_t version = currentVersion;
    std::unordered_map<std::string, ShotPtr> shots;
    std::vector<std::string> extraFolders;
    std::vector<std::string> skippedFolders;

    // The shot at this path, or null.
    const Shot* find(const std::string& path) const;
    // Stores the shot under its own path, replacing any shot there.
    void put(Shot shot);
    // Replaces the shot at this path with an edited copy, whose path stays as it was (moving is
    // move's work); false when there is none.
    bool update(const std::string& path, const std::function<void(Shot&)>& edit);
    // Re-keys the shot at `from` to `to` (refolding it, since its name is part of the search text).
    void move(const std::string& from, const std::string& to);
    // Removes every shot whose path is not kept; returns how many went.
    int64_t prune(const std::unordered_set<std::string>& keeping);
    // The shots, in no particular order (cheap: shared pointers).
    std::vector<ShotPtr> all() const;

    // The library in the file, or nothing when it is missing, unreadable, damaged or of
    // another version.
    static std::optional<Library> load(const std::string& file);
    // Writes the library atomically, making the folder first; the file is untouched on failure.
    Status save(const std::string& file) const {
        return write(file, all(), extraFolders, skippedFolders);
    }
    // The same for values copied out of a library (so a background save needs no library).
    static Status write(const std::string& file, const std::vector<ShotPtr>& shots,
                        const std::vector<std::string>& extraFolders,
                        const std::vector<std::string>& skippedFolders);
};

} // namespace lumivale
