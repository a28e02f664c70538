#include "reading/Preparation.h"

#include "Drawing.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace lumivale {
namespace {

using test::black;
using test::Canvas;
using test::white;

const char* const sentence = "The quick brown fox jumps over the lazy dog";

// The share of the pixels in a rectangle that are at least this light.
double lightShare(const GrayImage& image, int x0, int y0, int x1, int y1, int atLeast) {
    size_t light = 0, all = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x, ++all)
            light += image.at(x, y) >= atLeast;
    return double(light) / double(all);
}

uint8_t darkest(const GrayImage& image, int x0, int y0, int x1, int y1) {
    uint8_t least = 255;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            least = std::min(least, image.at(x, y));
    return least;
}

// Grey noise like a photograph's texture: light on average, specks everywhere.
GrayImage noise(int width, int height) {
    std::mt19937 random(7);
    std::normal_distribution<double> grey(150, 60);
    GrayImage image{width, height, std::vector<uint8_t>(size_t(width) * size_t(height))};
    for (uint8_t& v : image.pixels)
        v = uint8_t(std::clamp(grey(random), 0.0, 255.0));
    return image;
}

TEST(PreparationTest, ScaleBringsLettersToAGoodSizeWithinTheBudget) {
    const struct {
        double letter;
        int width, height;
        double expected;
    } cases[] = {
        // Enlarged at most three times within the pixel budget, never reduced by it.
        {5, 1000, 800, 2.6},       {9, 1000, 800, 13.0 / 9},
        {12, 1000, 800, 1.0},      {30, 1000, 800, 1.0},
        {60, 1000, 800, 0.5},      {2, 1000, 800, 3.0},
        {4, 3000, 2000, 1.632993}, {2, 6000, 6000, 1.0},
        {0, 1000, 800, 1.0},       {5, 0, 0, 1.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.letter << " px in " << c.width << "×" << c.height);
        EXPECT_NEAR(Preparation::scaleFor(c.letter, c.width, c.height), c.expected, 1e-5);
    }
}

