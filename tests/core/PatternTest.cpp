#include "core/Pattern.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace lumivale;

namespace {

using Strings = std::vector<std::string>;

TEST(Pattern, FindsExactlyTheseTexts) {
    const struct {
        const Pattern& (*pattern)();
        std::string text;
        Strings expected;
    } cases[] = {
        {&Pattern::money, "Total ₹1,250.00", {"₹1,250.00"}},
        {&Pattern::money, "Rs. 499 only", {"Rs. 499"}},
        {&Pattern::money, "12,50 €", {"12,50 €"}},
        {&Pattern::money, "MRP 1,299.00", {"1,299.00"}},
        {&Pattern::money, "$5 and £7.25", {"$5", "£7.25"}},
        {&Pattern::money, "build 12.30.45", {}},
        {&Pattern::money, "at 10:15", {}},
        {&Pattern::money, "12.50%", {}},
        {&Pattern::money, "Hrs 12", {}},
        {&Pattern::percentOff, "Flat 50% off", {"50% off"}},
        {&Pattern::percentOff, "20 % OFF today", {"20 % OFF"}},
        {&Pattern::percentOff, "100% off", {"00% off"}},
        {&Pattern::percentOff, "50% oFF", {}},
        {&Pattern::percentOff, "battery 50%", {}},
        {&Pattern::airportPair, "DEL → BOM", {"DEL → BOM"}},
        {&Pattern::airportPair, "JFK to LHR", {"JFK to LHR"}},
        {&Pattern::airportPair, "DEL ✈ BOM", {"DEL ✈ BOM"}},
        {&Pattern::airportPair, "MAA – CCU, GOI—PNQ", {"MAA – CCU", "GOI—PNQ"}},
        {&Pattern::airportPair, "del → bom", {}},
        {&Pattern::airportPair, "DELHI to MUMBAI", {}},
        {&Pattern::duration, "2 HR", {"2 HR"}},
        {&Pattern::duration, "1 hr 20 mins", {"1 hr", "20 mins"}},
        {&Pattern::duration, "3h", {"3h"}},
        {&Pattern::duration, "1200 min", {}},
        {&Pattern::duration, "5 minutes", {}},
        {&Pattern::distance, "3.5 km", {"3.5 km"}},
        {&Pattern::distance, "in 200 m turn", {"200 m"}},
        {&Pattern::distance, "2,4 mi", {"2,4 mi"}},
        {&Pattern::distance, "3.5 KM", {}},
        {&Pattern::distance, "10 minutes", {}},
        {&Pattern::timeStamp, "21:05 ✓✓", {"21:05 ✓✓"}},
        {&Pattern::timeStamp, "10.30 pm", {"10.30 pm"}},
        {&Pattern::timeStamp, "7:05 a.m.", {"7:05 a.m."}},
        {&Pattern::timeStamp, "see you 9:41", {" 9:41"}},
        {&Pattern::timeStamp, "9:41 Wed", {}},
        {&Pattern::timeStamp, "24:00", {}},
        {&Pattern::timeStamp, "at9:41", {}},
        {&Pattern::identifier, "let userName = max_count", {"userName", "max_count"}},
        {&Pattern::identifier, "HelloWorld", {}},
        {&Pattern::identifier, "item2Count", {}},
        {&Pattern::identifier, "fooBar2 x_1", {"fooBar2", "x_1"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(c.pattern().matches(c.text), c.expected);
        EXPECT_EQ(c.pattern().count(c.text), c.expected.size());
        EXPECT_EQ(c.pattern().contains(c.text), !c.expected.empty());
        EXPECT_EQ(c.pattern().firstMatch(c.text),
                  c.expected.empty() ? std::nullopt : std::optional(c.expected.front()));
    }
}

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
