#pragma once

#include "app/Banner.h"
#include "app/Paths.h"
#include "app/Place.h"
#include "app/Scheduler.h"
#include "app/Source.h"
#include "core/Folders.h"
#include "core/JournalBook.h"
#include "core/Library.h"
#include "core/Reading.h"
#include "core/Tally.h"
#include "core/TidyPlan.h"
#include "core/TidyRun.h"
#include "core/Vault.h"
#include "core/VaultKeySource.h"

#include <QFileSystemWatcher>
#include <QImage>
#include <QObject>
#include <QSettings>
#include <QThreadPool>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace lumivale {

// The one owner of the application's state. The window, the command line and the self-check all
// drive this object; it lives on the main thread, and its background work (listing, reading,
// saving) hands results back to the main thread.
class AppModel : public QObject {
    Q_OBJECT

public:
    using ReadFn = std::function<Reading(const std::string& path, const std::vector<std::string>& languages)>;
    using Clock = std::function<Date()>;
    // Asks the user to confirm: the question, the detail, the button that goes ahead.
    using Confirm = std::function<bool(const std::string& message, const std::string& detail,
                                       const std::string& button)>;

    // The side effects a test or the self-check replaces; defaults are the real ones.
    struct Services {
        Clock clock;                         // default: the system clock
        ReadFn read;                         // default: Reader::read
        std::shared_ptr<Scheduler> scheduler; // default: Qt's timers
        std::function<void(const std::string& text)> copyText;   // default: the clipboard
        std::function<bool(const std::string& path)> copyImage;  // default: the clipboard
        Trasher trasher;                     // default: the freedesktop.org Trash
        Confirm confirm;                     // default: refuses; each front end brings its own
        // Asks for the owner's authentication, saying what for. Default: polkit, else the
        // account password (PAM) asked on the terminal.
        std::function<bool(const std::string& reason)> authenticate;
        std::shared_ptr<VaultKeySource> keySource; // default: the key in the user's keyring
    };

    struct Progress {
        int64_t done = 0;
        int64_t total = 0;
        bool operator==(const Progress&) const = default;
    };

    // The settings store is the caller's and must outlive the model.
    AppModel(Paths paths, QSettings& settings, Services services = {}, QObject* parent = nullptr);
    ~AppModel() override;

    // --- state -------------------------------------------------------------------------------
    const Paths& paths() const { return paths_; }
    const Library& library() const { return library_; }
    const JournalBook& journals() const { return journals_; }
    const std::vector<Source>& sources() const { return sources_; }
    const Place& place() const { return place_; }
    const std::string& query() const { return query_; }
    const std::optional<std::string>& selection() const { return selection_; }
    const std::optional<Progress>& progress() const { return progress_; }
    bool scanning() const { return scanning_; }
    bool reading() const { return reading_; }
    const std::optional<Banner>& banner() const { return banner_; }
    const std::set<std::string>& revealed() const { return revealed_; }
    bool showWelcome() const { return showWelcome_; }
    bool showTidy() const { return showTidy_; }
    void setShowTidy(bool on);
    bool blurPrivate() const { return blurPrivate_; }
    bool watch() const { return watch_; }
    int lockAfterMinutes() const { return lockAfterMinutes_; }
    // Demonstration mode: the library is made-up data, never saved as the user's, and the
    // folders are scanned without the welcome.
    bool isDemo() const { return isDemo_; }
    void markDemo() { isDemo_ = true; }
    // Asks with `confirm` from now on (a command run for another process asks at its terminal);
    // gives back the one it replaces.
    Confirm replaceConfirm(Confirm confirm) { return std::exchange(services_.confirm, std::move(confirm)); }
    // Whether a query's matches are shown newest first instead of best first.
    bool newestFirst() const { return newestFirst_; }
    Date now() const { return services_.clock(); }
    // The pictures the scans leave out because their names are not UTF-8.
    const std::set<std::string>& leftAlone() const { return leftAlone_; }
    // The folders being watched for changes.
    QStringList watchedFolders() const { return watcher_.directories(); }

