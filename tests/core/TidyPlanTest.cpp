#include "core/TidyPlan.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono;
using enum Shelf;
const auto byShelf = TidyLayout::byCategory, byMonth = TidyLayout::byCategoryAndMonth;

Date at(year_month_day day, hours h = 12h, minutes m = 0min) {
    return Date(sys_days(day) + h + m);
}

// 20:00 UTC on 31 October is already 01:30 on 1 November in Kolkata, where the tests run.
const Date nearMidnightUtc = at(2026y / October / 31, 20h);
const Date oct14 = at(2026y / October / 14);

ShotPtr shot(std::string path, Date date, Shelf guess = chats, bool read = true,
             std::optional<Shelf> manual = std::nullopt, std::vector<std::string> lines = {}) {
    Shot s(std::move(path), 100, date, date);
    s.guess = guess;
    s.manual = manual;
    if (read) s.readAt = date;
    for (size_t i = 0; i < lines.size(); ++i)
        s.lines.push_back({lines[i], 0.1f, 0.9f - 0.05f * static_cast<float>(i), 0.6f, 0.04f});
    return std::make_shared<const Shot>(std::move(s));
}

// A disk made of the paths in a set.
ExistsTest disk(std::set<std::string> paths) {
    return [paths = std::move(paths)](const std::string& p) { return paths.count(p) > 0; };
}

