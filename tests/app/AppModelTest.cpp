// The application model's scan cycle with the real reader on real folders, its settings,
// folders, shelves and timers. (Places and blurring are covered by the self-check's clean run.)
#include "AppTestSupport.h"
#include "reading/Reader.h"
#include "support/ChildRun.h"

#include <QCoreApplication>
#include <filesystem>
#include <gtest/gtest.h>
#include <mutex>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::World;

const std::vector<std::string> receipt = {"TAX INVOICE", "Subtotal 900.00", "Grand Total 1,008.00",
                                          "Thank you"};

void scan(AppModel& model) {
    model.rescan();
    model.waitUntilIdle();
}

// (That a second scan reads nothing again: tests/integration/scan-list-search.sh.)
TEST(AppModelTest, scanFindsReadsAndForgetsFilesWithTheRealReader) {
    World world;
    test::drawPicture(world.shot("pass.png"),
                      {"Boarding Pass", "BLR -> DEL", "Gate 22  Seat 14C", "Flight 6E 2134"});
    test::drawPicture(world.shot("old.png"), receipt);
    test::writeFile(world.shot("broken.png"), "not an image");
    Shot old = test::readShotOf(world.shot("old.png"), Shelf::bills, {"TAX INVOICE"}, now());
    old.reader = 0; // read by an older reader: read again
    Library library;
    library.put(old);
    ASSERT_TRUE(library.save(world.tmp.file("data/library.plist")));
    world.read = [&](const std::string& path, const std::vector<std::string>& languages) {
        ++world.reads;
        return Reader::read(path, languages);
    };
    AppModel& model = world.loaded();
    scan(model);
    const auto shot = [&](const char* name) { return model.library().find(world.shot(name)); };
    EXPECT_EQ(world.reads, 3);
    ASSERT_TRUE(shot("pass.png") && shot("broken.png"));
    EXPECT_EQ(shot("pass.png")->category(), Shelf::tickets);
    EXPECT_NE(shot("pass.png")->folded.find("boarding pass"), std::string::npos);
    EXPECT_EQ(shot("old.png")->reader, readerVersion);
    EXPECT_TRUE(shot("broken.png")->failed);

    // A new file is found and read; nothing else is read twice, not even the broken file.
    test::drawPicture(world.shot("receipt.png"), receipt);
    scan(model);
    EXPECT_EQ(world.reads, 4);
    ASSERT_NE(shot("receipt.png"), nullptr);
    EXPECT_EQ(shot("receipt.png")->category(), Shelf::bills);

    // A file rewritten with a new size is read again and keeps its hand-picked shelf.
    model.setShelf(world.shot("receipt.png"), Shelf::other);
    test::drawPicture(world.shot("receipt.png"), {"TAX INVOICE", "Grand Total 2,016.00"}, 1000);
    scan(model);
    EXPECT_NE(shot("receipt.png")->folded.find("2016"), std::string::npos);
    EXPECT_EQ(shot("receipt.png")->manual, Shelf::other);

    // A deleted file drops out, from the saved library too.
    fs::remove(world.shot("pass.png"));
    scan(model);
    EXPECT_EQ(shot("pass.png"), nullptr);
    model.saveNow();
    EXPECT_EQ(Library::load(model.paths().libraryFile())->size(), 3u);
}

TEST(AppModelTest, aFolderThatCannotBeOpenedIsFlaggedAndItsShotsStay) {
    // Permissions do not hold for root, so as root the test runs again as an ordinary user.
    if (test::runningAsRoot() &&
        !test::runsInChild({"unprivileged",
                            {"setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups"},
                            {},
                            120s}))
        return;
    World world;
    const std::string phone = world.tmp.file("Phone");
    fs::create_directories(phone);
    test::drawPicture(phone + "/IMG_0001.png", receipt);
    world.read = nullptr; // the real reader
    AppModel& model = world.loaded();
    model.addFolder(phone);
    model.waitUntilIdle();
    ASSERT_NE(model.library().find(phone + "/IMG_0001.png"), nullptr);

    fs::permissions(phone, fs::perms::none);
    scan(model);
    ASSERT_NE(world.source(phone), nullptr);
    EXPECT_FALSE(world.source(phone)->readable);
    EXPECT_NE(model.library().find(phone + "/IMG_0001.png"), nullptr) << "its shots are kept";

    fs::permissions(phone, fs::perms::owner_all);
    scan(model);
    EXPECT_TRUE(world.source(phone)->readable);
}

