#include "core/Shape.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace lumivale;

namespace {

using Lines = std::vector<std::string>;

std::string repeated(const std::string& piece, size_t n) {
    std::string out;
    for (size_t i = 0; i < n; ++i)
        out += piece;
    return out;
}

Lines linesOf(const std::string& line, size_t n) {
    return Lines(n, line);
}

Lines concat(Lines a, const Lines& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST(Shape, ChatScoreFromClockLinesShortLinesAndQuestions) {
    const std::string longLine = repeated("a", 41);
    const struct {
        const char* name;
        Lines lines;
        double chat;
    } cases[] = {
        {"six short clock lines earn the bonus", linesOf("9:41", 6), 9.0},
        {"one clock line gets no bonus", concat({"9:41"}, linesOf("hi", 7)), 1.5},
        {"two clock lines in six short ones", concat(linesOf("9:41", 2), linesOf("hi", 4)), 5.0},
        {"five lines are too few for the bonus", concat(linesOf("9:41", 2), linesOf("hi", 3)), 3.0},
        {"short ratio of exactly 0.7 earns nothing",
         concat(concat(linesOf("9:41", 2), linesOf("hi", 5)), linesOf(longLine, 3)), 3.0},
        {"short ratio of 0.8 earns the bonus",
         concat(concat(linesOf("9:41", 2), linesOf("hi", 6)), linesOf(longLine, 2)), 5.0},
        // Forty Devanagari characters are short even though they take 120 bytes.
        {"length counts characters",
         concat(concat(linesOf("9:41", 2), linesOf(repeated("भ", 40), 6)),
                linesOf(repeated("भ", 41), 2)),
         5.0},
        {"a clock time must end the line", linesOf("9:41 Wed", 6), 0.0},
        {"ten questions add only 2", linesOf("really?", 10), 2.0},
        {"three questions add 1.5", concat(linesOf("why?", 3), {"why not? no"}), 1.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_DOUBLE_EQ(Shape(c.lines, "").chatScore, c.chat);
    }
}

TEST(Shape, SymbolDensityOfTheWholeText) {
    // Symbols kept apart so that they make no two-character token.
    const std::string fiveSymbols = "a(a[a=a<a>";
    const std::string eightSymbols = "a(a[a=a<a>a]a)a{";
    const struct {
        const char* name;
        std::string raw;
        double code;
    } cases[] = {
        {"5 in 100 is 0.05", fiveSymbols + repeated("a", 90), 3.0},
        {"8 in 100 is 0.08", eightSymbols + repeated("a", 84), 5.0},
        {"4 in 100 is 0.04", "a(a[a=a<" + repeated("a", 92), 0.0},
        // Each Devanagari letter with its vowel sign is one character of the hundred.
        {"characters, not bytes", fiveSymbols + repeated("भा", 90), 3.0},
        {"underscore counts", "a_" + repeated(" ", 8), 5.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_DOUBLE_EQ(Shape(Lines{}, c.raw).codeScore, c.code);
    }
}

TEST(Shape, CodeScoreFromLinesTokensPromptsAndIdentifiers) {
    const std::string filler = repeated("a", 300); // keeps the symbol density near zero
    const struct {
        const char* name;
        Lines lines;
        std::string raw;
        double code;
    } cases[] = {
        {"brace alone with spaces", {"  }  "}, "", 0.7},
        {"endings", {"int x = 1;", "if (x) {", "\t}", "run(() => {})", "}x"}, "", 2.8},
        {"endings are capped at 5", linesOf("x;", 9), "", 5.0},
        {"every token", {}, "=> -> == != // /* </ () :: && ||" + filler + filler, 11.0},
        {"three prompts add only 2", {"$ ls", "% make", ">>> 1 + 1"}, "", 2.0},
        {"a prompt needs its space", {"$ls", "%make", ">>>x"}, "", 0.0},
        {"eleven identifiers are capped at 3", {}, repeated("userName ", 11), 3.0},
        {"five identifiers", {}, "max_count fooBar a_b isOpen x_y " + filler, 1.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(Shape(c.lines, c.raw).codeScore, c.code, 1e-9);
    }
}

TEST(Shape, CountsMoneyDiscountsAirportsDurationsAndDistances) {
    const Shape s(Lines{}, "₹499 and $12.50\n20% off\nDEL → BOM\n45 min, 2 hr\n3.5 km 200 m 1 mi");
    EXPECT_EQ(s.moneyCount, 2);
    EXPECT_TRUE(s.hasPercentOff);
    EXPECT_TRUE(s.hasAirportPair);
    EXPECT_EQ(s.durationCount, 2);
    EXPECT_EQ(s.distanceCount, 3);
    const Shape none(Lines{}, "nothing to see here");
    EXPECT_FALSE(none.hasPercentOff || none.hasAirportPair);
}

} // namespace
