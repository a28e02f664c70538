#include "core/TidyPlan.h"

#include "core/Uuid.h"

#include <gtest/gtest.h>
#include <set>

namespace lumivale {
namespace {

using namespace std::chrono;

Date at(year_month_day day, hours h = 12h, minutes m = 0min) {
    return Date(sys_days(day) + h + m);
}

// 20:00 UTC on 31 October is already 01:30 on 1 November in Kolkata, where the tests run.
const Date nearMidnightUtc = at(2026y / October / 31, 20h);
const Date october14 = at(2026y / October / 14);

ShotPtr shot(std::string path, Date date, Shelf guess = Shelf::chats, bool read = true,
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
    const auto byMonth = TidyLayout::byCategoryAndMonth;
    const struct {
        const char* name;
        ShotPtr shot;
        TidyLayout layout;
        std::string root, folder;
    } cases[] = {
        {"shelf folder", shot("/in/a.png", october14, Shelf::bills), TidyLayout::byCategory,
         "/arch/", "/arch/Bills and receipts"},
        {"month inside the shelf", shot("/in/a.png", october14, Shelf::maps), byMonth, "/arch",
         "/arch/Maps and places/2026-10"},
        {"month in the local time zone", shot("/in/a.png", nearMidnightUtc, Shelf::ids), byMonth,
         "/arch", "/arch/IDs and documents/2026-11"},
        {"local new year", shot("/a.png", at(2026y / December / 31, 18h, 30min)), byMonth, "/arch",
         "/arch/Chats/2027-01"},
        {"manual shelf wins", shot("/in/a.png", october14, Shelf::bills, true, Shelf::tickets),
         TidyLayout::byCategory, "/arch", "/arch/Tickets and bookings"},
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
        {"its own place", "/a/Name.png", "/a/Name.png", {}, {"/a/Name.png"}, "/a/Name.png"},
        {"claimed and on disk",
         "/a/Name.png",
         "",
         {"/a/Name.png"},
         {"/a/Name 2.png"},
         "/a/Name 3.png"},
        {"numbered name is its own",
         "/a/Name.png",
         "/a/Name 2.png",
         {},
         {"/a/Name.png", "/a/Name 2.png"},
         "/a/Name 2.png"},
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
    ASSERT_EQ(path.size(), std::string("/a/").size() + 36 + 4) << path;
    EXPECT_EQ(path.substr(39), ".png");
    EXPECT_TRUE(isUuid(path.substr(3, 36)));
    EXPECT_EQ(path.substr(3, 36).find_first_of("abcdef"), std::string::npos);
    EXPECT_EQ(asked, 10000) << "each name is checked once";
}

TEST(TidySuggestedName, ShelfTitleDayAndLowerCaseExtension) {
    const struct {
        const char* name;
        ShotPtr shot;
        std::string expected;
    } cases[] = {
        {"title after the chrome, made safe",
         shot("/in/x.PNG", october14, Shelf::bills, true, std::nullopt,
              {"9:41", "100%", "LTE", "Back", "Invoice 12/03/2024 10:30"}),
         "Bill – Invoice 12-03-2024 10 30 – 2026-10-14.png"},
        {"manual shelf word", shot("/in/x.png", october14, Shelf::bills, true, Shelf::maps),
         "Map – 2026-10-14.png"},
        {"local day", shot("/in/x.heic", nearMidnightUtc, Shelf::ids), "ID – 2026-11-01.heic"},
        {"no extension", shot("/in/capture", october14, Shelf::shopping), "Shop – 2026-10-14"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::suggestedName(*c.shot), c.expected);
    }
}

TEST(TidyPlanning, ReasonsForLeavingShotsAlone) {
    const auto byMonth = TidyLayout::byCategoryAndMonth, byShelf = TidyLayout::byCategory;
    const struct {
        const char* name;
        ShotPtr shot;
        TidyLayout layout;
        bool rename;
        std::string reason; // empty: the shot moves
    } cases[] = {
        {"unread and missing", shot("/gone/a.png", october14, Shelf::chats, false), byShelf, false,
         "Still being read"},
        {"read but missing", shot("/gone/a.png", october14), byShelf, false, "No longer there"},
        {"in its shelf folder", shot("/arch/Chats/a.png", october14), byShelf, false,
         "Already in place"},
        {"in its shelf folder, month layout", shot("/arch/Chats/a.png", october14), byMonth, false,
         ""},
        {"in its month folder", shot("/arch/Chats/2026-10/a.png", october14), byMonth, false,
         "Already in place"},
        {"in its month folder, shelf layout", shot("/arch/Chats/2026-10/a.png", october14), byShelf,
         false, ""},
        {"already named as suggested", shot("/arch/Chats/Chat – 2026-10-14.png", october14),
         byShelf, true, "Already in place"},
        {"named as suggested elsewhere", shot("/in/Chat – 2026-10-14.png", october14), byShelf,
         true, ""},
        {"in the folder of another shelf", shot("/arch/Chats/a.png", october14, Shelf::code),
         byShelf, false, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::set<std::string> onDisk;
        if (c.shot->path.rfind("/gone/", 0) != 0) onDisk.insert(c.shot->path);
        const TidyPlan plan =
            Tidy::plan(std::span(&c.shot, 1), "/arch", c.layout, c.rename, disk(onDisk));
        if (c.reason.empty()) {
            ASSERT_EQ(plan.moves.size(), 1u);
            EXPECT_EQ(plan.moves[0].to.rfind(tidyLayoutFolder(c.layout, *c.shot, "/arch") + "/", 0),
                      0u)
                << plan.moves[0].to;
            EXPECT_TRUE(plan.skipped.empty());
        } else {
            EXPECT_TRUE(plan.isEmpty());
            EXPECT_EQ(plan.skipped, (std::map<std::string, std::string>{{c.shot->path, c.reason}}));
        }
    }
}

TEST(TidyPlanning, CollisionsAreNumberedOldestFirst) {
    const struct {
        const char* name;
        std::vector<ShotPtr> shots;
        std::set<std::string> alsoOnDisk;
        bool rename;
        std::vector<Move> moves;
    } cases[] = {
        {"three of one name, given newest first",
         {shot("/c/Name.png", october14 + 2h), shot("/b/Name.png", october14 + 1h),
          shot("/a/Name.png", october14)},
         {},
         false,
         {{"/a/Name.png", "/arch/Chats/Name.png"},
          {"/b/Name.png", "/arch/Chats/Name 2.png"},
          {"/c/Name.png", "/arch/Chats/Name 3.png"}}},
        {"ties keep their input order",
         {shot("/b/Name.png", october14), shot("/a/Name.png", october14)},
         {},
         false,
         {{"/b/Name.png", "/arch/Chats/Name.png"}, {"/a/Name.png", "/arch/Chats/Name 2.png"}}},
        {"a file already at the target, no extension",
         {shot("/a/report", october14)},
         {"/arch/Chats/report"},
         false,
         {{"/a/report", "/arch/Chats/report 2"}}},
        {"renamed alike on one day",
         {shot("/a/1.png", october14), shot("/b/2.PNG", october14 + 1min)},
         {},
         true,
         {{"/a/1.png", "/arch/Chats/Chat – 2026-10-14.png"},
          {"/b/2.PNG", "/arch/Chats/Chat – 2026-10-14 2.png"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::set<std::string> onDisk = c.alsoOnDisk;
        for (const ShotPtr& s : c.shots)
            onDisk.insert(s->path);
        const TidyPlan plan =
            Tidy::plan(c.shots, "/arch", TidyLayout::byCategory, c.rename, disk(onDisk));
        EXPECT_EQ(plan.moves, c.moves);
        EXPECT_TRUE(plan.skipped.empty());
    }
}

} // namespace
} // namespace lumivale
