#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// Layout signs of a reading that words alone miss: chats are short lines stamped with clock
// times, code is dense with brackets and operators; plus counts of money, discounts, airport
// pairs, durations and distances.
struct Shape {
    double chatScore = 0;
    double codeScore = 0;
    int64_t moneyCount = 0;
    bool hasPercentOff = false;
    bool hasAirportPair = false;
    int64_t durationCount = 0;
    int64_t distanceCount = 0;

    Shape() = default;
    // Measures the line texts (in reading order) and the whole text they were joined into.
    Shape(const std::vector<std::string>& lines, std::string_view raw);

    bool operator==(const Shape&) const = default;
};

} // namespace lumivale
