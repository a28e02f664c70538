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

// Each text as many times as it says, in order.
Lines copies(std::initializer_list<std::pair<std::string, size_t>> runs) {
    Lines lines;
    for (const auto& [text, n] : runs)
        lines.insert(lines.end(), n, text);
    return lines;
}

TEST(Shape, ChatAndCodeScores) {
    const std::string a41 = repeated("a", 41), filler = repeated("a", 300);
    const std::string fiveSymbols = "a(a[a=a<a>"; // kept apart, so they make no two-character token
    const auto chat = &Shape::chatScore, code = &Shape::codeScore;
    const struct {
        const char* name;
        Lines lines;
        std::string raw;
        double Shape::*score;
        double value;
    } cases[] = {
        {"six short clock lines earn the bonus", copies({{"9:41", 6}}), "", chat, 9},
        {"one clock line, no bonus", copies({{"9:41", 1}, {"hi", 7}}), "", chat, 1.5},
        {"two clock lines in six short", copies({{"9:41", 2}, {"hi", 4}}), "", chat, 5},
        {"five lines are too few", copies({{"9:41", 2}, {"hi", 3}}), "", chat, 3},
        {"short ratio 0.7 earns nothing", copies({{"9:41", 2}, {"hi", 5}, {a41, 3}}), "", chat, 3},
        // Forty Devanagari characters are short even though they take 120 bytes.
        {"length counts characters",
         copies({{"9:41", 2}, {repeated("भ", 40), 6}, {repeated("भ", 41), 2}}), "", chat, 5},
        {"a clock time must end the line", copies({{"9:41 Wed", 6}}), "", chat, 0},
        {"ten questions add only 2", copies({{"really?", 10}}), "", chat, 2},
        {"three questions add 1.5", {"why?", "why?", "why?", "why not? no"}, "", chat, 1.5},
        {"5 symbols in 100", {}, fiveSymbols + repeated("a", 90), code, 3},
        {"8 symbols in 100", {}, "a(a[a=a<a>a]a)a{" + repeated("a", 84), code, 5},
        {"4 symbols in 100", {}, "a(a[a=a<" + repeated("a", 92), code, 0},
        // Each Devanagari letter with its vowel sign is one character of the hundred.
        {"characters, not bytes", {}, fiveSymbols + repeated("भा", 90), code, 3},
        {"underscore counts", {}, "a_" + repeated(" ", 8), code, 5},
        {"brace alone with spaces", {"  }  "}, "", code, 0.7},
        {"endings", {"int x = 1;", "if (x) {", "\t}", "run(() => {})", "}x"}, "", code, 2.8},
        {"endings are capped at 5", copies({{"x;", 9}}), "", code, 5},
        {"every token", {}, "=> -> == != // /* </ () :: && ||" + filler + filler, code, 11},
        {"three prompts add only 2", {"$ ls", "% make", ">>> 1 + 1"}, "", code, 2},
        {"a prompt needs its space", {"$ls", "%make", ">>>x"}, "", code, 0},
        {"eleven identifiers are capped at 3", {}, repeated("userName ", 11), code, 3},
        {"five identifiers", {}, "max_count fooBar a_b isOpen x_y " + filler, code, 1.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(Shape(c.lines, c.raw).*c.score, c.value, 1e-9);
    }
}

} // namespace
