#include "core/Characters.h"

#include <gtest/gtest.h>

using namespace lumivale;

namespace {

TEST(Characters, CountsAndCutsWhatAReaderSeesAsOneCharacter) {
    const struct {
        std::string text;
        size_t count;
        std::string firstTwo;
    } cases[] = {
        {"", 0, ""},
        {"abc", 3, "ab"},
        {"\r\nab", 3, "\r\na"},                   // a carriage return and line feed pair is one
        {"e\u0301e\u0301x", 3, "e\u0301e\u0301"}, // e with a combining accent
        {"भारत", 3, "भार"},                       // भा र त
        {"👍🏽!", 2, "👍🏽!"},            // an emoji with its skin tone
        {"₹1,250.00", 9, "₹1"},
        // Bytes that are not UTF-8 are characters of their own.
        {"a\xff-", 3, "a\xff"},
        {"\x80\x80", 2, "\x80\x80"},
        {"\xe0\xa4", 1, "\xe0\xa4"}, // a cut-off sequence is one
        {"ok\xc3", 3, "ok"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(characterCount(c.text), c.count);
        EXPECT_EQ(firstCharacters(c.text, 2), c.firstTwo);
        const std::vector<size_t> bounds = characterBounds(c.text);
        EXPECT_EQ(bounds.size(), c.count + 1);
        EXPECT_EQ(bounds.front(), 0u);
        EXPECT_EQ(bounds.back(), c.text.size());
    }
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
    const struct {
        std::string text;
        bool letter, number;
    } cases[] = {{"a", 1, 0}, {"É", 1, 0}, {"भा", 1, 0}, {"字", 1, 0}, {"ß", 1, 0},
                 {"7", 0, 1}, {"٤", 0, 1}, {"½", 0, 1},  {" ", 0, 0},  {"-", 0, 0},
                 {"'", 0, 0}, {"₹", 0, 0}, {"😀", 0, 0},  {"", 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(isLetterCharacter(c.text), c.letter);
        EXPECT_EQ(isNumberCharacter(c.text), c.number);
    }
    EXPECT_TRUE(isNumberCharacter("Ⅻ"));
}

TEST(Characters, TrimmingAndLowering) {
    EXPECT_EQ(trimmed(" \t\u00a0Order\n Details \r\n\u2028"), "Order\n Details");
    EXPECT_EQ(trimmed(" \n "), "");
    EXPECT_EQ(trimmed("\x80 \xc3"), "\x80 \xc3") << "stray bytes are no spaces";
    EXPECT_EQ(trimmedEnd("  a b  \n"), "  a b");
    EXPECT_EQ(trimmedSpacesAndTabs("\t }  "), "}");
    EXPECT_EQ(trimmedSpacesAndTabs(" \n "), "\n");
    EXPECT_EQ(lowered("SubTotal"), "subtotal");
    EXPECT_EQ(lowered("ÉTAGE"), "étage");
}

} // namespace
