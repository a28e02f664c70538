#include "core/TidyRun.h"

#include "core/FileMove.h"
#include "core/Uuid.h"
#include "support/ScratchMount.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using test::readFile;
using test::TempDir;
using test::writeFile;

const Date october14 = Date(sys_days(2026y / October / 14) + 12h);
const Date runTime = Date(sys_days(2026y / November / 2) + 9h + 15min);

// Screenshots on disk in in/, each holding its own name as its bytes, and the plan that files them.
struct Desk {
    TempDir dir;
    std::string archive = dir.file("Archive");
    std::vector<ShotPtr> shots;

    Desk(std::initializer_list<std::pair<const char*, Shelf>> pictures) {
        for (const auto& [name, shelf] : pictures) {
            const Date date = october14 + hours(shots.size()); // a.png is the oldest
            Shot shot(writeFile(dir.file(std::string("in/") + name), name), 5, date, date);
            shot.guess = shelf;
            shot.readAt = date;
            shots.push_back(std::make_shared<const Shot>(std::move(shot)));
        }
    }
    TidyPlan plan() const {
        return Tidy::plan(shots, archive, TidyLayout::byCategory, false, isTaken);
    }
    std::string in(const std::string& name) { return dir.file("in/" + name); }
};

// The paths of moves relative to `root`, checking each file holds the name it started with.
std::vector<std::string> landed(const std::vector<Move>& moves, const std::string& root) {
    std::vector<std::string> names;
    for (const Move& m : moves) {
        names.push_back(fs::relative(m.to, root).string());
        EXPECT_FALSE(fs::exists(m.from)) << m.from;
        EXPECT_EQ(readFile(m.to), fs::path(m.from).filename().string());
    }
    return names;
}

// Expects exactly these failures, by file name; "…" stands for any message (the system's words).
void expectFailed(const std::map<std::string, std::string>& failed,
                  const std::map<std::string, std::string>& expected) {
    std::map<std::string, std::string> names;
    for (const auto& [path, message] : failed) {
        const std::string name = fs::path(path).filename().string();
        const bool any = expected.contains(name) && expected.at(name) == "…";
        names[name] = any && !message.empty() ? "…" : message;
    }
    EXPECT_EQ(names, expected);
}

