// Filing, trashing and undoing through the application model, on real files in a temporary
// tree: the library follows the files, every run is journaled, and the banner says what happened.
// (That filed records keep their readings: the self-check and tests/integration/tidy-undo.sh.)
#include "AppTestSupport.h"
#include "app/TidyChoices.h"

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

using test::World;

// The banner reads `banner` and stays exactly its time: 12 s when it offers undo, else 4 s.
void expectBanner(World& world, const std::string& banner) {
    EXPECT_EQ(test::bannerOf(*world.model), banner);
    world.scheduler->advance((banner.ends_with("[undo]") ? 12s : 4s) - 1ms);
    EXPECT_TRUE(world.model->banner());
    world.scheduler->advance(1ms);
    EXPECT_FALSE(world.model->banner());
}

// Two screenshots are filed; some go missing after planning, and the user moves some of the
// filed ones on before the undo.
TEST(AppModelTidy, filingAndUndoingKeepTheLibraryInStepAndSayWhatHappened) {
    const struct {
        size_t deleted, movedOn;
        std::string filed, undone;
    } cases[] = {
        {0, 0, "Moved 2 screenshots [undo]", "Put 2 screenshots back"},
        {0, 1, "Moved 2 screenshots [undo]", "Put 1 back; 1 couldn't come back [error]"},
        {1, 0, "Moved 1; 1 screenshot couldn't be moved: No longer there [error] [undo]",
         "Put 1 screenshot back"},
        {2, 0, "Moved 0; 2 screenshots couldn't be moved: No longer there [error]", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.filed + " / " + c.undone);
        World world;
        AppModel& model = world.open({"receipt.png", "chat.png"});
        const TidyPlan plan = fileIntoFolders(model, TidyChoices{});
        ASSERT_EQ(plan.moves.size(), 2u);
        for (size_t i = 0; i < c.deleted; ++i)
            fs::remove(plan.moves[i].from);
        const std::vector<Move> moving(plan.moves.begin() + c.deleted, plan.moves.end());

        const std::optional<TidyResult> result = model.tidy(plan);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->journal.entries, moving);
        EXPECT_EQ(model.canUndo(), !moving.empty());
        model.waitForSaves();
        EXPECT_EQ(JournalBook::load(model.paths().journalFile()).entries.size(),
                  moving.empty() ? 0u : 1u);
        expectBanner(world, c.filed);
        if (moving.empty()) continue;

        for (size_t i = 0; i < c.movedOn; ++i)
            fs::rename(moving[i].to, world.tmp.file(std::to_string(i)));
        model.undoLast();
        EXPECT_FALSE(model.canUndo());
        model.waitUntilIdle();
        EXPECT_EQ(world.reads, 0) << "the records came back with their files";
        expectBanner(world, c.undone);
    }
}

// The Trash turns the receipt away; the chat, the selected one, goes.
TEST(AppModelTidy, trashingAsksFirstAndRecordsWhereEachFileWent) {
    World world;
    AppModel& model = world.open({"receipt.png", "chat.png"});
    const std::string receipt = world.shot("receipt.png"), chat = world.shot("chat.png");
    world.refused = {receipt};
    model.setSelection(chat);

    const std::optional<TidyResult> result = model.trash({receipt, chat});
    EXPECT_EQ(world.questions, (std::vector<test::Question>{
                                   {"Put 2 screenshots in the Trash?",
                                    "You can put them back with Undo, or from the Trash in your "
                                    "file manager, until you empty it.",
                                    "Move to Trash"}}));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->journal.entries,
              (std::vector<Move>{{chat, world.trashFolder() + "/chat.png"}}));
    EXPECT_TRUE(fs::exists(receipt));
    EXPECT_NE(model.library().find(receipt), nullptr);
    EXPECT_FALSE(fs::exists(chat));
    EXPECT_EQ(model.library().find(chat), nullptr);
    EXPECT_FALSE(model.selection());
    EXPECT_TRUE(model.canUndo());
    EXPECT_EQ(test::bannerOf(model), "Put in the Trash: 1; 1 screenshot couldn't be moved: The "
                                     "Trash is not available [error] [undo]");
}

// Puts a file where the data folder should be, so that nothing can be saved there.
void blockDataFolder(World& world) {
    fs::remove_all(world.tmp.file("data"));
    test::writeFile(world.tmp.file("data"), "not a folder");
}

// A change that could not be journaled could not be undone: with the journal unwritable, filing
// and trashing move nothing and say why.
TEST(AppModelTidy, movesNothingWhenItsJournalCannotBeWritten) {
    for (const bool trashing : {false, true}) {
        SCOPED_TRACE(trashing ? "trash" : "tidy");
        World world;
        AppModel& model = world.open({"receipt.png"});
        const std::string receipt = world.shot("receipt.png");
        blockDataFolder(world);
        const auto result =
            trashing ? model.trash({receipt}) : model.tidy(fileIntoFolders(model, TidyChoices{}));
        EXPECT_FALSE(result);
        EXPECT_TRUE(fs::exists(receipt));
        EXPECT_NE(model.library().find(receipt), nullptr);
        EXPECT_FALSE(model.canUndo());
        EXPECT_EQ(test::bannerOf(model),
                  "Nothing was moved: Lumivale can't write its journal, so it "
                  "couldn't be undone (Not a directory) [error]");
    }
}

// What could not come back (its folder is gone, a file stands in its place) stays undoable, and
// comes back once the way is clear.
TEST(AppModelTidy, whatAFailedUndoLeftBehindCanStillBeUndone) {
    World world;
    AppModel& model = world.open({"receipt.png", "chat.png"});
    ASSERT_TRUE(model.tidy(fileIntoFolders(model, TidyChoices{})));
    fs::remove_all(world.shots());
    test::writeFile(world.shots(), "in the way");
    model.undoLast();
    model.waitUntilIdle();
    EXPECT_EQ(test::bannerOf(model), "Put 0 back; 2 couldn't come back [error]");
    ASSERT_TRUE(model.canUndo());
    EXPECT_EQ(model.journals().lastUndoable()->entries.size(), 2u);

    fs::remove(world.shots());
    model.undoLast();
    model.waitUntilIdle();
    EXPECT_EQ(test::bannerOf(model), "Put 2 screenshots back");
    EXPECT_TRUE(fs::exists(world.shot("receipt.png")) && fs::exists(world.shot("chat.png")));
    EXPECT_FALSE(model.canUndo());
    model.waitForSaves();
    EXPECT_FALSE(JournalBook::load(model.paths().journalFile()).lastUndoable());
}

} // namespace
} // namespace lumivale
