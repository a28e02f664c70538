#include "core/Tally.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <vector>

namespace lumivale {
namespace {

struct Spec {
    bool read;
    Shelf guess;
    std::optional<Shelf> manual = std::nullopt;
    SensitiveKinds flags = {};
    int64_t size = 1000;
};

Shot makeShot(const Spec& spec, int index) {
    Shot shot("/p/" + std::to_string(index) + ".png", spec.size, {}, {});
    if (spec.read) shot.readAt = dateFromSeconds(1717000000);
    shot.guess = spec.guess;
    shot.manual = spec.manual;
    shot.flags = spec.flags;
    return shot;
}

TEST(TallyTest, CountsOnePass) {
    struct Case {
        const char* what;
        std::vector<Spec> shots;
        std::map<Shelf, int64_t> byCategory;
        int64_t total, sensitive, unread, bytes;
    };
    const std::vector<Case> cases = {
        {"nothing", {}, {}, 0, 0, 0, 0},
        {"a mix",
         {{true, Shelf::bills, std::nullopt, {}, 10},
          {true, Shelf::bills, std::nullopt, {SensitiveKind::bankAccount}, 20},
          {true, Shelf::ids, Shelf::other, {}, 30},
          {false, Shelf::other, std::nullopt, {}, 40},
          {true, Shelf::maps, std::nullopt, {}, 50}},
         {{Shelf::bills, 2}, {Shelf::other, 1}, {Shelf::maps, 1}},
         5,
         1,
         1,
         150},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<Shot> shots;
        std::vector<ShotPtr> pointers;
        for (size_t i = 0; i < c.shots.size(); ++i) {
            shots.push_back(makeShot(c.shots[i], static_cast<int>(i)));
            pointers.push_back(std::make_shared<const Shot>(shots.back()));
        }
        const Tally tally{std::span<const Shot>(shots)};
        EXPECT_EQ(tally.byCategory, c.byCategory);
        EXPECT_EQ(tally.total, c.total);
        EXPECT_EQ(tally.sensitive, c.sensitive);
        EXPECT_EQ(tally.unread, c.unread);
        EXPECT_EQ(tally.bytes, c.bytes);
        EXPECT_EQ(Tally(pointers), tally);

        int64_t shelved = 0;
        for (Shelf shelf : allShelves) {
            const auto it = c.byCategory.find(shelf);
            EXPECT_EQ(tally.count(shelf), it == c.byCategory.end() ? 0 : it->second);
            shelved += tally.count(shelf);
        }
        EXPECT_EQ(shelved + tally.unread, tally.total);
    }
}

TEST(TallyTest, BytesFromADamagedLibraryDoNotWrapAround) {
    const int64_t most = std::numeric_limits<int64_t>::max();
    const std::vector<Shot> shots = {makeShot({false, Shelf::other, {}, {}, most}, 0),
                                     makeShot({false, Shelf::other, {}, {}, most}, 1)};
    EXPECT_EQ(Tally(std::span<const Shot>(shots)).bytes, most);
}

} // namespace
} // namespace lumivale
