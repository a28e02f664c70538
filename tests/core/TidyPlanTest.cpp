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

const ExistsTest everythingThere = [](const std::string&) { return true; };

TEST(TidyLayout, RawValuesTitlesAndOrder) {
    struct Case {
        TidyLayout layout;
        const char *id, *title;
    } cases[] = {
        {TidyLayout::byCategory, "byCategory", "One folder per shelf"},
        {TidyLayout::byCategoryAndMonth, "byCategoryAndMonth", "Shelf, then month"},
    };
    ASSERT_EQ(allTidyLayouts.size(), std::size(cases));
    for (size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].id);
        EXPECT_EQ(allTidyLayouts[i], cases[i].layout);
        EXPECT_EQ(tidyLayoutId(cases[i].layout), cases[i].id);
        EXPECT_EQ(tidyLayoutTitle(cases[i].layout), cases[i].title);
        EXPECT_EQ(tidyLayoutFromId(cases[i].id), cases[i].layout);
    }
    EXPECT_EQ(tidyLayoutFromId("bycategory"), std::nullopt);
    EXPECT_EQ(tidyLayoutFromId(""), std::nullopt);
}

TEST(TidyLayout, FolderFollowsShelfAndLocalMonth) {
    struct Case {
        const char* name;
        ShotPtr shot;
        TidyLayout layout;
        std::string root, folder;
    } cases[] = {
        {"shelf folder", shot("/in/a.png", october14, Shelf::bills), TidyLayout::byCategory,
         "/arch", "/arch/Bills and receipts"},
        {"month inside the shelf", shot("/in/a.png", october14, Shelf::maps),
         TidyLayout::byCategoryAndMonth, "/arch", "/arch/Maps and places/2026-10"},
        {"month in the local time zone", shot("/in/a.png", nearMidnightUtc, Shelf::ids),
         TidyLayout::byCategoryAndMonth, "/arch", "/arch/IDs and documents/2026-11"},
        {"manual shelf wins", shot("/in/a.png", october14, Shelf::bills, true, Shelf::tickets),
         TidyLayout::byCategory, "/arch", "/arch/Tickets and bookings"},
        {"root with a trailing slash", shot("/in/a.png", october14, Shelf::other),
         TidyLayout::byCategory, "/arch/", "/arch/Other"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(tidyLayoutFolder(c.layout, *c.shot, c.root), c.folder);
    }
}

TEST(TidyDates, MonthAndDayUseTheLocalTimeZone) {
    struct Case {
        Date date;
        const char *month, *day;
    } cases[] = {
        {october14, "2026-10", "2026-10-14"},
        {nearMidnightUtc, "2026-11", "2026-11-01"},
        {at(2026y / December / 31, 18h, 29min), "2026-12", "2026-12-31"},
        {at(2026y / December / 31, 18h, 30min), "2027-01", "2027-01-01"},
        {at(1999y / February / 3, 0h), "1999-02", "1999-02-03"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.day);
        EXPECT_EQ(Tidy::month(c.date), c.month);
        EXPECT_EQ(Tidy::day(c.date), c.day);
    }
}

TEST(TidyClean, MakesOneSafeFileName) {
    const std::string a200(200, 'a');
    std::string accents; // 130 characters, each "e" plus a combining acute accent
    for (int i = 0; i < 130; ++i)
        accents += "e\xCC\x81";
    std::string flags; // 125 characters of two code points each
    for (int i = 0; i < 125; ++i)
        flags += "🇮🇳";
    struct Case {
        const char* name;
        std::string in, out;
    } cases[] = {
        {"plain", "Chat – Lunch – 2026-10-14", "Chat – Lunch – 2026-10-14"},
        {"only dots", "....", "Screenshot"},
        {"only spaces", "     ", "Screenshot"},
        {"empty", "", "Screenshot"},
        {"leading dots dropped", "...hidden name", "hidden name"},
        {"inner dots kept", "a.b..c.", "a.b..c."},
        {"slashes and colons", "12/03/2024 10:30", "12-03-2024 10-30"},
        {"a leading slash is no dot", "/etc/passwd", "-etc-passwd"},
        {"control and format characters", "Bill\a\t\u200Bdue\r\n", "Billdue"},
        {"line breaks at the ends", "\n\u2028 Title \u2029", "Title"},
        {"no-break spaces trimmed", "\u00A0x\u00A0", "x"},
        {"200 characters cut to 120", a200, std::string(120, 'a')},
        {"space at the cut trimmed", std::string(119, 'b') + " " + a200, std::string(119, 'b')},
        {"combining marks count with their letter", accents, accents.substr(0, 120 * 3)},
        {"flags count once", flags, flags.substr(0, 120 * flags.size() / 125)},
        {"joiners are format characters", "👨‍👩‍👧", "👨👩👧"},
        {"broken UTF-8 becomes a replacement", "a\xFF", "a\uFFFD"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::clean(c.in), c.out);
    }
}

TEST(TidyUnique, KeepsNumbersThenFallsBackToUuid) {
    struct Case {
        const char* name;
        std::string candidate, from;
        std::unordered_set<std::string> claimed;
        std::set<std::string> onDisk;
        std::string expected;
    } cases[] = {
        {"free", "/a/Name.png", "/in/x.png", {}, {}, "/a/Name.png"},
        {"its own place", "/a/Name.png", "/a/Name.png", {}, {"/a/Name.png"}, "/a/Name.png"},
        {"on disk", "/a/Name.png", "", {}, {"/a/Name.png"}, "/a/Name 2.png"},
        {"claimed", "/a/Name.png", "", {"/a/Name.png"}, {}, "/a/Name 2.png"},
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
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::unique(c.candidate, c.from, c.claimed, disk(c.onDisk)), c.expected);
    }
}

