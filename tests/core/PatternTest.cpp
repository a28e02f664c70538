#include "core/Pattern.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

using namespace lumivale;

namespace {

using Strings = std::vector<std::string>;

struct MatchCase {
    const char* name;
    const Pattern& (*pattern)();
    std::string text;
    Strings expected;
};

void PrintTo(const MatchCase& c, std::ostream* os) {
    *os << c.name << ": " << c.text;
}

class PatternMatches : public testing::TestWithParam<MatchCase> {};

TEST_P(PatternMatches, FindsExactlyTheseTexts) {
    const MatchCase& c = GetParam();
    EXPECT_EQ(c.pattern().matches(c.text), c.expected) << c.text;
    EXPECT_EQ(c.pattern().count(c.text), c.expected.size());
    EXPECT_EQ(c.pattern().contains(c.text), !c.expected.empty());
    EXPECT_EQ(c.pattern().firstMatch(c.text),
              c.expected.empty() ? std::nullopt : std::optional(c.expected.front()));
}

INSTANTIATE_TEST_SUITE_P(
    Money, PatternMatches,
    testing::Values(MatchCase{"rupees", &Pattern::money, "Total ₹1,250.00", {"₹1,250.00"}},
                    MatchCase{"rs", &Pattern::money, "Rs. 499 only", {"Rs. 499"}},
                    MatchCase{"euroAfter", &Pattern::money, "12,50 €", {"12,50 €"}},
                    MatchCase{"bare", &Pattern::money, "MRP 1,299.00", {"1,299.00"}},
                    MatchCase{"several", &Pattern::money, "$5 and £7.25", {"$5", "£7.25"}},
                    MatchCase{"version", &Pattern::money, "build 12.30.45", {}},
                    MatchCase{"clock", &Pattern::money, "at 10:15", {}},
                    MatchCase{"percent", &Pattern::money, "12.50%", {}},
                    MatchCase{"rsInsideWord", &Pattern::money, "Hrs 12", {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Discounts, PatternMatches,
    testing::Values(MatchCase{"plain", &Pattern::percentOff, "Flat 50% off", {"50% off"}},
                    MatchCase{"spaced", &Pattern::percentOff, "20 % OFF today", {"20 % OFF"}},
                    MatchCase{"threeDigits", &Pattern::percentOff, "100% off", {"00% off"}},
                    MatchCase{"mixedCase", &Pattern::percentOff, "50% oFF", {}},
                    MatchCase{"noOff", &Pattern::percentOff, "battery 50%", {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Airports, PatternMatches,
    testing::Values(
        MatchCase{"arrow", &Pattern::airportPair, "DEL → BOM", {"DEL → BOM"}},
        MatchCase{"to", &Pattern::airportPair, "JFK to LHR", {"JFK to LHR"}},
        MatchCase{"plane", &Pattern::airportPair, "DEL ✈ BOM", {"DEL ✈ BOM"}},
        MatchCase{"dashes", &Pattern::airportPair, "MAA – CCU, GOI—PNQ", {"MAA – CCU", "GOI—PNQ"}},
        MatchCase{"lowerCase", &Pattern::airportPair, "del → bom", {}},
        MatchCase{"longWords", &Pattern::airportPair, "DELHI to MUMBAI", {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    DurationsAndDistances, PatternMatches,
    testing::Values(MatchCase{"hours", &Pattern::duration, "2 HR", {"2 HR"}},
                    MatchCase{"several", &Pattern::duration, "1 hr 20 mins", {"1 hr", "20 mins"}},
                    MatchCase{"glued", &Pattern::duration, "3h", {"3h"}},
                    MatchCase{"tooLong", &Pattern::duration, "1200 min", {}},
                    MatchCase{"minutesWord", &Pattern::duration, "5 minutes", {}},
                    MatchCase{"km", &Pattern::distance, "3.5 km", {"3.5 km"}},
                    MatchCase{"metres", &Pattern::distance, "in 200 m turn", {"200 m"}},
                    MatchCase{"comma", &Pattern::distance, "2,4 mi", {"2,4 mi"}},
                    MatchCase{"caseSensitive", &Pattern::distance, "3.5 KM", {}},
                    MatchCase{"milesInsideWord", &Pattern::distance, "10 minutes", {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    ClockLines, PatternMatches,
    testing::Values(
        MatchCase{"ticks", &Pattern::timeStamp, "21:05 ✓✓", {"21:05 ✓✓"}},
        MatchCase{"dotPm", &Pattern::timeStamp, "10.30 pm", {"10.30 pm"}},
        MatchCase{"amPoints", &Pattern::timeStamp, "7:05 a.m.", {"7:05 a.m."}},
        MatchCase{"endOfChat", &Pattern::timeStamp, "see you 9:41", {" 9:41"}},
        MatchCase{"trailingWord", &Pattern::timeStamp, "9:41 Wed", {}},
        MatchCase{"noHour24", &Pattern::timeStamp, "24:00", {}},
        MatchCase{"glued", &Pattern::timeStamp, "at9:41", {}}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Identifiers, PatternMatches,
    testing::Values(MatchCase{"camelAndSnake",
                              &Pattern::identifier,
                              "let userName = max_count",
                              {"userName", "max_count"}},
                    MatchCase{"upperStart", &Pattern::identifier, "HelloWorld", {}},
                    MatchCase{"digits", &Pattern::identifier, "item2Count", {}},
                    MatchCase{
                        "trailingDigits", &Pattern::identifier, "fooBar2 x_1", {"fooBar2", "x_1"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Pattern, GroupsTakeGroupOneOfMatchesWhereItTookPart) {
    const Pattern p("(a)|b");
    EXPECT_EQ(p.groups("b a b a"), (Strings{"a", "a"}));
    EXPECT_EQ(p.firstGroup("b b a"), "a");
    EXPECT_EQ(p.firstGroup("b b"), std::nullopt);
    EXPECT_TRUE(Pattern::money().groups("₹1,250.00 and $4").empty());
}

TEST(Pattern, MatchesDoNotOverlapAndKeepWholeCharacters) {
    const Pattern digits(R"(\d+)");
    // Digits of every script are \d, and the matches come back as whole UTF-8 characters.
    EXPECT_EQ(digits.matches("₹१२३ and ٤٥, 6"), (Strings{"१२३", "٤٥", "6"}));
    EXPECT_EQ(Pattern("aa").matches("aaaaa"), (Strings{"aa", "aa"}));
}

TEST(Pattern, OneCompiledPatternServesManyThreadsAtOnce) {
    const std::string text = "Cappuccino ₹360.00\nTax ₹48.00\nGrand Total ₹1,008.00";
    const Strings expected = {"₹360.00", "₹48.00", "₹1,008.00"};
    std::vector<int> wrong(4, 0);
    std::vector<std::thread> threads;
    for (size_t t = 0; t < wrong.size(); ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 300; ++i)
                wrong[t] += Pattern::money().matches(text) != expected;
        });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

TEST(PatternDeathTest, AnExpressionThatDoesNotCompileStopsTheProgram) {
    EXPECT_DEATH(Pattern("(unclosed"), "does not compile");
}

} // namespace