    void setPlace(Place place);
    void setQuery(std::string query);
    void setNewestFirst(bool on);
    void setSelection(std::optional<std::string> path);
    void setBlurPrivate(bool on);
    void setWatch(bool on);
    void setLockAfterMinutes(int minutes);

    // --- start-up and saving -----------------------------------------------------------------
    // Loads the library and journal, builds the sources, and scans and watches once the welcome
    // is done. Runs once; later calls do nothing.
    void start();
    // The same, with the saved state read on a background thread: the window paints at once
    // and fills when the library is in (`loading` meanwhile).
    void startInBackground();
    bool loading() const { return loading_; }
    // Loads the saved state and builds the sources, without scanning (the command line's start).
    void load();
    // Recomputes the folders that are read from the screenshot folder, the added folders and
    // the archive.
    void rebuildSources();
    // Saves copies of the library and journal in the background; later saves land later.
    void save();
    // Saves on the calling thread, after any background save; the first failure, if one came.
    Status saveNow();
    // Waits until the background saves asked for so far have been written.
    void waitForSaves();

    // --- derived values ----------------------------------------------------------------------
    const std::vector<ShotPtr>& all() const { return library_.all(); }
    std::vector<ShotPtr> shots(const Place& place) const;
    // The shots of the current place, ranked and filtered by the query.
    std::vector<ShotPtr> visible() const;
    const Shot* selected() const;
    // The n newest read shots of a shelf, newest first.
    std::vector<ShotPtr> newest(Shelf shelf, size_t n) const;
    Tally tally() const;
    // Whether views must blur the shot.
    bool isHidden(const Shot& shot) const;
    // The indices of the shot's lines that hold a term of the query, ascending.
    std::vector<size_t> hitLines(const Shot& shot) const;

    // --- the scan and read cycle -------------------------------------------------------------
    // Lists every enabled source in the background and merges what it finds.
    void rescan();
    // Reads the waiting shots, newest first, at most three at a time.
    void readWaiting();
    // Rebuilds the folder watchers.
    void rewatch();
    // Runs the event loop until neither a scan nor a read is under way.
    void waitUntilIdle();
    // The reading languages, computed once.
    const std::vector<std::string>& languages();

    // --- library actions ---------------------------------------------------------------------
    void setShelf(const std::string& path, std::optional<Shelf> shelf);
    void reveal(const std::string& path);
    void copyText(const Shot& shot);
    void copyImage(const Shot& shot);
    void flash(std::string text, bool error = false);
    // Takes the banner away before its time.
    void dismissBanner();
    void addFolder(const std::string& path);
    void removeFolder(const Source& source);
    void setEnabled(const Source& source, bool on);
    // Files tidies into this folder from now on, reads it, and remembers it under "archiveFolder".
    void setArchive(const std::string& path);
    // The first-run welcome is finished: remembers it, then scans and watches the folders.
    void finishWelcome();

    // --- the locked area ---------------------------------------------------------------------
    bool vaultOpen() const { return vaultOpen_; }
    int64_t vaultCount() const { return vaultCount_; }
    const std::vector<LockedShot>& lockedItems() const { return lockedItems_; }
    const std::optional<std::string>& lockedSelection() const { return lockedSelection_; }
    void setLockedSelection(std::optional<std::string> id);
    // Authenticates, then fetches the key; an error banner when the keyring fails.
    std::optional<VaultKey> vaultKey(const std::string& reason);
    // Locks screenshots away after confirmation and authentication; the originals go to the Trash.
    void lock(const std::vector<std::string>& paths);
    void unlockVault();
    void lockVault();
    // Lists the open locked area again (or only counts it while closed).
    void refreshVault();
    // The decrypted picture of a locked item while the area is open.
    std::optional<QImage> lockedImage(const std::string& id);
    // The locked items matching the query while open, best first.
    std::vector<LockedShot> lockedMatches() const;
    // Writes a locked item back into a folder; the path it was written to, or nothing.
    std::optional<std::string> restore(const LockedShot& item, const std::string& folder);
    // Moves a locked item's file to the Trash after confirmation.
    bool discard(const LockedShot& item);
    // Closes the open locked area after this long (never sooner than 30 seconds).
    void scheduleAutoLock(std::chrono::seconds after);
    // Restarts the auto-lock from now, after the set minutes.
    void touchVault();
    // The application stopped being active: close the locked area a minute from now.
    void applicationLeft();

