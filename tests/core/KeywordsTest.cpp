#include "core/Keywords.h"

#include <gtest/gtest.h>
#include <string>

using namespace lumivale;

namespace {

TEST(Keywords, EveryShelfHasItsListOfTheRightLength) {
    const struct {
        Shelf shelf;
        size_t length;
        Keyword first, last;
    } cases[] = {
        {Shelf::ids, 56, {"identity card", 5}, {"जन्म तिथि", 4}},
        {Shelf::bills, 58, {"invoice", 4}, {"to", 0}},
        {Shelf::tickets, 49, {"boarding pass", 6}, {"audi", 1}},
        {Shelf::chats, 24, {"delivered", 2}, {"ok", 0.5}},
        {Shelf::code, 49, {"func", 3}, {"class", 1}},
        {Shelf::shopping, 50, {"add to cart", 5}, {"stars", 1}},
        {Shelf::maps, 39, {"directions", 4}, {"arrive", 1}},
    };
    ASSERT_EQ(Keywords::raw().size(), 8u);
    ASSERT_EQ(Keywords::table().size(), 8u);
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(shelfId(c.shelf)));
        const std::vector<Keyword>& list = Keywords::raw().at(c.shelf);
        ASSERT_EQ(list.size(), c.length);
        EXPECT_EQ(list.front(), c.first);
        EXPECT_EQ(list.back(), c.last);
        EXPECT_EQ(Keywords::table().at(c.shelf).size(), c.length);
    }
    EXPECT_TRUE(Keywords::raw().at(Shelf::other).empty());
    EXPECT_TRUE(Keywords::table().at(Shelf::other).empty());
}

TEST(Keywords, TableKeepsOrderAndWeightsAndNormalisesEachText) {
    for (const auto& [shelf, list] : Keywords::raw()) {
        const std::vector<Keyword>& normalised = Keywords::table().at(shelf);
        ASSERT_EQ(normalised.size(), list.size());
        for (size_t i = 0; i < list.size(); ++i) {
            SCOPED_TRACE(list[i].text);
            EXPECT_EQ(normalised[i].text, wordText(list[i].text));
            EXPECT_EQ(normalised[i].weight, list[i].weight);
            // A keyword is a space-bounded run of whole words.
            EXPECT_TRUE(normalised[i].text.starts_with(' ') && normalised[i].text.ends_with(' '));
            EXPECT_EQ(normalised[i].text.find("  "), std::string::npos);
            EXPECT_GT(normalised[i].text.size(), 2u);
        }
    }
}

TEST(Keywords, SameWordMayStandUnderTwoShelves) {
    auto has = [](Shelf s, const std::string& text) {
        for (const Keyword& k : Keywords::table().at(s))
            if (k.text == text) return true;
        return false;
    };
    EXPECT_TRUE(has(Shelf::tickets, " class "));
    EXPECT_TRUE(has(Shelf::code, " class "));
    EXPECT_TRUE(has(Shelf::tickets, " terminal "));
    EXPECT_FALSE(has(Shelf::code, " terminal "));
    EXPECT_TRUE(has(Shelf::bills, " to "));
}

TEST(WordText, KeepsLettersAndNumbersAndTurnsEveryOtherRunIntoOneSpace) {
    const struct {
        std::string in, out;
    } cases[] = {
        {"driver's license", " driver s license "},
        {"e ticket", " e ticket "},
        {"console log", " console log "},
        {"Valid-thru: 12/29", " valid thru 12 29 "},
        {"CAFÉ — Menu", " cafe menu "},
        {"ＡＢＣ１２３", " abc123 "},
        {"...hello!!", " hello "},
        {"Boarding Pass\nDEL → BOM", " boarding pass del bom "},
        {"  tabs\tand\r\nbreaks  ", " tabs and breaks "},
        {"٤٥ items", " ٤٥ items "},
        {"½ off", " ½ off "},
        {"😀 ok 👍🏽", " ok "},
        {"", " "},
        {"!?", " "},
        // Vowel signs and the like stay with their letters.
        {"भारत सरकार", " भारत सरकार "},
        {"आधार/सीमा", " आधार सीमा "},
        // A joiner inside a word is part of its character, not a break between words.
        {"क\u200dष", " क\u200dष "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.in);
        EXPECT_EQ(wordText(c.in), c.out);
    }
}

TEST(WordText, KeywordsMatchOnlyWholeWords) {
    const std::string beta = wordText("Beta version");
    EXPECT_EQ(beta.find(wordText("eta")), std::string::npos);
    EXPECT_NE(wordText("Your ETA: 5 min").find(wordText("eta")), std::string::npos);
}

} // namespace
