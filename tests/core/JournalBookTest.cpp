#include "core/JournalBook.h"

#include "core/Plist.h"
#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using plist::Ref;
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

TEST(JournalBook, EachJournalIsOfferedForUndoOnce) {
    JournalBook book;
    const Journal first = journal(1), second = journal(2, Journal::Kind::trashed),
                  third = journal(3);
    for (const Journal& j : {first, second, third})
        book.add(j);
    const std::pair<std::string, std::optional<std::string>> steps[] = {
        {"", third.id},
        {third.id, second.id},
        {first.id, second.id},
        {"00000000-0000-4000-8000-000000000000", second.id},
        {second.id, std::nullopt},
    };
    for (const auto& [undo, offered] : steps) {
        SCOPED_TRACE(undo);
        if (!undo.empty()) book.markUndone(undo);
        const auto got = book.lastUndoable();
        EXPECT_EQ(got ? std::optional(got->id) : std::nullopt, offered);
    }
    EXPECT_EQ(book.entries.size(), 3u) << "undone journals stay in the book";
}

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
    const std::pair<std::string, std::string> expected[] = {
        {"", "entries"},
        {"|entries", "2"},
        {"|entries|0", "date,entries,id,kind,undone"},
        {"|entries|0|kind", test::hexOf("trashed")},
        {"|entries|0|id", test::hexOf(book.entries[0].id)},
        {"|entries|0|undone", "false"},
        {"|entries|1|undone", "true"},
        {"|entries|0|date",
         std::to_string(duration_cast<microseconds>(day(2).time_since_epoch()).count())},
        {"|entries|0|entries|0", "from,to"},
        {"|entries|0|entries|0|to", ""},
        {"|entries|0|entries|1|from", test::hexOf("/home/me/a b%.png")},
    };
    for (const auto& [path, value] : expected)
        EXPECT_EQ(leaves->at(path).value, value) << path;

    test::writeFile(dir.file("blocked"), "a file where the folder should be");
    EXPECT_FALSE(book.save(dir.file("blocked/journal.plist")).message().empty());
}

// A book of one journal whose field `key` is left out, or replaced when `make` is given.
std::string bookWith(std::string_view key, std::function<Ref(plist::Writer&)> make = {}) {
    plist::Writer w;
    const std::pair<Ref, Ref> move[] = {{w.key("from"), w.string("/a.png")},
                                        {w.key("to"), w.string("/b.png")}};
    const Ref moveRef = w.dict(move);
    const std::pair<std::string_view, Ref> usual[] = {
        {"id", w.string("E621E1F8-C36C-495A-93FC-0C247A3E6E5F")},
        {"date", w.date(day(1))},
        {"kind", w.string("moved")},
        {"entries", w.array(std::span(&moveRef, 1))},
        {"undone", w.boolean(false)},
    };
    std::vector<std::pair<Ref, Ref>> fields;
    for (const auto& [name, value] : usual)
        if (name != key || make) fields.push_back({w.key(name), name == key ? make(w) : value});
    const Ref journalRef = w.dict(fields);
    const std::pair<Ref, Ref> root[] = {{w.key("entries"), w.array(std::span(&journalRef, 1))}};
    return w.finish(w.dict(root));
}

TEST(JournalBook, ADamagedBookLoadsEmpty) {
    const std::string sound = bookWith("");
    const auto halfMove = [](plist::Writer& w) {
        const std::pair<Ref, Ref> half[] = {{w.key("from"), w.string("/a")}};
        const Ref move = w.dict(half);
        return w.array(std::span(&move, 1));
    };
    const std::pair<const char*, std::optional<std::string>> cases[] = {
        {"no file", std::nullopt},
        {"empty file", ""},
        {"text", "entries = ()\n"},
        {"truncated", sound.substr(0, sound.size() / 2)},
        {"trailer garbled", sound.substr(0, sound.size() - 8) + std::string(8, '\xFF')},
        {"without undone", bookWith("undone")},
        {"without id", bookWith("id")},
        {"without kind", bookWith("kind")},
        {"unknown kind", bookWith("kind", [](plist::Writer& w) { return w.string("deleted"); })},
        {"id not a UUID", bookWith("id", [](plist::Writer& w) { return w.string("42"); })},
        {"date as a number", bookWith("date", [](plist::Writer& w) { return w.real(1.0); })},
        {"move without to", bookWith("entries", halfMove)},
    };
    TempDir dir;
    for (const auto& [name, bytes] : cases) {
        SCOPED_TRACE(name);
        const std::string file = dir.file(std::string(name) + ".plist");
        if (bytes) test::writeFile(file, *bytes);
        EXPECT_TRUE(JournalBook::load(file).entries.empty());
    }
    EXPECT_EQ(JournalBook::load(test::writeFile(dir.file("sound"), sound)).entries.size(), 1u);
    fs::create_directories(dir.file("folder.plist"));
    EXPECT_TRUE(JournalBook::load(dir.file("folder.plist")).entries.empty());
}

} // namespace
} // namespace lumivale
