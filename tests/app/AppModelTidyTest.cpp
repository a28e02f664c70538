// Filing, trashing and undoing through the application model, on real files in a temporary
// tree: the library follows the files, every run is journaled, and the banner says what happened.
// (That a scan after filing or undoing reads nothing again: tests/integration/tidy-undo.sh.)
#include "AppTestSupport.h"
#include "app/TidyChoices.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::Question;
using test::World;

const std::vector<std::pair<std::string, Shelf>> twoShots = {{"receipt.png", Shelf::bills},
                                                             {"chat.png", Shelf::chats}};

// The banner reads `text` and stays exactly `life`.
void expectBanner(World& world, const std::string& text, bool isError,
                  std::chrono::milliseconds life) {
    ASSERT_TRUE(world.model->banner());
    EXPECT_EQ(world.model->banner()->text, text);
    EXPECT_EQ(world.model->banner()->isError, isError);
    world.scheduler->advance(life - 1ms);
    EXPECT_TRUE(world.model->banner());
    world.scheduler->advance(1ms);
    EXPECT_FALSE(world.model->banner());
}

TEST(AppModelTidy, filedScreenshotsKeepTheirReadingsUnderTheirNewPaths) {
    World world;
    AppModel& model = world.open(twoShots);
    const Shot before = *model.library().find(world.shot("receipt.png"));
    const TidyPlan plan = fileIntoFolders(model, TidyChoices{});
    ASSERT_EQ(plan.moves.size(), 2u);

    const std::optional<TidyResult> result = model.tidy(plan);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->journal.entries, plan.moves);
    EXPECT_EQ(model.journals().entries, std::vector<Journal>{result->journal});
    EXPECT_EQ(model.banner()->undo, result->journal);
    for (const Move& move : plan.moves) {
        SCOPED_TRACE(move.to);
        EXPECT_TRUE(fs::exists(move.to));
        EXPECT_EQ(model.library().find(move.from), nullptr);
        ASSERT_NE(model.library().find(move.to), nullptr);
        if (move.from != before.path) continue;
        EXPECT_EQ(model.library().find(move.to)->lines, before.lines);
        EXPECT_EQ(model.library().find(move.to)->readAt, before.readAt);
    }
    model.waitForSaves();
    EXPECT_EQ(JournalBook::load(model.paths().journalFile()).entries.size(), 1u);
}

TEST(AppModelTidy, theArchiveBecomesAReadFolderWhenItWasNotOne) {
    World world;
    test::drawPicture(world.shot("receipt.png"), {"receipt"}, 400);
    const auto shot = std::make_shared<const Shot>(
        test::readShotOf(world.shot("receipt.png"), Shelf::bills, {}, world.clock));
    AppModel& model = world.make(); // its folders are not built yet
    const TidyPlan plan =
        Tidy::plan(std::vector<ShotPtr>{shot}, world.archive(), TidyLayout::byCategory, false,
                   [](const std::string& path) { return fs::exists(path); });

    ASSERT_TRUE(model.tidy(plan));
    ASSERT_TRUE(world.source(world.archive()));
    EXPECT_EQ(world.source(world.archive())->kind, Source::Kind::archive);
    EXPECT_TRUE(world.source(world.archive())->enabled);
}

TEST(AppModelTidy, filesThatWentMissingAreCountedAndOnlyWhatMovedCanBeUndone) {
    const struct {
        std::vector<std::string> deleted;
        std::string banner;
        std::chrono::milliseconds lasts;
    } cases[] = {
        {{}, "Moved 2 screenshots", 12s},
        {{"receipt.png"}, "Moved 1; 1 screenshot couldn't be moved: No longer there", 12s},
        {{"receipt.png", "chat.png"},
         "Moved 0; 2 screenshots couldn't be moved: No longer there",
         4s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.banner);
        World world;
        AppModel& model = world.open(twoShots);
        const TidyPlan plan = fileIntoFolders(model, TidyChoices{});
        for (const std::string& name : c.deleted)
            fs::remove(world.shot(name));

        ASSERT_TRUE(model.tidy(plan));
        const bool moved = c.deleted.size() < 2;
        EXPECT_EQ(model.banner()->undo.has_value(), moved);
        EXPECT_EQ(model.journals().entries.size(), moved ? 1u : 0u);
        EXPECT_EQ(model.canUndo(), moved);
        expectBanner(world, c.banner, !c.deleted.empty(), c.lasts);
    }
}

