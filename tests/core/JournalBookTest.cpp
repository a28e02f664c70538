#include "core/JournalBook.h"

#include "core/Plist.h"
#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using plist::Ref;
using test::readFile;
using test::TempDir;
using test::writeFile;

// Property-list dates keep about a microsecond; these survive the trip exactly.
Date day(int n) {
    return Date(sys_days(2026y / October / 1) + days(n) + 500ms);
}

Journal journal(int n, Journal::Kind kind = Journal::Kind::moved) {
    return Journal(day(n), kind, {{"/in/" + std::to_string(n) + ".png", "/out/x.png"}});
}

TEST(JournalBook, KeepsTheNewestThirtyNewestFirst) {
    struct Case {
        int added;
        size_t held;
    } cases[] = {{1, 1}, {29, 29}, {30, 30}, {31, 30}, {40, 30}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.added);
        JournalBook book;
        std::vector<std::string> ids;
        for (int i = 0; i < c.added; ++i) {
            Journal j = journal(i);
            ids.push_back(j.id);
            book.add(j);
        }
        ASSERT_EQ(book.entries.size(), c.held);
        for (size_t i = 0; i < c.held; ++i)
            EXPECT_EQ(book.entries[i].id, ids[ids.size() - 1 - i]) << "position " << i;
    }
}

TEST(JournalBook, AJournalThatDidNothingIsNotRecorded) {
    JournalBook book;
    book.add(journal(1));
    book.add(Journal(day(2), Journal::Kind::moved, {}));
    book.add(Journal(day(3), Journal::Kind::trashed, {}));
    ASSERT_EQ(book.entries.size(), 1u);
    EXPECT_EQ(book.entries[0].date, day(1));
}

TEST(JournalBook, EachJournalIsOfferedForUndoOnce) {
    JournalBook book;
    const Journal first = journal(1), second = journal(2, Journal::Kind::trashed),
                  third = journal(3);
    for (const Journal& j : {first, second, third})
        book.add(j);
    struct Step {
        std::string markUndone; // empty: only look
        std::optional<Journal> offered;
    } steps[] = {
        {"", third},        {third.id, second},
        {third.id, second}, {"00000000-0000-4000-8000-000000000000", second},
        {first.id, second}, {second.id, std::nullopt},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.markUndone);
        if (!step.markUndone.empty()) book.markUndone(step.markUndone);
        const auto offered = book.lastUndoable();
        ASSERT_EQ(offered.has_value(), step.offered.has_value());
        if (offered) {
            EXPECT_EQ(offered->id, step.offered->id);
        }
    }
    EXPECT_EQ(book.entries.size(), 3u) << "undone journals stay in the book";
}

JournalBook sampleBook() {
    JournalBook book;
    book.add(journal(1));
    Journal trashed(day(2), Journal::Kind::trashed,
                    {{"/home/me/Pictures/Screenshots/Skärmavbild 1.png", ""},
                     {"/home/me/a b%.png", "/home/me/.local/share/Trash/files/a b%.png"}});
    book.add(trashed);
    book.markUndone(book.entries[1].id);
    return book;
}

TEST(JournalBook, SavesAndLoadsTheSameBook) {
    TempDir dir;
    const std::string file = dir.file("data/journal.plist");
    const JournalBook book = sampleBook();
    ASSERT_TRUE(book.save(file).isOk());
    EXPECT_EQ(JournalBook::load(file), book);
    EXPECT_EQ(readFile(file).substr(0, 8), "bplist00");
}

TEST(JournalBook, OtherProgramsReadTheKeysExactly) {
    TempDir dir;
    const std::string file = dir.file("journal.plist");
    const JournalBook book = sampleBook();
    ASSERT_TRUE(book.save(file).isOk());
    const auto leaves = test::readWithPlistlib(file);
    ASSERT_TRUE(leaves) << "plistlib cannot read the book";
    const auto at = [&](const std::string& path) { return leaves->at(path); };
    EXPECT_EQ(at("").value, "entries");
    EXPECT_EQ(at("|entries").value, "2");
    EXPECT_EQ(at("|entries|0").value, "date,entries,id,kind,undone");
    EXPECT_EQ(at("|entries|0|kind").value, test::hexOf("trashed"));
    EXPECT_EQ(at("|entries|0|id").value, test::hexOf(book.entries[0].id));
    EXPECT_EQ(at("|entries|0|undone").value, "false");
    EXPECT_EQ(at("|entries|1|undone").value, "true");
    EXPECT_EQ(at("|entries|0|date").type, "date");
    EXPECT_EQ(at("|entries|0|date").value,
              std::to_string(duration_cast<microseconds>(day(2).time_since_epoch()).count()));
    EXPECT_EQ(at("|entries|0|entries|0").value, "from,to");
    EXPECT_EQ(at("|entries|0|entries|0|to").value, "");
    EXPECT_EQ(at("|entries|0|entries|1|from").value, test::hexOf("/home/me/a b%.png"));
}

