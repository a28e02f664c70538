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
    const struct {
        const char* name;
        std::vector<Lines::Word> words;
        std::vector<std::string> texts;
    } cases[] = {
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
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> texts;
        for (const auto& piece : Lines::pieces(c.words))
            texts.push_back(piece.text);
        EXPECT_EQ(texts, c.texts);
    }
    // A piece's box spans its words: their outer edges, the highest top and the lowest bottom.
    const auto cut = Lines::pieces({word("Name", 10, 60, one, true), word("Priya", 70, 120, one),
                                    word("Berg", 500, 560, one)});
    ASSERT_EQ(cut.size(), 2u);
    const auto& box = cut[0].box;
    EXPECT_EQ(std::vector({box.left, box.right, box.top, box.bottom, cut[1].box.left}),
              std::vector({10, 120, 102, 119, 500}));
}

TEST(LinesTest, MakeTrimsTheTextAndTurnsTheBoxToTheLowerLeft) {
    const struct {
        const char* name;
        std::string text;
        Lines::PixelBox box; // in a picture of 1000 × 500
        const char* kept;    // none: no line
        float x, y, w, h;
    } cases[] = {
        {"line feed goes", "Total 12\n", {100, 50, 300, 70}, "Total 12", .1f, .86f, .2f, .04f},
        {"spaces and tabs go", " \tHi there \t\n", {0, 0, 500, 100}, "Hi there", 0, .8f, .5f, .2f},
        {"space inside stays", "a  b", {0, 400, 1000, 500}, "a  b", 0, 0, 1, 0.2f},
        {"only spaces", "   \t \n", {0, 0, 10, 10}, nullptr},
        {"empty", "", {0, 0, 10, 10}, nullptr},
        {"a line feed alone", "\n", {0, 0, 10, 10}, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto line = Lines::make(c.text, c.box, 1000, 500);
        ASSERT_EQ(line.has_value(), c.kept != nullptr);
        if (!line) continue;
        EXPECT_EQ(line->text, c.kept);
        for (const auto& [got, want] :
             {std::pair{line->x, c.x}, {line->y, c.y}, {line->w, c.w}, {line->h, c.h}})
            EXPECT_FLOAT_EQ(got, want);
    }
    EXPECT_FALSE(Lines::make("text", {0, 0, 10, 10}, 0, 0)) << "no picture";
}

TEST(LinesTest, PrecedesReadsRowsTopDownAndEachRowLeftToRight) {
    const struct {
        const char* name;
        TextLine a, b;
        bool aFirst, bFirst;
    } cases[] = {
        {"0.005 apart: left first", at("a", 0.1f, 0.500f), at("b", 0.5f, 0.505f), true, false},
        {"0.01 apart: higher first", at("a", 0.1f, 0.50f), at("b", 0.5f, 0.51f), false, true},
        {"0.008 apart still one row", at("a", 0.6f, 0.500f), at("b", 0.2f, 0.508f), false, true},
        {"just over 0.008 apart", at("a", 0.6f, 0.5090f), at("b", 0.2f, 0.5f), true, false},
        {"same place: neither first", at("a", 0.3f, 0.4f), at("b", 0.3f, 0.4f), false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Lines::precedes(c.a, c.b), c.aFirst);
        EXPECT_EQ(Lines::precedes(c.b, c.a), c.bFirst);
    }
}

TEST(LinesTest, SortPutsLinesInReadingOrderKeepingTies) {
    const struct {
        const char* name;
        std::vector<TextLine> lines;
        std::vector<std::string> order;
    } cases[] = {
        {"two rows given bottom-up and right-to-left",
         {at("d", 0.6f, 0.2f), at("c", 0.1f, 0.2f), at("b", 0.6f, 0.8f), at("a", 0.1f, 0.803f)},
         {"a", "b", "c", "d"}},
        {"ties keep their order",
         {at("x", .2f, .5f), at("y", .2f, .5f), at("z", .2f, .5f)},
         {"x", "y", "z"}},
        {"nothing", {}, {}},
        {"one line", {at("only", 0.5f, 0.5f)}, {"only"}},
    };
    for (const auto& c : cases) {
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
