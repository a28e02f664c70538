// The locked area: locking screenshots away, opening and closing it, restoring and discarding
// locked screenshots, and closing it again by itself. Decrypted pictures live only in memory
// while it is open.

#include "app/AppModel.h"

#include "app/ThumbnailCache.h"
#include "core/SearchQuery.h"

#include <QDir>
#include <QLocale>

namespace lumivale {
namespace {

std::string grouped(int64_t n) { return QLocale::system().toString(static_cast<qlonglong>(n)).toStdString(); }

std::string noun(int64_t n) { return n == 1 ? "screenshot" : "screenshots"; }

constexpr auto leftAppFor = std::chrono::seconds(60);
constexpr auto shortestAutoLock = std::chrono::seconds(30);

// A folder for people, with the home folder written as "~".
std::string tildePath(const std::string& folder) {
    const std::string home = QDir::homePath().toStdString();
    if (folder == home)
        return "~";
    if (folder.compare(0, home.size() + 1, home + "/") == 0)
        return "~" + folder.substr(home.size());
    return folder;
}

} // namespace

std::optional<VaultKey> AppModel::vaultKey(const std::string& reason) {
    if (!services_.authenticate(reason))
        return std::nullopt;
    VaultResult<VaultKey> key = services_.keySource->key();
    if (!key) {
        flash("Lumivale couldn't reach its key in the keyring: " + key.error().description(), true);
        return std::nullopt;
    }
    return std::move(key).value();
}

void AppModel::lock(const std::vector<std::string>& paths) {
    const int64_t n = static_cast<int64_t>(paths.size());
    if (n == 0 ||
        !services_.confirm("Lock away " + grouped(n) + " " + noun(n) + "?",
                           "Lumivale encrypts them into its locked area, which opens with your fingerprint or "
                           "your account password. The originals go to the Trash; empty it to remove them "
                           "from this computer for good.",
                           "Lock Away"))
        return;
    const std::optional<VaultKey> key = vaultKey("lock screenshots away");
    if (!key)
        return;
    const Vault vault(paths_.vault);
    std::vector<std::string> locked;
    int64_t failed = 0;
    for (const std::string& path : paths) {
        const Shot* shot = library_.find(path);
        if (shot && vault.lock(*shot, *key, now()))
            locked.push_back(path);
        else
            ++failed;
    }
    // The originals go to the Trash; this is not offered for undo, which would bring a private
    // screenshot back out beside its locked copy.
    const TidyResult trashed = Tidy::trash(locked, now(), services_.trasher);
    // A thumbnail would keep a readable copy of a locked screenshot: every size goes, whoever
    // made it.
    for (const std::string& path : locked)
        ThumbnailCache::forget(path);
    for (const Move& move : trashed.journal.entries)
        library_.remove(move.from);
    if (selection_ && !library_.find(*selection_))
        setSelection(std::nullopt);
    emit libraryChanged();
    save();
    refreshVault();

    const int64_t needAgain = failed + static_cast<int64_t>(trashed.failed.size());
    if (needAgain == 0)
        flash("Locked " + grouped(n) + " " + noun(n) + ". The originals are in the Trash.");
    else
        flash("Locked " + grouped(static_cast<int64_t>(locked.size())) + "; " + grouped(needAgain) +
                  " need another try",
              true);
}

void AppModel::unlockVault() {
    const std::optional<VaultKey> key = vaultKey("open your locked screenshots");
    if (!key)
        return;
    key_ = *key;
    const Vault::Listing listing = Vault(paths_.vault).list(*key_);
    lockedItems_ = listing.items;
    vaultCount_ = Vault(paths_.vault).count();
    vaultOpen_ = true;
    emit vaultChanged();
    if (listing.unreadable > 0)
        flash(grouped(listing.unreadable) + " locked file" + (listing.unreadable == 1 ? "" : "s") +
              " can't be opened with this computer's key");
    scheduleAutoLock(std::chrono::minutes(lockAfterMinutes_));
}

void AppModel::lockVault() {
    if (autoLock_) {
        autoLock_->cancel();
        autoLock_.reset();
    }
    vaultOpen_ = false;
    lockedItems_.clear();
    lockedImages_.clear();
    lockedSelection_.reset();
    key_.reset();
    emit vaultChanged();
}

void AppModel::refreshVault() {
    const Vault vault(paths_.vault);
    if (vaultOpen_ && key_) {
        lockedItems_ = vault.list(*key_).items;
        std::erase_if(lockedImages_, [this](const auto& entry) {
            return std::none_of(lockedItems_.begin(), lockedItems_.end(),
                                [&](const LockedShot& item) { return item.id == entry.first; });
        });
    }
    vaultCount_ = vault.count();
    emit vaultChanged();
}

std::optional<QImage> AppModel::lockedImage(const std::string& id) {
    if (!vaultOpen_ || !key_)
        return std::nullopt;
    if (const auto cached = lockedImages_.find(id); cached != lockedImages_.end())
        return cached->second;
    const VaultResult<std::string> bytes = Vault(paths_.vault).image(id, *key_);
    if (!bytes)
        return std::nullopt;
    QImage image = QImage::fromData(reinterpret_cast<const uchar*>(bytes->data()), static_cast<int>(bytes->size()));
    if (image.isNull())
        return std::nullopt;
    lockedImages_[id] = image;
    return image;
}

std::vector<LockedShot> AppModel::lockedMatches() const {
    if (!vaultOpen_)
        return {};
    const SearchQuery query(query_);
    std::vector<ShotPtr> shots;
    for (const LockedShot& item : lockedItems_)
        shots.push_back(std::make_shared<const Shot>(item.shot));
    std::vector<LockedShot> out;
    for (const ShotPtr& shot : query.rank(shots))
        for (const LockedShot& item : lockedItems_)
            if (item.shot.path == shot->path && item.shot == *shot)
                out.push_back(item);
    return out;
}

std::optional<std::string> AppModel::restore(const LockedShot& item, const std::string& folder) {
    if (!vaultOpen_ || !key_)
        return std::nullopt;
    const VaultResult<std::string> restored = Vault(paths_.vault).restore(item.id, folder, *key_);
    if (!restored) {
        flash(restored.error().description(), true);
        return std::nullopt;
    }
    // Cleared before the refresh, so the views it notifies see no selection.
    lockedSelection_.reset();
    refreshVault();
    const std::string name = restored->substr(restored->rfind('/') + 1);
    flash("Restored \u201c" + name + "\u201d to " + tildePath(folder));
    return restored.value();
}

bool AppModel::discard(const LockedShot& item) {
    if (!services_.confirm("Remove \u201c" + std::string(item.shot.name()) + "\u201d from the locked area?",
                           "Its encrypted file goes to the Trash.", "Remove"))
        return false;
    const VaultResult<void> done = Vault(paths_.vault).discard(item.id, [this](const std::string& path) {
        const TrashOutcome outcome = services_.trasher(path);
        return outcome.status;
    });
    if (!done) {
        flash(done.error().description(), true);
        return false;
    }
    lockedSelection_.reset();
    refreshVault();
    return true;
}

void AppModel::setLockedSelection(std::optional<std::string> id) {
    lockedSelection_ = std::move(id);
    emit vaultChanged();
}

void AppModel::scheduleAutoLock(std::chrono::seconds after) {
    if (autoLock_) {
        autoLock_->cancel();
        autoLock_.reset();
    }
    if (!vaultOpen_)
        return;
    autoLock_ = services_.scheduler->after(std::max(after, std::chrono::seconds(shortestAutoLock)), this, [this] {
        autoLock_.reset();
        lockVault();
    });
}

void AppModel::touchVault() {
    if (vaultOpen_)
        scheduleAutoLock(std::chrono::minutes(lockAfterMinutes_));
}

void AppModel::applicationLeft() { scheduleAutoLock(leftAppFor); }

} // namespace lumivale
