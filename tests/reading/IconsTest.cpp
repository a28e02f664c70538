#include "reading/Icons.h"

#include <gtest/gtest.h>

namespace lumivale {
namespace {

TEST(IconsTest, WordsThatReadLikeIcons) {
    const struct {
        const char* text;
        float confidence;
        bool icon;
    } cases[] = {
        // Unsure single signs and letters, and unsure runs of signs.
        {"@", 59, true},
        {"x", 87, true},
        {"<", 19, true},
        {"©", 70, true},
        {"@&", 40, true},
        {"~>", 80, true},
        // Sure ones are text.
        {"x", 95, false},
        {"-", 92, false},
        // Two letters need the engine to be very unsure: "km" and "of" stay.
        {"km", 70, false},
        {"ox", 40, true},
        // Numbers, currency and per cent signs and the brackets of code are never icons.
        {"9", 20, false},
        {"€", 30, false},
        {"%", 30, false},
        {"}", 30, false},
        {"4Q", 20, false},
        {"[s", 30, false},
        {"();", 30, false},
        {"@)", 30, true},
        {"O0", 60, true},
        {"-0", 60, true},
        {"00", 60, false},
        // Longer words with letters are words, however unsure.
        {"Tazaa", 40, false},
        {"Now", 47, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Icons::looksLikeIcon(c.text, c.confidence), c.icon)
            << c.text << " at " << c.confidence;
}

TEST(IconsTest, StatusBarKeepsItsText) {
    const struct {
        const char* text;
        float confidence;
        const char* kept; // none: an icon
    } cases[] = {
        {"19:08", 88, "19:08"}, {"9.41", 70, "9.41"},         {"44%", 76, "44%"},
        {"449%", 80, "49%"},    {"100%", 90, "100%"},         {"5G", 60, "5G"},
        {"LTE", 50, "LTE"},     {"Vodafone", 95, "Vodafone"}, {"al", 89, nullptr},
        {"VM", 77, nullptr},    {"ov", 32, nullptr},          {"@", 39, nullptr},
        {"Gl", 15, nullptr},    {"Vodafone", 60, nullptr},    {"21143", 90, nullptr},
        {"4", 76, nullptr},
    };
    for (const auto& c : cases) {
        const auto kept = Icons::statusBarText(c.text, c.confidence);
        EXPECT_EQ(kept.has_value(), c.kept != nullptr) << c.text;
        if (kept && c.kept) {
            EXPECT_EQ(*kept, c.kept);
        }
    }
}

Lines::Word word(const char* text, int left, int right, Lines::PixelBox line, float confidence,
                 bool first = false) {
    return Lines::Word{text, {left, line.top, right, line.bottom}, line, first, confidence};
}

std::vector<std::string> textsOf(const std::vector<Lines::Piece>& pieces) {
    std::vector<std::string> texts;
    for (const Lines::Piece& piece : pieces)
        texts.push_back(piece.text);
    return texts;
}

TEST(IconsTest, IconsLeaveTheLines) {
    const Lines::PixelBox bar{0, 20, 780, 50}, title{0, 80, 780, 115}, tab{0, 300, 780, 330};
    const struct {
        const char* name;
        int width, height;
        std::vector<Lines::Word> words;
        std::vector<std::string> texts;
    } cases[] = {
        {"a phone's status bar keeps its clock and battery level",
         780,
         1688,
         {word("19:08", 40, 124, bar, 88, true), word("VM", 155, 203, bar, 77),
          word("ov", 564, 600, bar, 32), word("4", 610, 630, bar, 76),
          word("44%", 657, 742, bar, 76), word("Gl", 745, 760, bar, 15),
          word("<", 40, 68, title, 19, true), word("Tazaa", 101, 193, title, 85),
          word("Now", 207, 281, title, 47)},
         {"19:08", "44%", "Tazaa Now"}},
        {"a landscape picture has no status bar: only unsure signs at the ends go",
         1688,
         780,
         {word("19:08", 40, 124, bar, 88, true), word("VM", 155, 203, bar, 77),
          word("@", 210, 230, bar, 30)},
         {"19:08 VM"}},
        {"a favicon and a close button leave the tab; an icon between words stays",
         1366,
         768,
         {word("@", 20, 32, tab, 59, true), word("Your", 48, 84, tab, 92),
          word("»", 90, 100, tab, 50), word("bill", 110, 130, tab, 92),
          word("x", 140, 150, tab, 72), word("-", 700, 712, tab, 87, true),
          word("x", 740, 752, tab, 87)},
         {"Your » bill"}},
        {"a sure cross is a close button unless a number stands beside it",
         1366,
         768,
         {word("Digital", 20, 80, tab, 95, true), word("card", 90, 130, tab, 95),
          word("x", 150, 160, tab, 95), word("3", 300, 310, title, 95, true),
          word("x", 315, 325, title, 95), word("4", 330, 340, title, 95)},
         {"Digital card", "3 x 4"}},
        {"unsure crosses close a tab; so does a cross beside a maximise button",
         1366,
         768,
         {word("Turia", 20, 80, tab, 95, true), word("Xx", 90, 104, tab, 70),
          word("O0", 1250, 1270, title, 60, true), word("X", 1300, 1312, title, 93),
          word("xx", 300, 316, bar, 95, true)},
         {"Turia", "xx"}},
        {"a line of nothing but very unsure words is a picture; one sure word keeps it",
         1366,
         768,
         {word("CEEC", 30, 146, tab, 20, true), word("EPEC", 155, 203, tab, 18),
          word("ii]", 272, 284, tab, 16), word("Pink", 30, 100, title, 20, true),
          word("City", 110, 180, title, 96)},
         {"Pink City"}},
        {"an unsure currency sign is an icon unless a number stands beside it",
         1366,
         768,
         {word("€", 20, 32, tab, 64, true), word("Fund", 48, 84, tab, 92),
          word("Transfer", 90, 150, tab, 92), word("85", 300, 320, title, 95, true),
          word("€", 325, 335, title, 50), word("€", 400, 410, bar, 50, true),
          word("129.90", 415, 470, bar, 93)},
         {"Fund Transfer", "85 €", "€ 129.90"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<Lines::Word> words = c.words;
        Icons::mark(words, c.width, c.height);
        EXPECT_EQ(textsOf(Lines::pieces(words)), c.texts);
    }
}

} // namespace
} // namespace lumivale
