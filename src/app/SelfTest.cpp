#include "app/SelfTest.h"

#include "app/Fixtures.h"
#include "app/FolderTrash.h"
#include "app/TidyChoices.h"
#include "core/FileMove.h"
#include "core/FileOps.h"
#include "core/PathName.h"
#include "core/TidyPlan.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace lumivale::SelfTest {
namespace {

// The working tree: everything the model touches lives under it.
struct Tree {
    std::string root, data, desktop, archive, trash, settings;

    explicit Tree(const std::string& dir)
        : root(dir + "/work"), data(root + "/Data"), desktop(root + "/Desktop"),
          archive(root + "/Archive"), trash(root + "/Trash"),
          settings(root + "/app.orvane.lumivale.demo.conf") {}
};

bool exists(const std::string& path) {
    std::error_code ec;
    return fs::exists(fs::symlink_status(path, ec));
}

std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class Checks {
  public:
    void check(bool ok, const std::string& text) {
        lines_ += (ok ? "PASS " : "FAIL ") + text + "\n";
        failures_ += !ok;
    }
    std::string report() const {
        return lines_ +
               (failures_ == 0 ? std::string("ALL PASS") : std::to_string(failures_) + " FAILED") +
               "\n";
    }
    int failures() const { return failures_; }

  private:
    std::string lines_;
    int failures_ = 0;
};

std::string count(int64_t n) {
    return std::to_string(n);
}

class Run {
  public:
    Run(const std::string& dir, const std::function<void(AppModel::Services&)>& adjust)
        : tree_(dir), settings_(QString::fromStdString(tree_.settings), QSettings::IniFormat) {
        AppModel::Services services;
        services.trasher = folderTrash(tree_.trash);
        services.confirm = [](const std::string&, const std::string&, const std::string&) {
            return true;
        };
        services.authenticate = [](const std::string&) { return true; };
        services.keySource = std::make_shared<MemoryKey>();
        services.copyText = [](const std::string&) {};
        services.copyImage = [](const std::string&) { return true; };
        if (adjust) adjust(services);
        services_ = services;
        model_ = std::make_unique<AppModel>(paths(), settings_, services_);
        QObject::connect(model_.get(), &AppModel::shotRead, [this] { ++reads_; });
    }

    Paths paths() const { return Paths::at(tree_.data, tree_.desktop, tree_.archive); }

    void all() {
        reading();
        tidying();
        lockedArea();
        findingAndWatching();
        opening();
    }

    Checks checks;

  private:
    Tree tree_;
    QSettings settings_;
    AppModel::Services services_;
    std::unique_ptr<AppModel> model_;
    int64_t reads_ = 0;
    std::vector<Fixtures::Written> written_;
    std::string passportName_;

    AppModel& model() { return *model_; }

    void scan() {
        model().rescan();
        model().waitUntilIdle();
    }

    const Shot* shotOf(Fixture::Kind kind) const {
        for (const auto& w : written_)
            if (w.fixture.kind == kind) return model_->library().find(w.path);
        return nullptr;
    }
    std::string pathOf(Fixture::Kind kind) const {
        for (const auto& w : written_)
            if (w.fixture.kind == kind) return w.path;
        return {};
    }

    bool visibleHas(const std::string& path) {
        const auto shots = model().visible();
        return std::any_of(shots.begin(), shots.end(),
                           [&](const ShotPtr& s) { return s->path == path; });
    }

