// The locked area as the application model runs it: the gate in front of every lock, the
// originals going to the Trash, opening, restoring, discarding, and the timer that closes it.
// (The original's bytes in the Trash and the library saved without it, for one lock:
// tests/integration/lock-restore.sh.)
#include "AppTestSupport.h"

#include <QDir>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::World;

// Opens a model over one ID screenshot of this name and locks it.
AppModel& lockOne(World& world, const std::string& name) {
    AppModel& model = world.open({name}, Shelf::ids);
    model.lock({world.shot(name)});
    return model;
}

// Seals a picture into the locked area behind the model's back, under `key`.
void lockBehindItsBack(World& world, const std::string& name, const VaultKey& key) {
    const std::string path = world.tmp.file(name);
    test::drawPicture(path, {name});
    ASSERT_TRUE(Vault(world.model->paths().vault)
                    .lock(test::readShotOf(path, Shelf::ids, world.clock), key, world.clock));
}

TEST(AppModelVault, lockingAsksTheOwnerAndSendsTheOriginalsToTheTrash) {
    const struct {
        bool agree, owner, keyringRefuses;
        std::string banner;
    } cases[] = {
        {true, true, false, "Locked 2 screenshots. The originals are in the Trash."},
        {false, true, false, ""},
        {true, false, false, ""},
        {true, true, true,
         "Lumivale couldn't reach its key in the keyring: The keyring refused (-2). [error]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        World world;
        world.agree = c.agree;
        world.owner = c.owner;
        if (c.keyringRefuses) world.keys = std::make_shared<test::RefusingKey>(-2);
        AppModel& model = world.open({"a.png", "b.png"}, Shelf::ids);
        model.setSelection(world.shot("a.png"));
        const std::vector<std::string> paths = {world.shot("a.png"), world.shot("b.png")};

        model.lock(paths);
        EXPECT_EQ(world.questions,
                  (std::vector<test::Question>{
                      {"Lock away 2 screenshots?",
                       "Lumivale encrypts them into its locked area, which opens with your "
                       "fingerprint or your account password. The originals go to the Trash; "
                       "empty it to remove them from this computer for good.",
                       "Lock Away"}}));
        EXPECT_EQ(world.reasons.size(), c.agree ? 1u : 0u);
        const bool locked = c.agree && c.owner && !c.keyringRefuses;
        EXPECT_EQ(test::bannerOf(model), c.banner);
        EXPECT_EQ(model.vaultCount(), locked ? 2 : 0);
        for (const std::string& path : paths) {
            EXPECT_EQ(fs::exists(path), !locked) << path;
            EXPECT_EQ(model.library().find(path) == nullptr, locked) << path;
        }
        EXPECT_EQ(model.selection().has_value(), !locked);
        EXPECT_TRUE(model.journals().entries.empty()) << "a lock is not undone from the Trash";
    }
}

TEST(AppModelVault, whatCouldNotBeLockedOrTrashedNeedsAnotherTry) {
    World world;
    AppModel& model = world.open({"a.png", "b.png", "c.png"}, Shelf::ids);
    fs::remove(world.shot("a.png"));
    world.refused.insert(world.shot("b.png"));

    model.lock({world.shot("a.png"), world.shot("b.png"), world.shot("c.png")});
    EXPECT_EQ(test::bannerOf(model), "Locked 2; 2 need another try [error]");
    EXPECT_EQ(model.vaultCount(), 2);
    EXPECT_NE(model.library().find(world.shot("b.png")), nullptr) << "its original stayed";
}

// Opened three times, with one more file of another key each time. (That closing clears the
// items, the selection and the pictures: the self-check.)
TEST(AppModelVault, openingListsNewestFirstAndCountsFilesOfAnotherKey) {
    World world;
    AppModel& model = lockOne(world, "older.png");
    world.clock += 1h;
    lockBehindItsBack(world, "newer.png", world.key);
    model.flash("before");
    const std::string banners[] = {"before",
                                   "1 locked file can't be opened with this computer's key",
                                   "2 locked files can't be opened with this computer's key"};
    for (int foreign = 0; foreign < 3; ++foreign) {
        SCOPED_TRACE(foreign);
        if (foreign) lockBehindItsBack(world, std::to_string(foreign) + ".png", VaultKey::random());
        model.unlockVault();
        EXPECT_EQ(world.reasons.size(), 2u + foreign) << "each opening asks the owner";
        ASSERT_EQ(model.lockedItems().size(), 2u);
        EXPECT_EQ(model.lockedItems()[0].shot.name(), "newer.png");
        EXPECT_EQ(model.vaultCount(), 2 + foreign);
        EXPECT_EQ(test::bannerOf(model), banners[foreign]);
        const LockedShot item = model.lockedItems().front();
        model.lockVault();
        EXPECT_FALSE(model.restore(item, world.tmp.file("out"))) << "not without the key";
    }
    EXPECT_FALSE(fs::exists(world.tmp.file("out")));
}

TEST(AppModelVault, restoringWritesThePictureBackOrKeepsTheLockedFile) {
    const std::string home = QDir::homePath().toStdString();
    World world;
    AppModel& model = lockOne(world, "a.png");
    model.unlockVault();
    const LockedShot item = model.lockedItems().front();
    model.setLockedSelection(item.id);
    test::writeFile(home + "/Taken/a.png", "a newer file");
    EXPECT_FALSE(model.restore(item, home + "/Taken"));
    EXPECT_EQ(test::readFile(home + "/Taken/a.png"), "a newer file");
    EXPECT_EQ(test::bannerOf(model), "\u201ca.png\u201d couldn't be written: File exists. [error]");
    EXPECT_EQ(model.lockedItems().size(), 1u);
    EXPECT_TRUE(model.lockedSelection());

    // Beside the home folder, not in it: the folder is named in full.
    const std::string back = home + "-elsewhere/Back";
    EXPECT_EQ(model.restore(item, back), back + "/a.png");
    EXPECT_EQ(test::readFile(back + "/a.png"), test::readFile(world.trashFolder() + "/a.png"));
    EXPECT_EQ(test::bannerOf(model), "Restored \u201ca.png\u201d to " + back);
    EXPECT_FALSE(model.lockedSelection());
    EXPECT_EQ(world.reasons.size(), 2u) << "the open area's key serves";
}

TEST(AppModelVault, discardingAsksFirstAndHandsTheLockedFileToTheTrash) {
    World world;
    AppModel& model = lockOne(world, "a.png");
    model.unlockVault();
    const LockedShot item = model.lockedItems().front();
    const std::string file = Vault(world.model->paths().vault).pathOf(item.id);
    model.setLockedSelection(item.id);
    world.agree = false;
    EXPECT_FALSE(model.discard(item));
    EXPECT_EQ(world.questions.back(),
              test::Question("Remove \u201ca.png\u201d from the locked area?",
                             "Its encrypted file goes to the Trash.", "Remove"));

    world.agree = true;
    world.refused = {file};
    EXPECT_FALSE(model.discard(item));
    EXPECT_EQ(test::bannerOf(model), "The Trash is not available [error]");
    EXPECT_TRUE(fs::exists(file));
    EXPECT_TRUE(model.lockedSelection());

    world.refused.clear();
    EXPECT_TRUE(model.discard(item));
    EXPECT_EQ(test::namesIn(world.trashFolder()).size(), 2u) << "the original and the file";
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(model.vaultCount(), 0);
    EXPECT_FALSE(model.lockedSelection());
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
        world.scheduler->advance(left - 1ms);
        EXPECT_TRUE(world.model->vaultOpen());
        world.scheduler->advance(1ms);
        EXPECT_FALSE(world.model->vaultOpen());
    }
}

} // namespace
} // namespace lumivale