    // --- tidy actions ------------------------------------------------------------------------
    // Runs a plan; nothing when it is empty.
    std::optional<TidyResult> tidy(const TidyPlan& plan);
    // Puts screenshots in the Trash after confirmation; nothing when declined or empty.
    std::optional<TidyResult> trash(const std::vector<std::string>& paths);
    // Puts back what a journal did.
    void undo(const Journal& journal);
    void undoLast();
    // Shows a picture the desktop asked to open: selected in All screenshots when it is in the
    // library, or after the scan that adds it when it lies in a folder that is read; otherwise a
    // banner says it is not one Lumivale keeps.
    void showPicture(const std::string& path);
    bool canUndo() const;

signals:
    void libraryChanged();
    void journalsChanged();
    void vaultChanged();
    void sourcesChanged();
    void placeChanged();
    void queryChanged();
    void selectionChanged();
    void progressChanged();
    void scanningChanged();
    void loadingChanged();
    void bannerChanged();
    void revealedChanged();
    void settingsChanged();
    // The welcome or the tidy sheet was shown or closed.
    void sheetsChanged();
    // A reading was stored for this path.
    void shotRead(const QString& path);
    // A background save finished (true when it wrote both files).
    void saved(bool ok);

private:
    void sayNotKept(const std::string& path);
    struct ScanResult {
        Source source;
        bool readable = false;
        std::vector<FoundFile> files;
        std::vector<std::string> unnamed; // pictures left out for names that are not UTF-8
    };

    Paths paths_;
    QSettings& settings_;
    Services services_;
    Library library_;
    JournalBook journals_;
    bool vaultOpen_ = false;
    int64_t vaultCount_ = 0;
    std::vector<LockedShot> lockedItems_;
    std::optional<std::string> lockedSelection_;
    std::optional<VaultKey> key_;
    std::map<std::string, QImage> lockedImages_;
    std::shared_ptr<Timer> autoLock_;
    std::vector<Source> sources_;
    Place place_;
    std::string query_;
    std::optional<std::string> selection_;
    std::optional<Progress> progress_;
    bool scanning_ = false;
    bool reading_ = false;
    std::optional<Banner> banner_;
    std::set<std::string> revealed_;
    bool showWelcome_ = false;
    bool showTidy_ = false;
    bool isDemo_ = false;
    bool newestFirst_ = false;
    bool blurPrivate_ = true;
    bool watch_ = true;
    int lockAfterMinutes_ = 5;
    bool started_ = false;
    bool loaded_ = false;
    bool loading_ = false;
    bool rescanAgain_ = false;
    std::optional<std::string> showAfterScan_; // a picture to show once the scan under way is in
    std::optional<std::vector<std::string>> languages_;
    std::set<std::string> leftAlone_;
    std::shared_ptr<Timer> saveAlarm_; // set while saves fail
    std::string saveError_;
    bool saveWarned_ = false;

    std::vector<std::string> readQueue_;
    size_t readNext_ = 0;
    int readsInFlight_ = 0;
    std::shared_ptr<Timer> rescanPending_;
    QFileSystemWatcher watcher_;
    QThreadPool listPool_;
    QThreadPool readPool_;
    QThreadPool savePool_;

    // What start does once the saved state is in: scan and watch, or ask for the welcome.
    void begin();
    void merge(const std::vector<ScanResult>& results);
    void noteLeftAlone(const std::vector<ScanResult>& results);
    void startReads();
    void finishReading(const std::string& path, const Reading& reading);
    void applyReading(const std::string& path, const Reading& reading);
    void soon();
    void finishFolderChange();
    void showBanner(Banner banner);
    // Keeps track of failing saves: after a minute without a good one, an error banner says so.
    void noteSave(const Status& written);
    // Whether the journal can be written, tried before files are moved; an error banner if not.
    bool journalWritable();
    void report(const TidyResult& result, const std::string& verb);
};

} // namespace lumivale