    void reading() {
        const Date now = lumivale::now();
        written_ = Fixtures::write(Fixtures::all(), tree_.desktop, now).files;
        model().load();
        scan();
        int64_t read = 0;
        for (const auto& w : written_)
            if (const Shot* s = model().library().find(w.path); s && s->isRead() && !s->failed)
                ++read;
        checks.check(written_.size() == Fixtures::all().size() &&
                         read == static_cast<int64_t>(written_.size()),
                     "every made-up screenshot is found and read (" + count(read) + " of " +
                         count(static_cast<int64_t>(Fixtures::all().size())) + ")");

        std::string wrong;
        for (const Fixture& f : Fixtures::all()) {
            const Shot* s = shotOf(f.kind);
            if (!s) {
                wrong += std::string(wrong.empty() ? ": " : ", ") +
                         std::string(fixtureKindId(f.kind)) + " missing";
                continue;
            }
            const bool flagged = !s->flags.empty();
            if (s->category() != f.expected || flagged != f.sensitive)
                wrong += std::string(wrong.empty() ? ": " : ", ") +
                         std::string(fixtureKindId(f.kind)) + " " +
                         std::string(shelfId(s->category())) + " private " +
                         (flagged ? "true" : "false");
        }
        checks.check(wrong.empty(), "each lands on the right shelf, IDs marked private" + wrong);

        const auto flagged =
            std::count_if(model().library().all().begin(), model().library().all().end(),
                          [](const ShotPtr& s) { return !s->flags.empty(); });
        checks.check(flagged == 2, "two private screenshots (" + count(flagged) + ")");

        model().waitForSaves();
        checks.check(exists(paths().libraryFile()), "the library is saved");

        model().setPlace(Place::of(Place::Kind::all));
        model().setQuery("bloom 1008");
        checks.check(visibleHas(pathOf(Fixture::Kind::receipt)),
                     "search finds the café receipt by its words and total");
        model().setQuery("ZZZ-nothing");
        checks.check(model().visible().empty(), "a search with no match shows nothing");
        model().setQuery("");

        std::set<std::string> tickets;
        for (const ShotPtr& s : model().shots(Place::ofShelf(Shelf::tickets)))
            tickets.insert(s->path);
        const std::set<std::string> expectedTickets = {pathOf(Fixture::Kind::boardingPass),
                                                       pathOf(Fixture::Kind::trainTicket),
                                                       pathOf(Fixture::Kind::movieTicket)};
        checks.check(tickets == expectedTickets, "the tickets shelf holds three (" +
                                                     count(static_cast<int64_t>(tickets.size())) +
                                                     ")");
        const auto recent =
            static_cast<int64_t>(model().shots(Place::of(Place::Kind::recent)).size());
        const auto expectedRecent = std::count_if(Fixtures::all().begin(), Fixtures::all().end(),
                                                  [](const Fixture& f) { return f.daysAgo < 7; });
        checks.check(recent == expectedRecent, "last 7 days (" + count(recent) + ")");

        const std::string chat = pathOf(Fixture::Kind::chat);
        const Shot* fixed = model().library().find(chat);
        // A shelf other than the sorter's own, so that the choice stays a hand-made one.
        const Shelf byHand = fixed && fixed->guess == Shelf::other ? Shelf::maps : Shelf::other;
        model().setShelf(chat, byHand);
        fixed = model().library().find(chat);
        checks.check(fixed && fixed->category() == byHand && fixed->manual == byHand,
                     "a shelf can be fixed by hand");
        model().waitForSaves();
        const auto saved = Library::load(paths().libraryFile());
        const Shot* savedChat = saved ? saved->find(chat) : nullptr;
        checks.check(savedChat && savedChat->manual == byHand, "the fix is saved");
        scan();
        fixed = model().library().find(chat);
        const bool kept = fixed && fixed->manual == byHand;
        checks.check(kept, "the fix survives a rescan");
        if (fixed) model().setShelf(chat, fixed->guess);
        fixed = model().library().find(chat);
        checks.check(kept && fixed && !fixed->manual,
                     "choosing the guess again goes back to automatic");

        const Shot* id = shotOf(Fixture::Kind::idCard);
        const bool blurred = id && model().isHidden(*id);
        checks.check(blurred, "an ID is blurred");
        if (id) model().reveal(id->path);
        id = shotOf(Fixture::Kind::idCard);
        checks.check(blurred && id && !model().isHidden(*id), "\u2026until you choose to show it");
        const auto shots = model().all();
        const auto hidden = [&](const ShotPtr& s) { return model().isHidden(*s); };
        const bool someBlurred = std::any_of(shots.begin(), shots.end(), hidden); // the passport
        model().setBlurPrivate(false);
        checks.check(someBlurred && std::none_of(shots.begin(), shots.end(), hidden),
                     "blurring can be turned off");
        model().setBlurPrivate(true);
    }

    void tidying() {
        TidyChoices choices; // loose, one folder per shelf, private ones left alone
        const auto candidates = tidyCandidates(model(), choices);
        const TidyPlan plan = fileIntoFolders(model(), choices);
        checks.check(!plan.isEmpty() && plan.moves.size() == candidates.size(),
                     "a plan for every loose screenshot (" +
                         count(static_cast<int64_t>(plan.moves.size())) + " of " +
                         count(static_cast<int64_t>(candidates.size())) + ")");
        const auto result = model().tidy(plan);
        checks.check(result && result->failed.empty(), "the tidy runs cleanly");

        std::string receiptNow;
        if (result)
            for (const Move& m : result->journal.entries)
                if (m.from == pathOf(Fixture::Kind::receipt)) receiptNow = m.to;
        checks.check(receiptNow.find("/Bills and receipts/") != std::string::npos,
                     "the receipt is filed under Bills and receipts");
        const Shot* filed = model().library().find(receiptNow);
        checks.check(filed && filed->isRead() && !filed->lines.empty(),
                     "\u2026and keeps its reading");

        std::vector<std::string> loose;
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(tree_.desktop, ec))
            if (entry.is_regular_file()) loose.push_back(entry.path().filename().string());
        std::sort(loose.begin(), loose.end());
        std::vector<std::string> privateOnes = {
            std::string(lastComponent(pathOf(Fixture::Kind::idCard))),
            std::string(lastComponent(pathOf(Fixture::Kind::passport)))};
        std::sort(privateOnes.begin(), privateOnes.end());
        checks.check(loose == privateOnes, "only the private ones stay loose");

