#include "core/JournalBook.h"

#include "support/HandmadePlist.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace lumivale {
namespace {

using namespace std::chrono;
using namespace test; // the hand-made files' builders

// Property-list dates keep about a microsecond; these survive the trip exactly.
Date day(int n) {
    return Date(sys_days(2026y / October / 1) + days(n) + 500ms);
}

// Which journal Undo offers, and only once: AppModelTidyTest and tests/integration/tidy-undo.sh.
TEST(JournalBook, KeepsTheNewestThirtyNewestFirstThroughASave) {
    JournalBook book;
    std::vector<Journal> added;
    for (int i = 0; i < 40; ++i) {
        const auto kind = i % 2 ? Journal::Kind::trashed : Journal::Kind::moved;
        const std::string from = "/home/me/Skärmavbild " + std::to_string(i) + " 100%.png";
        added.emplace_back(day(i), kind, std::vector<Move>{{from, i % 3 ? "/out/x.png" : ""}});
        book.add(added.back());
    }
    book.markUndone(added[35].id);
    added[35].undone = true;
    EXPECT_EQ(book.entries, std::vector<Journal>(added.rbegin(), added.rbegin() + 30));

    TempDir dir;
    const std::string file = dir.file("data/journal.plist");
    ASSERT_TRUE(book.save(file).isOk());
    EXPECT_EQ(JournalBook::load(file), book);
    writeFile(dir.file("blocked"), "a file where the folder should be");
    EXPECT_FALSE(book.save(dir.file("blocked/journal.plist")).isOk());
}

// A sound journal, as the book's file holds it.
Entries journalEntries() {
    return {{"id", value("E621E1F8-C36C-495A-93FC-0C247A3E6E5F")},
            {"date", value(day(1))},
            {"kind", value("moved")},
            {"entries", array({dict({{"from", value("/a.png")}, {"to", value("/b.png")}})})},
            {"undone", value(false)}};
}

// A book of a sound journal and a second one with its `key` set to `put` or left out.
std::string bookWith(const std::string& key, std::optional<Put> put) {
    return fileOf(dict(
        {{"entries", array({dict(journalEntries()), dict(with(journalEntries(), key, put))})}}));
}

TEST(JournalBook, ADamagedBookLoadsEmpty) {
    const std::string sound = bookWith("kind", value("trashed"));
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"no file", std::nullopt},
        {"truncated", sound.substr(0, sound.size() / 2)},
        {"without undone", bookWith("undone", drop)},
        {"without id", bookWith("id", drop)},
        {"unknown kind", bookWith("kind", value("deleted"))},
        {"id not a UUID", bookWith("id", value("42"))},
        {"date as a number", bookWith("date", value(1.0))},
        {"move without to", bookWith("entries", array({dict({{"from", value("/a")}})}))},
    };
    TempDir dir;
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        const std::string file = dir.file(std::string(name) + ".plist");
        if (bytes) writeFile(file, *bytes);
        EXPECT_TRUE(JournalBook::load(file).entries.empty());
    }

    Journal moved(day(1), Journal::Kind::moved, {{"/a.png", "/b.png"}});
    moved.id = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
    Journal trashed = moved;
    trashed.kind = Journal::Kind::trashed;
    EXPECT_EQ(JournalBook::load(writeFile(dir.file("sound"), sound)).entries,
              (std::vector<Journal>{moved, trashed}));
}

} // namespace
} // namespace lumivale
