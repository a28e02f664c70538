// The locked area as the application model runs it: confirmation and authentication in front of
// every lock, the originals going to the Trash, opening, listing, restoring and discarding, and
// the timer that closes the area again by itself.
#include "AppTestSupport.h"
#include "app/AppModel.h"
#include "support/TempDir.h"

#include <QDir>
#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

const std::string lockDetail =
    "Lumivale encrypts them into its locked area, which opens with your fingerprint or your "
    "account password. The originals go to the Trash; empty it to remove them from this "
    "computer for good.";

struct Question {
    std::string message, detail, button;
    bool operator==(const Question&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Question& q) {
    return out << "{" << q.message << " | " << q.detail << " | " << q.button << "}";
}

// A keyring that refuses with this code.
class RefusingKey : public VaultKeySource {
public:
    explicit RefusingKey(int32_t code) : code_(code) {}
    VaultResult<VaultKey> key() override { return VaultError::keychain(code_); }

private:
    int32_t code_;
};

// A model over a temporary tree whose confirmation, authentication, key, Trash, clock and
// timers the test holds.
class VaultWorld {
public:
    VaultWorld() {
        test::ensureQtApp();
        fs::create_directories(shots());
    }

    std::string shots() const { return tmp.file("Screenshots"); }
    std::string shot(const std::string& name) const { return shots() + "/" + name; }
    std::string vaultDir() const { return tmp.file("data/Locked"); }

    // Draws a picture into the screenshot folder; its path.
    std::string picture(const std::string& name) {
        test::drawPicture(shot(name), {"PASSPORT", name, "Passport No. Z1234567"}, 600);
        return shot(name);
    }

    // A model whose saved library holds read records of these files.
    AppModel& open(const std::vector<std::string>& files) {
        Library library;
        for (const std::string& path : files)
            library.put(test::readShotOf(path, Shelf::ids, {"PASSPORT", "Z1234567"}, clock));
        EXPECT_TRUE(library.save(tmp.file("data/library.plist")));
        AppModel::Services services;
        services.clock = [this] { return clock; };
        services.scheduler = scheduler;
        services.confirm = [this](const std::string& m, const std::string& d,
                                  const std::string& b) {
            questions.push_back({m, d, b});
            return agree;
        };
        services.authenticate = [this](const std::string& reason) {
            reasons.push_back(reason);
            return owner;
        };
        services.keySource = keys;
        services.trasher = trash.trasher();
        services.read = [](const std::string&, const std::vector<std::string>&) {
            return Reading{};
        };
        model = std::make_unique<AppModel>(
            Paths::at(tmp.file("data"), shots(), tmp.file("archive")), settings, services);
        model->load();
        return *model;
    }

    // The locked files on disk.
    size_t lockedFiles() const { return Vault(vaultDir()).files().size(); }

