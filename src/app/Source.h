#pragma once

#include <string>

namespace lumivale {

// One folder that is read.
struct Source {
    enum class Kind { screenshots, added, archive };

    std::string path;
    Kind kind = Kind::added;
    bool enabled = true;  // false when the user switched it off
    bool readable = true; // it could be listed at the last scan

    bool operator==(const Source&) const = default;
};

} // namespace lumivale
