// The small actions on shots and folders: shelving by hand, revealing, copying, banners and the
// list of folders that are read.

#include "app/AppModel.h"

#include "app/Settings.h"

#include <QDir>

#include <algorithm>

namespace lumivale {
namespace {

constexpr auto revealFor = std::chrono::seconds(30);
constexpr auto bannerFor = std::chrono::seconds(4);
constexpr auto bannerWithUndoFor = std::chrono::seconds(12);

void removeFrom(std::vector<std::string>& list, const std::string& value) {
    list.erase(std::remove(list.begin(), list.end(), value), list.end());
}

bool contains(const std::vector<std::string>& list, const std::string& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

} // namespace

void AppModel::setShelf(const std::string& path, std::optional<Shelf> shelf) {
    const bool changed = library_.update(path, [&](Shot& shot) {
        // Choosing the sorter's own shelf again clears the hand-made choice.
        shot.manual = (shelf && *shelf != shot.guess) ? shelf : std::nullopt;
    });
    if (!changed)
        return;
    emit libraryChanged();
    save();
}

void AppModel::reveal(const std::string& path) {
    revealed_.insert(path);
    emit revealedChanged();
    // Each reveal has its own timer: an earlier one ends the reveal even if the shot was
    // revealed again meanwhile.
    services_.scheduler->after(revealFor, this, [this, path] {
        if (revealed_.erase(path))
            emit revealedChanged();
    });
}

void AppModel::copyText(const Shot& shot) {
    services_.copyText(shot.text());
    flash("Copied the words in \u201c" + std::string(shot.name()) + "\u201d");
}

void AppModel::copyImage(const Shot& shot) {
    if (services_.copyImage(shot.path))
        flash("Copied the screenshot");
    else
        flash("The screenshot couldn't be read.", true);
}

void AppModel::flash(std::string text, bool error) {
    showBanner(Banner{QUuid::createUuid(), std::move(text), std::nullopt, error});
}

void AppModel::dismissBanner() {
    if (!banner_)
        return;
    banner_.reset();
    emit bannerChanged();
}

void AppModel::showBanner(Banner banner) {
    const QUuid id = banner.id;
    const auto duration = banner.undo ? bannerWithUndoFor : bannerFor;
    banner_ = std::move(banner);
    emit bannerChanged();
    services_.scheduler->after(duration, this, [this, id] {
        // A newer banner keeps its full time.
        if (banner_ && banner_->id == id) {
            banner_.reset();
            emit bannerChanged();
        }
    });
}

void AppModel::showPicture(const std::string& path) {
    if (library_.find(path)) {
        setQuery("");
        setPlace(Place::of(Place::Kind::all));
        setSelection(path);
        return;
    }
    const bool inReadFolder = std::ranges::any_of(sources_, [&](const Source& source) {
        return source.enabled && path.starts_with(source.path + "/");
    });
    if (!inReadFolder) return sayNotKept(path);
    showAfterScan_ = path;
    rescan();
}

void AppModel::sayNotKept(const std::string& path) {
    const std::string name = QString::fromStdString(path).section('/', -1).toStdString();
    flash("\u201c" + name + "\u201d isn't one of the screenshots Lumivale keeps. Add its folder in Settings to keep it here.", true);
}

void AppModel::addFolder(const std::string& path) {
    const std::string clean = QDir::cleanPath(QString::fromStdString(path)).toStdString();
    if (clean != paths_.screenshotFolder && !contains(library_.extraFolders, clean))
        library_.extraFolders.push_back(clean);
    finishFolderChange();
}

void AppModel::removeFolder(const Source& source) {
    removeFrom(library_.extraFolders, source.path);
    removeFrom(library_.skippedFolders, source.path);
    if (place_.kind == Place::Kind::folder && place_.folder == source.path)
        setPlace(Place::of(Place::Kind::overview));
    finishFolderChange();
}

void AppModel::setEnabled(const Source& source, bool on) {
    if (on)
        removeFrom(library_.skippedFolders, source.path);
    else if (!contains(library_.skippedFolders, source.path))
        library_.skippedFolders.push_back(source.path);
    finishFolderChange();
}

void AppModel::setArchive(const std::string& path) {
    const std::string clean = QDir::cleanPath(QString::fromStdString(path)).toStdString();
    if (path.empty() || clean == paths_.archive)
        return;
    paths_.archive = clean;
    settings_.setValue(Settings::archiveFolder, QString::fromStdString(clean));
    emit settingsChanged();
    finishFolderChange();
}

void AppModel::finishWelcome() {
    settings_.setValue(Settings::welcomeDone, true);
    if (showWelcome_) {
        showWelcome_ = false;
        emit sheetsChanged();
    }
    rescan();
    rewatch();
}

void AppModel::finishFolderChange() {
    rebuildSources();
    save();
    // Nothing is read or watched before the welcome is finished.
    if (showWelcome_)
        return;
    rescan();
    rewatch();
}

} // namespace lumivale