        const auto& sources = model().sources();
        const bool archiveRead = std::any_of(sources.begin(), sources.end(), [&](const Source& s) {
            return s.path == tree_.archive && s.enabled;
        });
        const auto archived = model().shots(Place::ofFolder(tree_.archive)).size();
        checks.check(archiveRead, "the archive folder is read too (" +
                                      count(static_cast<int64_t>(archived)) + ")");

        const int64_t before = reads_;
        scan();
        checks.check(reads_ == before, "filed screenshots aren't read a second time");

        checks.check(model().canUndo(), "the tidy can be undone");
        const auto journal = model().journals().lastUndoable();
        model().undoLast();
        model().waitUntilIdle();
        const bool allBack =
            result && !result->journal.entries.empty() &&
            std::all_of(result->journal.entries.begin(), result->journal.entries.end(),
                        [](const Move& m) { return exists(m.from) && !exists(m.to); });
        checks.check(allBack, "undo puts them all back");
        const auto next = model().journals().lastUndoable();
        checks.check(journal && (!next || next->id != journal->id), "and it can't be undone twice");

        choices.rename = true;
        const TidyPlan renamed = fileIntoFolders(model(), choices);
        std::string newName;
        const std::string pass = pathOf(Fixture::Kind::boardingPass);
        for (const Move& m : renamed.moves)
            if (m.from == pass) newName = m.to;
        const auto renamedRun = model().tidy(renamed);
        const bool ticketFiled = renamedRun &&
                                 newName.find("/Tickets and bookings/") != std::string::npos &&
                                 exists(newName) && lastComponent(newName) != lastComponent(pass);
        checks.check(ticketFiled, "renamed from its words: " + std::string(lastComponent(newName)));
        model().undoLast();
        model().waitUntilIdle();

        const std::string sunset = pathOf(Fixture::Kind::sunset);
        const auto trashed = model().trash({sunset});
        const std::string inTrash =
            trashed && !trashed->journal.entries.empty() ? trashed->journal.entries[0].to : "";
        checks.check(!inTrash.empty() && inTrash.rfind(tree_.trash + "/", 0) == 0 &&
                         exists(inTrash),
                     "trashing goes to the test's own Trash");
        checks.check(!exists(sunset) && !model().library().find(sunset),
                     "the file and its entry go");
        model().undoLast();
        model().waitUntilIdle();
        checks.check(exists(sunset) && model().library().find(sunset), "undo brings it back");
    }

    void lockedArea() {
        const std::string passport = pathOf(Fixture::Kind::passport);
        passportName_ = std::string(lastComponent(passport));
        const auto holdsMachineLine = [](const ShotPtr& s) {
            return s->folded.find("z1234567") != std::string::npos;
        };
        // Words that were never read would be missing for the wrong reason.
        const auto before = model().all();
        const bool heldBefore = std::any_of(before.begin(), before.end(), holdsMachineLine);
        model().lock({passport});
        checks.check(model().vaultCount() == 1, "the passport is locked away");
        bool inTrash = false;
        std::error_code ec;
        for (const auto& entry : fs::directory_iterator(tree_.trash, ec))
            inTrash = inTrash || entry.path().filename().string() == passportName_;
        checks.check(!exists(passport) && inTrash && !model().library().find(passport),
                     "its original goes to the Trash and out of the library");

        bool readable = false;
        for (const std::string& file : Vault(paths().vault).files()) {
            const std::string bytes = readAll(file);
            readable = readable || bytes.find("DORAN") != std::string::npos ||
                       bytes.find("Z1234567") != std::string::npos;
        }
        checks.check(model().vaultCount() == 1 && !readable,
                     "the locked file holds no readable words");

        const auto after = model().all();
        checks.check(heldBefore && std::none_of(after.begin(), after.end(), holdsMachineLine),
                     "the library no longer holds the passport's words");
        checks.check(!model().vaultOpen(), "the locked area starts closed");

        model().unlockVault();
        std::string shown;
        if (model().vaultOpen() && !model().lockedItems().empty() &&
            model().lockedImage(model().lockedItems().front().id)) {
            shown = model().lockedItems().front().id;
            model().setLockedSelection(shown);
        }
        model().lockVault();
        checks.check(!shown.empty() && !model().vaultOpen() && model().lockedItems().empty() &&
                         !model().lockedSelection() && !model().lockedImage(shown),
                     "locking clears what was shown");
    }

