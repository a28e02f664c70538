#pragma once

// The locked area: screenshots sealed with AES-256-GCM into files of one folder, and every file
// operation on that folder. The vault never holds the key; each operation that needs it is
// handed one.

#include "core/Date.h"
#include "core/FileOps.h"
#include "core/Shot.h"
#include "core/Status.h"
#include "core/VaultKey.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumivale {

// One screenshot in the locked area: the shot as it was when locked, under a random id that is
// also its file's base name.
struct LockedShot {
    std::string id;
    Shot shot;
    Date lockedAt{};

    bool operator==(const LockedShot&) const = default;
};

// The binary property list of a locked shot: keys "id", "shot", "lockedAt".
std::string encodeLockedShot(const LockedShot& locked);
// The locked shot in these bytes, or nothing when any of the three keys is missing or mistyped.
std::optional<LockedShot> decodeLockedShot(std::span<const uint8_t> bytes);

// Moves a locked file away (the application passes its move-to-Trash).
using Disposer = std::function<Status(const std::string& path)>;

// The locked folder. Immutable and safe to share; it keeps no state beyond its folder.
class Vault {
public:
    static constexpr std::string_view magic = "LUMIVALE-VAULT-1\n";
    static constexpr std::string_view fileExtension = "lvlock";

    // The sealed parts of one locked file.
    struct Parts {
        std::string header;
        std::string body;
    };

    // The headers of every locked file that opens, newest first, and how many did not.
    struct Listing {
        std::vector<LockedShot> items;
        int64_t unreadable = 0;
    };

    // A vault on this folder; creates nothing.
    explicit Vault(std::string dir) : dir_(std::move(dir)) {}

    const std::string& dir() const { return dir_; }
    // The path of the locked file with this id.
    std::string pathOf(std::string_view id) const;

    // The paths of the folder's entries whose extension is exactly "lvlock", in the order the
    // file system lists them; empty when the folder is missing or unreadable.
    std::vector<std::string> files() const;
    // How many files() there are.
    int64_t count() const;

    // Seals the picture at shot.path into a new locked file and checks that it opens to the same
    // bytes; a copy that does not is deleted (verifyFailed). The original is never touched.
    // `write` lets tests damage what reaches the disk.
    VaultResult<LockedShot> lock(const Shot& shot, const VaultKey& key, Date now,
                                 const WriteCall& write = systemWrite) const;

    // The two sealed parts of a locked file (notAFile when its layout is wrong).
    VaultResult<Parts> parts(const std::string& path) const;
    // The locked shot in a file's header (cannotOpen for another key or a damaged header).
    VaultResult<LockedShot> header(const std::string& path, const VaultKey& key) const;
    // The picture's bytes of the locked file with this id.
    VaultResult<std::string> image(std::string_view id, const VaultKey& key) const;
    // Every locked file's header; files that cannot be opened are only counted. Never fails.
    Listing list(const VaultKey& key) const;

    // Writes the picture back into `folder` under its original name, never over an existing
    // file, with its original modification date, and then deletes the locked file. A copy that
    // does not read back the same is removed and the locked file kept (verifyFailed).
    VaultResult<std::string> restore(std::string_view id, const std::string& folder,
                                     const VaultKey& key,
                                     const WriteCall& write = systemWrite) const;

    // Hands the locked file with this id to `disposer`; its failure is passed on.
    VaultResult<void> discard(std::string_view id, const Disposer& disposer) const;

private:
    std::string dir_;
};

} // namespace lumivale
