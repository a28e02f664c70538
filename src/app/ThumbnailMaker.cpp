#include "app/ThumbnailMaker.h"

// libvips (through GLib) must come before Qt, whose "signals" keyword GLib uses as a name.
#include "reading/VipsHandles.h"

#include <QImage>

namespace lumivale {

namespace {

// The size of the picture as shown, upright; 0 × 0 when its header cannot be read.
QSize uprightSizeOf(const std::string& picture) {
    VipsRef<VipsSource> source(vips_source_new_from_file(picture.c_str()));
    VipsRef<VipsImage> header(source ? vips_image_new_from_source(source.get(), "", nullptr)
                                     : nullptr);
    if (!header) return {};
    const QSize size(vips_image_get_width(header.get()), vips_image_get_height(header.get()));
    int orientation = 1;
    if (vips_image_get_typeof(header.get(), VIPS_META_ORIENTATION))
        vips_image_get_int(header.get(), VIPS_META_ORIENTATION, &orientation);
    return orientation >= 5 && orientation <= 8 ? size.transposed() : size;
}

// The pixels of an upright, reduced libvips picture as 8-bit sRGB, with alpha if it has one.
QImage toQImage(VipsImage* thumbnail) {
    VipsImage* out = nullptr;
    if (vips_colourspace(thumbnail, &out, VIPS_INTERPRETATION_sRGB, nullptr)) return {};
    VipsRef<VipsImage> rgb(out);
    if (vips_cast_uchar(rgb.get(), &out, nullptr)) return {};
    rgb.reset(out);
    const int bands = vips_image_get_bands(rgb.get());
    if (bands != 3 && bands != 4) return {};
    size_t length = 0;
    void* pixels = vips_image_write_to_memory(rgb.get(), &length);
    if (!pixels) return {};
    const int width = vips_image_get_width(rgb.get()), height = vips_image_get_height(rgb.get());
    const QImage wrapped(static_cast<const uchar*>(pixels), width, height, width * bands,
                         bands == 4 ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    // In the form Qt paints fastest, owning its own pixels.
    QImage image = wrapped.convertToFormat(bands == 4 ? QImage::Format_ARGB32_Premultiplied
                                                      : QImage::Format_RGB32);
    g_free(pixels);
    return image;
}

} // namespace

QImage makeThumbnail(const std::string& picture, int longestSide) {
    if (!vipsStarted()) return {};
    QImage image;
    const QSize original = uprightSizeOf(picture);
    // A source, not a file name: libvips would read "[…]" in a file name as load options.
    VipsRef<VipsSource> source(original.isEmpty() ? nullptr
                                                  : vips_source_new_from_file(picture.c_str()));
    VipsImage* out = nullptr;
    if (source && vips_thumbnail_source(source.get(), &out, longestSide, "height", longestSide,
                                        "size", VIPS_SIZE_DOWN, nullptr) == 0) {
        VipsRef<VipsImage> thumbnail(out);
        image = toQImage(thumbnail.get());
    }
    vips_error_clear();
    if (!image.isNull()) {
        image.setText("Thumb::Image::Width", QString::number(original.width()));
        image.setText("Thumb::Image::Height", QString::number(original.height()));
    }
    return image;
}

} // namespace lumivale
