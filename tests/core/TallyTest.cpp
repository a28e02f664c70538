#include "core/Tally.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <tuple>
#include <vector>

namespace lumivale {
namespace {

using enum Shelf;

Shot shotOf(int64_t size, bool read, Shelf guess, std::optional<Shelf> manual = std::nullopt,
            SensitiveKinds flags = {}) {
    Shot shot("/p/" + std::to_string(size) + ".png", size, {}, {});
    if (read) shot.readAt = dateFromSeconds(1717000000);
    shot.guess = guess;
    shot.manual = manual;
    shot.flags = flags;
    return shot;
}

TEST(TallyTest, CountsOnePass) {
    const std::vector<Shot> shots = {
        shotOf(10, true, bills),
        shotOf(20, true, bills, std::nullopt, {SensitiveKind::bankAccount}),
        shotOf(30, true, ids, other), // the hand-picked shelf counts, and makes it not private
        shotOf(40, false, ids, std::nullopt, {SensitiveKind::cardNumber}), // unread: no shelf
        shotOf(50, true, maps)};
    const Tally tally{std::span<const Shot>(shots)};
    EXPECT_EQ(tally.byCategory, (std::map<Shelf, int64_t>{{bills, 2}, {other, 1}, {maps, 1}}));
    EXPECT_EQ(std::tuple(tally.total, tally.sensitive, tally.unread, tally.bytes),
              std::tuple(5, 1, 1, 150));
    EXPECT_EQ(std::tuple(tally.count(bills), tally.count(ids)), std::tuple(2, 0));
    std::vector<ShotPtr> pointers;
    for (const Shot& shot : shots)
        pointers.push_back(std::make_shared<const Shot>(shot));
    EXPECT_EQ(Tally(pointers), tally);
    EXPECT_EQ(Tally(std::vector<ShotPtr>{}), Tally());

    const std::vector<Shot> huge(2, shotOf(std::numeric_limits<int64_t>::max(), false, other));
    EXPECT_EQ(Tally(std::span<const Shot>(huge)).bytes, std::numeric_limits<int64_t>::max())
        << "sizes from a damaged library do not wrap around";
}

} // namespace
} // namespace lumivale