    test::TempDir tmp;
    QSettings settings{QString::fromStdString(tmp.file("settings.ini")), QSettings::IniFormat};
    std::shared_ptr<test::FakeScheduler> scheduler = std::make_shared<test::FakeScheduler>();
    Date clock = now();
    std::vector<Question> questions;
    bool agree = true;
    std::vector<std::string> reasons;
    bool owner = true;
    VaultKey key = VaultKey::random();
    std::shared_ptr<VaultKeySource> keys = std::make_shared<MemoryKey>(key);
    test::FolderTrash trash{tmp.file("Trash")};
    std::unique_ptr<AppModel> model;
};

std::vector<std::string> namesOf(const std::vector<LockedShot>& items) {
    std::vector<std::string> out;
    for (const LockedShot& item : items)
        out.emplace_back(item.shot.name());
    return out;
}

TEST(AppModelVault, lockingOneOrMoreSaysSoAndSendsTheOriginalsToTheTrash) {
    struct Case {
        std::vector<std::string> names;
        std::string question, banner;
    };
    const Case cases[] = {
        {{"passport.png"},
         "Lock away 1 screenshot?",
         "Locked 1 screenshot. The originals are in the Trash."},
        {{"passport.png", "card.png"},
         "Lock away 2 screenshots?",
         "Locked 2 screenshots. The originals are in the Trash."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.question);
        VaultWorld world;
        std::vector<std::string> paths;
        std::map<std::string, std::string> bytes;
        for (const std::string& name : c.names) {
            paths.push_back(world.picture(name));
            bytes[name] = test::readFile(paths.back());
        }
        const std::string bystander = world.picture("bystander.png");
        paths.push_back(bystander);
        AppModel& model = world.open(paths);
        paths.pop_back();
        model.setSelection(paths.front());

        model.lock(paths);
        EXPECT_EQ(world.questions, (std::vector<Question>{{c.question, lockDetail, "Lock Away"}}));
        EXPECT_EQ(world.reasons, std::vector<std::string>{"lock screenshots away"});
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->text, c.banner);
        EXPECT_FALSE(model.banner()->isError);
        EXPECT_FALSE(model.banner()->undo) << "a locked screenshot is not offered back by Undo";
        EXPECT_EQ(model.vaultCount(), static_cast<int64_t>(c.names.size()));
        EXPECT_EQ(world.lockedFiles(), c.names.size());
        for (const std::string& path : paths) {
            const std::string name = fs::path(path).filename();
            EXPECT_FALSE(fs::exists(path)) << name;
            EXPECT_EQ(test::readFile(world.trash.folder() + "/" + name), bytes[name]) << name;
            EXPECT_EQ(model.library().find(path), nullptr) << name;
        }
        EXPECT_FALSE(model.selection()) << "the locked shot was selected";
        EXPECT_NE(model.library().find(bystander), nullptr);
        EXPECT_TRUE(model.journals().entries.empty());

        // The saved library forgot them too, and the locked files open with the key.
        model.waitForSaves();
        const auto saved = Library::load(model.paths().libraryFile());
        ASSERT_TRUE(saved);
        EXPECT_EQ(saved->shots.size(), 1u);
        const Vault::Listing listing = Vault(world.vaultDir()).list(world.key);
        std::vector<std::string> listed = namesOf(listing.items), names = c.names;
        std::sort(listed.begin(), listed.end());
        std::sort(names.begin(), names.end());
        EXPECT_EQ(listed, names);
        EXPECT_EQ(listing.unreadable, 0);
    }
}

