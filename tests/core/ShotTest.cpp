#include "core/Shot.h"

#include "core/Library.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <unordered_set>

namespace lumivale {
namespace {

using namespace std::chrono;

// A date with a fraction, as file systems give them.
const Date base = dateFromSeconds(1717000000) + 123456789ns;

std::vector<TextLine> linesOf(const std::vector<std::string>& texts) {
    std::vector<TextLine> lines;
    for (const std::string& text : texts)
        lines.push_back({text, 0.1f, 0.2f, 0.3f, 0.04f});
    return lines;
}

// A search text holds the folded lines and file name, then their squashed copy when squashing
// changes them. One read from a file is taken as it is: where its name and copy begin is found
// again, and where the text is not of that shape nothing is made up.
TEST(ShotTest, FindsTheNameAndTheSquashedCopyInItsSearchText) {
    Shot made("/p/r.png", 1, base, base);
    made.setLines(linesOf({"Total", "1,250"}));
    EXPECT_EQ(made.text(), "Total\n1,250");
    EXPECT_EQ(made.folded, "total\n1,250\nr.png\ntotal\n1250\nr.png");
    const struct {
        std::string name, text;
        size_t nameAt, squashedAt;
    } cases[] = {
        {"r.png", made.folded, 12, 18},
        {"a.png", "total\na.png", 6, 0},
        {"a.png", "a\n1,5\nb\na\n15\nb", 6, 8},
        {"a.png", "x\ny", 2, 0},          // too short to be a copy
        {"a.png", "1,5\n1,5", 4, 0},      // not shorter
        {"a.png", "1,5\n2\n15", 6, 0},    // an even count of line feeds
        {"a.png", "1,5\na\nb\n16", 8, 0}, // what follows the middle line feed is no copy
        {"x\ny.png", "t\nx\ny.png", 2, 0},
        {"x\ny.png", "x\ny.png", 0, 0}, // too few line feeds for the name
        {"a.png", "", 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        Shot shot("/p/" + c.name, 1, base, base);
        shot.folded = c.text;
        shot.indexSearchText();
        EXPECT_EQ(std::pair(shot.nameAt, shot.squashedAt), std::pair(c.nameAt, c.squashedAt));
    }
}

TEST(ShotTest, MatchesTheSameFileWithinASecond) {
    const Shot shot("/p/a.png", 500, base, base);
    EXPECT_TRUE(shot.matches(500, base));
    EXPECT_TRUE(shot.matches(500, base + 999'999'999ns)) << "a hair under a second";
    EXPECT_FALSE(shot.matches(500, base + 1s));
    EXPECT_FALSE(shot.matches(500, base - 1s));
    EXPECT_FALSE(shot.matches(501, base)) << "another size";
}

Shot readShot(const std::string& path, const std::string& line) {
    Shot shot(path, 2048, base, base);
    shot.setLines(linesOf({line}));
    shot.readAt = base + 3s;
    shot.manual = Shelf::tickets;
    shot.flags = {SensitiveKind::passport};
    return shot;
}

// Removing swaps the last shot into the hole and pruning closes ranks: after any mix of changes
// every path must still lead to its own shot, with everything it knows (moved shots refolded
// for their new names), and the list must hold each shot once.
TEST(ShotTest, LibraryFindsEveryShotAfterAnyMixOfChanges) {
    Library library;
    std::map<std::string, std::string> expected; // path -> its one line
    std::mt19937 random(7);
    const auto path = [&] { return "/p/" + std::to_string(random() % 40) + ".png"; };
    for (int step = 0; step < 2000; ++step) {
        const std::string p = path();
        const std::string line = "v" + std::to_string(step);
        // An edit that changes the path as well: the shot stays where it was.
        const auto edit = [&](Shot& s) {
            s.setLines(linesOf({line}));
            s.path = "/p/elsewhere.png";
        };
        switch (random() % 6) {
        case 0:
        case 1:
            library.put(readShot(p, line));
            expected[p] = line;
            break;
        case 2:
            EXPECT_EQ(library.remove(p), expected.erase(p) == 1);
            break;
        case 3:
            EXPECT_EQ(library.update(p, edit), expected.count(p) == 1);
            if (expected.count(p)) expected[p] = line;
            break;
        case 4: { // onto a free path, another shot's, its own or from nowhere
            const std::string to = path();
            library.move(p, to);
            if (expected.count(p) && to != p) {
                expected[to] = expected[p];
                expected.erase(p);
            }
            break;
        }
        case 5: {
            std::unordered_set<std::string> keeping;
            for (const auto& [kept, text] : expected)
                if (random() % 4) keeping.insert(kept);
            const size_t dropped =
                std::erase_if(expected, [&](const auto& e) { return !keeping.count(e.first); });
            EXPECT_EQ(library.prune(keeping), static_cast<int64_t>(dropped));
        }
        }
        ASSERT_EQ(library.size(), expected.size()) << "step " << step;
        for (const auto& [kept, text] : expected) {
            ASSERT_TRUE(library.find(kept)) << "step " << step << ": " << kept;
            ASSERT_EQ(*library.find(kept), readShot(kept, text)) << "step " << step;
        }
    }
    std::set<std::string> listed;
    for (const ShotPtr& shot : library.all())
        listed.insert(shot->path);
    EXPECT_EQ(listed.size(), expected.size());
}

} // namespace
} // namespace lumivale
