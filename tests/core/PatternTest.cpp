#include "core/Pattern.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace lumivale;

namespace {

using Strings = std::vector<std::string>;

// A text written with its expected matches in brackets: the text, and those matches.
std::pair<std::string, Strings> unmark(const std::string& marked) {
    std::string text;
    Strings matches;
    bool inside = false;
    for (char c : marked) {
        if (c == '[') matches.emplace_back();
        if (c == '[' || c == ']') {
            inside = c == '[';
            continue;
        }
        text += c;
        if (inside) matches.back() += c;
    }
    return {text, matches};
}

TEST(Pattern, FindsExactlyTheseTexts) {
    const struct {
        const Pattern& pattern;
        Strings marked;
    } cases[] = {
        {Pattern::money(),
         {"Total [₹1,250.00]", "[Rs. 499] only", "[12,50 €]", "MRP [1,299.00]", "[$5] and [£7.25]",
          "build 12.30.45", "at 10:15", "12.50%", "Hrs 12"}},
        {Pattern::percentOff(),
         {"Flat [50% off]", "[20 % OFF] today", "1[00% off]", "50% oFF", "battery 50%"}},
        {Pattern::airportPair(),
         {"[DEL → BOM]", "[JFK to LHR]", "[DEL ✈ BOM]", "[MAA – CCU], [GOI—PNQ]", "del → bom",
          "DELHI to MUMBAI"}},
        {Pattern::duration(), {"[2 HR]", "[1 hr] [20 mins]", "[3h]", "1200 min", "5 minutes"}},
        {Pattern::distance(), {"[3.5 km]", "in [200 m] turn", "[2,4 mi]", "3.5 KM", "10 minutes"}},
        {Pattern::timeStamp(),
         {"[21:05 ✓✓]", "[10.30 pm]", "[7:05 a.m.]", "see you[ 9:41]", "9:41 Wed", "24:00",
          "at9:41"}},
        // Digits of every script are \d, and matches come back as whole UTF-8 characters.
        {Pattern(R"(\d+)"), {"₹[१२३] and [٤٥], [6]"}},
    };
    for (const auto& c : cases)
        for (const std::string& marked : c.marked) {
            SCOPED_TRACE(marked);
            const auto [text, expected] = unmark(marked);
            EXPECT_EQ(c.pattern.matches(text), expected);
            EXPECT_EQ(c.pattern.count(text), expected.size());
        }
}

// The reader sorts on several threads at once, all with the same patterns.
TEST(Pattern, OneCompiledPatternServesManyThreadsAtOnce) {
    const std::string text = "Cappuccino ₹360.00\nTax ₹48.00\nGrand Total ₹1,008.00";
    const Strings expected = {"₹360.00", "₹48.00", "₹1,008.00"};
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 300; ++i)
                wrong += Pattern::money().matches(text) != expected;
        });
    threads.clear(); // joins them
    EXPECT_EQ(wrong, 0);
}

} // namespace
