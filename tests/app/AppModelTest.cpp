// The application model's scan cycle with the real reader on real folders, its settings,
// folders, shelves and timers. (New, deleted, broken and unreadable files, places, blurring and
// picking a shelf by hand or the guessed one are covered by the self-check's clean run.)
#include "AppTestSupport.h"

#include <QCoreApplication>
#include <mutex>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::World;

void scan(AppModel& model) {
    model.rescan();
    model.waitUntilIdle();
}

TEST(AppModelTest, scanReadsAgainWhatChangedOrAnOlderReaderReadAndKeepsTheShelfPickedByHand) {
    World world;
    test::drawPicture(world.shot("a.png"), {"Boarding Pass", "Gate 22  Seat 14C"});
    Shot old = test::readShotOf(world.shot("a.png"), Shelf::bills, now());
    old.reader = 0;
    old.manual = Shelf::other;
    Library library;
    library.put(old);
    ASSERT_TRUE(library.save(world.tmp.file("data/library.plist")));
    AppModel& model = world.loaded();
    const auto shot = [&] { return *model.library().find(world.shot("a.png")); };
    scan(model);
    EXPECT_EQ(world.reads, 1);
    EXPECT_EQ(shot().guess, Shelf::tickets);

    test::drawPicture(world.shot("a.png"), {"TAX INVOICE", "Grand Total 2,016.00"}); // a new size
    scan(model);
    EXPECT_EQ(world.reads, 2);
    EXPECT_EQ(shot().guess, Shelf::bills);
    EXPECT_EQ(shot().manual, Shelf::other);
    model.setShelf(world.shot("a.png"), std::nullopt); // no shelf: back to automatic
    EXPECT_EQ(shot().manual, std::nullopt);
}

TEST(AppModelTest, readsAtMostThreeAtOnceAndSavesEveryTwentyFiveAndAtTheEnd) {
    World world;
    for (int i = 0; i < 26; ++i)
        test::drawPicture(world.shot(std::to_string(i) + ".png"), {"Picture " + std::to_string(i)});
    std::mutex mutex;
    int running = 0, most = 0;
    const auto count = [&](int step) {
        std::lock_guard lock(mutex);
        most = std::max(most, running += step);
    };
    world.read = [&](const std::string& path, const std::vector<std::string>& languages) {
        count(1);
        Reading reading = Reader::read(path, languages);
        count(-1);
        return reading;
    };
    AppModel& model = world.loaded();
    std::vector<int64_t> savedAfter; // how many shots were read when each save ended
    QObject::connect(&model, &AppModel::saved, [&](bool ok) {
        EXPECT_TRUE(ok);
        savedAfter.push_back(std::count_if(model.all().begin(), model.all().end(),
                                           [](const ShotPtr& s) { return s->isRead(); }));
    });
    scan(model);
    model.saveNow();
    QCoreApplication::processEvents(); // the save signals arrive on the main thread
    EXPECT_LE(most, 3);
    EXPECT_GE(most, 2) << "readings should overlap";
    // One save after the merge, one after the 25th reading, one at the end.
    ASSERT_EQ(savedAfter.size(), 3u);
    EXPECT_EQ(savedAfter[0], 0);
    EXPECT_GE(savedAfter[1], 25);
    EXPECT_EQ(savedAfter[2], 26);
}

TEST(AppModelTest, aBurstOfFileEventsCausesOneRescanAfterTheQuiet) {
    World world;
    world.settings.setValue("watchFolders", true);
    AppModel& model = world.loaded();
    scan(model);
    model.rewatch();
    int scans = 0;
    QObject::connect(&model, &AppModel::scanningChanged, [&] { scans += model.scanning(); });
    const std::vector<std::chrono::milliseconds> waiting = {1200ms};
    for (int i = 0; i < 3; ++i) {
        test::writeFile(world.shot("new " + std::to_string(i) + ".png"), "x");
        for (int spin = 0; spin < 100 && world.scheduler->pending() != waiting; ++spin)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        ASSERT_EQ(world.scheduler->pending(), waiting) << "the watcher restarts the one rescan";
        world.scheduler->advance(500ms);
    }
    world.scheduler->advance(699ms);
    EXPECT_EQ(scans, 0);
    world.scheduler->advance(1ms);
    EXPECT_EQ(scans, 1);
    model.waitUntilIdle();
    model.setWatch(false);
    EXPECT_TRUE(model.watchedFolders().isEmpty());
}

