#pragma once
// Draws test pictures with libvips: grounds, panels, text in real fonts and barcode modules,
// saved in any format libvips writes.

#include "reading/Preparation.h"
#include "reading/VipsHandles.h"

#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumivale::test {

using Colour = std::array<double, 3>;
inline constexpr Colour white{255, 255, 255}, black{0, 0, 0};

inline void startVips() {
    static const bool started = VIPS_INIT("lumivale-test") == 0;
    if (!started) throw std::runtime_error("libvips does not start");
}

class Canvas {
  public:
    Canvas(int width, int height, Colour ground) {
        startVips();
        VipsImage *blank = nullptr, *tinted = nullptr;
        double one[3] = {1, 1, 1};
        vips_black(&blank, width, height, "bands", 3, nullptr);
        VipsRef<VipsImage> owned(blank);
        vips_linear(blank, &tinted, one, ground.data(), 3, "uchar", TRUE, nullptr);
        VipsRef<VipsImage> bytes(tinted);
        image_.reset(vips_image_copy_memory(tinted));
    }

    int width() const { return image_->Xsize; }
    int height() const { return image_->Ysize; }

    Canvas& rect(Colour c, int x, int y, int w, int h) {
        vips_draw_rect(image_.get(), c.data(), 3, x, y, w, h, "fill", TRUE, nullptr);
        return *this;
    }

    // One line of text, its top-left corner at x, y, in a Pango font ("Liberation Sans 20":
    // 20 pixels); returns the height of the drawn line.
    int text(Colour c, int x, int y, const std::string& font, const std::string& line) {
        VipsImage* mask = nullptr;
        if (vips_text(&mask, line.c_str(), "font", font.c_str(), "dpi", 72, nullptr))
            throw std::runtime_error("cannot draw text: " + std::string(vips_error_buffer()));
        VipsRef<VipsImage> owned(mask);
        vips_draw_mask(image_.get(), c.data(), 3, mask, x, y, nullptr);
        return mask->Ysize;
    }

    // Dark modules ('#' in `rows`, one string per row) of `module` pixels, from x, y.
    Canvas& modules(const std::vector<std::string>& rows, int x, int y, int module) {
        for (size_t r = 0; r < rows.size(); ++r)
            for (size_t c = 0; c < rows[r].size(); ++c)
                if (rows[r][c] == '#')
                    rect(black, x + int(c) * module, y + int(r) * module, module, module);
        return *this;
    }

    // A barcode made by the detector's own writer, at `module` pixels per module.
    Canvas& barcode(ZXing::BarcodeFormat format, const std::string& content, int x, int y,
                    int module) {
        const ZXing::BitMatrix matrix =
            ZXing::MultiFormatWriter(format).setMargin(0).encode(content, 0, 0);
        std::vector<std::string> rows(size_t(matrix.height()),
                                      std::string(size_t(matrix.width()), '.'));
        for (int r = 0; r < matrix.height(); ++r)
            for (int c = 0; c < matrix.width(); ++c)
                if (matrix.get(c, r)) rows[size_t(r)][size_t(c)] = '#';
        return modules(rows, x, y, module);
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

    // Saves in the format of the file name's extension; false when libvips cannot.
    bool save(const std::string& path) const {
        const bool saved = vips_image_write_to_file(image_.get(), path.c_str(), nullptr) == 0;
        vips_error_clear();
        return saved;
    }

    // Saves the picture converted by `convert` (which gives a new image, or nothing).
    template <typename Convert> bool saveConverted(const std::string& path, Convert convert) const {
        VipsRef<VipsImage> converted(convert(image_.get()));
        const bool saved =
            converted && vips_image_write_to_file(converted.get(), path.c_str(), nullptr) == 0;
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
