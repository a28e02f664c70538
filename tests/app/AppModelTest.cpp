#include "app/AppModel.h"

#include "AppTestSupport.h"
#include "reading/Reader.h"
#include "support/ChildRun.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <atomic>
#include <filesystem>
#include <mutex>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

const std::vector<std::string> boardingPass = {"Boarding Pass", "BLR -> DEL", "Gate 22  Seat 14C", "Flight 6E 2134"};
const std::vector<std::string> receipt = {"TAX INVOICE", "Subtotal 900.00", "Grand Total 1,008.00", "Thank you"};

class AppModelTest : public ::testing::Test {
protected:
    void SetUp() override { test::ensureQtApp(); }

    // A model over folders of the temporary home; services may be replaced before make().
    AppModel& make() {
        model_ = std::make_unique<AppModel>(paths(), *settings_, services_);
        return *model_;
    }
    Paths paths() const { return Paths::at(tmp_.file("data"), shots(), tmp_.file("archive")); }
    std::string shots() const { return tmp_.file("Screenshots"); }
    std::string shot(const std::string& name) const { return shots() + "/" + name; }

    // A model whose saved library holds these shots.
    AppModel& makeWith(const Library& library) {
        EXPECT_TRUE(library.save(paths().libraryFile()));
        AppModel& model = make();
        model.load();
        return model;
    }

    void scan() {
        model_->rescan();
        model_->waitUntilIdle();
    }

    test::TempDir tmp_;
    std::unique_ptr<QSettings> settings_ =
        std::make_unique<QSettings>(QString::fromStdString(tmp_.file("settings.ini")), QSettings::IniFormat);
    std::shared_ptr<test::FakeScheduler> scheduler_ = std::make_shared<test::FakeScheduler>();
    AppModel::Services services_{.scheduler = scheduler_};
    std::unique_ptr<AppModel> model_;
};

TEST_F(AppModelTest, scanFindsReadsAndForgetsFilesWithTheRealReader) {
    fs::create_directories(shots());
    test::drawPicture(shot("pass.png"), boardingPass);
    AppModel& model = make();
    model.load();
    scan();
    const Shot* pass = model.library().find(shot("pass.png"));
    ASSERT_NE(pass, nullptr);
    EXPECT_TRUE(pass->isRead());
    EXPECT_EQ(pass->category(), Shelf::tickets);
    EXPECT_NE(pass->folded.find("boarding pass"), std::string::npos);

    // A new file is found and read; the known one is not read again.
    const Date firstRead = *pass->readAt;
    test::drawPicture(shot("receipt.png"), receipt);
    scan();
    ASSERT_NE(model.library().find(shot("receipt.png")), nullptr);
    EXPECT_EQ(model.library().find(shot("receipt.png"))->category(), Shelf::bills);
    EXPECT_EQ(*model.library().find(shot("pass.png"))->readAt, firstRead);

    // A file rewritten with a new size is read again and keeps its hand-picked shelf.
    model.setShelf(shot("receipt.png"), Shelf::other);
    test::drawPicture(shot("receipt.png"), {"TAX INVOICE", "Grand Total 2,016.00", "Paid by card", "Thank you"}, 1000);
    scan();
    const Shot* redone = model.library().find(shot("receipt.png"));
    EXPECT_NE(redone->folded.find("2016"), std::string::npos);
    EXPECT_EQ(redone->manual, Shelf::other);

    // A deleted file drops out.
    fs::remove(shot("pass.png"));
    scan();
    EXPECT_EQ(model.library().find(shot("pass.png")), nullptr);

    // The library was saved and loads again with what was read.
    model.saveNow();
    const auto saved = Library::load(paths().libraryFile());
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->shots.size(), 1u);
}

