#pragma once

#include "core/FileOps.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>

namespace lumivale::test {

// A write(2) that gives out after `budget` bytes, writing pieces of at most `piece` bytes until
// then; the call that gives out reports `error`, or writes nothing and returns 0 when it is 0.
inline WriteCall failingAfter(size_t budget, int error = ENOSPC, size_t piece = SIZE_MAX) {
    auto written = std::make_shared<size_t>(0);
    return [=](int fd, const void* data, size_t length) -> ssize_t {
        if (*written >= budget) {
            errno = error;
            return error ? -1 : 0;
        }
        const ssize_t done = systemWrite(fd, data, std::min({length, budget - *written, piece}));
        if (done > 0) *written += static_cast<size_t>(done);
        return done;
    };
}

} // namespace lumivale::test
