// The locked area as the application model runs it: the gate in front of every lock, the
// originals going to the Trash, opening, restoring, discarding, and the timer that closes it.
// (The original's bytes in the Trash and the library saved without it, for one lock:
// tests/integration/lock-restore.sh.)
#include "AppTestSupport.h"

#include <QDir>
#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::Question;
using test::World;

// Opens a model over these ID screenshots and locks them all.
AppModel& lockAll(World& world, const std::vector<std::string>& names) {
    std::vector<std::pair<std::string, Shelf>> pictures;
    std::vector<std::string> paths;
    for (const std::string& name : names) {
        pictures.push_back({name, Shelf::ids});
        paths.push_back(world.shot(name));
    }
    AppModel& model = world.open(pictures);
    model.lock(paths);
    return model;
}

// Seals a picture into the locked area behind the model's back, under `key`.
void lockBehindItsBack(World& world, const std::string& name, const VaultKey& key) {
    const std::string path = world.tmp.file(name);
    test::drawPicture(path, {name}, 400);
    ASSERT_TRUE(Vault(world.vaultDir())
                    .lock(test::readShotOf(path, Shelf::ids, {}, world.clock), key, world.clock));
}

const LockedShot& itemNamed(AppModel& model, const std::string& name) {
    return *std::find_if(model.lockedItems().begin(), model.lockedItems().end(),
                         [&](const LockedShot& i) { return i.shot.name() == name; });
}

TEST(AppModelVault, lockingAsksTheOwnerAndSendsTheOriginalsToTheTrash) {
    const struct {
        size_t count; // of a.png, b.png
        bool agree, owner, keyringRefuses;
        std::optional<std::string> banner; // none: nothing happens at all
    } cases[] = {
        {1, true, true, false, "Locked 1 screenshot. The originals are in the Trash."},
        {2, true, true, false, "Locked 2 screenshots. The originals are in the Trash."},
        {1, false, true, false, {}},
        {1, true, false, false, {}},
        {1, true, true, true,
         "Lumivale couldn't reach its key in the keyring: The keyring refused (-2)."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.banner.value_or("nothing"));
        World world;
        world.agree = c.agree;
        world.owner = c.owner;
        if (c.keyringRefuses) world.keys = std::make_shared<test::RefusingKey>(-2);
        AppModel& model =
            world.open({{"a.png", Shelf::ids}, {"b.png", Shelf::ids}, {"c.png", Shelf::ids}});
        model.setSelection(world.shot("a.png"));
        std::vector<std::string> paths = {world.shot("a.png"), world.shot("b.png")};
        paths.resize(c.count);

        model.lock(paths);
        EXPECT_EQ(world.questions,
                  (std::vector<Question>{
                      {c.count == 1 ? "Lock away 1 screenshot?" : "Lock away 2 screenshots?",
                       "Lumivale encrypts them into its locked area, which opens with your "
                       "fingerprint or your account password. The originals go to the Trash; "
                       "empty it to remove them from this computer for good.",
                       "Lock Away"}}));
        EXPECT_EQ(world.reasons.size(), c.agree ? 1u : 0u);
        const bool locked = c.agree && c.owner && !c.keyringRefuses;
        ASSERT_EQ(model.banner().has_value(), c.banner.has_value());
        if (c.banner) {
            EXPECT_EQ(model.banner()->text, *c.banner);
            EXPECT_EQ(model.banner()->isError, !locked);
            EXPECT_FALSE(model.banner()->undo);
        }
        const size_t count = locked ? c.count : 0;
        EXPECT_EQ(model.vaultCount(), static_cast<int64_t>(count));
        EXPECT_EQ(world.trash.size(), count);
        for (const std::string& path : paths) {
            EXPECT_EQ(fs::exists(path), !locked) << path;
            EXPECT_EQ(model.library().find(path) == nullptr, locked) << path;
        }
        EXPECT_NE(model.library().find(world.shot("c.png")), nullptr);
        EXPECT_EQ(model.selection().has_value(), !locked);
        EXPECT_TRUE(model.journals().entries.empty());
        if (!locked) continue;
        const Vault::Listing listing = Vault(world.vaultDir()).list(world.key);
        EXPECT_EQ(listing.items.size(), count);
        EXPECT_EQ(listing.unreadable, 0);
    }
}

