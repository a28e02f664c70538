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

// `n` status-bar lines, then `last`.
Lines clockLinesThen(size_t n, const std::string& last) {
    Lines lines(n, "9:41");
    lines.push_back(last);
    return lines;
}

TEST(Titles, FirstLineThatReadsLikeATitleCutToWholeCharacters) {
    const struct {
        const char* name;
        Lines lines;
        std::optional<std::string> title;
        size_t max = 60;
    } cases[] = {
        {"chrome is skipped", {"9:41", "100%", "LTE", "Back", "Order Details"}, "Order Details"},
        {"chrome must fill the line", {"< Back", "Settings"}, "< Back"},
        {"chrome has its case: an upper-case button is a heading", {"Done", "DONE"}, "DONE"},
        // A line that ends in a clock time is chrome up to eleven characters.
        {"ends in a time", {"10:30 PM", "Mom 9:41", "Lunch 12:30", "Lunch: 12:30"}, "Lunch  12 30"},
        {"too short or without letters", {"ab", "12345", "€ 40", "Hi!"}, "Hi!"},
        {"trimmed", {" \t\u00a0Order #12 \u2028\n"}, "Order #12"},
        {"cleaned for a file name",
         {"Brew & Café 12/03/2024 10:30"},
         "Brew & Café 12-03-2024 10 30"},
        // Colons become spaces, which must not leave a title of nothing but "…".
        {"colons at the ends", {":::::::::: Order: 12 ::"}, "Order  12"},
        {"colons longer than the title", {std::string(49, ':') + " Masala tea"}, "Masala tea", 40},
        {"breaks become spaces", {"Trip to\n\nGoa\r\nDay 2"}, "Trip to Goa Day 2"},
        {"only the first twelve lines", clockLinesThen(12, "Order Details"), std::nullopt},
        {"the twelfth line still counts", clockLinesThen(11, "Order Details"), "Order Details"},
        // The 40th character is a space.
        {"cut and trailing space dropped",
         {"Quarterly electricity bill for the flat number 42 in Block C"},
         "Quarterly electricity bill for the flat…",
         40},
        {"exactly max is left alone", {"Order Details"}, "Order Details", 13},
        {"one more is cut", {"Order Details!"}, "Order Details…", 13},
        {"devanagari letters stay whole", {"भारत सरकार"}, "भार…", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Titles::of(shotOf(c.lines), c.max), c.title);
    }
}

} // namespace
