#include "core/Titles.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace lumivale;

namespace {

using Lines = std::vector<std::string>;

Shot shotOf(const Lines& texts) {
    Shot shot("/tmp/shot.png", 1, Date{}, Date{});
    for (const std::string& t : texts)
        shot.lines.push_back({t, 0, 0, 1, 0.05f});
    return shot;
}

Lines repeatedLine(const std::string& line, size_t n) {
    return Lines(n, line);
}

Lines with(Lines lines, const std::string& last) {
    lines.push_back(last);
    return lines;
}

TEST(Titles, FirstLineThatReadsLikeATitle) {
    const struct {
        const char* name;
        Lines lines;
        std::optional<std::string> title;
    } cases[] = {
        {"chrome is skipped", {"9:41", "100%", "LTE", "Back", "Order Details"}, "Order Details"},
        {"chrome must fill the line", {"< Back", "Settings"}, "< Back"},
        {"case matters", {"Done", "done"}, "done"},
        {"upper case button is a heading", {"DONE"}, "DONE"},
        {"clock with am pm is chrome", {"10:30 PM", "Meeting 10:30 PM"}, "Meeting 10 30 PM"},
        {"short line ending in a time",
         {"Mom 9:41", "Lunch 12:30", "Lunch: 12:30"},
         "Lunch  12 30"},
        {"too short or without letters", {"ab", "12345", "€ 40", "Hi!"}, "Hi!"},
        {"trimmed", {"  \tOrder #12  \n"}, "Order #12"},
        {"cleaned for a file name", {"Invoice 12/03/2024 10:30"}, "Invoice 12-03-2024 10 30"},
        {"inner line breaks become single spaces",
         {"Trip to\n\nGoa\r\nDay 2"},
         "Trip to Goa Day 2"},
        {"cafe receipt",
         {"Brew & Bloom Café", "12 Residency Road, Bengaluru"},
         "Brew & Bloom Café"},
        {"nothing qualifies", {"9:41", "ab", "100%"}, std::nullopt},
        {"only the first twelve lines", with(repeatedLine("9:41", 12), "Order Details"),
         std::nullopt},
        {"the twelfth line still counts", with(repeatedLine("9:41", 11), "Order Details"),
         "Order Details"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Titles::of(shotOf(c.lines), 60), c.title);
    }
}

TEST(Titles, LongTitlesAreCutToWholeCharacters) {
    // Sixty characters whose 40th is a space.
    const std::string sixty = "Quarterly electricity bill for the flat number 42 in Block C";
    ASSERT_EQ(sixty.size(), 60u);
    const struct {
        const char* name;
        std::string line;
        size_t max;
        std::string title;
    } cases[] = {
        {"cut and trailing space dropped", sixty, 40, "Quarterly electricity bill for the flat…"},
        {"exactly max is left alone", "Order Details", 13, "Order Details"},
        {"one more is cut", "Order Details!", 13, "Order Details…"},
        {"devanagari letters stay whole", "भारत सरकार", 2, "भार…"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Titles::of(shotOf({c.line}), c.max), c.title);
    }
}

} // namespace