// A book file built by hand: `journalField` may change or drop one field of the only journal.
std::string bookWith(const std::function<std::optional<Ref>(plist::Writer&, std::string_view key,
                                                            Ref usual)>& journalField) {
    plist::Writer w;
    const std::array<std::pair<Ref, Ref>, 2> move = {
        {{w.key("from"), w.string("/a.png")}, {w.key("to"), w.string("/b.png")}}};
    const Ref moveRef = w.dict(move);
    const std::pair<std::string_view, Ref> usual[] = {
        {"id", w.string("E621E1F8-C36C-495A-93FC-0C247A3E6E5F")},
        {"date", w.date(day(1))},
        {"kind", w.string("moved")},
        {"entries", w.array(std::span(&moveRef, 1))},
        {"undone", w.boolean(false)},
    };
    std::vector<std::pair<Ref, Ref>> fields;
    for (const auto& [key, value] : usual)
        if (const auto chosen = journalField(w, key, value))
            fields.push_back({w.key(key), *chosen});
    const Ref journalRef = w.dict(fields);
    const std::array<std::pair<Ref, Ref>, 1> root = {
        {{w.key("entries"), w.array(std::span(&journalRef, 1))}}};
    return w.finish(w.dict(root));
}

TEST(JournalBook, ADamagedBookLoadsEmpty) {
    using Field = std::function<std::optional<Ref>(plist::Writer&, std::string_view, Ref)>;
    const auto without = [](std::string_view missing) -> Field {
        return [missing](plist::Writer&, std::string_view key, Ref usual) -> std::optional<Ref> {
            if (key == missing) return std::nullopt;
            return usual;
        };
    };
    const auto replacing = [](std::string_view target,
                              std::function<Ref(plist::Writer&)> make) -> Field {
        return [target, make](plist::Writer& w, std::string_view key, Ref usual) {
            return key == target ? make(w) : usual;
        };
    };
    const std::string sound =
        bookWith([](plist::Writer&, std::string_view, Ref usual) { return usual; });
    struct Case {
        const char* name;
        std::optional<std::string> bytes; // nothing: no file at all
    } cases[] = {
        {"no file", std::nullopt},
        {"empty file", ""},
        {"text", "entries = ()\n"},
        {"truncated", sound.substr(0, sound.size() / 2)},
        {"trailer garbled", sound.substr(0, sound.size() - 8) + std::string(8, '\xFF')},
        {"without undone", bookWith(without("undone"))},
        {"without id", bookWith(without("id"))},
        {"without date", bookWith(without("date"))},
        {"without kind", bookWith(without("kind"))},
        {"without entries", bookWith(without("entries"))},
        {"unknown kind",
         bookWith(replacing("kind", [](plist::Writer& w) { return w.string("deleted"); }))},
        {"id not a UUID",
         bookWith(replacing("id", [](plist::Writer& w) { return w.string("42"); }))},
        {"date as a number",
         bookWith(replacing("date", [](plist::Writer& w) { return w.real(1.0); }))},
        {"undone as text",
         bookWith(replacing("undone", [](plist::Writer& w) { return w.string("no"); }))},
        {"move without to", bookWith(replacing("entries",
                                               [](plist::Writer& w) {
                                                   const std::array<std::pair<Ref, Ref>, 1> half = {
                                                       {{w.key("from"), w.string("/a")}}};
                                                   const Ref move = w.dict(half);
                                                   return w.array(std::span(&move, 1));
                                               }))},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string file = dir.file("journal.plist");
        if (c.bytes) writeFile(file, *c.bytes);
        EXPECT_TRUE(JournalBook::load(file).entries.empty());
    }
    TempDir dir;
    EXPECT_EQ(JournalBook::load(writeFile(dir.file("sound.plist"), sound)).entries.size(), 1u)
        << "the hand-built book itself is sound";
    fs::create_directories(dir.file("folder.plist"));
    EXPECT_TRUE(JournalBook::load(dir.file("folder.plist")).entries.empty());
}

TEST(JournalBook, SaveReportsAFolderThatCannotBeMade) {
    TempDir dir;
    writeFile(dir.file("blocked"), "a file where the folder should be");
    const Status saved = sampleBook().save(dir.file("blocked/journal.plist"));
    EXPECT_FALSE(saved.isOk());
    EXPECT_FALSE(saved.message().empty());
    EXPECT_EQ(readFile(dir.file("blocked")), "a file where the folder should be");
}

} // namespace
} // namespace lumivale
