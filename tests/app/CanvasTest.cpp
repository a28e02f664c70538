#include "app/Canvas.h"

#include "AppTestSupport.h"

#include <QFontInfo>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

TEST(CanvasTest, FontsResolveToTheInstalledFamilies) {
    test::ensureQtApp();
    const QFontInfo sans(Canvas::sans(14, QFont::Bold)), mono(Canvas::mono(14));
    EXPECT_EQ(std::tuple(sans.family(), sans.bold(), mono.family()),
              std::tuple(QString("Liberation Sans"), true, QString("DejaVu Sans Mono")));
}

TEST(CanvasTest, OnePointIsTwoPixels) {
    test::ensureQtApp();
    const QImage image = Canvas(100.5, 53, 0x000000).render([](Canvas& c) {
        c.fill(QRectF(10, 5, 20, 10), 0xFF0000);
    });
    EXPECT_EQ(image.size(), QSize(201, 106));
    // The box's corners, and the pixels just beyond them.
    const QRgb red = qRgb(255, 0, 0), ground = qRgb(0, 0, 0);
    EXPECT_EQ(std::vector({image.pixel(20, 10), image.pixel(59, 29), image.pixel(19, 10),
                           image.pixel(60, 29)}),
              std::vector({red, red, ground, ground}));
}

} // namespace
} // namespace lumivale
