// The Locked place over a real model and vault: what the closed panel says, opening it through
// the owner check, working in the open view (restore, discard, Lock Now) and closing by itself.
#include "app/ThumbnailCache.h"
#include "ui/VaultView.h"

#include "WindowWorld.h"

#include <QLabel>
#include <QListView>
#include <QPushButton>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::click;
using test::WindowWorld;

// A window on the Locked place of a library of `total` ID screenshots, the first `locked` of
// them locked away.
VaultView& lockedPlace(WindowWorld& world, int total, int locked) {
    std::vector<std::string> names, paths;
    for (int i = 0; i < total; ++i)
        names.push_back("id" + std::to_string(i) + ".png");
    AppModel& model = world.open(names, Shelf::ids);
    for (int i = 0; i < locked; ++i)
        paths.push_back(world.shot(names[static_cast<size_t>(i)]));
    if (!paths.empty()) model.lock(paths);
    model.setPlace(Place::of(Place::Kind::locked));
    VaultView* view = world.window().vaultView();
    EXPECT_TRUE(view->isVisible());
    return *view;
}

QString text(const VaultView& view, const char* name) {
    return test::child<QLabel>(&view, name)->text();
}

bool showsOpen(const VaultView& view) {
    return test::child<QWidget>(&view, "vaultOpen")->isVisible();
}

void clickRow(VaultView& view, int row) {
    QListView* grid = view.grid();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                      grid->visualRect(grid->model()->index(row, 0)).center());
}

TEST(VaultView, theClosedPanelSaysWhatIsLocked) {
    const std::string some =
        "Encrypted on this computer. Their words are locked too, so they don't show up in search "
        "until you open this.";
    const struct {
        int total, locked;
        std::string headline, explanation, review;
    } cases[] = {
        {1, 0, "Nothing locked yet",
         "Lock away screenshots of IDs, cards and documents. Lumivale encrypts them on this "
         "computer, with a key "
         "kept in your keyring, and opens them only with your fingerprint or your account "
         "password.",
         "Review 1 private screenshot"},
        {1, 1, "1 screenshot locked", some, ""},
        {4, 2, "2 screenshots locked", some, "Review 2 private screenshots"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.headline);
        WindowWorld world;
        VaultView& view = lockedPlace(world, c.total, c.locked);
        EXPECT_FALSE(showsOpen(view));
        EXPECT_EQ(text(view, "vaultHeadline").toStdString(), c.headline);
        EXPECT_EQ(text(view, "vaultExplanation").toStdString(), c.explanation);
        auto* review = test::child<QPushButton>(&view, "reviewPrivateButton");
        EXPECT_EQ(review->isVisible(), !c.review.empty());
        if (c.review.empty()) continue;
        EXPECT_EQ(review->text().toStdString(), c.review);
        click(&view, "reviewPrivateButton");
        EXPECT_EQ(world.model->place(), Place::of(Place::Kind::privateOnes));
    }
}

TEST(VaultView, anOwnerCheckThatFailsLeavesItClosed) {
    WindowWorld world;
    VaultView& view = lockedPlace(world, 1, 1);
    world.owner = false;
    click(&view, "unlockButton");
    EXPECT_EQ(world.reasons.back(), "open your locked screenshots");
    EXPECT_FALSE(world.model->vaultOpen());
    EXPECT_FALSE(showsOpen(view));
    EXPECT_EQ(text(view, "vaultHeadline"), "1 screenshot locked");
}

