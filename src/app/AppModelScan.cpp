// The scan and read cycle: list the sources in the background, merge what was found into the
// library on the main thread, then read what waits, at most three pictures at a time.

#include "app/AppModel.h"

#include "core/Folders.h"
#include "core/ScreenshotFolder.h"
#include "core/Sorter.h"
#include "platform/UserFolders.h"
#include "reading/ReadingLanguages.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <unordered_set>

namespace lumivale {
namespace {

constexpr int64_t listLimit = 100000;
constexpr auto debounce = std::chrono::milliseconds(1200);
constexpr int64_t savesEvery = 25;

} // namespace

void AppModel::rescan() {
    if (scanning_) {
        rescanAgain_ = true;
        return;
    }
    scanning_ = true;
    rescanAgain_ = false;
    emit scanningChanged();

    std::vector<Source> enabled;
    std::copy_if(sources_.begin(), sources_.end(), std::back_inserter(enabled),
                 [](const Source& s) { return s.enabled; });
    const std::set<std::string> skipping = {paths_.data, paths_.vault};
    // A folder of its own holds only screenshots, whatever their names; a shared one (home,
    // Desktop, Pictures) is filtered by name and mark.
    const std::string home = QDir::homePath().toStdString();
    const bool sharedScreenshotFolder =
        ScreenshotFolder::isShared(paths_.screenshotFolder, home, UserFolders::dirs(home));

    // The pools are waited for when the model goes, so `this` outlives every task; a result
    // posted to the model is dropped by Qt if the model is gone before it is delivered.
    listPool_.start([this, enabled, skipping, sharedScreenshotFolder] {
        std::vector<ScanResult> results;
        for (const Source& source : enabled) {
            ScanResult result{source, Folders::canRead(source.path), {}, {}};
            if (result.readable) {
                const bool screenshots = source.kind == Source::Kind::screenshots;
                result.files = Folders::list(source.path, screenshots && sharedScreenshotFolder,
                                             screenshots ? 2 : 4, skipping, listLimit, &result.unnamed);
            }
            results.push_back(std::move(result));
        }
        QMetaObject::invokeMethod(this, [this, results = std::move(results)] {
            merge(results);
            scanning_ = false;
            emit scanningChanged();
            if (rescanAgain_)
                rescan();
            else
                readWaiting();
        }, Qt::QueuedConnection);
    });
}

void AppModel::merge(const std::vector<ScanResult>& results) {
    bool sourcesMoved = false;
    for (const ScanResult& result : results)
        for (Source& source : sources_)
            if (source.path == result.source.path && source.readable != result.readable) {
                source.readable = result.readable;
                sourcesMoved = true;
            }

    std::unordered_set<std::string> keep;
    for (const ScanResult& result : results) {
        if (!result.readable)
            continue;
        for (const FoundFile& file : result.files) {
            keep.insert(file.path);
            const Shot* known = library_.find(file.path);
            if (!known) {
                library_.put(Shot(file.path, file.size, file.created, file.modified));
            } else if (!known->matches(file.size, file.modified)) {
                library_.update(file.path, [&](Shot& shot) {
                    shot.size = file.size;
                    shot.modified = file.modified;
                    shot.readAt.reset();
                });
            }
        }
    }
    // The shots of a folder that can no longer be opened are kept, not forgotten.
    for (const ScanResult& result : results) {
        if (result.readable)
            continue;
        const std::string prefix = result.source.path + "/";
        for (const ShotPtr& shot : library_.all())
            if (shot->path.starts_with(prefix))
                keep.insert(shot->path);
    }
    library_.prune(keep);
    if (selection_ && !library_.find(*selection_))
        setSelection(std::nullopt);
    if (sourcesMoved)
        emit sourcesChanged();
    emit libraryChanged();
    save();
    noteLeftAlone(results);
    if (showAfterScan_) {
        const std::string path = *std::exchange(showAfterScan_, std::nullopt);
        library_.find(path) ? showPicture(path) : sayNotKept(path);
    }
}

void AppModel::noteLeftAlone(const std::vector<ScanResult>& results) {
    std::vector<std::string> fresh;
    for (const ScanResult& result : results)
        for (const std::string& path : result.unnamed)
            if (leftAlone_.insert(path).second)
                fresh.push_back(path);
    // Said once for each, and never over what an action has to say: a name the library cannot
    // hold is no reason to nag at every scan.
    if (fresh.empty() || banner_)
        return;
    const std::string name = QString::fromUtf8(fresh.front().data(), static_cast<qsizetype>(fresh.front().size()))
                                 .section('/', -1)
                                 .toStdString();
    flash(fresh.size() == 1 ? "Left alone \u201c" + name + "\u201d: its name isn't valid UTF-8"
                            : "Left alone " + std::to_string(fresh.size()) +
                                  " pictures whose names aren't valid UTF-8, such as \u201c" + name + "\u201d",
          true);
}

const std::vector<std::string>& AppModel::languages() {
    if (!languages_)
        languages_ = ReadingLanguages::defaults(ReadingLanguages::preferred(), ReadingLanguages::supported());
    return *languages_;
}

void AppModel::readWaiting() {
    if (reading_)
        return;
    std::vector<ShotPtr> waiting;
    for (const ShotPtr& shot : library_.all())
        if (!shot->isRead() || shot->reader < readerVersion)
            waiting.push_back(shot);
    if (waiting.empty()) {
        if (progress_) {
            progress_.reset();
            emit progressChanged();
        }
        return;
    }
    std::sort(waiting.begin(), waiting.end(),
              [](const ShotPtr& a, const ShotPtr& b) { return a->date() > b->date(); });
    readQueue_.clear();
    for (const ShotPtr& shot : waiting)
        readQueue_.push_back(shot->path);
    readNext_ = 0;
    reading_ = true;
    progress_ = Progress{0, static_cast<int64_t>(readQueue_.size())};
    emit progressChanged();
    languages();
    startReads();
}

void AppModel::startReads() {
    while (readsInFlight_ < readPool_.maxThreadCount() && readNext_ < readQueue_.size()) {
        const std::string path = readQueue_[readNext_++];
        ++readsInFlight_;
        readPool_.start([this, path, read = services_.read, languages = *languages_] {
            Reading reading = read(path, languages);
            QMetaObject::invokeMethod(this, [this, path, reading = std::move(reading)] {
                --readsInFlight_;
                finishReading(path, reading);
            }, Qt::QueuedConnection);
        });
    }
}

void AppModel::finishReading(const std::string& path, const Reading& reading) {
    applyReading(path, reading);
    progress_->done += 1;
    emit progressChanged();
    if (progress_->done % savesEvery == 0)
        save();
    if (readNext_ < readQueue_.size()) {
        startReads();
    } else if (readsInFlight_ == 0) {
        reading_ = false;
        readQueue_.clear();
        progress_.reset();
        emit progressChanged();
        save();
    }
}

void AppModel::applyReading(const std::string& path, const Reading& reading) {
    const Date readAt = now();
    const bool stored = library_.update(path, [&](Shot& shot) {
        Sorter::apply(reading, shot);
        shot.readAt = readAt;
    });
    if (!stored)
        return; // trashed, moved or locked while it was being read
    emit libraryChanged();
    emit shotRead(QString::fromStdString(path));
}

void AppModel::rewatch() {
    const QStringList watched = watcher_.directories();
    if (!watched.isEmpty())
        watcher_.removePaths(watched);
    if (!watch_)
        return;
    for (const Source& source : sources_)
        if (source.enabled && source.readable && QDir(QString::fromStdString(source.path)).exists())
            watcher_.addPath(QString::fromStdString(source.path));
}

void AppModel::soon() {
    if (rescanPending_)
        rescanPending_->cancel();
    rescanPending_ = services_.scheduler->after(debounce, this, [this] {
        rescanPending_.reset();
        rescan();
    });
}

void AppModel::waitUntilIdle() {
    while (scanning_ || reading_)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 100);
}

} // namespace lumivale