TEST(TidyRun, PerformCopesWithADiskThatChangedSincePlanning) {
    const struct {
        const char* name;
        std::function<void(Desk&, const TidyPlan&)> meddle;
        std::vector<std::string> movedTo; // names under the archive, in order
        std::map<std::string, std::string> failed;
    } cases[] = {
        {"nothing changed",
         [](Desk&, const TidyPlan&) {},
         {"Bills and receipts/a.png", "Chats/b.png"}},
        {"target occupied after planning",
         [](Desk&, const TidyPlan& plan) { writeFile(plan.moves[0].to, "newcomer"); },
         {"Bills and receipts/a 2.png", "Chats/b.png"}},
        {"source deleted meanwhile",
         [](Desk&, const TidyPlan& plan) { fs::remove(plan.moves[0].from); },
         {"Chats/b.png"},
         {{"a.png", "No longer there"}}},
        {"shelf folder blocked by a file",
         [](Desk& desk, const TidyPlan&) { writeFile(desk.archive + "/Chats", "not a folder"); },
         {"Bills and receipts/a.png"},
         {{"b.png", "…"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Desk desk{{"a.png", Shelf::bills}, {"b.png", Shelf::chats}};
        const TidyPlan plan = desk.plan();
        c.meddle(desk, plan);
        const TidyResult result = Tidy::perform(plan, runTime);
        EXPECT_EQ(result.journal.kind, Journal::Kind::moved);
        EXPECT_EQ(result.journal.date, runTime);
        EXPECT_TRUE(isUuid(result.journal.id));
        EXPECT_EQ(landed(result.journal.entries, desk.archive), c.movedTo) << "journaled as moved";
        expectFailed(result.failed, c.failed);
    }
}

TEST(TidyRun, UndoCopesWithWhatTheUserDidSince) {
    const struct {
        const char* name;
        std::function<void(Desk&, const Journal&)> meddle;
        std::vector<std::string> restoredTo; // names under in/, in the order restored
        std::map<std::string, std::string> failed;
    } cases[] = {
        {"nothing changed", [](Desk&, const Journal&) {}, {"c.png", "b.png", "a.png"}},
        {"one filed shot moved on by the user",
         [](Desk& desk, const Journal& j) {
             fs::rename(j.entries[1].to, desk.dir.file("elsewhere.png"));
         },
         {"c.png", "a.png"},
         {{"b.png", "It's no longer where it was put"}}},
        {"a new file at the old path",
         [](Desk&, const Journal& j) { writeFile(j.entries[0].from, "new one"); },
         {"c.png", "b.png", "a 2.png"}},
        {"the old folder removed",
         [](Desk& desk, const Journal&) { fs::remove_all(desk.dir.file("in")); },
         {"c.png", "b.png", "a.png"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Desk desk{{"a.png", Shelf::bills}, {"b.png", Shelf::chats}, {"c.png", Shelf::code}};
        const TidyResult result = Tidy::perform(desk.plan(), runTime);
        ASSERT_EQ(result.journal.entries.size(), 3u);
        c.meddle(desk, result.journal);
        const UndoResult undone = Tidy::undo(result.journal);
        EXPECT_EQ(landed(undone.restored, desk.dir.file("in")), c.restoredTo);
        expectFailed(undone.failed, c.failed);
        if (c.restoredTo.back() == "a 2.png") {
            EXPECT_EQ(readFile(desk.in("a.png")), "new one") << "the newcomer stays";
        }
    }
}

// Taking the file's info out of a real Trash along with it is the Trash integration test's.
TEST(TidyRun, TrashRecordsWhereEachFileWent) {
    TempDir dir;
    const std::string kept = writeFile(dir.file("in/kept.png"), "kept");
    const std::string lost = writeFile(dir.file("in/lost.png"), "lost");
    const std::string refused = writeFile(dir.file("in/refused.png"), "refused");
    // A bin that refuses one file and loses track of another.
    const Trasher trasher = [&](const std::string& path) {
        if (path == refused) return TrashOutcome::failure("The Trash is full of opinions.");
        const std::string place = dir.file("bin/" + fs::path(path).filename().string());
        fs::create_directories(dir.file("bin"));
        EXPECT_TRUE(moveNoReplace(path, place).isOk());
        return path == lost ? TrashOutcome::placeUnknown() : TrashOutcome::landedAt(place);
    };
    const TidyResult result = Tidy::trash({kept, lost, refused}, runTime, trasher);
    EXPECT_EQ(result.journal.kind, Journal::Kind::trashed);
    EXPECT_EQ(result.journal.entries,
              (std::vector<Move>{{kept, dir.file("bin/kept.png")}, {lost, ""}}));
    EXPECT_EQ(result.failed,
              (std::map<std::string, std::string>{{refused, "The Trash is full of opinions."}}));
    EXPECT_EQ(result.journal.summary(), "Put 2 screenshots in the Trash");

    const UndoResult undone = Tidy::undo(result.journal);
    EXPECT_EQ(undone.restored, (std::vector<Move>{{dir.file("bin/kept.png"), kept}}));
    expectFailed(undone.failed, {{"lost.png", "It's no longer where it was put"}});
    EXPECT_EQ(readFile(kept), "kept");
}

TEST(TidyRun, FilesIntoAnArchiveOnAnotherFileSystemAndBack) {
    test::ScratchMount other;
    if (!other.ok()) GTEST_SKIP() << other.why();
    Desk desk{{"a.png", Shelf::maps}};
    desk.archive = other.file("Archive");
    const TidyResult result = Tidy::perform(desk.plan(), runTime);
    ASSERT_TRUE(result.failed.empty()) << result.failed.begin()->second;
    EXPECT_EQ(readFile(other.file("Archive/Maps and places/a.png")), "a.png");
    EXPECT_EQ(result.journal.summary(), "Moved 1 screenshot");

    EXPECT_TRUE(Tidy::undo(result.journal).failed.empty());
    EXPECT_EQ(readFile(desk.in("a.png")), "a.png");
    EXPECT_FALSE(fs::exists(other.file("Archive/Maps and places/a.png")));
}

} // namespace
} // namespace lumivale
