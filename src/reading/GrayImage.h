#pragma once

#include <cstdint>
#include <optional>
#include <vector>

typedef struct _VipsImage VipsImage;

namespace lumivale {

// A picture as 8-bit grey levels, row after row, with no padding.
struct GrayImage {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;

    uint8_t at(int x, int y) const { return pixels[size_t(y) * size_t(width) + size_t(x)]; }
};

// The pixels of a one-band 8-bit libvips image, computed now and written straight into the
// result; nothing when libvips fails (a damaged file fails here, where it is decoded).
std::optional<GrayImage> pixelsOf(VipsImage* image);

// A libvips image over the pixels of `image`, which must outlive it.
VipsImage* vipsImageOf(const GrayImage& image);

} // namespace lumivale
