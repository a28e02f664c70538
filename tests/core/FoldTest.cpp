#include "core/Fold.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace lumivale {
namespace {

struct Case {
    const char* what;
    std::string input;
    std::string expected;
};

const std::vector<Case> foldCases = {
    {"empty", "", ""},
    {"accents on capitals", "CAFÉ", "cafe"},
    {"a combining accent", "Cafe\u0301", "cafe"},
    {"Vietnamese stacked marks", "Ảnh màn hình", "anh man hinh"},
    {"a stroke is a letter, not an accent", "Đà Nẵng", "đa nang"},
    {"sharp s folds to ss", "Straße STRAẞE", "strasse strasse"},
    {"full-width letters and digits", "ＡＢＣ１２３", "abc123"},
    {"ideographic space", "a\u3000b", "a b"},
    {"half-width katakana", "ｶﾀｶﾅ", "カタカナ"},
    {"half-width voiced mark goes like an accent", "ｶﾞｲﾄﾞ", "カイト"},
    {"Cyrillic capitals", "ПРИВЕТ Мир", "привет мир"},
    {"Cyrillic diaeresis and breve", "Ёлка Йошкар", "елка иошкар"},
    {"Greek capitals with final sigma", "ΟΔΥΣΣΕΎΣ", "οδυσσευσ"},
    {"Greek breathing and circumflex", "Ἀθῆναι", "αθηναι"},
    {"Devanagari vowel signs are spacing and stay", "किताब", "किताब"},
    {"Devanagari nukta, precomposed", "फ़ोन", "फोन"},
    {"Turkish dotted capital I", "İstanbul", "istanbul"},
    {"Turkish dotless i stays", "ılık", "ılık"},
    {"letter ligatures are lowered, not split", "Ĳssel ǄEMAL Æsir Œuvre", "ĳssel ǆemal æsir œuvre"},
    {"fi ligature spelled out by case folding", "ﬁle", "file"},
    {"other compatibility forms stay", "x² ½ ① ™", "x² ½ ① ™"},
    {"no-break spaces stay", "1\u00A0250\u202F000", "1\u00A0250\u202F000"},
    {"line feeds stay", "One\nTWO\n", "one\ntwo\n"},
    {"invalid UTF-8 becomes a replacement character",
     "a\xFF"
     "B",
     "a\uFFFDb"},
};

// Each line is folded on its own: search finds the file name in a search text by its line feeds.
TEST(FoldTest, FoldsCaseAccentsAndWidthLineByLine) {
    for (size_t i = 0; i < foldCases.size(); ++i) {
        const Case& c = foldCases[i];
        const Case& next = foldCases[(i + 1) % foldCases.size()];
        SCOPED_TRACE(c.what);
        EXPECT_EQ(foldText(c.input), c.expected);
        EXPECT_EQ(foldText(c.expected), c.expected) << "folding twice changes nothing";
        EXPECT_EQ(foldText(c.input + "\n" + next.input), c.expected + "\n" + next.expected);
    }
}

TEST(FoldTest, DropsSeparatorsBetweenDigitsOnly) {
    const std::vector<Case> cases = {
        {"no digits at all", "a, b and c", "a, b and c"},
        {"grouping comma", "1,250", "1250"},
        {"grouping space", "1 250", "1250"},
        {"Indian grouping", "1,25,000", "125000"},
        {"no-break space", "1\u00A0250", "1250"},
        {"narrow no-break space", "1\u202F250", "1250"},
        {"digit on one side only", "12, 34x", "12, 34x"},
        {"two separators in a row", "1,,2 3 ,4", "1,,23 ,4"},
        {"leading and trailing separators", ",1,2, 3 4 ", ",12, 34 "},
        {"decimal point is no separator", "1.250,50", "1.25050"},
        {"tab and line feed are no separators", "1\t2\n3", "1\t2\n3"},
        {"Arabic-Indic digits are numeric", "١,٢٣٤", "١٢٣٤"},
        {"fractions are numeric", "½ 1", "½1"},
        {"several numbers in a text", "Total 1,250.00\nGST 2 250", "Total 1250.00\nGST 2250"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(squash(c.input), c.expected);
        EXPECT_TRUE(isSquashedInPart(c.expected, c.input));
        EXPECT_TRUE(isSquashedInPart(c.input, c.input));
        EXPECT_FALSE(isSquashedInPart(c.expected + "0", c.input));
        EXPECT_FALSE(isSquashedInPart(c.expected.substr(1), c.input));
        EXPECT_FALSE(isSquashedInPart(c.expected.substr(0, c.expected.size() - 1), c.input));
    }
    // A copy may keep some grouped numbers as they were, but no other separator.
    EXPECT_TRUE(isSquashedInPart("1250 2,500", "1,250 2,500"));
    EXPECT_TRUE(isSquashedInPart("1,250\n2500", "1,250\n2 500"));
    EXPECT_FALSE(isSquashedInPart("1\u00A0250", "1\u202F250"));
    EXPECT_FALSE(isSquashedInPart("1,2", "1 2"));
}

} // namespace
} // namespace lumivale