TEST(TidyUnique, AllNumbersTakenGivesAnUpperCaseUuidName) {
    int asked = 0;
    const ExistsTest counting = [&](const std::string& path) {
        ++asked;
        return path == "/a/Name.png" || path.find(' ') != std::string::npos;
    };
    const std::string path = Tidy::unique("/a/Name.png", "", {}, counting);
    ASSERT_EQ(path.size(), std::string("/a/").size() + 36 + 4) << path;
    EXPECT_EQ(path.substr(0, 3), "/a/");
    EXPECT_EQ(path.substr(39), ".png");
    const std::string id = path.substr(3, 36);
    EXPECT_TRUE(isUuid(id));
    EXPECT_EQ(id[14], '4') << "version 4";
    EXPECT_EQ(id.find_first_of("abcdef"), std::string::npos);
    EXPECT_EQ(asked, 10000) << "each name is checked once";

    const std::string bare = Tidy::unique("/a/report", "", {}, everythingThere);
    EXPECT_TRUE(isUuid(bare.substr(3))) << bare;
    EXPECT_NE(Tidy::unique("/a/report", "", {}, everythingThere), bare);
}

TEST(TidySuggestedName, ShelfTitleDayAndLowerCaseExtension) {
    struct Case {
        const char* name;
        ShotPtr shot;
        std::string expected;
    } cases[] = {
        {"no title", shot("/in/Screen Shot.png", october14, Shelf::chats), "Chat – 2026-10-14.png"},
        {"title after the chrome",
         shot("/in/x.PNG", october14, Shelf::bills, true, std::nullopt,
              {"9:41", "100%", "LTE", "Back", "Order Details"}),
         "Bill – Order Details – 2026-10-14.png"},
        {"title made safe",
         shot("/in/x.jpeg", october14, Shelf::bills, true, std::nullopt,
              {"Invoice 12/03/2024 10:30"}),
         "Bill – Invoice 12-03-2024 10 30 – 2026-10-14.jpeg"},
        {"manual shelf word", shot("/in/x.png", october14, Shelf::bills, true, Shelf::maps),
         "Map – 2026-10-14.png"},
        {"local day", shot("/in/x.heic", nearMidnightUtc, Shelf::ids), "ID – 2026-11-01.heic"},
        {"no extension", shot("/in/capture", october14, Shelf::shopping), "Shop – 2026-10-14"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Tidy::suggestedName(*c.shot), c.expected);
    }
}

