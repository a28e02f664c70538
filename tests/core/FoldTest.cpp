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
    {"accents, precomposed or combining", "CAFÉ Cafe\u0301", "cafe cafe"},
    {"sharp s folds to ss", "Straße STRAẞE", "strasse strasse"},
    {"full-width letters, digits and space", "ＡＢＣ１２３\u3000x", "abc123 x"},
    {"half-width katakana, voiced mark gone", "ｶﾞｲﾄﾞ", "カイト"},
    {"Cyrillic capitals, diaeresis and breve", "ПРИВЕТ Ёлка Й", "привет елка и"},
    {"Greek capitals, final sigma and breathing", "ΟΔΥΣΣΕΎΣ Ἀθῆναι", "οδυσσευσ αθηναι"},
    {"Devanagari vowel signs stay, the nukta goes", "किताब फ़ोन", "किताब फोन"},
    {"other compatibility forms stay", "Œuvre x² ½ ①", "œuvre x² ½ ①"},
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
        {"no-break spaces", "1\u00A0250\u202F000", "1250000"},
        {"a digit on one side only", ",1,2, 3 4x, 5,,6 ,7", ",12, 34x, 5,,6 ,7"},
        {"no separators: point, tab, line feed", "1.250\t2\n3", "1.250\t2\n3"},
        {"other scripts' digits and fractions", "١,٢٣٤ ½ 1", "١٢٣٤½1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(squash(c.input), c.expected);
        EXPECT_TRUE(isSquashedInPart(c.expected, c.input));
        EXPECT_FALSE(isSquashedInPart(c.expected + "0", c.input));
    }
    EXPECT_FALSE(isSquashedInPart("a b", "a, b")) << "only separators between numbers may go";
}

} // namespace
} // namespace lumivale