TEST_F(AppModelTest, shotsOfAnOlderReaderAreReadAgainAndBrokenFilesAreMarkedOnce) {
    fs::create_directories(shots());
    test::drawPicture(shot("old.png"), receipt);
    test::writeFile(shot("broken.png"), "not an image");
    {
        Library old;
        const auto status = fs::status(shot("old.png"));
        (void)status;
        Shot s(shot("old.png"), static_cast<int64_t>(fs::file_size(shot("old.png"))), Date{}, Date{});
        s.readAt = now();
        s.reader = 0;
        // Dates as the listing will report them, so only the reader version differs.
        struct stat st {};
        ::stat(shot("old.png").c_str(), &st);
        s.modified = Date(std::chrono::seconds(st.st_mtim.tv_sec) + std::chrono::nanoseconds(st.st_mtim.tv_nsec));
        old.put(s);
        ASSERT_TRUE(old.save(paths().libraryFile()));
    }
    std::atomic<int> reads{0};
    services_.read = [&](const std::string& path, const std::vector<std::string>& languages) {
        ++reads;
        return Reader::read(path, languages);
    };
    AppModel& model = make();
    model.load();
    scan();
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(model.library().find(shot("old.png"))->reader, readerVersion);
    const Shot* broken = model.library().find(shot("broken.png"));
    ASSERT_NE(broken, nullptr);
    EXPECT_TRUE(broken->failed);
    EXPECT_TRUE(broken->isRead());
    scan();
    EXPECT_EQ(reads, 2) << "nothing is read twice, not even a broken file";
}

TEST_F(AppModelTest, aFolderThatCannotBeOpenedIsFlaggedAndItsShotsStay) {
    // Permissions do not hold for root, so as root the test runs again as an ordinary user.
    if (test::runningAsRoot() &&
        !test::runsInChild({"unprivileged", {"setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups"}, {}, 120s}))
        return;
    const std::string phone = tmp_.file("Phone");
    fs::create_directories(phone);
    test::drawPicture(phone + "/IMG_0001.png", receipt);
    AppModel& model = make();
    model.load();
    model.addFolder(phone);
    model.waitUntilIdle();
    ASSERT_NE(model.library().find(phone + "/IMG_0001.png"), nullptr);

    fs::permissions(phone, fs::perms::none);
    scan();
    const auto source = std::find_if(model.sources().begin(), model.sources().end(),
                                     [&](const Source& s) { return s.path == phone; });
    ASSERT_NE(source, model.sources().end());
    EXPECT_FALSE(source->readable);
    EXPECT_NE(model.library().find(phone + "/IMG_0001.png"), nullptr) << "its shots are kept, not forgotten";

    fs::permissions(phone, fs::perms::owner_all);
    scan();
    EXPECT_TRUE(std::find_if(model.sources().begin(), model.sources().end(),
                             [&](const Source& s) { return s.path == phone; })->readable);
}

TEST_F(AppModelTest, readsAtMostThreeAtOnceAndSavesEveryTwentyFiveAndAtTheEnd) {
    fs::create_directories(shots());
    for (int i = 0; i < 26; ++i)
        test::drawPicture(shot("shot " + std::to_string(100 + i) + ".png"), {"Picture " + std::to_string(i)}, 400);
    std::mutex mutex;
    int running = 0, most = 0;
    services_.read = [&](const std::string& path, const std::vector<std::string>& languages) {
        {
            std::lock_guard lock(mutex);
            most = std::max(most, ++running);
        }
        Reading reading = Reader::read(path, languages);
        std::lock_guard lock(mutex);
        --running;
        return reading;
    };
    AppModel& model = make();
    model.load();
    std::vector<int64_t> savedAfter;
    QObject::connect(&model, &AppModel::saved, [&](bool ok) {
        EXPECT_TRUE(ok);
        int64_t read = 0;
        for (const auto& [path, s] : model.library().shots)
            read += s->isRead();
        savedAfter.push_back(read);
    });
    // The save signals arrive on the main thread; collect them all.
    scan();
    model.saveNow();
    QCoreApplication::processEvents();
    EXPECT_LE(most, 3);
    EXPECT_GE(most, 2) << "readings should overlap";
    // One save after the merge, one after the 25th reading, one at the end.
    ASSERT_EQ(savedAfter.size(), 3u);
    EXPECT_EQ(savedAfter[0], 0);
    EXPECT_GE(savedAfter[1], 25);
    EXPECT_EQ(savedAfter[2], 26);
}

