#include "app/AppModel.h"

#include "app/Settings.h"
#include "core/FileOps.h"
#include "core/SearchQuery.h"
#include "platform/Authenticator.h"
#include "platform/KeychainKey.h"
#include "platform/PasswordPrompt.h"
#include "platform/Trash.h"
#include "reading/Reader.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace lumivale {
namespace {

constexpr int maxReadings = 3;
constexpr auto week = std::chrono::seconds(604800);

AppModel::Services withDefaults(AppModel::Services s) {
    if (!s.clock)
        s.clock = [] { return lumivale::now(); };
    if (!s.read)
        s.read = [](const std::string& path, const std::vector<std::string>& languages) {
            return Reader::read(path, languages);
        };
    if (!s.scheduler)
        s.scheduler = std::make_shared<QtScheduler>();
    if (!s.copyText)
        s.copyText = [](const std::string& text) {
            QGuiApplication::clipboard()->setText(QString::fromStdString(text));
        };
    if (!s.copyImage)
        s.copyImage = [](const std::string& path) {
            QImage image(QString::fromStdString(path));
            if (image.isNull())
                return false;
            auto* mime = new QMimeData;
            mime->setImageData(image);
            mime->setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
            QGuiApplication::clipboard()->setMimeData(mime);
            return true;
        };
    if (!s.trasher)
        s.trasher = [](const std::string& path) { return Trash::systemTrash(path); };
    if (!s.authenticate)
        s.authenticate = [auth = std::shared_ptr<Authenticator>(systemAuthenticator(terminalPasswordPrompt()))](
                             const std::string& reason) { return auth->authenticate(reason); };
    if (!s.keySource)
        s.keySource = std::make_shared<KeychainKey>();
    if (!s.confirm)
        s.confirm = [](const std::string&, const std::string&, const std::string&) { return false; };
    return s;
}

// The places that show the whole library.
bool holdsEverything(const Place& place) {
    return place.kind == Place::Kind::overview || place.kind == Place::Kind::all ||
           place.kind == Place::Kind::locked;
}

} // namespace

AppModel::AppModel(Paths paths, QSettings& settings, Services services, QObject* parent)
    : QObject(parent), paths_(std::move(paths)), settings_(settings),
      services_(withDefaults(std::move(services))) {
    blurPrivate_ = Settings::boolean(settings_, Settings::blurPrivate).value_or(true);
    watch_ = Settings::boolean(settings_, Settings::watchFolders).value_or(true);
    lockAfterMinutes_ = Settings::integer(settings_, Settings::lockAfterMinutes).value_or(5);
    listPool_.setMaxThreadCount(1);
    readPool_.setMaxThreadCount(maxReadings);
    // Each reading thread keeps its recognition engine, which takes a while to load; the threads
    // are kept too, instead of ending after half a minute without work.
    readPool_.setExpiryTimeout(-1);
    // One writer at a time, in order, so an older save never lands after a newer one.
    savePool_.setMaxThreadCount(1);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] { soon(); });
}

AppModel::~AppModel() {
    listPool_.waitForDone();
    readPool_.waitForDone();
    savePool_.waitForDone();
}

// --- settings and simple state ----------------------------------------------------------------

void AppModel::setPlace(Place place) {
    if (place == place_)
        return;
    place_ = std::move(place);
    emit placeChanged();
}

void AppModel::setQuery(std::string query) {
    if (query == query_)
        return;
    query_ = std::move(query);
    emit queryChanged();
}

void AppModel::setShowTidy(bool on) {
    if (on == showTidy_)
        return;
    showTidy_ = on;
    emit sheetsChanged();
}

void AppModel::setNewestFirst(bool on) {
    if (on == newestFirst_)
        return;
    newestFirst_ = on;
    emit queryChanged();
}

void AppModel::setSelection(std::optional<std::string> path) {
    if (path == selection_)
        return;
    selection_ = std::move(path);
    emit selectionChanged();
}