TEST(PreparationTest, FaintInkIsDeepenedAndNothingElse) {
    const struct {
        const char* name;
        test::Colour ink;
        bool deepened;
    } cases[] = {
        {"small grey text", {150, 150, 150}, true},
        {"light grey text", {185, 185, 185}, true},
        {"black text", black, false},
        {"a faint ground pattern", {225, 225, 225}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Canvas canvas(600, 60, white);
        canvas.text(c.ink, 10, 20, "Liberation Sans 11", sentence);
        const GrayImage grey = canvas.grey();
        GrayImage deepened = grey;
        Preparation::deepenFaintInk(deepened);
        if (c.deepened) {
            EXPECT_LT(darkest(deepened, 0, 0, 600, 60), 40);
            // The ground stays white, and no more ink appears than there was.
            EXPECT_GE(lightShare(deepened, 0, 0, 600, 60, 250),
                      lightShare(grey, 0, 0, 600, 60, 250));
        } else {
            EXPECT_EQ(deepened.pixels, grey.pixels);
        }
    }
}

TEST(PreparationTest, EveryRegionBecomesDarkTextOnWhite) {
    // A grey panel with dark text beside a white page with dark text, bold letters, a blue
    // button with white text and a dark panel with grey text.
    Canvas canvas(900, 600, white);
    canvas.rect({200, 200, 200}, 0, 0, 300, 300);
    canvas.text({30, 30, 30}, 20, 40, "Liberation Sans 16", "Threads and mentions");
    canvas.text(black, 340, 40, "Liberation Sans 16", "Meeting notes for Monday");
    canvas.rect({11, 132, 255}, 340, 150, 400, 100);
    canvas.text(white, 380, 185, "Liberation Sans Bold 16", "Continue");
    canvas.text(black, 40, 320, "Liberation Sans Bold 120", "Sale");
    canvas.rect({30, 30, 30}, 600, 400, 300, 200);
    canvas.text({150, 150, 150}, 640, 480, "Liberation Sans 16", "Small print");
    const GrayImage before = canvas.grey();
    GrayImage image = before;
    Preparation::darkTextOnWhite(image);

    ASSERT_EQ(std::pair(image.width, image.height), std::pair(before.width, before.height));
    EXPECT_LT(lightShare(before, 20, 120, 280, 280, 250), 0.01);
    EXPECT_GT(lightShare(image, 20, 120, 280, 280, 250), 0.99) << "panel ground";
    EXPECT_LT(darkest(image, 20, 40, 280, 70), 60) << "panel text";
    EXPECT_LT(darkest(image, 340, 40, 700, 70), 30) << "page text";
    EXPECT_GT(lightShare(image, 360, 70, 880, 140, 250), 0.99) << "page ground";
    const double boldBefore = lightShare(before, 0, 300, 580, 600, 128);
    EXPECT_LT(boldBefore, 0.95);
    EXPECT_NEAR(lightShare(image, 0, 300, 580, 600, 128), boldBefore, 0.01) << "bold insides";
    // The light text of the button and of the dark panel turns dark, their grounds white.
    EXPECT_LT(lightShare(before, 360, 160, 720, 240, 250), 0.2);
    EXPECT_GT(lightShare(image, 360, 160, 720, 180, 250), 0.99) << "button ground";
    EXPECT_LT(darkest(image, 380, 185, 500, 210), 60) << "button text";
    EXPECT_GT(lightShare(image, 620, 420, 880, 470, 250), 0.99) << "dark panel ground";
    EXPECT_LT(darkest(image, 640, 480, 800, 500), 128) << "dark panel text";
}

// Lowercase letters stand about half the font size: the measured letters follow the font's size,
// scaled with the picture.
TEST(PreparationTest, PrepareGivesDarkTextOnLightGroundWithLettersOfAGoodSize) {
    const struct {
        const char* name;
        test::Colour ground, ink;
        int font;
        int scale; // whether the picture is enlarged (1), kept (0) or reduced (-1)
    } cases[] = {
        {"light, small", white, black, 11, 1},
        {"dark, small", {30, 30, 30}, {220, 220, 220}, 11, 1},
        {"dark, good size", {0, 0, 0}, white, 24, 0},
        {"light, large", white, black, 40, 0},
        {"light, very large", white, black, 90, -1},
        {"light, huge", white, black, 160, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Canvas canvas(c.font * 28, c.font * 5, c.ground);
        for (int y : {c.font, c.font * 3})
            canvas.text(c.ink, c.font, y, "Liberation Sans " + std::to_string(c.font), sentence);
        const GrayImage grey = canvas.grey(), prepared = Preparation::prepare(grey);
        EXPECT_EQ((prepared.width > grey.width) - (prepared.width < grey.width), c.scale);
        EXPECT_FALSE(Preparation::isDark(prepared));
        EXPECT_GT(lightShare(prepared, 0, 0, prepared.width, prepared.height, 250), 0.8);
        EXPECT_LT(darkest(prepared, 0, 0, prepared.width, prepared.height), 60);
        const double letters = Preparation::letterHeight(prepared);
        EXPECT_GE(letters, 9);
        EXPECT_LE(letters, 30);
        EXPECT_NEAR(letters * grey.width / prepared.width / c.font, 0.6, 0.2);
    }
    // A photograph with a few words is still mostly specks: left alone, not enlarged.
    Canvas words(900, 600, white);
    words.text(black, 20, 20, "Liberation Sans 12", sentence);
    GrayImage photo = words.grey();
    const GrayImage texture = noise(900, 600);
    for (size_t i = 0; i < texture.pixels.size(); ++i)
        photo.pixels[i] = std::min(photo.pixels[i], texture.pixels[i]);
    EXPECT_EQ(Preparation::prepare(photo).pixels, photo.pixels);
}

} // namespace
} // namespace lumivale
