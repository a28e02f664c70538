#include "app/Canvas.h"

#include "AppTestSupport.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <gtest/gtest.h>

namespace lumivale {
namespace {

// Whether some pixel inside r is the colour c.
bool holds(const QImage& image, const QRect& r, uint32_t c) {
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            if ((image.pixel(x, y) & 0xFFFFFF) == c) return true;
    return false;
}

TEST(CanvasTest, FontsResolveToTheInstalledFamilies) {
    test::ensureQtApp();
    EXPECT_EQ(QFontInfo(Canvas::sans(14, QFont::Bold)).family(), "Liberation Sans");
    EXPECT_TRUE(QFontInfo(Canvas::sans(14, QFont::Bold)).bold());
    EXPECT_EQ(QFontInfo(Canvas::mono(14)).family(), "DejaVu Sans Mono");
    // The symbols Liberation Sans lacks (₹, ★, ✓) come from Noto.
    EXPECT_TRUE(QFontDatabase::families().contains("Noto Sans Symbols2"));
}

TEST(CanvasTest, OnePointIsTwoPixelsWithYDownOnTheBackground) {
    test::ensureQtApp();
    const QImage image = Canvas(100.5, 53, 0x111018).render([](Canvas& c) {
        c.fill(QRectF(10, 5, 20, 10), 0xFF0000);
    });
    ASSERT_EQ(image.size(), QSize(201, 106));
    EXPECT_EQ(image.pixel(20, 10), qRgb(255, 0, 0)); // the box's corners
    EXPECT_EQ(image.pixel(59, 29), qRgb(255, 0, 0));
    for (const QPoint outside : {QPoint(19, 10), QPoint(60, 29), QPoint(20, 30), QPoint(200, 105)})
        EXPECT_EQ(image.pixel(outside), qRgb(0x11, 0x10, 0x18))
            << outside.x() << "," << outside.y();
    EXPECT_TRUE(Canvas(0, 0, 0xFFFFFF).render([](Canvas&) {}).isNull());
}

TEST(CanvasTest, CodeColoursKeywordsTypesStringsNumbersAndAttributes) {
    test::ensureQtApp();
    // Plain white, keywords red, types blue, strings green, numbers yellow, attributes magenta.
    const CodeStyle style{0xFFFFFF, 0xFF0000, 0x0000FF, 0x00FF00, 0xFFFF00, 0xFF00FF, 20};
    const struct {
        QString line;
        std::vector<QString> pieces;
        std::vector<uint32_t> colours;
    } cases[] = {
        {"import SwiftUI", {"import", " ", "SwiftUI"}, {0xFF0000, 0x0000FF}},
        {"@State var 10", {"@State", " ", "var", " ", "10"}, {0xFF00FF, 0xFF0000, 0xFFFF00}},
        {"f(\"a \\\"b\\\" c\")", {"f", "(", "\"a \\\"b\\\" c\"", ")"}, {0x00FF00}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line.toStdString());
        Canvas canvas(400, 40, 0x000000);
        const QImage image = canvas.render([&](Canvas& cv) { cv.code(c.line, 10, 28, style); });
        EXPECT_EQ(canvas.texts(), c.pieces);
        for (uint32_t colour : c.colours)
            EXPECT_TRUE(holds(image, image.rect(), colour)) << std::hex << colour;
    }
}

TEST(CanvasTest, BubblesSitOnTheirOwnSideAndGrowWithTheirText) {
    test::ensureQtApp();
    Canvas canvas(390, 400, 0xFFFFFF);
    double shortBottom = 0, longBottom = 0;
    const QImage image = canvas.render([&](Canvas& c) {
        shortBottom = c.bubble({"Hi", false, "9:41", {}}, 10, 14, 376);
        c.bubble({"Hello there", true, "9:42", {}}, 100, 14, 376);
        longBottom = c.bubble({QString("word ").repeated(40), false, "9:43", "Nela"}, 200, 14, 376);
    });
    EXPECT_GT(shortBottom, 10 + 30);
    EXPECT_GT(longBottom - 200, 3 * (shortBottom - 10)); // wrapped over several lines
    // Another's bubble hugs the left, one's own the right.
    EXPECT_TRUE(holds(image, QRect(30, 24, 10, 10), 0xF0F0F0));
    EXPECT_FALSE(holds(image, QRect(700, 24, 20, 10), 0xF0F0F0));
    EXPECT_TRUE(holds(image, QRect(730, 224, 10, 10), 0xD9FDD3));
    EXPECT_FALSE(holds(image, QRect(30, 224, 10, 10), 0xD9FDD3));
}

} // namespace
} // namespace lumivale