void AppModel::setBlurPrivate(bool on) {
    blurPrivate_ = on;
    settings_.setValue(Settings::blurPrivate, on);
    emit settingsChanged();
}

void AppModel::setWatch(bool on) {
    watch_ = on;
    settings_.setValue(Settings::watchFolders, on);
    emit settingsChanged();
    rewatch();
}

void AppModel::setLockAfterMinutes(int minutes) {
    lockAfterMinutes_ = minutes;
    settings_.setValue(Settings::lockAfterMinutes, minutes);
    emit settingsChanged();
}

// --- start-up and saving ------------------------------------------------------------------------

void AppModel::load() {
    if (loaded_)
        return;
    loaded_ = true;
    removeLeftovers(paths_.data);
    removeLeftovers(paths_.vault);
    library_ = Library::load(paths_.libraryFile()).value_or(Library{});
    journals_ = JournalBook::load(paths_.journalFile());
    vaultCount_ = Vault(paths_.vault).count();
    rebuildSources();
    emit libraryChanged();
}

void AppModel::start() {
    if (started_)
        return;
    started_ = true;
    load();
    begin();
}

void AppModel::startInBackground() {
    if (started_ || loaded_) {
        start();
        return;
    }
    started_ = loaded_ = loading_ = true;
    emit loadingChanged();
    listPool_.start([this, paths = paths_] {
        auto library = std::make_shared<Library>(Library::load(paths.libraryFile()).value_or(Library{}));
        auto journals = std::make_shared<JournalBook>(JournalBook::load(paths.journalFile()));
        const int64_t locked = Vault(paths.vault).count();
        QMetaObject::invokeMethod(this, [this, library, journals, locked] {
            library_ = std::move(*library);
            journals_ = std::move(*journals);
            vaultCount_ = locked;
            loading_ = false;
            rebuildSources();
            emit loadingChanged();
            emit libraryChanged();
            emit journalsChanged();
            emit vaultChanged();
            begin();
        }, Qt::QueuedConnection);
    });
}

void AppModel::begin() {
    if (isDemo_ || Settings::boolean(settings_, Settings::welcomeDone).value_or(false)) {
        rescan();
        rewatch();
    } else {
        showWelcome_ = true;
        emit sheetsChanged();
    }
    // Only the step out of the active state counts as leaving: going on from inactive to
    // hidden must not restart the minute. The application starts in front.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this, wasActive = true](Qt::ApplicationState state) mutable {
                const bool active = state == Qt::ApplicationActive;
                if (active && (isDemo_ || Settings::boolean(settings_, Settings::welcomeDone).value_or(false)))
                    rescan();
                else if (!active && wasActive)
                    applicationLeft();
                wasActive = active;
            });
}

void AppModel::rebuildSources() {
    std::vector<Source> next;
    const auto skipped = [this](const std::string& path) {
        const auto& s = library_.skippedFolders;
        return std::find(s.begin(), s.end(), path) != s.end();
    };
    const auto listed = [&next](const std::string& path) {
        return std::any_of(next.begin(), next.end(), [&](const Source& s) { return s.path == path; });
    };
    next.push_back({paths_.screenshotFolder, Source::Kind::screenshots, !skipped(paths_.screenshotFolder), true});
    for (const std::string& folder : library_.extraFolders)
        if (!listed(folder))
            next.push_back({folder, Source::Kind::added, !skipped(folder), true});
    if (!listed(paths_.archive))
        next.push_back({paths_.archive, Source::Kind::archive, true, true});
    for (Source& source : next)
        for (const Source& old : sources_)
            if (old.path == source.path)
                source.readable = old.readable;
    sources_ = std::move(next);
    emit sourcesChanged();
}

void AppModel::save() {
    if (isDemo_)
        return;
    auto shots = library_.all();
    auto extra = library_.extraFolders;
    auto skipped = library_.skippedFolders;
    const std::string file = paths_.libraryFile();
    const std::string journalFile = paths_.journalFile();
    savePool_.start([this, file, journalFile, shots = std::move(shots), extra = std::move(extra),
                     skipped = std::move(skipped), journals = journals_] {
        const Status wroteLibrary = Library::write(file, shots, extra, skipped);
        const Status wroteJournal = journals.save(journalFile);
        const Status written = wroteLibrary ? wroteJournal : wroteLibrary;
        QMetaObject::invokeMethod(
            this,
            [this, written] {
                noteSave(written);
                emit saved(written.isOk());
            },
            Qt::QueuedConnection);
    });
}

