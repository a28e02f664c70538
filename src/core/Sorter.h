#pragma once

#include "core/Reading.h"
#include "core/Shelf.h"
#include "core/Shot.h"

#include <map>
#include <string>
#include <vector>

namespace lumivale {

// The sorter's decision for one reading.
struct Verdict {
    Shelf category = Shelf::other;
    double confidence = 0;           // 0 for other, else 0.05 … 1
    std::map<Shelf, double> scores;  // every shelf's final score
    SensitiveKinds flags;

    bool operator==(const Verdict&) const = default;
};

namespace Sorter {

// The least top score that may choose a shelf other than `other`.
inline constexpr double threshold = 4.0;

// Scores every shelf from the words, layout, barcodes and private numbers of a reading.
Verdict sort(const std::vector<std::string>& lines, const std::vector<std::string>& barcodes);

// Writes a reading and its verdict into a shot (lines, search text, sizes, guess, flags,
// reader version); the hand-picked shelf and readAt are left alone.
void apply(const Reading& reading, Shot& shot);

} // namespace Sorter
} // namespace lumivale
