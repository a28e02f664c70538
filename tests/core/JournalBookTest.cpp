#include "core/JournalBook.h"

#include "core/Plist.h"
#include "support/HandmadePlist.h"
#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using test::TempDir;

// Property-list dates keep about a microsecond; these survive the trip exactly.
Date day(int n) {
    return Date(sys_days(2026y / October / 1) + days(n) + 500ms);
}

Journal journal(int n, Journal::Kind kind = Journal::Kind::moved) {
    return Journal(day(n), kind, {{"/in/" + std::to_string(n) + ".png", "/out/x.png"}});
}

TEST(JournalBook, KeepsTheNewestThirtyNewestFirstAndNothingEmpty) {
    for (const int added : {29, 30, 31, 40}) {
        SCOPED_TRACE(added);
        JournalBook book;
        std::vector<std::string> ids;
        for (int i = 0; i < added; ++i) {
            const Journal j = journal(i);
            ids.push_back(j.id);
            book.add(j);
            book.add(Journal(day(i), Journal::Kind::trashed, {})); // did nothing: not recorded
        }
        ASSERT_EQ(book.entries.size(), size_t(std::min(added, 30)));
        for (size_t i = 0; i < book.entries.size(); ++i)
            EXPECT_EQ(book.entries[i].id, ids[ids.size() - 1 - i]) << "position " << i;
    }
}

// Which journal Undo offers, and only once: AppModelTidyTest, through the model that keeps the
// book.
TEST(JournalBook, SavesWhatOtherProgramsReadAndLoadsItBack) {
    JournalBook book;
    book.add(journal(1));
    book.add(Journal(day(2), Journal::Kind::trashed,
                     {{"/home/me/Skärmavbild 1.png", ""}, {"/home/me/a b%.png", "/T/a b%.png"}}));
    book.markUndone(book.entries[1].id);
    TempDir dir;
    const std::string file = dir.file("data/journal.plist");
    ASSERT_TRUE(book.save(file).isOk());
    EXPECT_EQ(JournalBook::load(file), book);

    const auto leaves = test::readWithPlistlib(file);
    ASSERT_TRUE(leaves) << "plistlib cannot read the book";
    // The names and types of the keys are those of the hand-made book below; left: the words.
    EXPECT_EQ(leaves->at("|entries|0|kind").value, test::hexOf("trashed"));
    EXPECT_EQ(leaves->at("|entries|0|entries|1|from").value, test::hexOf("/home/me/a b%.png"));

    test::writeFile(dir.file("blocked"), "a file where the folder should be");
    EXPECT_FALSE(book.save(dir.file("blocked/journal.plist")).message().empty());
}

using namespace test; // the hand-made files' builders

// A sound journal, as the book's file holds it.
Entries journalEntries() {
    return {{"id", value("E621E1F8-C36C-495A-93FC-0C247A3E6E5F")},
            {"date", value(day(1))},
            {"kind", value("moved")},
            {"entries", array({dict({{"from", value("/a.png")}, {"to", value("/b.png")}})})},
            {"undone", value(false)}};
}

// A book of one journal, its `key` set to `put` or left out (no such key: left sound).
std::string bookWith(const std::string& key, std::optional<Put> put) {
    return fileOf(dict({{"entries", array({dict(with(journalEntries(), key, put))})}}));
}

TEST(JournalBook, ADamagedBookLoadsEmpty) {
    const std::string sound = bookWith("", drop);
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"no file", std::nullopt},
        {"empty file", ""},
        {"text", "entries = ()\n"},
        {"truncated", sound.substr(0, sound.size() / 2)},
        {"trailer garbled", sound.substr(0, sound.size() - 8) + std::string(8, '\xFF')},
        {"without undone", bookWith("undone", drop)},
        {"without id", bookWith("id", drop)},
        {"without kind", bookWith("kind", drop)},
        {"unknown kind", bookWith("kind", value("deleted"))},
        {"id not a UUID", bookWith("id", value("42"))},
        {"date as a number", bookWith("date", value(1.0))},
        {"move without to", bookWith("entries", array({dict({{"from", value("/a")}})}))},
    };
    TempDir dir;
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        const std::string file = dir.file(std::string(name) + ".plist");
        if (bytes) test::writeFile(file, *bytes);
        EXPECT_TRUE(JournalBook::load(file).entries.empty());
    }
    const JournalBook loaded = JournalBook::load(test::writeFile(dir.file("sound"), sound));
    ASSERT_EQ(loaded.entries.size(), 1u);
    EXPECT_EQ(loaded.entries[0].entries, (std::vector<Move>{{"/a.png", "/b.png"}}));
    EXPECT_EQ(loaded.entries[0].date, day(1));
    fs::create_directories(dir.file("folder.plist"));
    EXPECT_TRUE(JournalBook::load(dir.file("folder.plist")).entries.empty());
}

} // namespace
} // namespace lumivale
