#pragma once

// What the fuzz targets share: the input as a file for the readers that take a path, and as
// lines of text for those that take what a picture said.

#include "core/Shot.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace lumivale::fuzz {

// A file in memory holding exactly the input, named by a path the readers can open.
inline std::string asFile(const uint8_t* data, size_t size) {
    static const int fd = memfd_create("lumivale-fuzz", MFD_CLOEXEC);
    if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size))
        abort();
    return "/proc/self/fd/" + std::to_string(fd);
}

// The input's lines, split at line feeds.
inline std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    for (size_t start = 0; start <= text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        lines.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

// A read shot whose lines are the input's, stacked from the top like a screen's.
inline Shot shotOf(std::string_view text) {
    Shot shot("/home/me/Pictures/Screenshots/Screenshot.png", 1000, Date{}, Date{});
    std::vector<TextLine> lines;
    float y = 0.95f;
    for (std::string& line : linesOf(text)) {
        lines.push_back({std::move(line), 0.05f, y, 0.6f, 0.03f});
        y = y > 0.05f ? y - 0.04f : 0.05f;
    }
    shot.setLines(std::move(lines));
    shot.readAt = Date{};
    return shot;
}

} // namespace lumivale::fuzz
