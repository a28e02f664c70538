#pragma once

#include "core/Shot.h"

#include <cstdint>
#include <string>
#include <vector>

namespace lumivale {

// What was read from one picture.
struct Reading {
    std::vector<TextLine> lines;       // in reading order
    std::vector<std::string> barcodes; // distinct kind names ("Aztec", "QR", …), sorted
    int64_t pixelWidth = 0;            // of the picture file; 0 when unknown
    int64_t pixelHeight = 0;
    bool failed = false; // the picture could not be opened, decoded or analysed

    bool operator==(const Reading&) const = default;
};

// The version of the reading procedure, stored on each shot it read.
inline constexpr int64_t readerVersion = 3;

} // namespace lumivale
