#pragma once

#include "core/Shot.h"

#include <optional>
#include <string>
#include <vector>

namespace lumivale {

// One fact pulled out of a screenshot's text ("Total", "₹1,008.00").
struct Fact {
    std::string label;
    std::string value;

    bool operator==(const Fact&) const = default;
    auto operator<=>(const Fact&) const = default;
};

namespace Facts {

// The facts of a shot for its shelf: PNR, booking, flight, total, reference, date, holds.
std::vector<Fact> of(const Shot& shot);

// The total of a bill from its lines, or nothing.
std::optional<std::string> total(const std::vector<std::string>& lines);

} // namespace Facts
} // namespace lumivale