TEST(AppModelVault, aDeclinedOrFailedGateLocksNothing) {
    struct Case {
        const char* name;
        bool agree, owner;
        std::optional<int32_t> keyringRefuses;
        size_t ownerAsked;
        std::optional<std::string> banner;
    };
    const Case cases[] = {
        {"declined", false, true, std::nullopt, 0, std::nullopt},
        {"not the owner", true, false, std::nullopt, 1, std::nullopt},
        {"keyring refuses", true, true, -2, 1,
         "Lumivale couldn't reach its key in the keyring: The keyring refused (-2)."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VaultWorld world;
        world.agree = c.agree;
        world.owner = c.owner;
        if (c.keyringRefuses) world.keys = std::make_shared<RefusingKey>(*c.keyringRefuses);
        const std::string path = world.picture("passport.png");
        AppModel& model = world.open({path});

        model.lock({path});
        EXPECT_EQ(world.questions.size(), 1u);
        EXPECT_EQ(world.reasons.size(), c.ownerAsked);
        EXPECT_TRUE(fs::exists(path));
        EXPECT_NE(model.library().find(path), nullptr);
        EXPECT_EQ(model.vaultCount(), 0);
        EXPECT_EQ(world.lockedFiles(), 0u);
        EXPECT_TRUE(world.trash.names().empty());
        ASSERT_EQ(model.banner().has_value(), c.banner.has_value());
        if (c.banner) {
            EXPECT_EQ(model.banner()->text, *c.banner);
            EXPECT_TRUE(model.banner()->isError);
        }

        // Opening the locked area goes through the same gate, without a question.
        if (!c.agree) continue;
        model.unlockVault();
        EXPECT_FALSE(model.vaultOpen());
        EXPECT_TRUE(model.lockedItems().empty());
        EXPECT_EQ(world.questions.size(), 1u);
        EXPECT_EQ(world.reasons.size(), c.ownerAsked + 1);
        EXPECT_EQ(world.reasons.back(), "open your locked screenshots");
        ASSERT_EQ(model.banner().has_value(), c.banner.has_value());
        if (c.banner) {
            EXPECT_EQ(model.banner()->text, *c.banner);
        }
    }
}

TEST(AppModelVault, whatCouldNotBeLockedOrTrashedNeedsAnotherTry) {
    struct Case {
        const char* name;
        std::vector<std::string> names;
        std::vector<std::string> vanish;  // deleted after the scan
        std::vector<std::string> unknown; // on disk but not in the library
        std::vector<std::string> trashRefuses;
        std::string banner;
        size_t lockedFiles;
        std::vector<std::string> leftLoose; // still in the folder and the library afterwards
    };
    const Case cases[] = {
        {"the file is gone", {"a.png"}, {"a.png"}, {}, {}, "Locked 0; 1 need another try", 0, {}},
        {"one of two is gone",
         {"a.png", "b.png"},
         {"b.png"},
         {},
         {},
         "Locked 1; 1 need another try",
         1,
         {}},
        {"not in the library",
         {"a.png"},
         {},
         {"stray.png"},
         {},
         "Locked 1; 1 need another try",
         1,
         {"stray.png"}},
        {"the Trash refuses",
         {"a.png", "b.png"},
         {},
         {},
         {"b.png"},
         "Locked 2; 1 need another try",
         2,
         {"b.png"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VaultWorld world;
        std::vector<std::string> paths;
        for (const std::string& name : c.names)
            paths.push_back(world.picture(name));
        AppModel& model = world.open(paths);
        for (const std::string& name : c.vanish)
            fs::remove(world.shot(name));
        for (const std::string& name : c.unknown)
            paths.push_back(world.picture(name));
        for (const std::string& name : c.trashRefuses)
            world.trash.refused.insert(world.shot(name));

        model.lock(paths);
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->text, c.banner);
        EXPECT_TRUE(model.banner()->isError);
        EXPECT_EQ(world.lockedFiles(), c.lockedFiles);
        EXPECT_EQ(model.vaultCount(), static_cast<int64_t>(c.lockedFiles));
        for (const std::string& name : c.leftLoose) {
            EXPECT_TRUE(fs::exists(world.shot(name))) << name;
            EXPECT_FALSE(world.trash.names().count(name)) << name;
        }
        for (const std::string& name : c.trashRefuses)
            EXPECT_NE(model.library().find(world.shot(name)), nullptr)
                << "its original stayed: " << name;
    }
}

TEST(AppModelVault, unlockingListsNewestFirstAndCountsFilesOfAnotherKey) {
    struct Case {
        int foreign;
        std::optional<std::string> banner;
    };
    const Case cases[] = {
        {0, std::nullopt},
        {1, "1 locked file can't be opened with this computer's key"},
        {2, "2 locked files can't be opened with this computer's key"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.foreign);
        VaultWorld world;
        const std::string older = world.picture("older.png"), newer = world.picture("newer.png");
        AppModel& model = world.open({older, newer});
        model.lock({older});
        world.clock += 1h;
        model.lock({newer});
        for (int i = 0; i < c.foreign; ++i) {
            const std::string other = world.tmp.file("other " + std::to_string(i) + ".png");
            test::drawPicture(other, {"sealed under an old key"}, 400);
            ASSERT_TRUE(Vault(world.vaultDir())
                            .lock(test::readShotOf(other, Shelf::ids, {}, world.clock),
                                  VaultKey::random(), world.clock));
        }
        model.flash("before");
        EXPECT_FALSE(model.vaultOpen());
        EXPECT_TRUE(model.lockedItems().empty());

        model.unlockVault();
        EXPECT_TRUE(model.vaultOpen());
        EXPECT_EQ(world.reasons.back(), "open your locked screenshots");
        EXPECT_EQ(namesOf(model.lockedItems()),
                  (std::vector<std::string>{"newer.png", "older.png"}));
        EXPECT_EQ(model.vaultCount(), 2 + c.foreign);
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->text, c.banner.value_or("before"));
    }
}

TEST(AppModelVault, closingForgetsEverythingDecrypted) {
    VaultWorld world;
    const std::string a = world.picture("a.png"), b = world.picture("b.png");
    AppModel& model = world.open({a, b});
    model.lock({a, b});
    model.unlockVault();
    ASSERT_EQ(model.lockedItems().size(), 2u);
    const LockedShot item = model.lockedItems().front();
    model.setLockedSelection(item.id);
    ASSERT_TRUE(model.lockedImage(item.id));

    model.lockVault();
    EXPECT_FALSE(model.vaultOpen());
    EXPECT_TRUE(model.lockedItems().empty());
    EXPECT_FALSE(model.lockedSelection());
    EXPECT_EQ(model.vaultCount(), 2) << "the count stays while closed";
    EXPECT_EQ(world.scheduler->pending(), std::vector<std::chrono::milliseconds>{4s})
        << "only the banner's timer is left";
    EXPECT_FALSE(model.lockedImage(item.id)) << "no picture without the key";
    EXPECT_FALSE(model.restore(item, world.tmp.file("out")));
    EXPECT_FALSE(fs::exists(world.tmp.file("out")));
    model.refreshVault();
    EXPECT_TRUE(model.lockedItems().empty()) << "refreshing a closed area only counts";
    EXPECT_FALSE(model.lockedImage(item.id));

    // Opening again asks the owner again.
    const size_t asked = world.reasons.size();
    model.unlockVault();
    EXPECT_EQ(world.reasons.size(), asked + 1);
    EXPECT_TRUE(model.lockedImage(item.id));
}

TEST(AppModelVault, refreshingFollowsTheFolderOpenOrClosed) {
    VaultWorld world;
    const std::string a = world.picture("a.png"), d = world.picture("d.png");
    AppModel& model = world.open({a, d});
    model.lock({a});
    const auto lockBehindItsBack = [&](const std::string& name) {
        const std::string path = world.tmp.file(name);
        test::drawPicture(path, {name}, 400);
        ASSERT_TRUE(Vault(world.vaultDir())
                        .lock(test::readShotOf(path, Shelf::ids, {}, world.clock), world.key,
                              world.clock + 1h));
    };

    lockBehindItsBack("b.png");
    EXPECT_EQ(model.vaultCount(), 1);
    model.refreshVault();
    EXPECT_EQ(model.vaultCount(), 2);
    EXPECT_TRUE(model.lockedItems().empty());

    model.unlockVault();
    lockBehindItsBack("c.png");
    model.refreshVault();
    EXPECT_EQ(model.vaultCount(), 3);
    EXPECT_EQ(model.lockedItems().size(), 3u);

    // Locking while open shows the new item at once.
    model.lock({d});
    EXPECT_EQ(model.vaultCount(), 4);
    EXPECT_EQ(model.lockedItems().size(), 4u);
}

TEST(AppModelVault, lockedImagesOpenOnlyWithTheKeptKey) {
    VaultWorld world;
    const std::string a = world.picture("a.png");
    const QImage original(QString::fromStdString(a));
    AppModel& model = world.open({a});
    model.lock({a});
    const std::string foreign = world.tmp.file("foreign.png");
    test::drawPicture(foreign, {"another key"}, 400);
    const auto other = Vault(world.vaultDir())
                           .lock(test::readShotOf(foreign, Shelf::ids, {}, world.clock),
                                 VaultKey::random(), world.clock);
    ASSERT_TRUE(other);
    const std::string id = Vault(world.vaultDir()).list(world.key).items.at(0).id;

    EXPECT_FALSE(model.lockedImage(id)) << "closed";
    model.unlockVault();
    const std::optional<QImage> image = model.lockedImage(id);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), original.size());
    EXPECT_EQ(image->convertToFormat(QImage::Format_RGB32),
              original.convertToFormat(QImage::Format_RGB32));
    EXPECT_FALSE(model.lockedImage(other->id)) << "sealed under another key";
    EXPECT_FALSE(model.lockedImage("00000000-0000-0000-0000-000000000000"));
}

