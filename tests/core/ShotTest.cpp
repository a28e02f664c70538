#include "core/Shot.h"

#include "core/Library.h"

#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace lumivale {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// A date with a fraction, as file systems give them.
const Date base = dateFromSeconds(1717000000) + nanoseconds(123456789);

std::vector<TextLine> linesOf(const std::vector<std::string>& texts) {
    std::vector<TextLine> lines;
    for (const std::string& text : texts)
        lines.push_back({text, 0.1f, 0.2f, 0.3f, 0.04f});
    return lines;
}

TEST(ShotTest, KeepsItsSearchText) {
    const struct {
        const char* what;
        std::string path;
        std::vector<std::string> lines;
        std::string text, folded;
    } cases[] = {
        {"no lines: a line feed and the name", "/p/Screenshot.PNG", {}, "", "\nscreenshot.png"},
        {"folded", "/p/x.png", {"CAFÉ ＡＢＣ", "B"}, "CAFÉ ＡＢＣ\nB", "cafe abc\nb\nx.png"},
        {"a squashed copy", "/p/r.png", {"1,250"}, "1,250", "1,250\nr.png\n1250\nr.png"},
        {"a grouped number in the name", "/p/1 2.png", {"M"}, "M", "m\n1 2.png\nm\n12.png"},
        {"digits on separate lines stay apart", "/p/d.png", {"1", "2"}, "1\n2", "1\n2\nd.png"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Shot shot(c.path, 1, base, base);
        shot.setLines(linesOf(c.lines));
        EXPECT_EQ(shot.text(), c.text);
        EXPECT_EQ(shot.folded, c.folded);
        shot.folded = "stale";
        shot.refold();
        EXPECT_EQ(shot.folded, c.folded);
    }
}

TEST(ShotTest, MatchesTheSameFileWithinASecond) {
    const Shot shot("/p/a.png", 500, base, base);
    EXPECT_TRUE(shot.matches(500, base));
    EXPECT_TRUE(shot.matches(500, base + nanoseconds(999'999'999))) << "a hair under a second";
    EXPECT_FALSE(shot.matches(500, base + milliseconds(1000)));
    EXPECT_FALSE(shot.matches(500, base - milliseconds(1000)));
    EXPECT_FALSE(shot.matches(501, base)) << "another size";
}

Shot readShot(const std::string& path, std::vector<std::string> lines) {
    Shot shot(path, 2048, base, base);
    shot.setLines(linesOf(lines));
    shot.readAt = base + std::chrono::seconds(3);
    shot.guess = Shelf::bills;
    shot.guessScore = 7.5;
    shot.manual = Shelf::tickets;
    shot.flags = {SensitiveKind::passport};
    shot.reader = 1;
    return shot;
}

// A search text read from a file is taken as it is: where its squashed copy and the folded name
// begin is found again, and where the text is not of the usual shape nothing is made up.
TEST(ShotTest, LocatesTheNameAndTheSquashedCopyInASearchText) {
    const struct {
        std::string name, text;
        size_t nameAt, squashedAt;
    } cases[] = {
        {"a.png", "total 1,250\na.png\ntotal 1250\na.png", 12, 18},
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
        EXPECT_EQ(shot.nameAt, c.nameAt);
        EXPECT_EQ(shot.squashedAt, c.squashedAt);
    }
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
            library.put(readShot(p, {line})), expected[p] = line;
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
            ASSERT_EQ(*library.find(kept), readShot(kept, {text})) << "step " << step;
        }
    }
    std::set<std::string> listed;
    for (const ShotPtr& shot : library.all())
        listed.insert(shot->path);
    EXPECT_EQ(listed.size(), expected.size());
}

} // namespace
} // namespace lumivale