TEST(AppModelVault, whatCouldNotBeLockedOrTrashedNeedsAnotherTry) {
    World world;
    AppModel& model =
        world.open({{"a.png", Shelf::ids}, {"b.png", Shelf::ids}, {"c.png", Shelf::ids}});
    fs::remove(world.shot("a.png"));
    world.trash.refused.insert(world.shot("b.png"));

    model.lock({world.shot("a.png"), world.shot("b.png"), world.shot("c.png")});
    ASSERT_TRUE(model.banner());
    EXPECT_EQ(model.banner()->text, "Locked 2; 2 need another try");
    EXPECT_TRUE(model.banner()->isError);
    EXPECT_EQ(model.vaultCount(), 2);
    EXPECT_TRUE(fs::exists(world.shot("b.png"))) << "the Trash refused its original";
    EXPECT_NE(model.library().find(world.shot("b.png")), nullptr);
}

TEST(AppModelVault, openingListsNewestFirstAndCountsFilesOfAnotherKey) {
    const struct {
        int foreign;
        std::optional<std::string> banner;
    } cases[] = {
        {0, std::nullopt},
        {1, "1 locked file can't be opened with this computer's key"},
        {2, "2 locked files can't be opened with this computer's key"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.foreign);
        World world;
        AppModel& model = lockAll(world, {"older.png"});
        world.clock += 1h;
        lockBehindItsBack(world, "newer.png", world.key);
        for (int i = 0; i < c.foreign; ++i)
            lockBehindItsBack(world, "other " + std::to_string(i) + ".png", VaultKey::random());
        model.flash("before");
        EXPECT_TRUE(model.lockedItems().empty());

        model.unlockVault();
        EXPECT_TRUE(model.vaultOpen());
        EXPECT_EQ(world.reasons.back(), "open your locked screenshots");
        ASSERT_EQ(model.lockedItems().size(), 2u);
        EXPECT_EQ(model.lockedItems()[0].shot.name(), "newer.png");
        EXPECT_EQ(model.vaultCount(), 2 + c.foreign);
        EXPECT_EQ(model.banner()->text, c.banner.value_or("before"));
    }
}

TEST(AppModelVault, closingForgetsEverythingDecrypted) {
    World world;
    AppModel& model = lockAll(world, {"a.png", "b.png"});
    model.unlockVault();
    const LockedShot item = model.lockedItems().front();
    model.setLockedSelection(item.id);
    ASSERT_TRUE(model.lockedImage(item.id));

    model.lockVault();
    EXPECT_FALSE(model.vaultOpen());
    EXPECT_TRUE(model.lockedItems().empty());
    EXPECT_FALSE(model.lockedSelection());
    EXPECT_EQ(model.vaultCount(), 2) << "the count stays while closed";
    EXPECT_FALSE(model.lockedImage(item.id)) << "no picture without the key";
    EXPECT_FALSE(model.restore(item, world.tmp.file("out")));
    EXPECT_FALSE(fs::exists(world.tmp.file("out")));
    model.refreshVault();
    EXPECT_TRUE(model.lockedItems().empty()) << "refreshing a closed area only counts";

    const size_t asked = world.reasons.size();
    model.unlockVault();
    EXPECT_EQ(world.reasons.size(), asked + 1) << "opening again asks the owner again";
}

TEST(AppModelVault, restoringWritesThePictureBackAndNamesTheFolderFromHome) {
    const std::string home = QDir::homePath().toStdString();
    const struct {
        std::string folder, shown; // nothing shown: a.png is there already, so the restore fails
    } cases[] = {
        {home + "/Pictures/Back", "~/Pictures/Back"},
        {home, "~"},
        {home + "-elsewhere/Back", home + "-elsewhere/Back"},
        {home + "/Taken", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder);
        World world;
        AppModel& model = lockAll(world, {"a.png", "b.png"});
        model.unlockVault();
        const LockedShot item = itemNamed(model, "a.png");
        model.setLockedSelection(item.id);
        const size_t asked = world.reasons.size();
        const bool fails = c.shown.empty();
        if (fails) test::writeFile(c.folder + "/a.png", "a newer file");

        const std::optional<std::string> restored = model.restore(item, c.folder);
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->isError, fails);
        EXPECT_EQ(world.reasons.size(), asked) << "the open area's key serves";
        EXPECT_EQ(model.vaultCount(), fails ? 2 : 1);
        EXPECT_EQ(model.lockedItems().size(), fails ? 2u : 1u);
        if (fails) {
            EXPECT_FALSE(restored);
            EXPECT_EQ(test::readFile(c.folder + "/a.png"), "a newer file") << "never overwritten";
        } else {
            ASSERT_EQ(restored, c.folder + "/a.png");
            EXPECT_EQ(test::readFile(*restored), test::readFile(world.trash.folder + "/a.png"));
            EXPECT_EQ(model.banner()->text, "Restored \u201ca.png\u201d to " + c.shown);
            EXPECT_FALSE(model.lockedSelection());
        }
        fs::remove(c.folder + "/a.png");
    }
}