TEST(AppModelVault, restoringWritesThePictureBackAndNamesTheFolderFromHome) {
    const std::string home = QDir::homePath().toStdString();
    struct Case {
        std::string folder;
        std::string shown; // empty: the folder as it stands
    };
    const Case cases[] = {
        {home + "/Pictures/Back", "~/Pictures/Back"},
        {home, "~"},
        {home + "-elsewhere/Back", ""},
        {"", ""}, // a folder outside the home
    };
    for (const Case& c : cases) {
        VaultWorld world;
        const std::string folder = c.folder.empty() ? world.tmp.file("restored") : c.folder;
        SCOPED_TRACE(folder);
        const std::string a = world.picture("passport.png"), b = world.picture("card.png");
        const std::string bytes = test::readFile(a);
        AppModel& model = world.open({a, b});
        model.lock({a, b});
        model.unlockVault();
        const size_t asked = world.reasons.size();
        const LockedShot item =
            *std::find_if(model.lockedItems().begin(), model.lockedItems().end(),
                          [](const LockedShot& i) { return i.shot.name() == "passport.png"; });
        model.setLockedSelection(item.id);
        // What a view sees when it is told that the locked area changed.
        std::vector<std::optional<std::string>> seen;
        QObject::connect(&model, &AppModel::vaultChanged,
                         [&] { seen.push_back(model.lockedSelection()); });

        const std::optional<std::string> restored = model.restore(item, folder);
        ASSERT_TRUE(restored);
        EXPECT_EQ(*restored, folder + "/passport.png");
        EXPECT_EQ(test::readFile(*restored), bytes);
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->text,
                  "Restored \u201cpassport.png\u201d to " + (c.shown.empty() ? folder : c.shown));
        EXPECT_FALSE(model.banner()->isError);
        EXPECT_EQ(world.reasons.size(), asked) << "the open area's key serves; no new question";
        EXPECT_EQ(namesOf(model.lockedItems()), std::vector<std::string>{"card.png"});
        EXPECT_EQ(model.vaultCount(), 1);
        EXPECT_FALSE(model.lockedSelection());
        ASSERT_FALSE(seen.empty());
        EXPECT_EQ(seen.back(), std::nullopt) << "views are told that nothing is selected any more";
        fs::remove(*restored);
    }
}

