// Filing, trashing and undoing on real files. (Moving across file systems: FileMoveTest.)
#include "core/TidyRun.h"

#include "core/FileMove.h"
#include "core/Uuid.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <system_error>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using test::readFile;
using test::TempDir;
using test::writeFile;

const Date runTime = Date(sys_days(2026y / November / 2) + 9h + 15min);

// Screenshots on disk in in/, each holding the letter its name starts with, and the plan that files
// them.
struct Desk {
    TempDir dir;
    std::string archive = dir.file("Archive");
    std::vector<ShotPtr> shots;

    Desk(std::initializer_list<std::pair<const char*, Shelf>> pictures) {
        for (const auto& [name, shelf] : pictures) {
            const Date date = runTime - days(20) + hours(shots.size()); // a.png is the oldest
            Shot shot(writeFile(dir.file(std::string("in/") + name), {name[0]}), 1, date, date);
            shot.guess = shelf;
            shot.readAt = date;
            shots.push_back(std::make_shared<const Shot>(std::move(shot)));
        }
    }
    TidyPlan plan() const {
        return Tidy::plan(shots, archive, TidyLayout::byCategory, false, isTaken);
    }
};

// The paths the moves led to, relative to `root`, joined by ", "; checks that each file still holds
// its own letter.
std::string landed(const std::vector<Move>& moves, const std::string& root) {
    std::string names;
    for (const Move& m : moves) {
        names += (names.empty() ? "" : ", ") + fs::relative(m.to, root).string();
        EXPECT_FALSE(fs::exists(m.from)) << m.from;
        EXPECT_EQ(readFile(m.to), fs::path(m.to).filename().string().substr(0, 1));
    }
    return names;
}

// The failures as "file name: reason", joined by ", ".
std::string failures(const std::map<std::string, std::string>& failed) {
    std::string named;
    for (const auto& [path, message] : failed)
        named += (named.empty() ? "" : ", ") + fs::path(path).filename().string() + ": " + message;
    return named;
}

// (A source gone before the run and a filed file moved on before the undo: AppModelTidyTest.)
TEST(TidyRun, PerformAndUndoCopeWithADiskThatChangedMeanwhile) {
    const std::string notAFolder = "b.png: " + std::generic_category().message(ENOTDIR);
    const struct {
        const char* name;
        std::function<void(Desk&, const TidyPlan&)> beforeRun;
        std::function<void(Desk&, const Journal&)> beforeUndo;
        std::string movedTo, failed, restoredTo; // names under the archive, failures, names in in/
    } cases[] = {
        {"nothing changed", nullptr, nullptr, "Bills and receipts/a.png, Chats/b.png", "",
         "b.png, a.png"},
        {"target occupied after planning",
         [](Desk&, const TidyPlan& plan) { writeFile(plan.moves[0].to, "newcomer"); }, nullptr,
         "Bills and receipts/a 2.png, Chats/b.png", "", "b.png, a.png"},
        {"shelf folder blocked by a file",
         [](Desk& desk, const TidyPlan&) { writeFile(desk.archive + "/Chats", "not a folder"); },
         nullptr, "Bills and receipts/a.png", notAFolder, "a.png"},
        {"a new file at the old path", nullptr,
         [](Desk&, const Journal& j) { writeFile(j.entries[0].from, "newcomer"); },
         "Bills and receipts/a.png, Chats/b.png", "", "b.png, a 2.png"},
        {"the old folder removed", nullptr,
         [](Desk& desk, const Journal&) { fs::remove_all(desk.dir.file("in")); },
         "Bills and receipts/a.png, Chats/b.png", "", "b.png, a.png"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Desk desk{{"a.png", Shelf::bills}, {"b.png", Shelf::chats}};
        const TidyPlan plan = desk.plan();
        if (c.beforeRun) c.beforeRun(desk, plan);
        const TidyResult result = Tidy::perform(plan, runTime);
        EXPECT_EQ(result.journal.kind, Journal::Kind::moved);
        EXPECT_EQ(result.journal.date, runTime);
        EXPECT_TRUE(isUuid(result.journal.id));
        EXPECT_EQ(landed(result.journal.entries, desk.archive), c.movedTo) << "journaled as moved";
        EXPECT_EQ(failures(result.failed), c.failed);
        EXPECT_EQ(result.journal.summary(),
                  c.failed.empty() ? "Moved 2 screenshots" : "Moved 1 screenshot");

        if (c.beforeUndo) c.beforeUndo(desk, result.journal);
        const UndoResult undone = Tidy::undo(result.journal);
        EXPECT_EQ(landed(undone.restored, desk.dir.file("in")), c.restoredTo);
        EXPECT_TRUE(undone.failed.empty());
    }
}

// Refusals: AppModelTidyTest. Taking the file's info out of a real Trash: the Trash's tests.
TEST(TidyRun, TrashRecordsWhereEachFileWentAndUndoBringsBackWhatItFinds) {
    TempDir dir;
    std::vector<std::string> paths;
    for (const char* name : {"kept.png", "lost.png", "emptied.png"})
        paths.push_back(writeFile(dir.file(std::string("in/") + name), name));
    fs::create_directories(dir.file("bin"));
    // A bin that loses track of lost.png.
    const Trasher trasher = [&](const std::string& path) {
        const std::string place = dir.file("bin/" + fs::path(path).filename().string());
        EXPECT_TRUE(moveNoReplace(path, place).isOk());
        return path == paths[1] ? TrashOutcome::placeUnknown() : TrashOutcome::landedAt(place);
    };
    const TidyResult result = Tidy::trash(paths, runTime, trasher);
    EXPECT_EQ(result.journal.kind, Journal::Kind::trashed);
    EXPECT_EQ(result.journal.entries, (std::vector<Move>{{paths[0], dir.file("bin/kept.png")},
                                                         {paths[1], ""},
                                                         {paths[2], dir.file("bin/emptied.png")}}));
    EXPECT_EQ(result.journal.summary(), "Put 3 screenshots in the Trash");

    fs::remove(dir.file("bin/emptied.png"));
    const UndoResult undone = Tidy::undo(result.journal);
    EXPECT_EQ(undone.restored, (std::vector<Move>{{dir.file("bin/kept.png"), paths[0]}}));
    EXPECT_EQ(failures(undone.failed), "emptied.png: It's no longer where it was put, "
                                       "lost.png: It's no longer where it was put");
    EXPECT_EQ(readFile(paths[0]), "kept.png");
}

} // namespace
} // namespace lumivale