TEST(AppModelTest, readsAtMostThreeAtOnceAndSavesEveryTwentyFiveAndAtTheEnd) {
    World world;
    for (int i = 0; i < 26; ++i)
        test::drawPicture(world.shot("shot " + std::to_string(100 + i) + ".png"),
                          {"Picture " + std::to_string(i)}, 400);
    std::mutex mutex;
    int running = 0, most = 0;
    world.read = [&](const std::string& path, const std::vector<std::string>& languages) {
        {
            std::lock_guard lock(mutex);
            most = std::max(most, ++running);
        }
        Reading reading = Reader::read(path, languages);
        std::lock_guard lock(mutex);
        --running;
        return reading;
    };
    AppModel& model = world.loaded();
    std::vector<int64_t> savedAfter;
    QObject::connect(&model, &AppModel::saved, [&](bool ok) {
        EXPECT_TRUE(ok);
        int64_t read = 0;
        for (const ShotPtr& s : model.library().all())
            read += s->isRead();
        savedAfter.push_back(read);
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
    for (int i = 0; i < 3; ++i) {
        const int before = world.scheduler->created;
        test::writeFile(world.shot("new " + std::to_string(i) + ".png"), "x");
        for (int spin = 0; spin < 100 && world.scheduler->created == before; ++spin)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents,
                                            20);
        ASSERT_GT(world.scheduler->created, before) << "the watcher saw the new file";
        world.scheduler->advance(500ms);
    }
    EXPECT_EQ(world.scheduler->pending(), std::vector<std::chrono::milliseconds>{700ms})
        << "each event restarts the one pending rescan";
    world.scheduler->advance(699ms);
    EXPECT_EQ(scans, 0);
    world.scheduler->advance(1ms);
    EXPECT_EQ(scans, 1);
    model.waitUntilIdle();
    model.setWatch(false);
    EXPECT_TRUE(model.watchedFolders().isEmpty());
}

TEST(AppModelTest, settingsOfTheWrongTypeCountAsAbsent) {
    struct Case {
        const char *watch, *blur, *minutes;
        bool watchExpected, blurExpected;
        int minutesExpected;
    };
    const Case cases[] = {
        {"yes please", "false", "abc", true, false, 5},
        {"false", "oops", "12", false, true, 12},
    };
    World world;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.watch);
        world.settings.setValue("watchFolders", c.watch);
        world.settings.setValue("blurPrivate", c.blur);
        world.settings.setValue("lockAfterMinutes", c.minutes);
        AppModel& model = world.make();
        EXPECT_EQ(model.watch(), c.watchExpected);
        EXPECT_EQ(model.blurPrivate(), c.blurExpected);
        EXPECT_EQ(model.lockAfterMinutes(), c.minutesExpected);
    }
}

TEST(AppModelTest, sourcesListEachFolderOnceAndTheArchiveAlways) {
    World world;
    AppModel& model = world.loaded();
    fs::create_directories(world.tmp.file("Phone"));
    model.addFolder(world.shots()); // the screenshot folder itself: no change
    model.addFolder(world.tmp.file("Phone"));
    model.addFolder(world.tmp.file("Phone") + "/"); // the same folder again
    model.addFolder(world.archive());               // the archive as an added folder
    model.waitUntilIdle();
    EXPECT_EQ(model.library().extraFolders,
              (std::vector<std::string>{world.tmp.file("Phone"), world.archive()}));
    ASSERT_EQ(model.sources().size(), 3u);
    EXPECT_EQ(model.sources()[2].kind, Source::Kind::added) << "an added archive is listed once";

    // Removing the added archive leaves the archive itself, switched on.
    model.setEnabled(model.sources()[2], false);
    model.removeFolder(model.sources()[2]);
    model.waitUntilIdle();
    ASSERT_EQ(model.sources().size(), 3u);
    EXPECT_EQ(model.sources()[2].kind, Source::Kind::archive);
    EXPECT_TRUE(model.sources()[2].enabled);
}

TEST(AppModelTest, setShelfByHandAndBackToAutomatic) {
    World world;
    AppModel& model = world.open({{"a.png", Shelf::bills}});
    const std::string a = world.shot("a.png");
    struct Case {
        std::optional<Shelf> chosen, manual;
    };
    for (const Case& c : {Case{Shelf::chats, Shelf::chats}, Case{Shelf::bills, std::nullopt},
                          Case{Shelf::code, Shelf::code}, Case{std::nullopt, std::nullopt}}) {
        model.setShelf(a, c.chosen);
        EXPECT_EQ(model.library().find(a)->manual, c.manual);
    }
    model.setShelf(world.shot("missing.png"), Shelf::ids); // nothing there: nothing happens
    EXPECT_EQ(model.library().size(), 1u);
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
