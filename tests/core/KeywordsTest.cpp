#include "core/Keywords.h"

#include <gtest/gtest.h>
#include <string>

using namespace lumivale;

namespace {

TEST(Keywords, EveryShelfHasItsListOfTheRightLength) {
    const struct {
        Shelf shelf;
        size_t length;
    } cases[] = {
        {Shelf::ids, 56},  {Shelf::bills, 58},    {Shelf::tickets, 49}, {Shelf::chats, 24},
        {Shelf::code, 49}, {Shelf::shopping, 50}, {Shelf::maps, 39},
    };
    ASSERT_EQ(Keywords::raw().size(), 8u);
    ASSERT_EQ(Keywords::table().size(), 8u);
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(shelfId(c.shelf)));
        const std::vector<Keyword>& list = Keywords::raw().at(c.shelf);
        ASSERT_EQ(list.size(), c.length);
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
        }
    }
}

TEST(WordText, KeepsLettersAndNumbersAndTurnsEveryOtherRunIntoOneSpace) {
    const struct {
        std::string in, out;
    } cases[] = {
        {"driver's license", " driver s license "},
        {"Valid-thru: 12/29", " valid thru 12 29 "},
        {"CAFÉ — Menu", " cafe menu "},
        {"ＡＢＣ１２３", " abc123 "},
        {"Boarding Pass\nDEL → BOM", " boarding pass del bom "},
        {"٤٥ items", " ٤٥ items "},
        {"😀 ok 👍🏽", " ok "},
        {"", " "},
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

} // namespace