TEST(AppModelVault, aFailedRestoreKeepsTheLockedFileAndSaysWhy) {
    VaultWorld world;
    const std::string a = world.picture("passport.png");
    AppModel& model = world.open({a});
    model.lock({a});
    model.unlockVault();
    const LockedShot item = model.lockedItems().at(0);
    model.setLockedSelection(item.id);
    // Something new now has the name: it is never overwritten.
    test::writeFile(a, "a newer file");

    EXPECT_FALSE(model.restore(item, world.shots()));
    ASSERT_TRUE(model.banner());
    EXPECT_TRUE(model.banner()->isError);
    EXPECT_EQ(
        model.banner()->text,
        Vault(world.vaultDir()).restore(item.id, world.shots(), world.key).error().description());
    EXPECT_EQ(test::readFile(a), "a newer file");
    EXPECT_EQ(model.vaultCount(), 1);
    EXPECT_EQ(world.lockedFiles(), 1u);
    EXPECT_EQ(model.lockedItems().size(), 1u);
    EXPECT_EQ(model.lockedSelection(), item.id);
}

TEST(AppModelVault, discardingAsksFirstAndHandsTheLockedFileToTheTrash) {
    struct Case {
        const char* name;
        bool agree;
        bool trashRefuses;
        bool gone;
        std::optional<std::string> banner;
    };
    const Case cases[] = {
        {"declined", false, false, false, std::nullopt},
        {"agreed", true, false, true, std::nullopt},
        {"the Trash refuses", true, true, false, "The Trash is not available"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VaultWorld world;
        const std::string a = world.picture("passport.png"), b = world.picture("card.png");
        AppModel& model = world.open({a, b});
        model.lock({a, b});
        model.unlockVault();
        const LockedShot item =
            *std::find_if(model.lockedItems().begin(), model.lockedItems().end(),
                          [](const LockedShot& i) { return i.shot.name() == "passport.png"; });
        const std::string file = Vault(world.vaultDir()).pathOf(item.id);
        model.setLockedSelection(item.id);
        model.flash("before");
        world.questions.clear();
        world.agree = c.agree;
        if (c.trashRefuses) world.trash.refused.insert(file);
        const std::set<std::string> trashedBefore = world.trash.names();

        EXPECT_EQ(model.discard(item), c.gone);
        EXPECT_EQ(world.questions,
                  (std::vector<Question>{{"Remove \u201cpassport.png\u201d from the locked area?",
                                          "Its encrypted file goes to the Trash.", "Remove"}}));
        EXPECT_EQ(fs::exists(file), !c.gone);
        EXPECT_EQ(world.trash.names().count(fs::path(file).filename().string()), c.gone ? 1u : 0u);
        EXPECT_EQ(world.trash.names().size(), trashedBefore.size() + (c.gone ? 1 : 0));
        EXPECT_EQ(model.vaultCount(), c.gone ? 1 : 2);
        EXPECT_EQ(model.lockedItems().size(), c.gone ? 1u : 2u);
        EXPECT_EQ(model.lockedSelection().has_value(), !c.gone);
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->text, c.banner.value_or("before"));
        EXPECT_EQ(model.banner()->isError, c.banner.has_value());
    }
}