// Opened, worked in, and closed again by itself counting from the last click.
TEST(VaultView, theOpenViewRestoresAndClosesItselfAfterTheLastInteraction) {
    WindowWorld world;
    VaultView& view = lockedPlace(world, 2, 2);

    click(&view, "unlockButton");
    ASSERT_TRUE(showsOpen(view));
    EXPECT_EQ(text(view, "vaultLockLine"),
              "Locks itself when you leave Lumivale for a minute, or after 5 minutes.");
    ASSERT_EQ(view.grid()->model()->rowCount(), 2);
    world.scheduler->advance(4min);
    clickRow(view, 1);
    ASSERT_TRUE(world.model->lockedSelection());
    const LockedShot chosen =
        *std::find_if(world.model->lockedItems().begin(), world.model->lockedItems().end(),
                      [&](const LockedShot& i) { return i.id == *world.model->lockedSelection(); });
    EXPECT_EQ(test::child<QPushButton>(&view, "restoreButton")->text(), "Restore to Screenshots");

    world.scheduler->advance(4min);
    EXPECT_TRUE(showsOpen(view)) << "the click started the five minutes again";
    const std::string elsewhere = world.tmp.file("Elsewhere");
    fs::create_directories(elsewhere);
    test::nextFolderChosen(elsewhere);
    click(&view, "restoreElsewhereButton");
    const std::string restored = elsewhere + "/" + std::string(chosen.shot.name());
    const std::string original =
        test::readFile(world.trashFolder() + "/" + std::string(chosen.shot.name()));
    ASSERT_FALSE(original.empty()) << "the original is in the Trash";
    EXPECT_EQ(test::readFile(restored), original);
    EXPECT_EQ(test::bannerOf(*world.model),
              "Restored \u201c" + std::string(chosen.shot.name()) + "\u201d to " + elsewhere);
    EXPECT_EQ(view.grid()->model()->rowCount(), 1);

    world.scheduler->advance(5min - 1s);
    EXPECT_TRUE(showsOpen(view));
    world.scheduler->advance(1s);
    EXPECT_FALSE(showsOpen(view)) << "the auto-lock shows the closed panel at once";
    EXPECT_EQ(view.grid()->model()->rowCount(), 0);
    EXPECT_EQ(text(view, "vaultHeadline"), "1 screenshot locked");
}

TEST(VaultView, discardingAndLockNowWorkFromTheOpenView) {
    WindowWorld world;
    VaultView& view = lockedPlace(world, 2, 2);
    click(&view, "unlockButton");
    clickRow(view, 0);
    const std::string name(world.model->lockedItems().front().shot.name());
    click(&view, "discardButton");
    EXPECT_EQ(std::get<0>(world.questions.back()),
              "Remove \u201c" + name + "\u201d from the locked area?");
    EXPECT_EQ(world.model->vaultCount(), 1);
    EXPECT_EQ(view.grid()->model()->rowCount(), 1);
    click(&view, "lockNowButton");
    EXPECT_FALSE(world.model->vaultOpen());
    EXPECT_FALSE(showsOpen(view));
    EXPECT_EQ(text(view, "vaultHeadline"), "1 screenshot locked");
}

// Locking from the grid leaves no thumbnail of the screenshot in the desktop's cache, of any size
// and whoever made it; the open area's pictures never reach the cache either.
TEST(VaultView, lockingLeavesNoThumbnailBehind) {
    WindowWorld world;
    AppModel& model = world.open({"passport.png"}, Shelf::ids);
    const std::string path = world.shot("passport.png");
    const auto stamp = ThumbnailCache::stampOf(path);
    ASSERT_TRUE(stamp);
    QImage picture(64, 40, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    using Size = ThumbnailCache::Size;
    const Size sizes[] = {Size::normal, Size::large, Size::xLarge, Size::xxLarge};
    for (Size size : sizes)
        ASSERT_TRUE(ThumbnailCache::write(path, size, *stamp, picture));
    model.setPlace(Place::of(Place::Kind::all));
    model.setSelection(path);
    world.window().findChild<QAction*>("lockAwayAction")->trigger();
    ASSERT_EQ(model.vaultCount(), 1);
    for (Size size : sizes)
        EXPECT_FALSE(fs::exists(ThumbnailCache::pathOf(path, size))) << ThumbnailCache::pathOf(path, size);

    model.setPlace(Place::of(Place::Kind::locked));
    click(world.window().vaultView(), "unlockButton");
    clickRow(*world.window().vaultView(), 0);
    world.window().grab();
    QApplication::processEvents();
    for (Size size : sizes)
        EXPECT_FALSE(fs::exists(ThumbnailCache::pathOf(path, size)));
}

} // namespace
} // namespace lumivale
