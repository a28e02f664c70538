#include "core/Tally.h"

#include <limits>

namespace lumivale {

Tally::Tally(const std::vector<ShotPtr>& shots) {
    for (const ShotPtr& shot : shots)
        add(*shot);
}

Tally::Tally(std::span<const Shot> shots) {
    for (const Shot& shot : shots)
        add(shot);
}

void Tally::add(const Shot& shot) {
    ++total;
    // Real files cannot add up past 2^63 bytes; sizes from a damaged library file might, and
    // the sum then stays at the largest value rather than wrapping around.
    if (__builtin_add_overflow(bytes, shot.size, &bytes))
        bytes = shot.size > 0 ? std::numeric_limits<int64_t>::max()
                              : std::numeric_limits<int64_t>::min();
    if (!shot.isRead()) {
        ++unread;
        return;
    }
    ++byCategory[shot.category()];
    if (shot.isSensitive()) ++sensitive;
}

int64_t Tally::count(Shelf shelf) const {
    const auto it = byCategory.find(shelf);
    return it == byCategory.end() ? 0 : it->second;
}

} // namespace lumivale
