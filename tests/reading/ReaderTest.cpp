#include "reading/Reader.h"

#include "Drawing.h"
#include "core/Fold.h"
#include "support/TempDir.h"

#include <cctype>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <thread>

namespace lumivale {
namespace {

using test::black;
using test::Canvas;
using test::white;

const std::vector<std::string> english{"en-US"};

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::string word;
    for (unsigned char c : foldText(text) + " ") {
        if (std::isalnum(c) || c >= 0x80) {
            word += char(c);
        } else if (!word.empty()) {
            words.push_back(word);
            word.clear();
        }
    }
    return words;
}

// The words of `expected` that the reading does not hold, joined with spaces.
std::string missingWords(const Reading& reading, const std::vector<std::string>& expected) {
    std::set<std::string> read;
    for (const auto& line : reading.lines)
        for (const auto& word : wordsOf(line.text))
            read.insert(word);
    std::string missing;
    for (const auto& line : expected)
        for (const auto& word : wordsOf(line))
            if (!read.count(word)) missing += " " + word;
    return missing;
}

const std::vector<std::string> receiptLines{"Invoice number 4821 from Corner Bakery",
                                            "Payment due on Friday the twelfth",
                                            "Thank you for shopping with us"};

// Three lines of dark text on white, 900 × 300.
Canvas receipt() {
    Canvas canvas(900, 300, white);
    int y = 40;
    for (const auto& line : receiptLines)
        y += canvas.text(black, 40, y, "Liberation Sans 30", line) + 40;
    return canvas;
}

class ReaderFormatTest : public testing::TestWithParam<const char*> {};

TEST_P(ReaderFormatTest, ReadsTheWordsAndSizeOfAPictureInThisFormat) {
    test::TempDir dir;
    const std::string path = dir.file(std::string("receipt.") + GetParam());
    if (!receipt().save(path))
        GTEST_SKIP() << "libvips cannot write " << GetParam() << " files here";
    const Reading reading = Reader::read(path, english);
    EXPECT_FALSE(reading.failed);
    EXPECT_EQ(reading.pixelWidth, 900);
    EXPECT_EQ(reading.pixelHeight, 300);
    EXPECT_EQ(missingWords(reading, receiptLines), "");
    EXPECT_TRUE(reading.barcodes.empty());
}

INSTANTIATE_TEST_SUITE_P(Formats, ReaderFormatTest,
                         testing::Values("png", "jpg", "webp", "tif", "gif", "bmp", "heic"));

// Conversions of a drawn picture into other pixel formats.
VipsImage* inkOnTransparent(VipsImage* picture) {
    // Black ink whose opacity is the picture's darkness, as a window capture's cut-out.
    VipsImage *grey = nullptr, *opacity = nullptr, *none = nullptr, *ink = nullptr;
    vips_colourspace(picture, &grey, VIPS_INTERPRETATION_B_W, nullptr);
    VipsRef<VipsImage> a(grey);
    vips_invert(grey, &opacity, nullptr);
    VipsRef<VipsImage> b(opacity);
    vips_linear1(picture, &none, 0, 0, "uchar", TRUE, nullptr);
    VipsRef<VipsImage> c(none);
    vips_bandjoin2(none, opacity, &ink, nullptr);
    VipsRef<VipsImage> d(ink);
    VipsImage* tagged = nullptr;
    vips_copy(ink, &tagged, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr);
    return tagged;
}

VipsImage* sixteenBitGrey(VipsImage* picture) {
    VipsImage *grey = nullptr, *wide = nullptr;
    vips_colourspace(picture, &grey, VIPS_INTERPRETATION_GREY16, nullptr);
    VipsRef<VipsImage> a(grey);
    vips_copy(grey, &wide, nullptr);
    return wide;
}

VipsImage* cmyk(VipsImage* picture) {
    VipsImage* out = nullptr;
    vips_colourspace(picture, &out, VIPS_INTERPRETATION_CMYK, nullptr);
    return out;
}

TEST(ReaderTest, PicturesOfOtherPixelFormatsRead) {
    struct Case {
        const char* name;
        VipsImage* (*convert)(VipsImage*);
        int bands;
    };
    const std::vector<Case> cases{
        {"ink.png", inkOnTransparent, 4},
        {"grey16.png", sixteenBitGrey, 1},
        {"cmyk.jpg", cmyk, 4},
    };
    test::TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(receipt().saveConverted(dir.file(c.name), c.convert));
        VipsRef<VipsImage> saved(vips_image_new_from_file(dir.file(c.name).c_str(), nullptr));
        ASSERT_TRUE(saved);
        EXPECT_EQ(vips_image_get_bands(saved.get()), c.bands);
        const Reading reading = Reader::read(dir.file(c.name), english);
        EXPECT_FALSE(reading.failed);
        EXPECT_EQ(reading.pixelWidth, 900);
        EXPECT_EQ(missingWords(reading, receiptLines), "");
    }
}

