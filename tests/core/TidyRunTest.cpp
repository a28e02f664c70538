#include "core/TidyRun.h"

#include "core/FileMove.h"
#include "core/Uuid.h"
#include "support/ScratchMount.h"
#include "support/TempDir.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using test::readFile;
using test::ScratchMount;
using test::TempDir;
using test::writeFile;

const Date october14 = Date(sys_days(2026y / October / 14) + 12h);
const Date runTime = Date(sys_days(2026y / November / 2) + 9h + 15min);

// Screenshots on disk, each holding its own name as its bytes, and the plan that files them.
struct Desk {
    TempDir dir;
    std::string archive = dir.file("Archive");
    std::vector<ShotPtr> shots;

    std::string put(const std::string& name, Shelf shelf, Date date = october14) {
        const std::string path = writeFile(dir.file("in/" + name), name);
        Shot shot(path, static_cast<int64_t>(name.size()), date, date);
        shot.guess = shelf;
        shot.readAt = date;
        shots.push_back(std::make_shared<const Shot>(std::move(shot)));
        return path;
    }
    TidyPlan plan() const {
        return Tidy::plan(shots, archive, TidyLayout::byCategory, false, isTaken);
    }
};

std::vector<Move> reversedBack(const std::vector<Move>& entries) {
    std::vector<Move> back;
    for (auto it = entries.rbegin(); it != entries.rend(); ++it)
        back.push_back({it->to, it->from});
    return back;
}

TEST(TidyRun, PerformFilesEveryPlannedShotAndUndoPutsThemBack) {
    Desk desk;
    const std::string a = desk.put("a.png", Shelf::bills, october14 - 1h);
    const std::string b = desk.put("b.png", Shelf::chats);
    const std::string c = desk.put("c.png", Shelf::bills, october14 + 1h);
    const TidyPlan plan = desk.plan();
    ASSERT_EQ(plan.moves.size(), 3u);

    const TidyResult result = Tidy::perform(plan, runTime);
    EXPECT_TRUE(result.failed.empty());
    EXPECT_EQ(result.journal.kind, Journal::Kind::moved);
    EXPECT_EQ(result.journal.date, runTime);
    EXPECT_FALSE(result.journal.undone);
    EXPECT_TRUE(isUuid(result.journal.id));
    EXPECT_EQ(result.journal.entries,
              (std::vector<Move>{{a, desk.archive + "/Bills and receipts/a.png"},
                                 {b, desk.archive + "/Chats/b.png"},
                                 {c, desk.archive + "/Bills and receipts/c.png"}}));
    for (const Move& m : result.journal.entries) {
        EXPECT_FALSE(fs::exists(m.from));
        EXPECT_EQ(readFile(m.to), fs::path(m.from).filename().string());
    }

    const UndoResult undone = Tidy::undo(result.journal);
    EXPECT_TRUE(undone.failed.empty());
    EXPECT_EQ(undone.restored, reversedBack(result.journal.entries));
    for (const std::string& path : {a, b, c})
        EXPECT_EQ(readFile(path), fs::path(path).filename().string());
}