// The selected chat.png goes to the Trash only in the third case; the selection goes with it.
TEST(AppModelTidy, trashingAsksFirstAndRecordsWhereEachFileWent) {
    const struct {
        bool agree;
        size_t count;      // of receipt.png, chat.png
        bool refuseSecond; // the Trash turns chat.png away
        std::optional<std::string> banner;
    } cases[] = {
        {false, 1, false, std::nullopt},
        {true, 1, false, "Put in the Trash: 1 screenshot"},
        {true, 2, false, "Put in the Trash: 2 screenshots"},
        {true, 2, true,
         "Put in the Trash: 1; 1 screenshot couldn't be moved: The Trash is not available"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.banner.value_or("declined"));
        World world;
        world.agree = c.agree;
        AppModel& model = world.open(twoShots);
        std::vector<std::string> paths = {world.shot("receipt.png"), world.shot("chat.png")};
        paths.resize(c.count);
        if (c.refuseSecond) world.trash.refused.insert(paths[1]);
        model.setSelection(world.shot("chat.png"));

        const std::optional<TidyResult> result = model.trash(paths);
        EXPECT_EQ(world.questions,
                  (std::vector<Question>{{c.count == 1 ? "Put 1 screenshot in the Trash?"
                                                       : "Put 2 screenshots in the Trash?",
                                          "You can put them back with Undo, or from the Trash "
                                          "in your file manager, until you empty it.",
                                          "Move to Trash"}}));
        ASSERT_EQ(result.has_value(), c.agree);
        ASSERT_EQ(model.banner().has_value(), c.banner.has_value());
        std::vector<Move> gone;
        for (const std::string& path : paths) {
            const std::string name = fs::path(path).filename();
            const bool went = c.agree && !world.trash.refused.count(path);
            EXPECT_EQ(fs::exists(path), !went) << name;
            EXPECT_EQ(model.library().find(path) == nullptr, went) << name;
            if (went) gone.push_back({path, world.trash.folder + "/" + name});
        }
        EXPECT_EQ(model.selection().has_value(), fs::exists(world.shot("chat.png")));
        if (!c.agree) {
            EXPECT_TRUE(model.journals().entries.empty());
            continue;
        }
        EXPECT_EQ(result->journal.kind, Journal::Kind::trashed);
        EXPECT_EQ(result->journal.entries, gone);
        EXPECT_EQ(model.banner()->undo, result->journal);
        EXPECT_EQ(model.banner()->text, *c.banner);
        EXPECT_EQ(model.banner()->isError, c.refuseSecond);
    }
}

TEST(AppModelTidy, undoPutsBackTheNewestRunFirstAndOnlyOnce) {
    World world;
    AppModel& model = world.open({twoShots[0], twoShots[1], {"map.png", Shelf::maps}});
    const std::optional<TidyResult> trashed = model.trash({world.shot("map.png")});
    const std::optional<TidyResult> filed = model.tidy(fileIntoFolders(model, TidyChoices{}));
    ASSERT_TRUE(trashed && filed);

    model.undoLast();
    for (const Move& move : filed->journal.entries) {
        EXPECT_TRUE(fs::exists(move.from)) << move.from;
        ASSERT_NE(model.library().find(move.from), nullptr) << "the record followed its file back";
        EXPECT_TRUE(model.library().find(move.from)->isRead());
    }
    EXPECT_FALSE(model.banner()->undo);
    ASSERT_TRUE(model.canUndo());
    EXPECT_EQ(model.journals().lastUndoable()->id, trashed->journal.id);
    model.waitUntilIdle();
    expectBanner(world, "Put 2 screenshots back", false, 4s);

    model.undoLast();
    EXPECT_EQ(model.banner()->text, "Put 1 screenshot back");
    EXPECT_TRUE(fs::exists(world.shot("map.png")));
    EXPECT_FALSE(model.canUndo());
    model.waitUntilIdle();
    EXPECT_NE(model.library().find(world.shot("map.png")), nullptr) << "the scan finds it again";
    EXPECT_EQ(world.reads, 1) << "only the screenshot back from the Trash is read again";
    model.waitForSaves();
    const JournalBook book = JournalBook::load(model.paths().journalFile());
    ASSERT_EQ(book.entries.size(), 2u);
    EXPECT_TRUE(book.entries[0].undone && book.entries[1].undone);
}

TEST(AppModelTidy, undoOfFilesMovedOnElsewhereSaysHowManyCouldNotComeBack) {
    const struct {
        size_t movedOn;
        std::string banner;
    } cases[] = {
        {0, "Put 2 screenshots back"},
        {1, "Put 1 back; 1 couldn't come back"},
        {2, "Put 0 back; 2 couldn't come back"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.banner);
        World world;
        AppModel& model = world.open(twoShots);
        const std::optional<TidyResult> filed = model.tidy(fileIntoFolders(model, TidyChoices{}));
        ASSERT_TRUE(filed);
        fs::create_directories(world.tmp.file("Elsewhere"));
        for (size_t i = 0; i < c.movedOn; ++i)
            fs::rename(filed->journal.entries[i].to,
                       world.tmp.file("Elsewhere/" + std::to_string(i)));

        model.undo(filed->journal);
        EXPECT_FALSE(model.banner()->undo);
        EXPECT_FALSE(model.canUndo()) << "an undone journal is not offered again";
        for (size_t i = 0; i < filed->journal.entries.size(); ++i)
            EXPECT_EQ(fs::exists(filed->journal.entries[i].from), i >= c.movedOn);
        model.waitUntilIdle();
        expectBanner(world, c.banner, c.movedOn > 0, 4s);
    }
}

} // namespace
} // namespace lumivale