TEST(ReaderTest, LinesComeInReadingOrderWithBoxesFromTheLowerLeft) {
    test::TempDir dir;
    Canvas canvas(1200, 800, white);
    // Drawn bottom first, right before left, so the order cannot come from drawing.
    const int bottomHeight = canvas.text(black, 100, 600, "Liberation Sans 32", "Bottom line here");
    canvas.text(black, 700, 100, "Liberation Sans 32", "Right column");
    const int leftHeight = canvas.text(black, 100, 100, "Liberation Sans 32", "Left column");
    ASSERT_TRUE(canvas.save(dir.file("order.png")));

    const Reading reading = Reader::read(dir.file("order.png"), english);
    ASSERT_FALSE(reading.failed);
    ASSERT_EQ(reading.lines.size(), 3u);
    EXPECT_EQ(reading.lines[0].text, "Left column");
    EXPECT_EQ(reading.lines[1].text, "Right column");
    EXPECT_EQ(reading.lines[2].text, "Bottom line here");

    // The ink of "Left column" lies within the drawn text's area: x from 100 px, its top near
    // 100 px from the top and its bottom above 100 + height.
    const TextLine& left = reading.lines[0];
    EXPECT_NEAR(left.x, 100.0 / 1200, 0.01);
    EXPECT_NEAR(left.y + left.h, 1 - 100.0 / 800, 0.02);
    EXPECT_GE(left.y, 1 - (100.0 + leftHeight) / 800 - 0.005);
    EXPECT_GT(left.w, 0.1);
    EXPECT_LT(left.h, 0.06);
    const TextLine& bottom = reading.lines[2];
    EXPECT_NEAR(bottom.y + bottom.h, 1 - 600.0 / 800, 0.02);
    EXPECT_GE(bottom.y, 1 - (600.0 + bottomHeight) / 800 - 0.005);
}

TEST(ReaderTest, APictureStoredSidewaysIsReadUprightWithItsStoredSize) {
    test::TempDir dir;
    const std::string path = dir.file("sideways.jpg");
    ASSERT_TRUE(receipt().storeSideways().save(path));

    const Reading reading = Reader::read(path, english);
    EXPECT_FALSE(reading.failed);
    EXPECT_EQ(missingWords(reading, receiptLines), "");
    // The size is the file's own, as stored: 300 wide, 900 high.
    EXPECT_EQ(reading.pixelWidth, 300);
    EXPECT_EQ(reading.pixelHeight, 900);
    // Boxes are in the upright picture (900 × 300): lines run across it.
    ASSERT_FALSE(reading.lines.empty());
    EXPECT_GT(reading.lines[0].w * 900, 4 * reading.lines[0].h * 300);
}

TEST(ReaderTest, AHugePictureIsReadReducedButKeepsItsFullSize) {
    test::TempDir dir;
    Canvas canvas(6000, 4000, white);
    const std::vector<std::string> lines{"Quarterly report", "Sales grew by nine percent"};
    canvas.text(black, 400, 800, "Liberation Sans 160", lines[0]);
    canvas.text(black, 400, 1400, "Liberation Sans 120", lines[1]);
    ASSERT_TRUE(canvas.save(dir.file("huge.png")));

    const Reading reading = Reader::read(dir.file("huge.png"), english);
    EXPECT_FALSE(reading.failed);
    EXPECT_EQ(reading.pixelWidth, 6000);
    EXPECT_EQ(reading.pixelHeight, 4000);
    EXPECT_EQ(missingWords(reading, lines), "");
}

