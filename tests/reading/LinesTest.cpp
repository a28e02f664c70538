#include "reading/Lines.h"

#include <gtest/gtest.h>

namespace lumivale {
namespace {

TextLine at(const char* text, float x, float y) {
    return TextLine{text, x, y, 0.1f, 0.02f};
}

template <typename Line> std::vector<std::string> textsOf(const std::vector<Line>& lines) {
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
        {"twice the height stays", {word("a", 0, 10, one, true), word("b", 50, 60, one)}, {"a b"}},
        {"a wider gap cuts", {word("a", 0, 10, one, true), word("b", 51, 60, one)}, {"a", "b"}},
        {"each of the engine's lines starts anew",
         {word("a", 0, 10, one, true), word("b", 0, 10, two, true), word("c", 20, 30, two)},
         {"a", "b c"}},
        {"an echo inside a line goes",
         {word("hat", 30, 60, {20, 102, 80, 118}, true), word("<", 0, 10, one, true),
          word("Chats", 20, 80, one)},
         {"< Chats"}},
        {"a line that reads otherwise stays",
         {word("hot", 30, 60, {20, 102, 80, 118}, true), word("<", 0, 10, one, true),
          word("Chats", 20, 80, one)},
         {"hot", "< Chats"}},
        {"the same words elsewhere stay",
         {word("Chats", 20, 80, two, true), word("<", 0, 10, one, true),
          word("Chats", 20, 80, one)},
         {"Chats", "< Chats"}},
        {"nothing", {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(textsOf(Lines::pieces(c.words)), c.texts);
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

TEST(LinesTest, SortReadsRowsTopDownAndEachRowLeftToRightKeepingTies) {
    const struct {
        const char* name;
        std::vector<TextLine> lines;
        std::vector<std::string> order;
    } cases[] = {
        {"two rows given bottom-up and right-to-left",
         {at("d", 0.6f, 0.2f), at("c", 0.1f, 0.2f), at("b", 0.6f, 0.8f), at("a", 0.1f, 0.803f)},
         {"a", "b", "c", "d"}},
        // A line higher and to the right comes first only from another row.
        {"0.0079 apart: one row", {at("b", 0.6f, 0.5079f), at("a", 0.2f, 0.5f)}, {"a", "b"}},
        {"0.0081 apart: two rows", {at("b", 0.2f, 0.5f), at("a", 0.6f, 0.5081f)}, {"a", "b"}},
        {"ties keep their order",
         {at("x", .2f, .5f), at("y", .2f, .5f), at("z", .2f, .5f)},
         {"x", "y", "z"}},
        {"nothing", {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto lines = c.lines;
        Lines::sort(lines);
        EXPECT_EQ(textsOf(lines), c.order);
    }
}

} // namespace
} // namespace lumivale
