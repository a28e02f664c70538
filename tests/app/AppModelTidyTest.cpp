// Filing, trashing and undoing through the application model, on real files in a temporary
// tree: the library follows the files, every run is journaled, and the banner says what happened.
// (That a scan after filing or undoing reads nothing again: tests/integration/tidy-undo.sh.)
#include "AppTestSupport.h"
#include "app/TidyChoices.h"

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::World;

// The banner reads `banner` and stays exactly `life`.
void expectBanner(World& world, const std::string& banner, std::chrono::milliseconds life) {
    EXPECT_EQ(test::bannerOf(*world.model), banner);
    world.scheduler->advance(life - 1ms);
    EXPECT_TRUE(world.model->banner());
    world.scheduler->advance(1ms);
    EXPECT_FALSE(world.model->banner());
}

TEST(AppModelTidy, filedRecordsFollowTheirFilesAndWhatWentMissingIsCounted) {
    const struct {
        std::vector<std::string> deleted; // after planning
        std::string banner;
        std::chrono::milliseconds lasts;
    } cases[] = {
        {{}, "Moved 2 screenshots [undo]", 12s},
        {{"receipt.png"},
         "Moved 1; 1 screenshot couldn't be moved: No longer there [error] [undo]",
         12s},
        {{"receipt.png", "chat.png"},
         "Moved 0; 2 screenshots couldn't be moved: No longer there [error]",
         4s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.banner);
        World world;
        AppModel& model = world.open({"receipt.png", "chat.png"});
        const TidyPlan plan = fileIntoFolders(model, TidyChoices{});
        for (const std::string& name : c.deleted)
            fs::remove(world.shot(name));
        std::vector<Move> moving;
        std::copy_if(plan.moves.begin(), plan.moves.end(), std::back_inserter(moving),
                     [](const Move& move) { return fs::exists(move.from); });

        const std::optional<TidyResult> result = model.tidy(plan);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->journal.entries, moving);
        for (const Move& move : moving) {
            EXPECT_TRUE(fs::exists(move.to));
            EXPECT_EQ(model.library().find(move.from), nullptr);
            ASSERT_NE(model.library().find(move.to), nullptr);
            EXPECT_EQ(model.library().find(move.to)->text(), fs::path(move.to).filename())
                << "its reading came along";
        }
        const bool moved = !moving.empty();
        EXPECT_EQ(model.journals().entries,
                  moved ? std::vector<Journal>{result->journal} : std::vector<Journal>());
        EXPECT_EQ(model.banner()->undo, model.journals().lastUndoable());
        model.waitForSaves();
        EXPECT_EQ(JournalBook::load(model.paths().journalFile()).entries.size(), moved ? 1u : 0u);
        expectBanner(world, c.banner, c.lasts);
    }
}

TEST(AppModelTidy, theArchiveBecomesAReadFolderWhenItWasNotOne) {
    World world;
    test::drawPicture(world.shot("a.png"), {"a"});
    const ShotPtr shot =
        std::make_shared<const Shot>(test::readShotOf(world.shot("a.png"), Shelf::bills, {}));
    AppModel& model = world.make(); // its folders are not built yet
    ASSERT_TRUE(
        model.tidy(Tidy::plan(std::vector<ShotPtr>{shot}, world.archive(), TidyLayout::byCategory,
                              false, [](const std::string& path) { return fs::exists(path); })));
    ASSERT_TRUE(world.source(world.archive()));
    EXPECT_EQ(world.source(world.archive())->kind, Source::Kind::archive);
}