// One thing that happens to the open locked area, at a moment.
struct Step {
    enum Kind { unlock, close, touch, leave, hide, comeBack, wait } kind;
    std::chrono::seconds seconds{};
};

TEST(AppModelVault, theAreaClosesItselfOnTime) {
    struct Case {
        const char* name;
        int minutes;
        std::vector<Step> steps;
        std::chrono::seconds closesAt; // counted from the first step
    };
    const Case cases[] = {
        {"zero minutes still keeps it open half a minute", 0, {{Step::unlock}}, 30s},
        {"five minutes", 5, {{Step::unlock}}, 300s},
        {"working in it restarts the time",
         5,
         {{Step::unlock}, {Step::wait, 200s}, {Step::touch}},
         500s},
        {"leaving the app gives it a minute",
         5,
         {{Step::unlock}, {Step::wait, 10s}, {Step::leave}},
         70s},
        {"coming back does not cancel that minute",
         5,
         {{Step::unlock}, {Step::wait, 10s}, {Step::leave}, {Step::wait, 20s}, {Step::comeBack}},
         70s},
        {"going on from inactive to hidden does not restart that minute",
         5,
         {{Step::unlock}, {Step::wait, 10s}, {Step::leave}, {Step::wait, 20s}, {Step::hide}},
         70s},
        {"working in it after coming back restarts the full time",
         5,
         {{Step::unlock}, {Step::leave}, {Step::comeBack}, {Step::wait, 10s}, {Step::touch}},
         310s},
        {"a timer of an earlier opening does not close a later one",
         5,
         {{Step::unlock}, {Step::wait, 100s}, {Step::close}, {Step::wait, 100s}, {Step::unlock}},
         500s},
        {"leaving while closed sets no timer for a later opening",
         1,
         {{Step::leave}, {Step::wait, 10s}, {Step::unlock}},
         70s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VaultWorld world;
        world.settings.setValue("lockAfterMinutes", c.minutes);
        AppModel& model = world.open({});
        model.start(); // listens to the application becoming active or not
        const auto start = world.scheduler->now();
        for (const Step& step : c.steps) {
            switch (step.kind) {
            case Step::unlock:
                model.unlockVault();
                break;
            case Step::close:
                model.lockVault();
                break;
            case Step::touch:
                model.touchVault();
                break;
            case Step::leave:
                emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
                break;
            case Step::hide:
                emit qGuiApp->applicationStateChanged(Qt::ApplicationHidden);
                break;
            case Step::comeBack:
                emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
                break;
            case Step::wait:
                world.scheduler->advance(step.seconds);
                break;
            }
        }
        ASSERT_TRUE(model.vaultOpen());
        const auto left = start + c.closesAt - world.scheduler->now();
        EXPECT_EQ(world.scheduler->pending(), std::vector<std::chrono::milliseconds>{left})
            << "one timer, the last one asked for";
        world.scheduler->advance(left - 1ms);
        EXPECT_TRUE(model.vaultOpen());
        world.scheduler->advance(1ms);
        EXPECT_FALSE(model.vaultOpen());
        EXPECT_TRUE(world.scheduler->pending().empty());
    }
}

TEST(AppModelVault, noTimerRunsWhileClosed) {
    VaultWorld world;
    AppModel& model = world.open({});
    model.touchVault();
    model.applicationLeft();
    model.scheduleAutoLock(60s);
    EXPECT_TRUE(world.scheduler->pending().empty());
    model.unlockVault();
    model.scheduleAutoLock(10s);
    EXPECT_EQ(world.scheduler->pending(), std::vector<std::chrono::milliseconds>{30s})
        << "never sooner than half a minute";
    model.lockVault();
    EXPECT_TRUE(world.scheduler->pending().empty()) << "closing by hand cancels the timer";
}

} // namespace
} // namespace lumivale
