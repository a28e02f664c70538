// Filing and undoing on real files. (Moving across file systems: FileMoveTest. A source gone
// before the run, a filed file moved on before the undo, and trashing: AppModelTidyTest.)
#include "core/TidyRun.h"

#include "core/FileMove.h"
#include "support/TempDir.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TempDir;
using test::writeFile;

// The paths the moves led to, relative to `root`, joined by ", "; checks that each file left its
// old place and still holds the letter its name starts with.
std::string landed(const std::vector<Move>& moves, const std::string& root) {
    std::string names;
    for (const Move& m : moves) {
        names += (names.empty() ? "" : ", ") + fs::relative(m.to, root).string();
        EXPECT_FALSE(fs::exists(m.from)) << m.from;
        EXPECT_EQ(readFile(m.to), fs::path(m.to).filename().string().substr(0, 1));
    }
    return names;
}

TEST(TidyRun, PerformAndUndoCopeWithADiskThatChangedMeanwhile) {
    const struct {
        const char* name;
        std::function<void(const TidyPlan&)> beforeRun;
        std::function<void(const Journal&)> beforeUndo;
        std::string movedTo, restoredTo; // names under the archive, names in in/
    } cases[] = {
        {"target occupied after planning",
         [](const TidyPlan& plan) { writeFile(plan.moves[0].to, "newcomer"); }, nullptr,
         "Bills and receipts/a 2.png, Chats/b.png", "b.png, a.png"},
        {"shelf folder blocked by a file",
         [](const TidyPlan& plan) { writeFile(fs::path(plan.moves[1].to).parent_path(), "x"); },
         nullptr, "Bills and receipts/a.png", "a.png"},
        {"a new file at the old path", nullptr,
         [](const Journal& journal) { writeFile(journal.entries[0].from, "newcomer"); },
         "Bills and receipts/a.png, Chats/b.png", "b.png, a 2.png"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        std::vector<ShotPtr> shots; // each holding the letter its name starts with
        for (const auto& [name, shelf] :
             {std::pair("a.png", Shelf::bills), {"b.png", Shelf::chats}}) {
            Shot shot(writeFile(dir.file(std::string("in/") + name), {name[0]}), 1, Date(), Date());
            shot.guess = shelf;
            shot.readAt = Date();
            shots.push_back(std::make_shared<const Shot>(std::move(shot)));
        }
        const std::string archive = dir.file("Archive");
        const TidyPlan plan = Tidy::plan(shots, archive, TidyLayout::byCategory, false, isTaken);
        if (c.beforeRun) c.beforeRun(plan);
        const TidyResult result = Tidy::perform(plan, Date());
        EXPECT_EQ(landed(result.journal.entries, archive), c.movedTo) << "journaled as moved";
        EXPECT_EQ(result.journal.entries.size() + result.failed.size(), 2u) << "or reported";

        if (c.beforeUndo) c.beforeUndo(result.journal);
        const UndoResult undone = Tidy::undo(result.journal);
        EXPECT_EQ(landed(undone.restored, dir.file("in")), c.restoredTo);
        EXPECT_TRUE(undone.failed.empty());
    }
}

} // namespace
} // namespace lumivale