// The selected chat.png goes to the Trash only in the third case; the selection goes with it.
TEST(AppModelTidy, trashingAsksFirstAndRecordsWhereEachFileWent) {
    const struct {
        bool agree;
        size_t count;      // of receipt.png, chat.png
        bool refuseSecond; // the Trash turns chat.png away
        std::string banner;
    } cases[] = {
        {false, 1, false, ""},
        {true, 1, false, "Put in the Trash: 1 screenshot [undo]"},
        {true, 2, false, "Put in the Trash: 2 screenshots [undo]"},
        {true, 2, true,
         "Put in the Trash: 1; 1 screenshot couldn't be moved: The Trash is not available [error] "
         "[undo]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.banner);
        World world;
        world.agree = c.agree;
        AppModel& model = world.open({"receipt.png", "chat.png"});
        std::vector<std::string> paths = {world.shot("receipt.png"), world.shot("chat.png")};
        paths.resize(c.count);
        if (c.refuseSecond) world.refused.insert(paths[1]);
        model.setSelection(world.shot("chat.png"));

        const std::optional<TidyResult> result = model.trash(paths);
        EXPECT_EQ(world.questions,
                  (std::vector<test::Question>{{c.count == 1 ? "Put 1 screenshot in the Trash?"
                                                             : "Put 2 screenshots in the Trash?",
                                                "You can put them back with Undo, or from the "
                                                "Trash in your file manager, until you empty it.",
                                                "Move to Trash"}}));
        std::vector<Move> gone;
        for (const std::string& path : paths) {
            const bool went = c.agree && !world.refused.count(path);
            EXPECT_EQ(fs::exists(path), !went) << path;
            EXPECT_EQ(model.library().find(path) == nullptr, went) << path;
            if (went)
                gone.push_back({path, fs::path(world.trashFolder()) / fs::path(path).filename()});
        }
        EXPECT_EQ(model.selection().has_value(), fs::exists(world.shot("chat.png")));
        EXPECT_EQ(model.journals().entries.size(), c.agree ? 1u : 0u);
        EXPECT_EQ(test::bannerOf(model), c.banner);
        if (!result) continue;
        EXPECT_EQ(result->journal.kind, Journal::Kind::trashed);
        EXPECT_EQ(result->journal.entries, gone);
    }
}

// Of the filed screenshots, the user moved `movedOn` on before the undo.
TEST(AppModelTidy, undoPutsBackTheNewestRunFirstAndSaysWhatCouldNotComeBack) {
    const struct {
        size_t movedOn;
        std::string banner;
    } cases[] = {
        {0, "Put 2 screenshots back"},
        {1, "Put 1 back; 1 couldn't come back [error]"},
        {2, "Put 0 back; 2 couldn't come back [error]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.banner);
        World world;
        AppModel& model = world.open({"receipt.png", "chat.png", "map.png"});
        const std::optional<TidyResult> trashed = model.trash({world.shot("map.png")});
        const std::optional<TidyResult> filed = model.tidy(fileIntoFolders(model, TidyChoices{}));
        ASSERT_TRUE(trashed && filed);
        for (size_t i = 0; i < c.movedOn; ++i)
            fs::rename(filed->journal.entries[i].to, world.tmp.file(std::to_string(i)));

        model.undoLast();
        for (size_t i = 0; i < filed->journal.entries.size(); ++i) {
            const Shot* back = model.library().find(filed->journal.entries[i].from);
            EXPECT_EQ(fs::exists(filed->journal.entries[i].from), i >= c.movedOn) << i;
            EXPECT_EQ(back && back->isRead(), i >= c.movedOn) << "the record follows its file";
        }
        ASSERT_TRUE(model.canUndo());
        EXPECT_EQ(model.journals().lastUndoable()->id, trashed->journal.id);
        model.waitUntilIdle();
        expectBanner(world, c.banner, 4s);

        model.undoLast();
        EXPECT_EQ(test::bannerOf(model), "Put 1 screenshot back");
        EXPECT_TRUE(fs::exists(world.shot("map.png")));
        EXPECT_FALSE(model.canUndo());
        model.waitUntilIdle();
        EXPECT_NE(model.library().find(world.shot("map.png")), nullptr) << "the scan finds it";
        EXPECT_EQ(world.reads, 1) << "only the screenshot back from the Trash is read again";
        model.waitForSaves();
        const JournalBook book = JournalBook::load(model.paths().journalFile());
        ASSERT_EQ(book.entries.size(), 2u);
        EXPECT_TRUE(book.entries[0].undone && book.entries[1].undone);
    }
}

} // namespace
} // namespace lumivale