TEST(TidyPlanning, ReasonsForLeavingShotsAlone) {
    const std::string root = "/arch";
    struct Case {
        const char* name;
        ShotPtr shot;
        TidyLayout layout;
        bool rename;
        std::string reason; // empty: the shot moves
    } cases[] = {
        {"unread and missing", shot("/gone/a.png", october14, Shelf::chats, false),
         TidyLayout::byCategory, false, "Still being read"},
        {"read but missing", shot("/gone/a.png", october14), TidyLayout::byCategory, false,
         "No longer there"},
        {"in its shelf folder", shot("/arch/Chats/a.png", october14), TidyLayout::byCategory, false,
         "Already in place"},
        {"in its shelf folder, month layout", shot("/arch/Chats/a.png", october14),
         TidyLayout::byCategoryAndMonth, false, ""},
        {"in its month folder", shot("/arch/Chats/2026-10/a.png", october14),
         TidyLayout::byCategoryAndMonth, false, "Already in place"},
        {"in its month folder, shelf layout", shot("/arch/Chats/2026-10/a.png", october14),
         TidyLayout::byCategory, false, ""},
        {"already named as suggested", shot("/arch/Chats/Chat – 2026-10-14.png", october14),
         TidyLayout::byCategory, true, "Already in place"},
        {"named as suggested elsewhere", shot("/in/Chat – 2026-10-14.png", october14),
         TidyLayout::byCategory, true, ""},
        {"in the folder of another shelf", shot("/arch/Chats/a.png", october14, Shelf::code),
         TidyLayout::byCategory, false, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::set<std::string> onDisk;
        if (c.shot->path.rfind("/gone/", 0) != 0) onDisk.insert(c.shot->path);
        const TidyPlan plan =
            Tidy::plan(std::span(&c.shot, 1), root, c.layout, c.rename, disk(onDisk));
        if (c.reason.empty()) {
            ASSERT_EQ(plan.moves.size(), 1u);
            EXPECT_EQ(plan.moves[0].from, c.shot->path);
            EXPECT_EQ(plan.moves[0].to.rfind(tidyLayoutFolder(c.layout, *c.shot, root) + "/", 0),
                      0u)
                << plan.moves[0].to;
            EXPECT_TRUE(plan.skipped.empty());
        } else {
            EXPECT_TRUE(plan.isEmpty());
            EXPECT_EQ(plan.skipped, (std::map<std::string, std::string>{{c.shot->path, c.reason}}));
        }
    }
}

TEST(TidyPlanning, EmptyInputGivesEmptyPlan) {
    const TidyPlan plan = Tidy::plan({}, "/arch", TidyLayout::byCategory, true, everythingThere);
    EXPECT_TRUE(plan.isEmpty());
    EXPECT_TRUE(plan.skipped.empty());
    EXPECT_EQ(plan, TidyPlan{});
}

TEST(TidyPlanning, CollisionsAreNumberedOldestFirst) {
    struct Case {
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
        {"a file already at the target",
         {shot("/a/Name.png", october14)},
         {"/arch/Chats/Name.png"},
         false,
         {{"/a/Name.png", "/arch/Chats/Name 2.png"}}},
        {"no extension",
         {shot("/a/report", october14), shot("/b/report", october14 + 1min)},
         {},
         false,
         {{"/a/report", "/arch/Chats/report"}, {"/b/report", "/arch/Chats/report 2"}}},
        {"renamed alike on one day",
         {shot("/a/1.png", october14), shot("/b/2.PNG", october14 + 1min)},
         {},
         true,
         {{"/a/1.png", "/arch/Chats/Chat – 2026-10-14.png"},
          {"/b/2.PNG", "/arch/Chats/Chat – 2026-10-14 2.png"}}},
    };
    for (const Case& c : cases) {
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

TEST(TidyPlanning, EveryShotIsEitherMovedOrSkipped) {
    const std::vector<ShotPtr> shots = {
        shot("/in/a.png", october14, Shelf::bills),
        shot("/in/b.png", october14, Shelf::bills, false),
        shot("/gone/c.png", october14 - 24h, Shelf::code),
        shot("/arch/Code/d.png", october14, Shelf::code),
        shot("/in/e.png", nearMidnightUtc, Shelf::ids, true, Shelf::chats),
        shot("/in/f.png", october14 - 48h, Shelf::ids),
    };
    std::set<std::string> onDisk;
    for (const ShotPtr& s : shots)
        if (s->path.rfind("/gone/", 0) != 0) onDisk.insert(s->path);
    const TidyPlan plan = Tidy::plan(shots, "/arch", TidyLayout::byCategory, false, disk(onDisk));

    std::multiset<std::string> seen;
    std::set<std::string> targets;
    for (const Move& m : plan.moves) {
        seen.insert(m.from);
        targets.insert(m.to);
    }
    for (const auto& [path, reason] : plan.skipped)
        seen.insert(path);
    std::multiset<std::string> all;
    for (const ShotPtr& s : shots)
        all.insert(s->path);
    EXPECT_EQ(seen, all);
    EXPECT_EQ(targets.size(), plan.moves.size());
    EXPECT_EQ(plan.moves, (std::vector<Move>{{"/in/f.png", "/arch/IDs and documents/f.png"},
                                             {"/in/a.png", "/arch/Bills and receipts/a.png"},
                                             {"/in/e.png", "/arch/Chats/e.png"}}));
}

} // namespace
} // namespace lumivale