void AppModel::waitForSaves() { savePool_.waitForDone(); }

Status AppModel::saveNow() {
    if (isDemo_)
        return Status::ok();
    savePool_.waitForDone();
    const Status wroteLibrary = library_.save(paths_.libraryFile());
    const Status wroteJournal = journals_.save(paths_.journalFile());
    const Status written = wroteLibrary ? wroteJournal : wroteLibrary;
    noteSave(written);
    return written;
}

void AppModel::noteSave(const Status& written) {
    if (written) {
        if (saveAlarm_) saveAlarm_->cancel();
        saveAlarm_.reset();
        saveWarned_ = false;
        return;
    }
    saveError_ = written.message();
    if (saveAlarm_) return;
    // The save is tried again a minute on; saves that have failed all that minute are said once.
    saveAlarm_ = services_.scheduler->after(std::chrono::minutes(1), this, [this] {
        saveAlarm_.reset();
        if (!saveWarned_) {
            saveWarned_ = true;
            flash("Lumivale hasn't been able to save its library for a minute: " + saveError_, true);
        }
        save();
    });
}

bool AppModel::journalWritable() {
    savePool_.waitForDone();
    const Status written = journals_.save(paths_.journalFile());
    if (!written)
        flash("Nothing was moved: Lumivale can't write its journal, so it couldn't be undone (" +
                  written.message() + ")",
              true);
    return written.isOk();
}

// --- derived values -------------------------------------------------------------------------

std::vector<ShotPtr> AppModel::shots(const Place& place) const {
    if (holdsEverything(place)) return library_.all();
    std::vector<ShotPtr> out;
    const Date cutoff = now() - week;
    const std::string prefix = place.folder + "/";
    for (const ShotPtr& shot : library_.all()) {
        bool in = false;
        switch (place.kind) {
        case Place::Kind::shelf: in = shot->isRead() && shot->category() == place.shelf; break;
        case Place::Kind::folder: in = shot->path.starts_with(prefix); break;
        case Place::Kind::privateOnes: in = shot->isRead() && shot->isSensitive(); break;
        case Place::Kind::recent: in = shot->date() >= cutoff; break;
        default: break;
        }
        if (in)
            out.push_back(shot);
    }
    return out;
}

std::vector<ShotPtr> AppModel::visible() const {
    const SearchQuery query(query_);
    // The whole library is searched where it lies, without a copy.
    auto list = holdsEverything(place_) ? query.rank(library_.all()) : query.rank(shots(place_));
    if (newestFirst_ && !query.isEmpty())
        std::stable_sort(list.begin(), list.end(),
                         [](const ShotPtr& a, const ShotPtr& b) { return a->date() > b->date(); });
    return list;
}

std::vector<size_t> AppModel::hitLines(const Shot& shot) const { return SearchQuery(query_).hitLines(shot); }

const Shot* AppModel::selected() const { return selection_ ? library_.find(*selection_) : nullptr; }

std::vector<ShotPtr> AppModel::newest(Shelf shelf, size_t n) const {
    std::vector<ShotPtr> list = shots(Place::ofShelf(shelf));
    const size_t count = std::min(n, list.size());
    std::partial_sort(list.begin(), list.begin() + static_cast<long>(count), list.end(),
                      [](const ShotPtr& a, const ShotPtr& b) { return a->date() > b->date(); });
    list.resize(count);
    return list;
}

Tally AppModel::tally() const { return Tally(library_.all()); }

bool AppModel::isHidden(const Shot& shot) const {
    return blurPrivate_ && shot.isSensitive() && !revealed_.count(shot.path);
}

} // namespace lumivale
