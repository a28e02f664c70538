#include "core/TextSearch.h"

#include "support/RandomText.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace lumivale {
namespace {

constexpr size_t none = std::string_view::npos;

TEST(TextSearchTest, FindsAtTheEdges) {
    const std::string long40 = "the quick brown fox jumps over a lazy do";
    struct Case {
        const char* what;
        std::string text, needle;
        size_t from;
        size_t expected;
    };
    const std::vector<Case> cases = {
        {"empty needle", "abc", "", 1, 1},
        {"empty needle at the end", "abc", "", 3, 3},
        {"empty needle past the end", "abc", "", 4, none},
        {"empty text", "", "a", 0, none},
        {"needle longer than text", "ab", "abc", 0, none},
        {"whole text", "abc", "abc", 0, 0},
        {"single byte", "xxxxxxxxxxxxxxxxxxxxa", "a", 0, 20},
        {"two bytes at the very end", long40 + "gz", "gz", 0, 40},
        {"last start before a full block", long40, "do", 0, 38},
        {"start past the first hit", "abcabc", "abc", 1, 3},
        {"start on a hit", "abcabc", "abc", 3, 3},
        {"start past the last hit", "abcabc", "abc", 4, none},
        {"start beyond the text", "abc", "b", 9, none},
        {"first and last bytes agree, middle does not", "axxb ayyb azzb", "azzb", 0, 10},
        {"needle of a full block", long40, "quick brown fox ", 0, 4},
        {"needle longer than a block", long40, "brown fox jumps over", 0, 10},
        {"multibyte text", "prix: café crème", "crème", 0, 12},
        {"bytes above 0x7f", "\xFF\xFE\x80\xFF", "\x80\xFF", 0, 2},
        {"line feed in needle", "one\ntwo", "e\nt", 0, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(findText(c.text, c.needle, c.from), c.expected);
    }
}

// Texts of a few letters make partial matches common, which is where a fast search goes wrong.
TEST(TextSearchTest, AgreesWithThePlainSearch) {
    test::RandomText word{{"a", "a", "b", "\n"}, std::mt19937(20240607)};
    auto& random = word.random;
    for (int round = 0; round < 20000; ++round) {
        // Long enough for several blocks of the fast search, and needles that do occur, cut
        // from the text itself, as well as random ones.
        const std::string text = word(random() % 300);
        const size_t cut = text.empty() ? 0 : random() % text.size();
        const std::string needle =
            round % 2 ? word(1 + random() % 6) : text.substr(cut, 1 + random() % 70);
        const size_t from = random() % (text.size() + 2);
        SCOPED_TRACE("text \"" + text + "\" needle \"" + needle + "\" from " +
                     std::to_string(from));
        ASSERT_EQ(findText(text, needle, from), std::string_view(text).find(needle, from));
    }
}

// A sketch may let through a needle that is not in the text, but never turns away one that is,
// nor a line start that is there; and it does turn most absent ones away.
TEST(TextSearchTest, SketchesNeverMissWhatIsThere) {
    test::RandomText text{{"a", "b", "é", "ж", "1", ",", " ", "\n", "q"}, std::mt19937(5)};
    auto& random = text.random;
    int turnedAway = 0;
    for (int round = 0; round < 2000; ++round) {
        const std::string haystack = text(1 + random() % 60);
        const PairSketch pairs = sketchPairs(haystack);
        const uint64_t lineStarts = sketchLineStarts(haystack);
        const size_t from = random() % haystack.size();
        const std::string needle = haystack.substr(from, 1 + random() % 6);
        SCOPED_TRACE(haystack + " | " + needle);
        EXPECT_TRUE(mayHold(pairs, sketchPairs(needle)));
        if (from == 0 || haystack[from - 1] == '\n') {
            EXPECT_EQ(lineStarts & lineStartBit(needle), lineStartBit(needle));
        }
        const std::string other = "x" + text(3) + "y";
        turnedAway += !mayHold(pairs, sketchPairs(other));
    }
    EXPECT_GT(turnedAway, 1900);
}

} // namespace
} // namespace lumivale