TEST(TidyRun, PerformCopesWithADiskThatChangedSincePlanning) {
    struct Case {
        const char* name;
        // Changes the disk after planning, given the desk and the plan.
        std::function<void(Desk&, const TidyPlan&)> meddle;
        std::vector<std::string> movedTo;          // names under the archive, in order
        std::map<std::string, std::string> failed; // input name → message (empty: any)
    } cases[] = {
        {"target occupied after planning",
         [](Desk&, const TidyPlan& plan) { writeFile(plan.moves[0].to, "newcomer"); },
         {"Bills and receipts/a 2.png", "Chats/b.png"},
         {}},
        {"source deleted meanwhile",
         [](Desk&, const TidyPlan& plan) { fs::remove(plan.moves[0].from); },
         {"Chats/b.png"},
         {{"a.png", "No longer there"}}},
        {"shelf folder blocked by a file",
         [](Desk& desk, const TidyPlan&) { writeFile(desk.archive + "/Chats", "not a folder"); },
         {"Bills and receipts/a.png"},
         {{"b.png", ""}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Desk desk;
        desk.put("a.png", Shelf::bills, october14 - 1h);
        desk.put("b.png", Shelf::chats);
        const TidyPlan plan = desk.plan();
        c.meddle(desk, plan);

        const TidyResult result = Tidy::perform(plan, runTime);
        std::vector<std::string> movedTo;
        for (const Move& m : result.journal.entries) {
            movedTo.push_back(fs::relative(m.to, desk.archive).string());
            EXPECT_EQ(readFile(m.to), fs::path(m.from).filename().string());
        }
        EXPECT_EQ(movedTo, c.movedTo);
        ASSERT_EQ(result.failed.size(), c.failed.size());
        for (const auto& [name, message] : c.failed) {
            const auto it = result.failed.find(desk.dir.file("in/" + name));
            ASSERT_NE(it, result.failed.end()) << name;
            if (message.empty())
                EXPECT_FALSE(it->second.empty());
            else
                EXPECT_EQ(it->second, message);
        }
    }
}

TEST(TidyRun, EmptyPlanDoesNothing) {
    const TidyResult result = Tidy::perform(TidyPlan{}, runTime);
    EXPECT_TRUE(result.journal.entries.empty());
    EXPECT_TRUE(result.failed.empty());
    EXPECT_EQ(result.journal.summary(), "Moved 0 screenshots");
}

TEST(TidyRun, UndoCopesWithWhatTheUserDidSince) {
    struct Case {
        const char* name;
        std::function<void(Desk&, const Journal&)> meddle;
        std::vector<std::string> restoredTo; // names under in/, in the order restored
        std::map<std::string, std::string> failed;
    } cases[] = {
        {"one filed shot moved on by the user",
         [](Desk& desk, const Journal& j) {
             fs::rename(j.entries[1].to, desk.dir.file("elsewhere.png"));
         },
         {"c.png", "a.png"},
         {{"b.png", "It's no longer where it was put"}}},
        {"a new file at the old path",
         [](Desk&, const Journal& j) { writeFile(j.entries[0].from, "new one"); },
         {"c.png", "b.png", "a 2.png"},
         {}},
        {"the old folder removed",
         [](Desk& desk, const Journal&) { fs::remove_all(desk.dir.file("in")); },
         {"c.png", "b.png", "a.png"},
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Desk desk;
        desk.put("a.png", Shelf::bills, october14 - 1h);
        desk.put("b.png", Shelf::chats);
        desk.put("c.png", Shelf::code, october14 + 1h);
        const TidyResult result = Tidy::perform(desk.plan(), runTime);
        ASSERT_EQ(result.journal.entries.size(), 3u);
        c.meddle(desk, result.journal);

        const UndoResult undone = Tidy::undo(result.journal);
        std::vector<std::string> restoredTo;
        for (const Move& m : undone.restored) {
            restoredTo.push_back(fs::relative(m.to, desk.dir.file("in")).string());
            EXPECT_FALSE(fs::exists(m.from));
            EXPECT_EQ(readFile(m.to), fs::path(m.from).filename().string());
        }
        EXPECT_EQ(restoredTo, c.restoredTo);
        if (c.restoredTo.back() == "a 2.png") {
            EXPECT_EQ(readFile(desk.dir.file("in/a.png")), "new one") << "the newcomer stays";
        }
        std::map<std::string, std::string> failed;
        for (const auto& [path, message] : undone.failed)
            failed[fs::path(path).filename().string()] = message;
        EXPECT_EQ(failed, c.failed);
    }
}

// A trasher that keeps a freedesktop-shaped bin: files/NAME and info/NAME.trashinfo.
Trasher binIn(const std::string& bin) {
    return [bin](const std::string& path) {
        const std::string name = fs::path(path).filename().string();
        const std::string place = bin + "/files/" + name;
        writeFile(bin + "/info/" + name + ".trashinfo", "[Trash Info]\n");
        fs::create_directories(bin + "/files");
        if (Status moved = moveNoReplace(path, place); !moved)
            return TrashOutcome::failure(moved.message());
        return TrashOutcome::landedAt(place);
    };
}

TEST(TidyRun, TrashRecordsWhereEachFileWent) {
    TempDir dir;
    const std::string bin = dir.file("bin");
    const std::string kept = writeFile(dir.file("in/kept.png"), "kept");
    const std::string lost = writeFile(dir.file("in/lost.png"), "lost");
    const std::string refused = writeFile(dir.file("in/refused.png"), "refused");
    const Trasher real = binIn(bin);
    const Trasher mixed = [&](const std::string& path) {
        if (path == refused) return TrashOutcome::failure("The Trash is full of opinions.");
        if (path == lost) {
            fs::remove(path);
            return TrashOutcome::placeUnknown();
        }
        return real(path);
    };

    const TidyResult result = Tidy::trash({kept, lost, refused}, runTime, mixed);
    EXPECT_EQ(result.journal.kind, Journal::Kind::trashed);
    EXPECT_EQ(result.journal.date, runTime);
    EXPECT_EQ(result.journal.entries,
              (std::vector<Move>{{kept, bin + "/files/kept.png"}, {lost, ""}}));
    EXPECT_EQ(result.failed,
              (std::map<std::string, std::string>{{refused, "The Trash is full of opinions."}}));
    EXPECT_EQ(result.journal.summary(), "Put 2 screenshots in the Trash");

    const UndoResult undone = Tidy::undo(result.journal);
    EXPECT_EQ(undone.restored, (std::vector<Move>{{bin + "/files/kept.png", kept}}));
    EXPECT_EQ(undone.failed,
              (std::map<std::string, std::string>{{lost, "It's no longer where it was put"}}));
    EXPECT_EQ(readFile(kept), "kept");
    EXPECT_FALSE(fs::exists(bin + "/info/kept.png.trashinfo"))
        << "a file taken out of the Trash takes its info with it";
}

TEST(TidyRun, JournalSummaries) {
    struct Case {
        Journal::Kind kind;
        size_t n;
        const char* summary;
    } cases[] = {
        {Journal::Kind::moved, 1, "Moved 1 screenshot"},
        {Journal::Kind::moved, 12, "Moved 12 screenshots"},
        {Journal::Kind::moved, 0, "Moved 0 screenshots"},
        {Journal::Kind::trashed, 1, "Put 1 screenshot in the Trash"},
        {Journal::Kind::trashed, 3, "Put 3 screenshots in the Trash"},
        {Journal::Kind::trashed, 0, "Put 0 screenshots in the Trash"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.summary);
        const Journal journal(runTime, c.kind, std::vector<Move>(c.n, Move{"/a", "/b"}));
        EXPECT_EQ(journal.summary(), c.summary);
        EXPECT_FALSE(journal.undone);
        EXPECT_EQ(journalKindFromId(journalKindId(c.kind)), c.kind);
    }
    EXPECT_NE(Journal(runTime, Journal::Kind::moved, {}).id,
              Journal(runTime, Journal::Kind::moved, {}).id);
    EXPECT_EQ(journalKindFromId("Moved"), std::nullopt);
}

TEST(TidyRun, FilesIntoAnArchiveOnAnotherFileSystemAndBack) {
    ScratchMount other;
    if (!other.ok()) GTEST_SKIP() << other.why();
    Desk desk;
    desk.archive = other.file("Archive");
    const std::string a = desk.put("a.png", Shelf::maps);
    const TidyResult result = Tidy::perform(desk.plan(), runTime);
    ASSERT_TRUE(result.failed.empty()) << result.failed.begin()->second;
    EXPECT_EQ(readFile(other.file("Archive/Maps and places/a.png")), "a.png");
    EXPECT_FALSE(fs::exists(a));

    const UndoResult undone = Tidy::undo(result.journal);
    EXPECT_TRUE(undone.failed.empty());
    EXPECT_EQ(readFile(a), "a.png");
    EXPECT_FALSE(fs::exists(other.file("Archive/Maps and places/a.png")));
}

} // namespace
} // namespace lumivale