    void findingAndWatching() {
        const std::string fresh = tree_.desktop + "/Screenshot 2026-11-01 at 9.00.00 AM.png";
        const QImage receipt = Fixtures::image(Fixture::Kind::receipt);
        receipt.save(QString::fromStdString(fresh), "PNG");
        scan();
        const Shot* found = model().library().find(fresh);
        checks.check(found && found->isRead() && found->category() == Shelf::bills,
                     "a new screenshot is found, read and shelved");
        fs::remove(fresh);
        scan();
        checks.check(!model().library().find(fresh), "a deleted one drops out");

        const std::string broken = tree_.desktop + "/Screenshot broken \U0001F600.png";
        writeAtomically(broken, "not an image");
        scan();
        const Shot* marked = model().library().find(broken);
        const bool failedOnce = marked && marked->failed && marked->isRead();
        const int64_t before = reads_;
        scan();
        checks.check(failedOnce && reads_ == before && model().library().find(broken),
                     "a broken file is marked, not retried or crashed on");

        const std::string phone = tree_.root + "/Phone Shots";
        makeFolders(phone);
        Fixtures::image(Fixture::Kind::chat)
            .save(QString::fromStdString(phone + "/IMG_0001.png"), "PNG");
        model().addFolder(phone);
        model().waitUntilIdle();
        const Shot* img = model().library().find(phone + "/IMG_0001.png");
        checks.check(img && img->isRead() && !img->failed,
                     "an added folder's pictures are read whatever their names");

        const std::string closed = tree_.root + "/Closed Folder";
        makeFolders(closed);
        Fixtures::image(Fixture::Kind::recipe)
            .save(QString::fromStdString(closed + "/IMG_0002.png"), "PNG");
        model().addFolder(closed);
        model().waitUntilIdle();
        ::chmod(closed.c_str(), 0);
        scan();
        const auto& sources = model().sources();
        const auto source = std::find_if(sources.begin(), sources.end(),
                                         [&](const Source& s) { return s.path == closed; });
        checks.check(source != sources.end() && !source->readable,
                     "a folder Lumivale can't open is flagged");
        checks.check(model().library().find(closed + "/IMG_0002.png") != nullptr,
                     "\u2026and its screenshots are kept, not forgotten");
        ::chmod(closed.c_str(), 0755);

        const auto phoneSource = std::find_if(sources.begin(), sources.end(),
                                              [&](const Source& s) { return s.path == phone; });
        if (phoneSource != sources.end())
            model().removeFolder(Source(*phoneSource)); // the list it points into is rebuilt
        model().waitUntilIdle();
        checks.check(!model().library().find(phone + "/IMG_0001.png") &&
                         exists(phone + "/IMG_0001.png"),
                     "removing a folder forgets it but leaves the files");

        model().waitForSaves();
        writeAtomically(paths().libraryFile(), "junk");
        AppModel fresh2(paths(), settings_, services_);
        fresh2.load();
        const bool empty = fresh2.library().empty() && !Library::load(paths().libraryFile());
        fresh2.rescan();
        fresh2.waitUntilIdle();
        checks.check(empty && !fresh2.library().empty(), "a damaged library file is ignored");
    }

    void opening() {
        model().unlockVault();
        const bool shows = model().vaultOpen() && model().lockedItems().size() == 1 &&
                           model().lockedImage(model().lockedItems().front().id).has_value();
        checks.check(shows, "the locked screenshot shows once open");
        model().setQuery("doran");
        const auto matches = model().lockedMatches();
        checks.check(matches.size() == 1, "its words are searchable while open");
        model().setQuery("");
        std::optional<std::string> restored;
        if (!model().lockedItems().empty())
            restored = model().restore(model().lockedItems().front(), tree_.desktop);
        checks.check(restored && model().vaultCount() == 0 && model().lockedItems().empty(),
                     "restoring empties the locked area");
        const int64_t before = reads_;
        scan();
        const Shot* back = restored ? model().library().find(*restored) : nullptr;
        checks.check(back && *restored == tree_.desktop + "/" + passportName_ && reads_ > before &&
                         back->isRead() && !back->failed && back->category() == Shelf::ids,
                     "the passport is back on the Desktop and read again");
        model().lockVault();
    }
};

} // namespace

Outcome run(const std::string& dir, const std::function<void(AppModel::Services&)>& adjust) {
    const auto started = std::chrono::steady_clock::now();
    Outcome outcome;
    std::error_code ec;
    fs::remove_all(Tree(dir).root, ec); // what an interrupted run left behind
    {
        Run run(dir, adjust);
        run.all();
        outcome.report = run.checks.report();
        outcome.failures = run.checks.failures();
    }
    outcome.written = writeAtomically(dir + "/selftest.txt", outcome.report);
    fs::remove_all(Tree(dir).root, ec);
    outcome.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return outcome;
}

} // namespace lumivale::SelfTest
