#include "reading/Lines.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

TextLine at(const char* text, float x, float y) {
    return TextLine{text, x, y, 0.1f, 0.02f};
}

std::vector<std::string> textsOf(const std::vector<TextLine>& lines) {
    std::vector<std::string> texts;
    for (const auto& line : lines)
        texts.push_back(line.text);
    return texts;
}

Lines::Word word(const char* text, int left, int right, Lines::PixelBox line, bool first = false) {
    return Lines::Word{text, {left, line.top + 2, right, line.bottom - 1}, line, first};
}

TEST(LinesTest, PiecesCutTheEnginesLinesAtWideGaps) {
    // Lines 20 px high: words more than 40 px apart are separate pieces.
    const Lines::PixelBox one{0, 100, 1000, 120}, two{0, 200, 1000, 220};
    struct Case {
        const char* name;
        std::vector<Lines::Word> words;
        std::vector<std::string> texts;
    };
    const std::vector<Case> cases{
        {"one line of words",
         {word("Total", 10, 60, one, true), word("paid", 70, 110, one)},
         {"Total paid"}},
        {"a gap of twice the height stays",
         {word("a", 0, 10, one, true), word("b", 50, 60, one)},
         {"a b"}},
        {"a wider gap cuts",
         {word("Wi-Fi", 0, 50, one, true), word("On", 91, 110, one)},
         {"Wi-Fi", "On"}},
        {"each of the engine's lines starts anew",
         {word("first", 0, 50, one, true), word("second", 0, 60, two, true),
          word("line", 70, 100, two)},
         {"first", "second line"}},
        {"nothing", {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> texts;
        for (const auto& piece : Lines::pieces(c.words))
            texts.push_back(piece.text);
        EXPECT_EQ(texts, c.texts);
    }
    const auto cut = Lines::pieces({word("Name", 10, 60, one, true), word("Priya", 70, 120, one),
                                    word("Berg", 500, 560, one)});
    ASSERT_EQ(cut.size(), 2u);
    EXPECT_EQ(cut[0].box.left, 10);
    EXPECT_EQ(cut[0].box.right, 120);
    EXPECT_EQ(cut[0].box.top, 102);
    EXPECT_EQ(cut[0].box.bottom, 119);
    EXPECT_EQ(cut[1].box.left, 500);
}

TEST(LinesTest, MakeTrimsTheTextAndTurnsTheBoxToTheLowerLeft) {
    struct Case {
        const char* name;
        std::string text;
        Lines::PixelBox box;
        int width, height;
        std::optional<TextLine> line;
    };
    const std::vector<Case> cases{
        {"the engine's line feed goes",
         "Total 12.50\n",
         {100, 50, 300, 70},
         1000,
         500,
         TextLine{"Total 12.50", 0.1f, 0.86f, 0.2f, 0.04f}},
        {"spaces and tabs around go",
         " \tHello world \t\n",
         {0, 0, 500, 100},
         1000,
         500,
         TextLine{"Hello world", 0.0f, 0.8f, 0.5f, 0.2f}},
        {"space inside stays",
         "a  b",
         {0, 400, 1000, 500},
         1000,
         500,
         TextLine{"a  b", 0.0f, 0.0f, 1.0f, 0.2f}},
        {"only spaces", "   \t \n", {0, 0, 10, 10}, 100, 100, std::nullopt},
        {"empty", "", {0, 0, 10, 10}, 100, 100, std::nullopt},
        {"a line feed alone", "\n", {0, 0, 10, 10}, 100, 100, std::nullopt},
        {"no picture", "text", {0, 0, 10, 10}, 0, 0, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto line = Lines::make(c.text, c.box, c.width, c.height);
        ASSERT_EQ(line.has_value(), c.line.has_value());
        if (!line) continue;
        EXPECT_EQ(line->text, c.line->text);
        EXPECT_FLOAT_EQ(line->x, c.line->x);
        EXPECT_FLOAT_EQ(line->y, c.line->y);
        EXPECT_FLOAT_EQ(line->w, c.line->w);
        EXPECT_FLOAT_EQ(line->h, c.line->h);
    }
}

TEST(LinesTest, PrecedesReadsRowsTopDownAndEachRowLeftToRight) {
    struct Case {
        const char* name;
        TextLine a, b;
        bool aFirst, bFirst;
    };
    const std::vector<Case> cases{
        {"0.005 apart: one row, left first", at("a", 0.1f, 0.500f), at("b", 0.5f, 0.505f), true,
         false},
        {"0.01 apart: higher first though right", at("a", 0.1f, 0.50f), at("b", 0.5f, 0.51f), false,
         true},
        {"0.008 apart still one row", at("a", 0.6f, 0.500f), at("b", 0.2f, 0.508f), false, true},
        {"just over 0.008 apart", at("a", 0.6f, 0.5090f), at("b", 0.2f, 0.5f), true, false},
        {"same place: neither first", at("a", 0.3f, 0.4f), at("b", 0.3f, 0.4f), false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Lines::precedes(c.a, c.b), c.aFirst);
        EXPECT_EQ(Lines::precedes(c.b, c.a), c.bFirst);
    }
}

TEST(LinesTest, SortPutsLinesInReadingOrderKeepingTies) {
    struct Case {
        const char* name;
        std::vector<TextLine> lines;
        std::vector<std::string> order;
    };
    const std::vector<Case> cases{
        {"two rows given bottom-up and right-to-left",
         {at("d", 0.6f, 0.2f), at("c", 0.1f, 0.2f), at("b", 0.6f, 0.8f), at("a", 0.1f, 0.803f)},
         {"a", "b", "c", "d"}},
        {"ties keep the given order",
         {at("x", 0.2f, 0.5f), at("y", 0.2f, 0.5f), at("z", 0.2f, 0.5f)},
         {"x", "y", "z"}},
        {"nothing", {}, {}},
        {"one line", {at("only", 0.5f, 0.5f)}, {"only"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto lines = c.lines;
        Lines::sort(lines);
        EXPECT_EQ(textsOf(lines), c.order);
    }
}

TEST(LinesTest, SortHandlesRowsThatChainBeyondTheTolerance) {
    // Neighbours lie within the tolerance, the ends do not, so the order has a cycle
    // (a before c, c before b, b before a): every line is kept, none after one it precedes.
    for (const auto& given : std::vector<std::vector<TextLine>>{
             {at("c", 0.1f, 0.500f), at("b", 0.2f, 0.506f), at("a", 0.3f, 0.512f)},
             {at("a", 0.3f, 0.512f), at("b", 0.2f, 0.506f), at("c", 0.1f, 0.500f)},
             {at("b", 0.2f, 0.506f), at("a", 0.3f, 0.512f), at("c", 0.1f, 0.500f)}}) {
        auto lines = given;
        Lines::sort(lines);
        ASSERT_EQ(lines.size(), 3u);
        SCOPED_TRACE(testing::PrintToString(textsOf(lines)));
        for (size_t i = 1; i < lines.size(); ++i)
            EXPECT_FALSE(Lines::precedes(lines[i], lines[i - 1]));
        auto texts = textsOf(lines);
        std::sort(texts.begin(), texts.end());
        EXPECT_EQ(texts, (std::vector<std::string>{"a", "b", "c"}));
    }
}

} // namespace
} // namespace lumivale
