#pragma once

// Binary property lists put together by hand, so tests can leave keys out, mistype them or make
// a container hold itself: files that this program's writers never make.

#include "core/Plist.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace lumivale::test {

// A writer that knows the number the next object gets: every object goes through `note`.
struct PlistBuilder {
    plist::Writer writer;
    plist::Ref newest = 0;
    plist::Ref note(plist::Ref r) { return newest = std::max(newest, r), r; }
};
// Writes one value; an empty Put stands for the container that holds it.
using Put = std::function<plist::Ref(PlistBuilder&)>;
using Entries = std::vector<std::pair<std::string, Put>>;

template <class T> Put value(T v) {
    return [v](PlistBuilder& b) {
        if constexpr (std::is_same_v<T, bool>)
            return b.note(b.writer.boolean(v));
        else if constexpr (std::is_same_v<T, double>)
            return b.note(b.writer.real(v));
        else if constexpr (std::is_same_v<T, Date>)
            return b.note(b.writer.date(v));
        else if constexpr (std::is_integral_v<T>)
            return b.note(b.writer.integer(v));
        else
            return b.note(b.writer.string(v));
    };
}

inline Put array(std::vector<Put> items) {
    return [items](PlistBuilder& b) {
        std::vector<plist::Ref> refs;
        for (const Put& item : items)
            refs.push_back(item ? item(b) : 0);
        const plist::Ref self = b.newest + 1;
        for (size_t i = 0; i < items.size(); ++i)
            if (!items[i]) refs[i] = self;
        EXPECT_EQ(b.note(b.writer.array(refs)), self);
        return self;
    };
}

inline Put dict(Entries entries) {
    return [entries](PlistBuilder& b) {
        std::vector<std::pair<plist::Ref, plist::Ref>> refs;
        for (const auto& [key, item] : entries)
            refs.emplace_back(0, item ? item(b) : 0);
        for (size_t i = 0; i < entries.size(); ++i)
            refs[i].first = b.note(b.writer.key(entries[i].first));
        const plist::Ref self = b.newest + 1;
        for (size_t i = 0; i < entries.size(); ++i)
            if (!entries[i].second) refs[i].second = self;
        EXPECT_EQ(b.note(b.writer.dict(refs)), self);
        return self;
    };
}

// `entries` with `key` set to `put`, or left out when `put` is `drop`.
inline Entries with(Entries entries, const std::string& key, std::optional<Put> put) {
    std::erase_if(entries, [&](const auto& e) { return e.first == key; });
    if (put) entries.emplace_back(key, *put);
    return entries;
}
inline const std::nullopt_t drop = std::nullopt;

// The file whose top object `top` writes.
inline std::string fileOf(const Put& top) {
    PlistBuilder b;
    return b.writer.finish(top(b));
}

} // namespace lumivale::test