TEST(ReaderTest, FilesThatAreNoPicturesFailWithoutLinesOrBarcodes) {
    test::TempDir dir;
    ASSERT_TRUE(receipt().save(dir.file("whole.png")));
    ASSERT_TRUE(receipt().save(dir.file("whole.jpg")));
    const std::string png = test::readFile(dir.file("whole.png"));
    const std::string jpg = test::readFile(dir.file("whole.jpg"));
    std::filesystem::create_directory(dir.file("folder.png"));

    struct Case {
        std::string name;
        std::string bytes; // written to the file unless the case is about a missing file
        int64_t width, height;
    };
    const std::vector<Case> cases{
        {"empty.png", "", 0, 0},
        {"notes.png", "Shopping list: milk, bread, eggs\n", 0, 0},
        {"cut.png", png.substr(0, png.size() / 2), 900, 300},
        {"cut.jpg", jpg.substr(0, jpg.size() / 2), 900, 300},
        {"header-only.png", png.substr(0, 64), 900, 300},
        {"missing.png", "", 0, 0},
        {"folder.png", "", 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string path = dir.file(c.name);
        if (c.name != "missing.png" && c.name != "folder.png") test::writeFile(path, c.bytes);
        const Reading reading = Reader::read(path, english);
        EXPECT_TRUE(reading.failed);
        EXPECT_TRUE(reading.lines.empty());
        EXPECT_TRUE(reading.barcodes.empty());
        EXPECT_EQ(reading.pixelWidth, c.width);
        EXPECT_EQ(reading.pixelHeight, c.height);
    }
}

TEST(ReaderTest, FileNamesAreTakenAsTheyAre) {
    test::TempDir dir;
    // libvips reads "[…]" after a file name as load options; a path is only a path.
    for (const std::string name : {"Screenshot [2].png", "shot[page=1].png", "ünïcode ✓.png"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(receipt().save(dir.file("plain.png")));
        std::filesystem::rename(dir.file("plain.png"), dir.file(name));
        const Reading reading = Reader::read(dir.file(name), english);
        EXPECT_FALSE(reading.failed);
        EXPECT_EQ(reading.pixelWidth, 900);
        EXPECT_EQ(missingWords(reading, receiptLines), "");
    }
}

TEST(ReaderTest, DarkAndLightScreensOfAnyTextSizeRead) {
    struct Case {
        const char* name;
        test::Colour ground, panel, ink;
        const char* font;
        int width, height;
    };
    const test::Colour dark{30, 30, 30}, light{236, 236, 236};
    const std::vector<Case> cases{
        {"light, small text", white, light, {28, 28, 30}, "Liberation Sans 12", 1000, 300},
        {"dark, small text", dark, {43, 43, 43}, {224, 224, 224}, "Liberation Sans 12", 1000, 300},
        {"terminal", {29, 31, 33}, {29, 31, 33}, {152, 195, 121}, "DejaVu Sans Mono 13", 1000, 300},
        {"light, large text", white, white, black, "Liberation Sans Bold 110", 3000, 900},
        {"dark, large text", black, {35, 38, 47}, white, "Liberation Sans Bold 110", 3000, 900},
        {"blue card, white text", white, {11, 132, 255}, white, "Liberation Sans 30", 1400, 400},
        {"grey caption on white", white, white, {142, 142, 147}, "Liberation Sans 13", 1000, 300},
    };
    const std::vector<std::string> lines{"Meeting moved to Thursday", "Bring the signed contract"};
    test::TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Canvas canvas(c.width, c.height, c.ground);
        canvas.rect(c.panel, c.width / 20, c.height / 10, c.width * 9 / 10, c.height * 8 / 10);
        int y = c.height / 5;
        for (const auto& line : lines)
            y += canvas.text(c.ink, c.width / 10, y, c.font, line) * 3 / 2;
        const std::string path = dir.file(std::string(c.name) + ".png");
        ASSERT_TRUE(canvas.save(path));
        const Reading reading = Reader::read(path, english);
        EXPECT_FALSE(reading.failed);
        EXPECT_EQ(missingWords(reading, lines), "");
    }
}

// A Micro QR code (version M2) for "12345", drawn module by module: the detector's writer
// makes no Micro QR codes.
const std::vector<std::string> microQr{
    "#######.#.#.#", "#.....#......", "#.###.#.###.#", "#.###.#.#..##", "#.###.#.####.",
    "#.....#..##.#", "#######.##..#", ".........####", "##.#.#.####..", ".....#.#..#..",
    "#......#..##.", ".##.#####...#", "##..#.#######",
};

TEST(ReaderTest, BarcodeKindsAreNamedOnceAndSorted) {
    using ZXing::BarcodeFormat;
    struct Case {
        const char* name;
        std::function<void(Canvas&)> draw;
        std::vector<std::string> kinds;
    };
    const std::vector<Case> cases{
        {"two QR codes and a Micro QR code",
         [](Canvas& c) {
             c.barcode(BarcodeFormat::QRCode, "https://example.org/a", 100, 100, 8);
             c.barcode(BarcodeFormat::QRCode, "second", 600, 100, 8);
             c.modules(microQr, 1100, 100, 12);
         },
         {"QR"}},
        {"an Aztec code and a QR code",
         [](Canvas& c) {
             c.barcode(BarcodeFormat::QRCode, "ticket 42", 100, 100, 8);
             c.barcode(BarcodeFormat::Aztec, "boarding pass", 700, 100, 8);
         },
         {"Aztec", "QR"}},
        {"an Aztec code near a corner",
         [](Canvas& c) { c.barcode(BarcodeFormat::Aztec, "seat 14C", 1350, 500, 8); },
         {"Aztec"}},
        {"a Micro QR code alone", [](Canvas& c) { c.modules(microQr, 200, 150, 12); }, {"QR"}},
        {"Data Matrix, PDF417 and Code 128",
         [](Canvas& c) {
             c.barcode(BarcodeFormat::DataMatrix, "parcel 7731", 100, 100, 8);
             c.barcode(BarcodeFormat::PDF417, "membership 99812", 500, 100, 4);
             c.barcode(BarcodeFormat::Code128, "LV-2024-0042", 100, 450, 4);
         },
         {"Barcode", "DataMatrix", "PDF417"}},
        {"no code", [](Canvas&) {}, {}},
    };
    test::TempDir dir;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Canvas canvas(1600, 700, white);
        c.draw(canvas);
        ASSERT_TRUE(canvas.save(dir.file("codes.png")));
        const Reading reading = Reader::read(dir.file("codes.png"), english);
        EXPECT_FALSE(reading.failed);
        EXPECT_EQ(reading.barcodes, c.kinds);
    }
}

