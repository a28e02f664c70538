#pragma once

#include "core/Shelf.h"
#include "core/Shot.h"

#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace lumivale {

// Counts over a set of shots, as the sidebar and the overview show them. Unread shots count
// toward the total, the bytes and the unread, but sit on no shelf and are never private.
struct Tally {
    std::map<Shelf, int64_t> byCategory; // read shots per shelf; no entry for an empty shelf
    int64_t total = 0;
    int64_t sensitive = 0; // read shots that are private
    int64_t unread = 0;
    int64_t bytes = 0;

    Tally() = default;
    // Counts every shot (none null).
    explicit Tally(const std::vector<ShotPtr>& shots);
    // Counts every shot.
    explicit Tally(std::span<const Shot> shots);

    // Counts one more shot.
    void add(const Shot& shot);
    // The number of read shots on the shelf, 0 when there are none.
    int64_t count(Shelf shelf) const;

    bool operator==(const Tally&) const = default;
};

} // namespace lumivale
