#pragma once

#include "core/Shot.h"
#include "core/Status.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lumivale {

// Every known shot, keyed by its path, and the user's folder lists. It lives in the data folder
// as "library.plist", a binary property list.
class Library {
  public:
    static constexpr int64_t currentVersion = 1;

    int64_t version = currentVersion;
    std::vector<std::string> extraFolders;
    std::vector<std::string> skippedFolders;

    size_t size() const { return shots_.size(); }
    bool empty() const { return shots_.empty(); }
    // The shots, in no particular order. A flat list, so that walking it or copying it (to save
    // in the background) touches no more memory than it must.
    const std::vector<ShotPtr>& all() const { return shots_; }
    // The shot at this path, or null.
    const Shot* find(std::string_view path) const;

    void reserve(size_t count);
    // Stores the shot under its own path, replacing any shot there.
    void put(Shot shot);
    // Stores the shot under its own path unless there is one already; false then.
    bool add(ShotPtr shot);
    // Replaces the shot at this path with an edited copy, whose path stays as it was (moving is
    // move's work); false when there is none.
    bool update(std::string_view path, const std::function<void(Shot&)>& edit);
    // Re-keys the shot at `from` to `to` (refolding it, since its name is part of the search text).
    void move(std::string_view from, const std::string& to);
    // Forgets the shot at this path; false when there is none.
    bool remove(std::string_view path);
    // Removes every shot whose path is not kept; returns how many went.
    int64_t prune(const std::unordered_set<std::string>& keeping);

    // The library in the file, or nothing when it is missing, unreadable, damaged or of
    // another version.
    static std::optional<Library> load(const std::string& file);
    // Writes the library atomically, making the folder first; the file is untouched on failure.
    Status save(const std::string& file) const {
        return write(file, shots_, extraFolders, skippedFolders);
    }
    // The same for values copied out of a library (so a background save needs no library).
    static Status write(const std::string& file, const std::vector<ShotPtr>& shots,
                        const std::vector<std::string>& extraFolders,
                        const std::vector<std::string>& skippedFolders);

  private:
    std::vector<ShotPtr> shots_;
    // Where each path's shot stands in shots_. The keys are views of the shots' own paths, which
    // live as long as the shots do and never change.
    std::unordered_map<std::string_view, size_t> index_;

    void replaceAt(size_t at, ShotPtr shot);
};

} // namespace lumivale
