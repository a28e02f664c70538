#include "core/Tally.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace lumivale {
namespace {

using enum Shelf;

ShotPtr shotOf(int64_t size, bool read, Shelf guess, std::optional<Shelf> manual = std::nullopt,
               SensitiveKinds flags = {}) {
    Shot shot("/p/" + std::to_string(size) + ".png", size, {}, {});
    if (read) shot.readAt = dateFromSeconds(1717000000);
    shot.guess = guess;
    shot.manual = manual;
    shot.flags = flags;
    return std::make_shared<const Shot>(std::move(shot));
}

// A read shot stands on its hand-picked shelf, else on the guessed one; it is private on the IDs
// shelf or with any flag. Unread shots stand on no shelf and are never private.
TEST(TallyTest, CountsEachReadShotOnItsShelfAndThePrivateOnes) {
    using enum SensitiveKind;
    const Tally tally(std::vector<ShotPtr>{
        shotOf(10, true, bills),
        shotOf(20, true, bills, chats),
        shotOf(30, true, ids),
        shotOf(40, true, ids, other, {taxID}),
        shotOf(50, true, maps, ids),
        shotOf(60, true, code, std::nullopt, {cardNumber}),
        shotOf(70, false, ids, std::nullopt, {cardNumber}),
    });
    Tally want;
    want.byCategory = {{bills, 1}, {chats, 1}, {ids, 2}, {other, 1}, {code, 1}};
    want.total = 7;
    want.sensitive = 4;
    want.unread = 1;
    want.bytes = 280;
    EXPECT_EQ(tally, want);
    EXPECT_EQ(tally.count(ids), 2);
    EXPECT_EQ(tally.count(maps), 0);

    const std::vector<Shot> huge(2, *shotOf(std::numeric_limits<int64_t>::max(), false, other));
    EXPECT_EQ(Tally(std::span<const Shot>(huge)).bytes, std::numeric_limits<int64_t>::max())
        << "sizes from a damaged library do not wrap around";
}

} // namespace
} // namespace lumivale
