#include "core/TidyPlan.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using enum Shelf;
const auto byShelf = TidyLayout::byCategory, byMonth = TidyLayout::byCategoryAndMonth;

Date at(year_month_day day, hours h = 12h) {
    return Date(sys_days(day) + h);
}

// 20:00 UTC on 31 October is already 01:30 on 1 November in Kolkata, where the tests run.
const Date nearMidnightUtc = at(2026y / October / 31, 20h);
const Date oct14 = at(2026y / October / 14);

ShotPtr shot(std::string path, Shelf guess = chats, Date date = oct14, bool read = true,
             std::optional<Shelf> manual = std::nullopt, std::vector<std::string> lines = {}) {
    Shot s(std::move(path), 100, date, date);
    s.guess = guess;
    s.manual = manual;
    if (read) s.readAt = date;
    for (size_t i = 0; i < lines.size(); ++i)
        s.lines.push_back({lines[i], 0.1f, 0.9f - 0.05f * static_cast<float>(i), 0.6f, 0.04f});
    return std::make_shared<const Shot>(std::move(s));
}

TEST(TidyClean, MakesOneSafeFileName) {
    const std::string a200(200, 'a');
    std::string accents; // 130 characters of 3 bytes, each "e" plus a combining acute accent
    for (int i = 0; i < 130; ++i)
        accents += "e\xCC\x81";
    const struct {
        const char* name;
        std::string in, out;
    } cases[] = {
        {"only dots", "....", "Screenshot"},
        {"only spaces", "     ", "Screenshot"},
        {"leading dots dropped, inner kept", "...a.b..c.", "a.b..c."},
        {"slashes and colons", "/12/03/2024 10:30", "-12-03-2024 10-30"},
        {"control and format characters", "Bill\a\t\u200Bdue\r\n", "Billdue"},
        {"200 characters cut to 120", a200, std::string(120, 'a')},
        {"space at the cut trimmed", std::string(119, 'b') + " " + a200, std::string(119, 'b')},
        {"combining marks count with their letter",
         accents.substr(0, 60 * 3) + std::string(70, 'x'),
         accents.substr(0, 60 * 3) + std::string(60, 'x')},
        // 120 of them would be 360 bytes: as many as fit a file name with room for a number.
        {"cut between characters to fit in bytes", accents, accents.substr(0, 81 * 3)},
        {"a dot behind a space", " .", "Screenshot"},
        {"two dots behind a space", " ..", "Screenshot"},
        {"a hidden name behind spaces", "  .hidden name", "hidden name"},
        {"dots and spaces in turn", ". . .x", "x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::clean(c.in), c.out);
    }
}

// Whatever the text, the name is one that a file system takes: no "/" and no NUL, not empty,
// not "." or "..", not hidden, and short enough in bytes to take a collision number.
TEST(TidyClean, FitsAFileSystemWhateverTheText) {
    std::string emoji;
    for (int i = 0; i < 120; ++i)
        emoji += "\xF0\x9F\x98\x80";
    for (const std::string& in : {emoji, std::string(" ."), std::string("\n.."),
                                  std::string(300, '.') + "x", std::string("a\0b", 3)}) {
        const std::string name = Tidy::clean(in);
        SCOPED_TRACE(name);
        EXPECT_FALSE(name.empty() || name.starts_with('.'));
        EXPECT_EQ(name.find_first_of(std::string("/\0", 2)), std::string::npos);
        EXPECT_LE(name.size() + std::string(" 10000.jpeg").size(), 255u);
    }
}

// A name at the length limit keeps it when numbered: the base gives up its end for the number.
TEST(TidyUnique, NumbersANameAtTheLengthLimitWithinIt) {
    const std::string base(251, 'n'), taken = "/arch/" + base + ".png";
    const auto exists = [&](const std::string& p) { return p == taken; };
    const std::string numbered = Tidy::unique(taken, "", {}, exists);
    EXPECT_EQ(numbered, "/arch/" + std::string(249, 'n') + " 2.png");
    std::string wide; // 62 four-byte characters and "abc": 255 bytes with ".png"
    for (int i = 0; i < 62; ++i)
        wide += "\xF0\x9F\x98\x80";
    const std::string wideTaken = "/arch/" + wide + "abc.png";
    EXPECT_EQ(Tidy::unique(wideTaken, "", {}, [&](const std::string& p) { return p == wideTaken; }),
              "/arch/" + wide + "a 2.png");
}

// Plans the shots into "/arch/" with their own paths (except under /gone/) and `alsoOnDisk`
// taken; each move as "from → to under the archive", then each skip as "path: reason".
std::vector<std::string> planned(const std::vector<ShotPtr>& shots, TidyLayout layout, bool rename,
                                 const std::string& alsoOnDisk = "") {
    std::set<std::string> onDisk = {alsoOnDisk};
    for (const ShotPtr& s : shots)
        if (!s->path.starts_with("/gone/")) onDisk.insert(s->path);
    const TidyPlan plan = Tidy::plan(shots, "/arch/", layout, rename,
                                     [&](const std::string& p) { return onDisk.contains(p); });
    std::vector<std::string> described;
    for (const Move& m : plan.moves)
        described.push_back(m.from + " → " + fs::path(m.to).lexically_relative("/arch").string());
    for (const auto& [path, reason] : plan.skipped)
        described.push_back(path + ": " + reason);
    return described;
}

TEST(TidyPlanning, FilesAReadShotUnderAFreeNameOrSaysWhyItStays) {
    const std::string chat = "Chat – 2026-10-14.png", inPlace = ": Already in place";
    const struct {
        ShotPtr shot;
        TidyLayout layout;
        std::string expected;
        bool rename = false;
        std::string alsoOnDisk = "";
    } cases[] = {
        {shot("/a.png", bills), byShelf, "/a.png → Bills and receipts/a.png"},
        // The month and the day are the local ones.
        {shot("/a.png", ids, nearMidnightUtc), byMonth, "/a.png → IDs and documents/2026-11/a.png"},
        // The shelf the user chose wins.
        {shot("/a.png", bills, oct14, true, tickets), byShelf,
         "/a.png → Tickets and bookings/a.png"},
        // Why shots stay.
        {shot("/gone/a.png", chats, oct14, false), byShelf, "/gone/a.png: Still being read"},
        {shot("/gone/a.png"), byShelf, "/gone/a.png: No longer there"},
        {shot("/arch/Chats/a.png"), byShelf, "/arch/Chats/a.png" + inPlace},
        {shot("/arch/Chats/a.png"), byMonth, "/arch/Chats/a.png → Chats/2026-10/a.png"},
        {shot("/arch/Chats/2026-10/a.png"), byMonth, "/arch/Chats/2026-10/a.png" + inPlace},
        {shot("/arch/Chats/a.png", code), byShelf, "/arch/Chats/a.png → Code/a.png"},
        // Clashes with files on disk.
        {shot("/report"), byShelf, "/report → Chats/report 2", false, "/arch/Chats/report"},
        // Renamed: shelf word, title after the phone's chrome, local day, extension in lower case.
        {shot("/arch/Chats/" + chat), byShelf, "/arch/Chats/" + chat + inPlace, true},
        {shot("/arch/Chats/Chat – 2026-10-14 2.png"), byShelf,
         "/arch/Chats/Chat – 2026-10-14 2.png" + inPlace, true, "/arch/Chats/" + chat},
        {shot("/x.png", bills, oct14, true, std::nullopt,
              {"9:41", "100%", "LTE", "Back", "Invoice 12/03/2024 10:30"}),
         byShelf, "/x.png → Bills and receipts/Bill – Invoice 12-03-2024 10 30 – 2026-10-14.png",
         true},
        {shot("/x.HEIC", ids, nearMidnightUtc), byShelf,
         "/x.HEIC → IDs and documents/ID – 2026-11-01.heic", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(planned({c.shot}, c.layout, c.rename, c.alsoOnDisk),
                  std::vector<std::string>{c.expected});
    }
}

TEST(TidyPlanning, ClashesAreNumberedOldestFirst) {
    using Moves = std::vector<std::string>;
    EXPECT_EQ(
        planned({shot("/c/N.png", chats, oct14 + 2h), shot("/b/N.png", chats, oct14 + 1h),
                 shot("/a/N.png")},
                byShelf, false),
        (Moves{"/a/N.png → Chats/N.png", "/b/N.png → Chats/N 2.png", "/c/N.png → Chats/N 3.png"}));
    EXPECT_EQ(planned({shot("/b/N.png"), shot("/a/N.png")}, byShelf, false, "/arch/Chats/N 2.png"),
              (Moves{"/b/N.png → Chats/N.png", "/a/N.png → Chats/N 3.png"}))
        << "ties keep their order; a number on disk is passed over";
    EXPECT_EQ(planned({shot("/a/1.png"), shot("/b/2.PNG", chats, oct14 + 1min)}, byShelf, true),
              (Moves{"/a/1.png → Chats/Chat – 2026-10-14.png",
                     "/b/2.PNG → Chats/Chat – 2026-10-14 2.png"}))
        << "renamed alike on one day";
}

} // namespace
} // namespace lumivale