TEST(ReaderTest, KindNamesFollowTheSymbology) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"QRCode", "QR"},     {"MicroQRCode", "QR"},        {"Aztec", "Aztec"},
        {"PDF417", "PDF417"}, {"DataMatrix", "DataMatrix"}, {"Code128", "Barcode"},
        {"EAN13", "Barcode"}, {"MaxiCode", "Barcode"},      {"", "Barcode"},
    };
    for (const auto& [symbology, kind] : cases) {
        SCOPED_TRACE(symbology);
        EXPECT_EQ(Reader::name(symbology), kind);
    }
}

TEST(ReaderTest, ThreadsReadAtOnceAsOneThreadReadsAlone) {
    test::TempDir dir;
    ASSERT_TRUE(receipt().save(dir.file("receipt.png")));
    const Reading alone = Reader::read(dir.file("receipt.png"), english);
    ASSERT_FALSE(alone.failed);

    std::vector<Reading> readings(3);
    std::vector<std::thread> threads;
    for (auto& reading : readings)
        threads.emplace_back([&] {
            for (int i = 0; i < 2; ++i)
                reading = Reader::read(dir.file("receipt.png"), english);
        });
    for (auto& thread : threads)
        thread.join();
    for (const auto& reading : readings)
        EXPECT_EQ(reading, alone);
}

} // namespace
} // namespace lumivale
