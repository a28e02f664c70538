#include "core/Keywords.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

using namespace lumivale;

namespace {

TEST(Keywords, EveryShelfHasItsListAndTheTableNormalisesItInOrder) {
    using enum Shelf;
    const std::map<Shelf, size_t> lengths = {{ids, 56},  {bills, 58},    {tickets, 49}, {chats, 24},
                                             {code, 49}, {shopping, 50}, {maps, 39},    {other, 0}};
    for (const auto& [shelf, length] : lengths) {
        SCOPED_TRACE(std::string(shelfId(shelf)));
        const std::vector<Keyword>& list = Keywords::raw().at(shelf);
        const std::vector<Keyword>& normalised = Keywords::table().at(shelf);
        ASSERT_EQ(list.size(), length);
        ASSERT_EQ(normalised.size(), length);
        for (size_t i = 0; i < length; ++i)
            EXPECT_EQ(normalised[i], (Keyword{wordText(list[i].text), list[i].weight})) << i;
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
        {"٤٥ items ½", " ٤٥ items ½ "},
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
