#include "reading/GrayImage.h"

#include "reading/VipsHandles.h"

namespace lumivale {

std::optional<GrayImage> pixelsOf(VipsImage* image) {
    if (vips_image_get_bands(image) != 1 || vips_image_get_format(image) != VIPS_FORMAT_UCHAR)
        return std::nullopt;
    GrayImage result{image->Xsize, image->Ysize, {}};
    result.pixels.resize(size_t(result.width) * size_t(result.height));
    VipsRef<VipsImage> target(vipsImageOf(result));
    if (!target || vips_image_write(image, target.get())) {
        vips_error_clear();
        return std::nullopt;
    }
    return result;
}

VipsImage* vipsImageOf(const GrayImage& image) {
    return vips_image_new_from_memory(image.pixels.data(), image.pixels.size(), image.width,
                                      image.height, 1, VIPS_FORMAT_UCHAR);
}

} // namespace lumivale