// Saves that keep failing for a minute are said once in an error banner, and tried again; a good
// save ends the trouble.
TEST(AppModelTest, aSaveThatKeepsFailingForAMinuteShowsAnErrorBanner) {
    World world;
    AppModel& model = world.open({"receipt.png"});
    fs::remove_all(world.tmp.file("data"));
    test::writeFile(world.tmp.file("data"), "not a folder");
    int saves = 0;
    QObject::connect(&model, &AppModel::saved, [&](bool ok) {
        EXPECT_FALSE(ok);
        ++saves;
    });
    const auto settle = [&](int wanted) {
        for (int spin = 0; spin < 200 && saves < wanted; ++spin) {
            model.waitForSaves();
            QCoreApplication::processEvents();
        }
        ASSERT_EQ(saves, wanted);
    };
    model.setShelf(world.shot("receipt.png"), Shelf::chats);
    settle(1);
    world.scheduler->advance(30s);
    model.setShelf(world.shot("receipt.png"), Shelf::code);
    settle(2);
    world.scheduler->advance(29s);
    EXPECT_FALSE(model.banner()) << "a failed save is silent at first";
    world.scheduler->advance(1s);
    EXPECT_EQ(test::bannerOf(model), "Lumivale hasn't been able to save its library for a minute: "
                                     "Not a directory [error]");
    settle(3); // tried again
    world.scheduler->advance(60s);
    EXPECT_FALSE(model.banner()) << "said once";
    settle(4);

    fs::remove(world.tmp.file("data"));
    QObject::disconnect(&model, &AppModel::saved, nullptr, nullptr);
    model.waitForSaves();
    EXPECT_TRUE(model.saveNow());
    EXPECT_TRUE(world.scheduler->pending().empty()) << "no more retries once saved";
    EXPECT_EQ(Library::load(world.tmp.file("data/library.plist"))
                  ->find(world.shot("receipt.png"))
                  ->manual,
              Shelf::code);
}

TEST(AppModelTest, settingsOfTheWrongTypeOrMissingTakeTheirDefaults) {
    World world;
    for (const std::string given : {"set", "of the wrong type", "missing"}) {
        SCOPED_TRACE(given);
        world.settings.setValue("watchFolders", given == "set" ? "false" : "oops");
        world.settings.setValue("blurPrivate", given == "set" ? "false" : "oops");
        world.settings.setValue("lockAfterMinutes", given == "set" ? "12" : "oops");
        if (given == "missing") world.settings.clear();
        const AppModel& model = world.make();
        const bool defaults = given != "set";
        EXPECT_EQ(std::tuple(model.watch(), model.blurPrivate(), model.lockAfterMinutes()),
                  std::tuple(defaults, defaults, defaults ? 5 : 12));
    }
}

TEST(AppModelTest, sourcesListEachFolderOnceAndTheArchiveAlways) {
    using Kind = Source::Kind;
    World world;
    AppModel& model = world.loaded();
    const std::string phone = world.tmp.file("Phone");
    fs::create_directories(phone);
    // The screenshot folder itself, the same folder twice, and the archive as an added folder.
    for (const std::string& folder : {world.shots(), phone, phone + "/", world.archive()})
        model.addFolder(folder);
    model.waitUntilIdle();
    EXPECT_EQ(model.sources(), (std::vector<Source>{{world.shots(), Kind::screenshots},
                                                    {phone, Kind::added},
                                                    {world.archive(), Kind::added}}));
}

TEST(AppModelTest, bannersKeepTheirFullTimeAndRevealsEndAfterThirtySeconds) {
    World world;
    AppModel& model = world.make();
    model.flash("first");
    world.scheduler->advance(3s);
    model.flash("second");
    world.scheduler->advance(1s); // the first banner's timer fires, but the second stays
    EXPECT_EQ(model.banner()->text, "second");
    world.scheduler->advance(2999ms);
    EXPECT_TRUE(model.banner());
    world.scheduler->advance(1ms);
    EXPECT_FALSE(model.banner());

    model.reveal("/x/id.png");
    world.scheduler->advance(10s);
    model.reveal("/x/id.png"); // a second reveal does not extend the first
    world.scheduler->advance(19999ms);
    EXPECT_TRUE(model.revealed().count("/x/id.png"));
    world.scheduler->advance(1ms);
    EXPECT_FALSE(model.revealed().count("/x/id.png"));
}

} // namespace
} // namespace lumivale

namespace lumivale {
namespace {

TEST(AppModelTest, aPictureOpenedFromTheDesktopIsShownSelectedOrSaidToBeNoneOfOurs) {
    const struct {
        const char* name;
        std::string (*where)(const test::World&);
        bool kept;
    } cases[] = {
        {"in the library", [](const test::World& w) { return w.shot("kept.png"); }, true},
        {"new in a folder that is read: after the scan that adds it",
         [](const test::World& w) { return w.shot("new.png"); }, true},
        {"elsewhere", [](const test::World& w) { return w.tmp.file("Downloads/cat.png"); }, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        test::World world;
        AppModel& model = world.open({"kept.png"});
        test::drawPicture(world.shot("new.png"), {"Fresh"});
        test::drawPicture(world.tmp.file("Downloads/cat.png"), {"Cat"});
        model.setPlace(Place::ofShelf(Shelf::code));
        model.setQuery("nothing");
        const std::string path = c.where(world);
        model.showPicture(path);
        model.waitUntilIdle();
        if (c.kept) {
            EXPECT_EQ(model.selection(), path);
            EXPECT_EQ(model.place(), Place::of(Place::Kind::all));
            EXPECT_EQ(model.query(), "");
            EXPECT_FALSE(model.banner());
        } else {
            EXPECT_EQ(model.selection(), std::nullopt);
            EXPECT_EQ(model.library().find(path), nullptr);
            ASSERT_TRUE(model.banner());
            EXPECT_TRUE(model.banner()->isError);
            EXPECT_NE(model.banner()->text.find("cat.png"), std::string::npos);
        }
    }
}

} // namespace
} // namespace lumivale
