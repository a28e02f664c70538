#include "core/Characters.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace lumivale;

namespace {

TEST(Characters, CountsWhatAReaderSeesAsOneCharacter) {
    const struct {
        std::string text;
        size_t count;
    } cases[] = {
        {"", 0},           {"abc", 3}, {"a\r\nb", 3}, // a carriage return and line feed pair is one
        {"cafe\u0301", 4},                            // e with a combining accent
        {"भारत", 3},                                  // भा र त
        {"👍🏽!", 2},                             // an emoji with its skin tone
        {"₹1,250.00", 9},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(characterCount(c.text), c.count);
        const std::vector<size_t> bounds = characterBounds(c.text);
        EXPECT_EQ(bounds.front(), 0u);
        EXPECT_EQ(bounds.back(), c.text.size());
    }
}

TEST(Characters, FirstCharactersNeverSplitsOne) {
    EXPECT_EQ(firstCharacters("भारत सरकार", 2), "भार");
    EXPECT_EQ(firstCharacters("cafe\u0301s", 4), "cafe\u0301");
    EXPECT_EQ(firstCharacters("abc", 10), "abc");
    EXPECT_EQ(firstCharacters("abc", 0), "");
}

TEST(Characters, DigitsAreCharactersWithADecimalValue) {
    EXPECT_EQ(decimalDigits("١٢-34 ½ x"), "1234");
    EXPECT_EQ(decimalDigits("४१११"), "4111");
    EXPECT_TRUE(isAllDecimalDigits("0123٤"));
    EXPECT_FALSE(isAllDecimalDigits("12 3"));
    EXPECT_FALSE(isAllDecimalDigits("½"));
    EXPECT_FALSE(isAllDecimalDigits(""));
}

TEST(Characters, LettersAndNumbersOfEveryScript) {
    for (std::string letter : {"a", "É", "भा", "字", "ß"}) {
        SCOPED_TRACE(letter);
        EXPECT_TRUE(isLetterCharacter(letter));
        EXPECT_FALSE(isNumberCharacter(letter));
    }
    for (std::string number : {"7", "٤", "½", "Ⅻ"}) {
        SCOPED_TRACE(number);
        EXPECT_TRUE(isNumberCharacter(number));
    }
    for (std::string other : {" ", "-", "'", "₹", "😀", ""}) {
        SCOPED_TRACE(other);
        EXPECT_FALSE(isLetterCharacter(other));
        EXPECT_FALSE(isNumberCharacter(other));
    }
}

TEST(Characters, TrimmingAndLowering) {
    EXPECT_EQ(trimmed(" \t\u00a0Order\n Details \r\n\u2028"), "Order\n Details");
    EXPECT_EQ(trimmed(" \n "), "");
    EXPECT_EQ(trimmedEnd("  a b  \n"), "  a b");
    EXPECT_EQ(trimmedSpacesAndTabs("\t }  "), "}");
    EXPECT_EQ(trimmedSpacesAndTabs(" \n "), "\n");
    EXPECT_EQ(lowered("SubTotal"), "subtotal");
    EXPECT_EQ(lowered("ÉTAGE"), "étage");
}

TEST(Characters, StrayBytesAreCharactersOfTheirOwn) {
    for (std::string broken : {"a\xff"
                               "b",
                               "\xe0\xa4", "\x80\x80", "ok\xc3"}) {
        SCOPED_TRACE(broken);
        const std::vector<size_t> bounds = characterBounds(broken);
        EXPECT_EQ(bounds.front(), 0u);
        EXPECT_EQ(bounds.back(), broken.size());
        EXPECT_TRUE(std::is_sorted(bounds.begin(), bounds.end()));
        EXPECT_LE(firstCharacters(broken, 1).size(), broken.size());
        EXPECT_EQ(trimmed(broken), broken);
    }
}

} // namespace
