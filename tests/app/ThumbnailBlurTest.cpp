#include "app/ThumbnailBlur.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

// The largest difference in grey level between two pixels four apart, across or down: what
// strokes of text would leave.
int detailOf(const QImage& image) {
    constexpr int step = 4;
    int most = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const int grey = qGray(image.pixel(x, y));
            if (x + step < image.width())
                most = std::max(most, std::abs(grey - qGray(image.pixel(x + step, y))));
            if (y + step < image.height())
                most = std::max(most, std::abs(grey - qGray(image.pixel(x, y + step))));
        }
    return most;
}

TEST(ThumbnailBlurTest, LeavesNoDetailToRead) {
    struct Case {
        const char* name;
        QSize size;
        int stripe; // pixels of black, then as many of white
    };
    const Case cases[] = {
        {"fine text", {256, 160}, 2},
        {"large text", {256, 160}, 8},
        {"tall page", {90, 256}, 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QImage sharp(c.size, QImage::Format_RGB32);
        for (int y = 0; y < c.size.height(); ++y)
            for (int x = 0; x < c.size.width(); ++x)
                sharp.setPixel(x, y, (y / c.stripe) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
        const QImage blurred = blurredThumbnail(sharp);
        EXPECT_EQ(blurred.size(), c.size);
        EXPECT_LT(detailOf(blurred), 12) << "from " << detailOf(sharp);
    }
    EXPECT_EQ(blurredThumbnail(QImage(3, 2, QImage::Format_RGB32)).size(), QSize(3, 2));
    EXPECT_TRUE(blurredThumbnail(QImage()).isNull());
}

} // namespace
} // namespace lumivale
