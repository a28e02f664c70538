#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lumivale {

// The first position at or after `from` where `needle` occurs in `text` byte for byte, or
// std::string_view::npos. An empty needle occurs at `from` when `from` is within the text.
// Made for scanning many texts quickly: search runs over every shot's search text.
size_t findText(std::string_view text, std::string_view needle, size_t from = 0);

// A sketch of a text: one bit of 1,024 for each pair of adjacent bytes in it (pairs share bits).
// A needle whose sketch has a bit that a text's lacks is not in that text, which a search can
// tell without reading the text.
using PairSketch = std::array<uint64_t, 16>;
// The sketch of a text that may hold anything.
constexpr PairSketch anyPairs = [] {
    PairSketch all{};
    all.fill(~uint64_t{0});
    return all;
}();

PairSketch sketchPairs(std::string_view text);
// False when `needle` is sure not to be in the text; true when it may be.
bool mayHold(const PairSketch& text, const PairSketch& needle);

// A sketch of how a text's lines begin: one bit of 64 for the first two bytes of each line.
uint64_t sketchLineStarts(std::string_view text);
// The bit that a line beginning with `needle` sets, or 0 for a needle under two bytes long,
// which a sketch cannot rule out.
uint64_t lineStartBit(std::string_view needle);

} // namespace lumivale