TEST(TidyLayout, FolderFollowsShelfAndLocalMonth) {
    const struct {
        const char* name;
        ShotPtr shot;
        TidyLayout layout;
        std::string root, folder;
    } cases[] = {
        {"shelf folder", shot("/in/a.png", oct14, bills), byShelf, "/arch/",
         "/arch/Bills and receipts"},
        {"month inside the shelf", shot("/in/a.png", oct14, maps), byMonth, "/arch",
         "/arch/Maps and places/2026-10"},
        {"month in the local time zone", shot("/in/a.png", nearMidnightUtc, ids), byMonth, "/arch",
         "/arch/IDs and documents/2026-11"},
        {"local new year", shot("/a.png", at(2026y / December / 31, 18h, 30min)), byMonth, "/arch",
         "/arch/Chats/2027-01"},
        {"manual shelf wins", shot("/in/a.png", oct14, bills, true, tickets), byShelf, "/arch",
         "/arch/Tickets and bookings"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(tidyLayoutFolder(c.layout, *c.shot, c.root), c.folder);
    }
}

TEST(TidyClean, MakesOneSafeFileName) {
    const std::string a200(200, 'a');
    std::string accents; // 130 characters, each "e" plus a combining acute accent
    for (int i = 0; i < 130; ++i)
        accents += "e\xCC\x81";
    const struct {
        const char* name;
        std::string in, out;
    } cases[] = {
        {"plain", "Chat – Lunch – 2026-10-14", "Chat – Lunch – 2026-10-14"},
        {"only dots", "....", "Screenshot"},
        {"only spaces", "     ", "Screenshot"},
        {"leading dots dropped, inner kept", "...a.b..c.", "a.b..c."},
        {"slashes and colons", "/12/03/2024 10:30", "-12-03-2024 10-30"},
        {"control and format characters", "Bill\a\t\u200Bdue\r\n", "Billdue"},
        {"line breaks and no-break spaces at the ends", "\n\u2028\u00A0Title \u2029", "Title"},
        {"200 characters cut to 120", a200, std::string(120, 'a')},
        {"space at the cut trimmed", std::string(119, 'b') + " " + a200, std::string(119, 'b')},
        {"combining marks count with their letter", accents, accents.substr(0, 120 * 3)},
        {"broken UTF-8 becomes a replacement", "a\xFF", "a\uFFFD"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::clean(c.in), c.out);
    }
}

TEST(TidyUnique, NumbersNamesThenFallsBackToAnUpperCaseUuid) {
    const struct {
        const char* name;
        std::string candidate, from;
        std::unordered_set<std::string> claimed;
        std::set<std::string> onDisk;
        std::string expected;
    } cases[] = {
        {"its own place", "/a/N.png", "/a/N.png", {}, {"/a/N.png"}, "/a/N.png"},
        {"claimed and on disk", "/a/N.png", "", {"/a/N.png"}, {"/a/N 2.png"}, "/a/N 3.png"},
        {"own numbered name",
         "/a/N.png",
         "/a/N 2.png",
         {},
         {"/a/N.png", "/a/N 2.png"},
         "/a/N 2.png"},
        {"no extension", "/a/report", "", {}, {"/a/report"}, "/a/report 2"},
        {"last extension only", "/a/x.tar.gz", "", {}, {"/a/x.tar.gz"}, "/a/x.tar 2.gz"},
        {"hidden name", "/a/.notes", "", {}, {"/a/.notes"}, "/a/.notes 2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::unique(c.candidate, c.from, c.claimed, disk(c.onDisk)), c.expected);
    }

    int asked = 0;
    const std::string path = Tidy::unique("/a/Name.png", "", {}, [&](const std::string& p) {
        ++asked;
        return p == "/a/Name.png" || p.find(' ') != std::string::npos;
    });
    const std::string x = "[0-9A-F]"; // an upper-case UUID
    EXPECT_TRUE(
        std::regex_match(path, std::regex("/a/" + x + "{8}(-" + x + "{4}){3}-" + x + "{12}\\.png")))
        << path;
    EXPECT_EQ(asked, 10000) << "each name is checked once";
}

TEST(TidySuggestedName, ShelfTitleDayAndLowerCaseExtension) {
    const struct {
        const char* name;
        ShotPtr shot;
        std::string expected;
    } cases[] = {
        {"title after the chrome, made safe",
         shot("/in/x.PNG", oct14, bills, true, std::nullopt,
              {"9:41", "100%", "LTE", "Back", "Invoice 12/03/2024 10:30"}),
         "Bill – Invoice 12-03-2024 10 30 – 2026-10-14.png"},
        {"manual shelf word", shot("/in/x.png", oct14, bills, true, maps), "Map – 2026-10-14.png"},
        {"local day", shot("/in/x.heic", nearMidnightUtc, ids), "ID – 2026-11-01.heic"},
        {"no extension", shot("/in/capture", oct14, shopping), "Shop – 2026-10-14"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::suggestedName(*c.shot), c.expected);
    }
}

TEST(TidyPlanning, ReasonsForLeavingShotsAlone) {
    const std::string inPlace = "Already in place", chat = "Chat – 2026-10-14.png";
    const struct {
        ShotPtr shot;
        TidyLayout layout;
        bool rename;
        std::string reason; // empty: the shot moves
    } cases[] = {
        {shot("/gone/a.png", oct14, chats, false), byShelf, false, "Still being read"},
        {shot("/gone/a.png", oct14), byShelf, false, "No longer there"},
        {shot("/arch/Chats/a.png", oct14), byShelf, false, inPlace},
        {shot("/arch/Chats/a.png", oct14), byMonth, false, ""},
        {shot("/arch/Chats/2026-10/a.png", oct14), byMonth, false, inPlace},
        {shot("/arch/Chats/2026-10/a.png", oct14), byShelf, false, ""},
        {shot("/arch/Chats/" + chat, oct14), byShelf, true, inPlace},
        {shot("/in/" + chat, oct14), byShelf, true, ""},
        {shot("/arch/Chats/a.png", oct14, code), byShelf, false, ""}, // another shelf's folder
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shot->path + (c.layout == byMonth ? " by month" : ""));
        std::set<std::string> onDisk;
        if (!c.shot->path.starts_with("/gone/")) onDisk.insert(c.shot->path);
        const TidyPlan plan =
            Tidy::plan(std::span(&c.shot, 1), "/arch", c.layout, c.rename, disk(onDisk));
        if (c.reason.empty()) {
            ASSERT_EQ(plan.moves.size(), 1u);
            EXPECT_TRUE(
                plan.moves[0].to.starts_with(tidyLayoutFolder(c.layout, *c.shot, "/arch") + "/"))
                << plan.moves[0].to;
            EXPECT_TRUE(plan.skipped.empty());
        } else {
            EXPECT_TRUE(plan.isEmpty());
            EXPECT_EQ(plan.skipped, (std::map<std::string, std::string>{{c.shot->path, c.reason}}));
        }
    }
}

TEST(TidyPlanning, CollisionsAreNumberedOldestFirst) {
    // Each move as "from → name in /arch/Chats", planned with the shots and `alsoOnDisk` on disk.
    const auto filed = [](std::vector<ShotPtr> shots, bool rename,
                          std::set<std::string> alsoOnDisk = {}) {
        for (const ShotPtr& s : shots)
            alsoOnDisk.insert(s->path);
        const TidyPlan plan = Tidy::plan(shots, "/arch", byShelf, rename, disk(alsoOnDisk));
        EXPECT_TRUE(plan.skipped.empty());
        std::vector<std::string> moves;
        for (const Move& m : plan.moves)
            moves.push_back(m.from + " → " +
                            fs::path(m.to).lexically_relative("/arch/Chats").string());
        return moves;
    };
    using Moves = std::vector<std::string>;
    const Date t = oct14;
    EXPECT_EQ(
        filed({shot("/c/N.png", t + 2h), shot("/b/N.png", t + 1h), shot("/a/N.png", t)}, false),
        (Moves{"/a/N.png → N.png", "/b/N.png → N 2.png", "/c/N.png → N 3.png"}))
        << "oldest first";
    EXPECT_EQ(filed({shot("/b/N.png", t), shot("/a/N.png", t)}, false),
              (Moves{"/b/N.png → N.png", "/a/N.png → N 2.png"}))
        << "ties keep their order";
    EXPECT_EQ(filed({shot("/a/report", t)}, false, {"/arch/Chats/report"}),
              (Moves{"/a/report → report 2"}));
    EXPECT_EQ(filed({shot("/a/1.png", t), shot("/b/2.PNG", t + 1min)}, true),
              (Moves{"/a/1.png → Chat – 2026-10-14.png", "/b/2.PNG → Chat – 2026-10-14 2.png"}))
        << "renamed alike on one day";
}

} // namespace
} // namespace lumivale
