#pragma once
// Draws test pictures with libvips: grounds, panels, text in real fonts and barcode modules,
// saved in any format libvips writes.

#include "reading/Preparation.h"
#include "reading/VipsHandles.h"

#include <ZXing/BitMatrixIO.h>
#include <ZXing/MultiFormatWriter.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumivale::test {

// One value per band: three for colour, a fourth for opacity.
using Colour = std::vector<double>;
inline const Colour white{255, 255, 255}, black{0, 0, 0};

class Canvas {
  public:
    // A picture with as many bands as `ground` has values.
    Canvas(int width, int height, const Colour& ground) {
        static const bool started = VIPS_INIT("lumivale-test") == 0;
        if (!started) throw std::runtime_error("libvips does not start");
        VipsImage* blank = nullptr;
        vips_black(&blank, width, height, "bands", int(ground.size()), nullptr);
        VipsRef<VipsImage> owned(blank);
        VipsRef<VipsImage> tinted(
            vips_image_new_from_image(blank, ground.data(), int(ground.size())));
        image_.reset(vips_image_copy_memory(tinted.get()));
    }

    Canvas& rect(Colour c, int x, int y, int w, int h) {
        vips_draw_rect(image_.get(), c.data(), int(c.size()), x, y, w, h, "fill", TRUE, nullptr);
        return *this;
    }

    // One line of text, its top-left corner at x, y, in a Pango font ("Liberation Sans 20":
    // 20 pixels); returns the height of the drawn line.
    int text(Colour c, int x, int y, const std::string& font, const std::string& line) {
        VipsImage* mask = nullptr;
        if (vips_text(&mask, line.c_str(), "font", font.c_str(), "dpi", 72, nullptr))
            throw std::runtime_error("cannot draw text: " + std::string(vips_error_buffer()));
        VipsRef<VipsImage> owned(mask);
        vips_draw_mask(image_.get(), c.data(), int(c.size()), mask, x, y, nullptr);
        return mask->Ysize;
    }

    // Black modules ('#' in `rows`, rows ending in '\n') of `module` pixels, from x, y.
    Canvas& modules(const std::string& rows, int x, int y, int module) {
        int column = 0, row = 0;
        for (char c : rows) {
            if (c == '#') rect(black, x + column * module, y + row * module, module, module);
            column = c == '\n' ? 0 : column + 1;
            row += c == '\n';
        }
        return *this;
    }

    // A barcode made by the detector's own writer, at `module` pixels per module.
    Canvas& barcode(ZXing::BarcodeFormat format, const std::string& content, int x, int y,
                    int module) {
        const auto matrix = ZXing::MultiFormatWriter(format).setMargin(0).encode(content, 0, 0);
        return modules(ZXing::ToString(matrix, '#', '.', false), x, y, module);
    }

    // The picture turned a quarter anticlockwise and tagged with EXIF orientation 6, so that
    // viewers turn it back: stored sideways, shown upright.
    Canvas& storeSideways() {
        VipsImage* turned = nullptr;
        if (vips_rot(image_.get(), &turned, VIPS_ANGLE_D270, nullptr))
            throw std::runtime_error("cannot turn the picture");
        VipsRef<VipsImage> owned(turned);
        image_.reset(vips_image_copy_memory(turned));
        vips_image_set_int(image_.get(), VIPS_META_ORIENTATION, 6);
        return *this;
    }

    // Saves in the format of the file name's extension, converted into `space` when one is
    // given; false when libvips cannot.
    bool save(const std::string& path, std::optional<VipsInterpretation> space = {}) const {
        VipsImage* out = nullptr;
        if (space && vips_colourspace(image_.get(), &out, *space, nullptr)) return false;
        VipsRef<VipsImage> converted(out);
        const bool saved =
            vips_image_write_to_file(out ? out : image_.get(), path.c_str(), nullptr) == 0;
        vips_error_clear();
        return saved;
    }

    GrayImage grey() const {
        VipsImage* out = nullptr;
        vips_colourspace(image_.get(), &out, VIPS_INTERPRETATION_B_W, nullptr);
        VipsRef<VipsImage> grey(out);
        vips_cast_uchar(out, &out, nullptr);
        VipsRef<VipsImage> bytes(out);
        return pixelsOf(bytes.get()).value();
    }

  private:
    VipsRef<VipsImage> image_;
};

} // namespace lumivale::test
