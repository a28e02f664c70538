#pragma once

#include "reading/Preparation.h"

#include <vector>

namespace lumivale::Marks {

// A mark's bounding box, in pixels, edges included.
struct Box {
    int left = 0, top = 0, right = 0, bottom = 0;

    int width() const { return right - left + 1; }
    int height() const { return bottom - top + 1; }
};

// The boxes of the connected marks of a picture: pixels darker than `inkBelow`, joined to
// the ones above, below, left and right of them (not diagonally: small anti-aliased letters
// touch diagonally).
std::vector<Box> find(const GrayImage& image, int inkBelow);

} // namespace lumivale::Marks