TEST_F(AppModelTest, aBurstOfFileEventsCausesOneRescanAfterTheQuiet) {
    fs::create_directories(shots());
    AppModel& model = make();
    model.load();
    scan();
    model.rewatch();
    ASSERT_TRUE(model.watchedFolders().contains(QString::fromStdString(shots())));

    int scans = 0;
    QObject::connect(&model, &AppModel::scanningChanged, [&] { scans += model.scanning(); });
    for (int i = 0; i < 3; ++i) {
        const int before = scheduler_->created();
        test::writeFile(shot("new " + std::to_string(i) + ".png"), "x");
        for (int spin = 0; spin < 100 && scheduler_->created() == before; ++spin)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
        ASSERT_GT(scheduler_->created(), before) << "the watcher saw the new file";
        scheduler_->advance(500ms);
    }
    ASSERT_EQ(scheduler_->pending().size(), 1u) << "each event restarts the one pending rescan";
    EXPECT_EQ(scheduler_->pending().front(), 700ms);
    scheduler_->advance(699ms);
    EXPECT_EQ(scans, 0);
    scheduler_->advance(1ms);
    EXPECT_EQ(scans, 1);
    model.waitUntilIdle();

    // With watching off, nothing is watched.
    model.setWatch(false);
    EXPECT_TRUE(model.watchedFolders().isEmpty());
}

TEST_F(AppModelTest, settingsOfTheWrongTypeCountAsAbsent) {
    struct Case {
        const char* watch;
        const char* blur;
        const char* minutes;
        bool watchExpected, blurExpected;
        int minutesExpected;
    };
    const Case cases[] = {
        {"yes please", "false", "abc", true, false, 5},
        {"false", "oops", "12", false, true, 12},
        {nullptr, nullptr, nullptr, true, true, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.watch ? c.watch : "(missing)");
        settings_->clear();
        if (c.watch) settings_->setValue("watchFolders", c.watch);
        if (c.blur) settings_->setValue("blurPrivate", c.blur);
        if (c.minutes) settings_->setValue("lockAfterMinutes", c.minutes);
        AppModel& model = make();
        EXPECT_EQ(model.watch(), c.watchExpected);
        EXPECT_EQ(model.blurPrivate(), c.blurExpected);
        EXPECT_EQ(model.lockAfterMinutes(), c.minutesExpected);
    }
    // Setting a value writes it under its key.
    make().setLockAfterMinutes(9);
    EXPECT_EQ(settings_->value("lockAfterMinutes").toInt(), 9);
}

TEST_F(AppModelTest, sourcesListEachFolderOnceAndTheArchiveAlways) {
    AppModel& model = make();
    model.load();
    fs::create_directories(tmp_.file("Phone"));
    model.addFolder(shots());                // the screenshot folder itself: no change
    model.addFolder(tmp_.file("Phone"));
    model.addFolder(tmp_.file("Phone") + "/"); // the same folder again
    model.addFolder(tmp_.file("archive"));     // the archive as an added folder
    model.waitUntilIdle();
    EXPECT_EQ(model.library().extraFolders,
              (std::vector<std::string>{tmp_.file("Phone"), tmp_.file("archive")}));
    ASSERT_EQ(model.sources().size(), 3u);
    EXPECT_EQ(model.sources()[0].kind, Source::Kind::screenshots);
    EXPECT_EQ(model.sources()[2].path, tmp_.file("archive"));
    EXPECT_EQ(model.sources()[2].kind, Source::Kind::added) << "an added archive is listed once, as added";

    // An added folder can be switched off; the archive when not added cannot.
    model.setEnabled(model.sources()[2], false);
    model.waitUntilIdle();
    EXPECT_FALSE(model.sources()[2].enabled);
    model.removeFolder(model.sources()[2]);
    model.waitUntilIdle();
    ASSERT_EQ(model.sources().size(), 3u);
    EXPECT_EQ(model.sources()[2].kind, Source::Kind::archive);
    EXPECT_TRUE(model.sources()[2].enabled);
    EXPECT_TRUE(model.library().skippedFolders.empty());
}