TEST(AppModelVault, discardingAsksFirstAndHandsTheLockedFileToTheTrash) {
    const struct {
        const char* name;
        bool agree, trashRefuses, gone;
        std::optional<std::string> banner;
    } cases[] = {
        {"declined", false, false, false, std::nullopt},
        {"agreed", true, false, true, std::nullopt},
        {"the Trash refuses", true, true, false, "The Trash is not available"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        World world;
        AppModel& model = lockAll(world, {"a.png", "b.png"});
        model.unlockVault();
        const LockedShot item = itemNamed(model, "a.png");
        const std::string file = Vault(world.vaultDir()).pathOf(item.id);
        model.setLockedSelection(item.id);
        model.flash("before");
        world.questions.clear();
        world.agree = c.agree;
        if (c.trashRefuses) world.trash.refused.insert(file);
        const size_t trashed = world.trash.size();

        EXPECT_EQ(model.discard(item), c.gone);
        EXPECT_EQ(world.questions,
                  (std::vector<Question>{{"Remove \u201ca.png\u201d from the locked area?",
                                          "Its encrypted file goes to the Trash.", "Remove"}}));
        EXPECT_EQ(fs::exists(file), !c.gone);
        EXPECT_EQ(world.trash.size(), trashed + c.gone);
        EXPECT_EQ(model.vaultCount(), c.gone ? 1 : 2);
        EXPECT_EQ(model.lockedSelection().has_value(), !c.gone);
        EXPECT_EQ(model.banner()->text, c.banner.value_or("before"));
    }
}

TEST(AppModelVault, theAreaClosesItselfOnTime) {
    using Step = std::function<void(World&)>;
    const Step unlock = [](World& w) { w.model->unlockVault(); };
    const Step close = [](World& w) { w.model->lockVault(); };
    const Step touch = [](World& w) { w.model->touchVault(); };
    const auto become = [](Qt::ApplicationState state) {
        return [state](World&) { emit qGuiApp->applicationStateChanged(state); };
    };
    const Step leave = become(Qt::ApplicationInactive), hide = become(Qt::ApplicationHidden),
               comeBack = become(Qt::ApplicationActive);
    const auto wait = [](std::chrono::seconds s) {
        return [s](World& w) { w.scheduler->advance(s); };
    };
    struct Case {
        const char* name;
        int minutes;
        std::vector<Step> steps;
        std::chrono::seconds closesAt; // counted from the first step
    };
    const Case cases[] = {
        {"zero minutes still keeps it open half a minute", 0, {unlock}, 30s},
        {"working in it restarts the time", 5, {unlock, wait(100s), touch}, 400s},
        {"leaving the app gives it a minute", 5, {unlock, wait(10s), leave}, 70s},
        {"coming back does not cancel that minute", 5, {unlock, leave, wait(10s), comeBack}, 60s},
        {"inactive to hidden does not restart it", 5, {unlock, leave, wait(10s), hide}, 60s},
        {"a timer of an earlier opening does not close a later one",
         5,
         {unlock, wait(100s), close, wait(100s), unlock},
         500s},
        {"leaving while closed sets no timer", 1, {leave, wait(10s), unlock}, 70s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        World world;
        world.settings.setValue("lockAfterMinutes", c.minutes);
        world.open({}).start(); // listens to the application becoming active or not
        for (const Step& step : c.steps)
            step(world);
        const auto left = c.closesAt - world.scheduler->now;
        EXPECT_EQ(world.scheduler->pending(), std::vector<std::chrono::milliseconds>{left});
        world.scheduler->advance(left - 1ms);
        EXPECT_TRUE(world.model->vaultOpen());
        world.scheduler->advance(1ms);
        EXPECT_FALSE(world.model->vaultOpen());
    }
}

} // namespace
} // namespace lumivale
