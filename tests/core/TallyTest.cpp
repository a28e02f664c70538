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

// A shot stands on its hand-picked shelf, else on the guessed one; it is private on the IDs shelf
// or with any flag. Unread shots stand on no shelf and are never private.
TEST(TallyTest, CountsEachReadShotOnItsShelfAndThePrivateOnes) {
    using enum SensitiveKind;
    const struct {
        const char* what;
        Shot shot;
        std::map<Shelf, int64_t> shelf;
        bool sensitive;
    } cases[] = {
        {"guessed", shotOf(10, true, bills), {{bills, 1}}, false},
        {"by hand wins", shotOf(20, true, bills, chats), {{chats, 1}}, false},
        {"IDs guessed", shotOf(30, true, ids), {{ids, 1}}, true},
        {"other by hand with a flag", shotOf(40, true, ids, other, {taxID}), {{other, 1}}, true},
        {"IDs by hand", shotOf(50, true, maps, ids), {{ids, 1}}, true},
        {"any flag", shotOf(60, true, code, std::nullopt, {cardNumber}), {{code, 1}}, true},
        {"unread", shotOf(70, false, ids, std::nullopt, {cardNumber}), {}, false},
    };
    std::vector<ShotPtr> all;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const Tally one{std::span(&c.shot, 1)};
        EXPECT_EQ(one.byCategory, c.shelf);
        EXPECT_EQ(one.sensitive, c.sensitive);
        all.push_back(std::make_shared<const Shot>(c.shot));
    }
    const Tally tally(all);
    EXPECT_EQ(std::tuple(tally.total, tally.sensitive, tally.unread, tally.bytes),
              std::tuple(7, 4, 1, 280));
    EXPECT_EQ(std::tuple(tally.count(ids), tally.count(maps)), std::tuple(2, 0));
    EXPECT_EQ(Tally(std::vector<ShotPtr>{}), Tally());

    const std::vector<Shot> huge(2, shotOf(std::numeric_limits<int64_t>::max(), false, other));
    EXPECT_EQ(Tally(std::span<const Shot>(huge)).bytes, std::numeric_limits<int64_t>::max())
        << "sizes from a damaged library do not wrap around";
}

} // namespace
} // namespace lumivale