TEST_F(AppModelTest, setShelfByHandAndBackToAutomatic) {
    Library library;
    Shot s("/x/a.png", 10, Date{}, Date{});
    s.guess = Shelf::bills;
    s.readAt = now();
    library.put(s);
    AppModel& model = makeWith(library);
    struct Case {
        std::optional<Shelf> chosen;
        std::optional<Shelf> manual;
    };
    for (const Case& c : {Case{Shelf::chats, Shelf::chats}, Case{Shelf::bills, std::nullopt},
                          Case{Shelf::code, Shelf::code}, Case{std::nullopt, std::nullopt}}) {
        model.setShelf("/x/a.png", c.chosen);
        EXPECT_EQ(model.library().find("/x/a.png")->manual, c.manual);
    }
    model.setShelf("/x/missing.png", Shelf::ids); // nothing there: nothing happens
    EXPECT_EQ(model.library().shots.size(), 1u);
    EXPECT_EQ(Library::load(paths().libraryFile())->shots.size(), 1u);
}

TEST_F(AppModelTest, bannersKeepTheirFullTimeAndRevealsEndAfterThirtySeconds) {
    AppModel& model = make();
    model.flash("first");
    scheduler_->advance(3s);
    model.flash("second");
    scheduler_->advance(1s); // the first banner's timer fires, but the second stays
    ASSERT_TRUE(model.banner());
    EXPECT_EQ(model.banner()->text, "second");
    scheduler_->advance(2999ms);
    EXPECT_TRUE(model.banner());
    scheduler_->advance(1ms);
    EXPECT_FALSE(model.banner());

    model.reveal("/x/id.png");
    scheduler_->advance(10s);
    model.reveal("/x/id.png"); // a second reveal does not extend the first
    scheduler_->advance(19999ms);
    EXPECT_TRUE(model.revealed().count("/x/id.png"));
    scheduler_->advance(1ms);
    EXPECT_FALSE(model.revealed().count("/x/id.png"));
}

TEST_F(AppModelTest, placesRecentHiddenAndVisible) {
    const Date today = now();
    services_.clock = [today] { return today; };
    Library library;
    auto add = [&](const std::string& path, Date created, Date modified, Shelf guess, bool read) {
        Shot s(path, 1, created, modified);
        s.guess = guess;
        if (read)
            s.readAt = today;
        s.setLines({{path, 0, 0, 0, 0}});
        library.put(s);
    };
    add("/a/old-but-touched.png", today - 8 * 24h, today - 24h, Shelf::ids, true);
    add("/a/new.png", today - 24h, today - 24h, Shelf::bills, true);
    add("/b/waiting.png", today - 2h, today - 2h, Shelf::bills, false);
    AppModel& model = makeWith(library);

    auto paths = [](const std::vector<ShotPtr>& shots) {
        std::set<std::string> out;
        for (const auto& s : shots) out.insert(s->path);
        return out;
    };
    EXPECT_EQ(paths(model.shots(Place::of(Place::Kind::recent))),
              (std::set<std::string>{"/a/new.png", "/b/waiting.png"}));
    EXPECT_EQ(paths(model.shots(Place::ofShelf(Shelf::bills))), (std::set<std::string>{"/a/new.png"}));
    EXPECT_EQ(paths(model.shots(Place::of(Place::Kind::privateOnes))), (std::set<std::string>{"/a/old-but-touched.png"}));
    EXPECT_EQ(paths(model.shots(Place::ofFolder("/a"))).size(), 2u);
    EXPECT_EQ(model.visible().size(), 3u) << "the overview with no query shows everything";
    EXPECT_EQ(model.visible().front()->path, "/b/waiting.png") << "newest first";
    model.setQuery("new");
    EXPECT_EQ(paths(model.visible()), (std::set<std::string>{"/a/new.png"}));

    const Shot& id = *model.library().find("/a/old-but-touched.png");
    EXPECT_TRUE(model.isHidden(id));
    model.reveal(id.path);
    EXPECT_FALSE(model.isHidden(id));
    model.setBlurPrivate(false);
    EXPECT_FALSE(model.isHidden(*model.library().find("/a/new.png")));
    EXPECT_EQ(model.tally().total, 3);
    EXPECT_EQ(model.tally().unread, 1);
}

} // namespace
} // namespace lumivale
