#include "app/ThumbnailBlur.h"

#include <algorithm>
#include <array>
#include <vector>

namespace lumivale {

namespace {

// Cells this many pixels across hold no readable letter at any thumbnail size.
constexpr int cellsAcross = 12;

// One pass of a box blur along rows (or, with `vertical`, columns) of a 32-bit image.
void boxBlur(QImage& image, int radius, bool vertical) {
    const int lines = vertical ? image.width() : image.height();
    const int length = vertical ? image.height() : image.width();
    std::vector<std::array<int, 4>> line(static_cast<size_t>(length));
    for (int l = 0; l < lines; ++l) {
        auto pixel = [&](int i) -> uchar* {
            return vertical ? image.scanLine(i) + 4 * l : image.scanLine(l) + 4 * i;
        };
        for (int i = 0; i < length; ++i)
            std::copy_n(pixel(i), 4, line[static_cast<size_t>(i)].begin());
        for (int c = 0; c < 4; ++c) {
            // A running sum over the window, the edge pixels repeated beyond the ends.
            auto at = [&](int i) {
                return line[static_cast<size_t>(std::clamp(i, 0, length - 1))][c];
            };
            int sum = 0;
            for (int i = -radius; i <= radius; ++i)
                sum += at(i);
            for (int i = 0; i < length; ++i) {
                pixel(i)[c] = static_cast<uchar>(sum / (2 * radius + 1));
                sum += at(i + radius + 1) - at(i - radius);
            }
        }
    }
}

} // namespace

QImage blurredThumbnail(const QImage& thumbnail) {
    if (thumbnail.isNull()) return {};
    const QImage source = thumbnail.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const int longest = std::max(source.width(), source.height());
    const QSize cells =
        (source.size() * cellsAcross / longest).expandedTo(QSize(1, 1)).boundedTo(source.size());
    // Averaging down to a few cells removes the detail; growing back smoothly and blurring
    // removes the cells' edges.
    QImage blurred = source.scaled(cells, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                         .scaled(source.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const int radius = std::max(1, longest / cellsAcross / 2);
    for (bool vertical : {false, true})
        boxBlur(blurred, radius, vertical);
    return blurred;
}

} // namespace lumivale
