#include "reading/Reader.h"

#include "Drawing.h"
#include "core/Fold.h"
#include "support/TempDir.h"

#include <algorithm>
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
using test::Colour;
using test::white;

const std::vector<std::string> english{"en-US"};

std::set<std::string> wordsOf(const std::string& text) {
    std::set<std::string> words;
    std::string word;
    for (unsigned char c : foldText(text) + " ") {
        if (std::isalnum(c) || c >= 0x80) {
            word += char(c);
        } else if (!word.empty()) {
            words.insert(std::exchange(word, ""));
        }
    }
    return words;
}

// The words of `expected` that the reading does not hold, joined with spaces.
std::string missingWords(const Reading& reading, const std::vector<std::string>& expected) {
    std::set<std::string> read;
    for (const auto& line : reading.lines)
        read.merge(wordsOf(line.text));
    std::string missing;
    for (const auto& line : expected)
        for (const auto& word : wordsOf(line))
            if (!read.count(word)) missing += " " + word;
    return missing;
}

const std::vector<std::string> receiptLines{"Invoice number 4821 from Corner Bakery",
                                            "Payment due on Friday the twelfth",
                                            "Thank you for shopping with us"};
const std::vector<std::string> meetingLines{"Meeting moved to Thursday",
                                            "Bring the signed contract"};

// Three lines of dark text on white, 900 × 300.
Canvas receipt() {
    Canvas canvas(900, 300, white);
    int y = 40;
    for (const auto& line : receiptLines)
        y += canvas.text(black, 40, y, "Liberation Sans 30", line) + 40;
    return canvas;
}

// Makes a picture file at `path`; false when libvips cannot write it.
using Make = std::function<bool(const std::string& path)>;

bool saveReceipt(const std::string& path) {
    return receipt().save(path);
}

// The receipt converted into another colour space.
Make inSpace(VipsInterpretation space) {
    return [space](const std::string& path) {
        return receipt().saveConverted(path, [space](VipsImage* picture) {
            VipsImage* out = nullptr;
            vips_colourspace(picture, &out, space, nullptr);
            return out;
        });
    };
}

// Black ink whose opacity is the receipt's darkness, as a window capture's cut-out.
bool inkOnTransparent(const std::string& path) {
    return receipt().saveConverted(path, [](VipsImage* picture) {
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
    });
}

// Saved under a plain name and renamed: libvips would take "[…]" in a name as save options.
bool renamedReceipt(const std::string& path) {
    const auto plain = std::filesystem::path(path).parent_path() / "plain.png";
    return receipt().save(plain) && std::rename(plain.c_str(), path.c_str()) == 0;
}

// A file holding these bytes.
Make bytes(const std::string& text) {
    return [text](const std::string& path) { return !test::writeFile(path, text).empty(); };
}

// The receipt saved in the format of the name, then cut to `keep` bytes (0: to half).
Make cutShort(size_t keep) {
    return [keep](const std::string& path) {
        if (!receipt().save(path)) return false;
        const std::string whole = test::readFile(path);
        return !test::writeFile(path, whole.substr(0, keep ? keep : whole.size() / 2)).empty();
    };
}

// A Micro QR code (version M2) for "12345", drawn module by module: the detector's writer
// makes no Micro QR codes.
const std::vector<std::string> microQr{
    "#######.#.#.#", "#.....#......", "#.###.#.###.#", "#.###.#.#..##", "#.###.#.####.",
    "#.....#..##.#", "#######.##..#", ".........####", "##.#.#.####..", ".....#.#..#..",
    "#......#..##.", ".##.#####...#", "##..#.#######",
};

struct Picture {
    std::string name;
    Make make;
    int64_t width = 900, height = 300; // as stored in the file
    bool failed = false;
    std::vector<std::string> lines = receiptLines, barcodes = {};
    int bands = 0; // of the saved file, when the case is about its pixel format
};

void PrintTo(const Picture& p, std::ostream* out) {
    *out << p.name;
}

// Two lines on a panel of a screen.
Picture screen(const std::string& name, Colour ground, Colour panel, Colour ink,
               const std::string& font, int w, int h) {
    const Make make = [=](const std::string& path) {
        Canvas canvas(w, h, ground);
        canvas.rect(panel, w / 20, h / 10, w * 9 / 10, h * 8 / 10);
        int y = h / 5;
        for (const auto& line : meetingLines)
            y += canvas.text(ink, w / 10, y, font, line) * 3 / 2;
        return canvas.save(path);
    };
    return {name + ".png", make, w, h, false, meetingLines};
}

// Barcodes drawn on white; each kind is named once, the names sorted.
Picture codes(const std::string& name, std::vector<std::string> kinds,
              const std::function<void(Canvas&)>& draw) {
    const Make make = [draw](const std::string& path) {
        Canvas canvas(1600, 700, white);
        draw(canvas);
        return canvas.save(path);
    };
    return {name + ".png", make, 1600, 700, false, {}, std::move(kinds)};
}

// A file that is no picture: it fails, with the size when the header gives it.
Picture broken(const std::string& name, Make make, int64_t width = 0, int64_t height = 0) {
    return {name, std::move(make), width, height, true, {}};
}

// Read from a reduced copy, recorded at its full size.
bool huge(const std::string& path) {
    Canvas canvas(6000, 4000, white);
    canvas.text(black, 400, 800, "Liberation Sans 160", "Quarterly report");
    canvas.text(black, 400, 1400, "Liberation Sans 120", "Sales grew by nine percent");
    return canvas.save(path);
}

const Colour dark{30, 30, 30}, light{236, 236, 236}, blue{11, 132, 255};
const std::string small = "Liberation Sans 12", large = "Liberation Sans Bold 110";
using ZXing::BarcodeFormat;

const Picture pictures[] = {
    {"receipt.png", saveReceipt},
    {"receipt.jpg", saveReceipt},
    {"receipt.webp", saveReceipt},
    {"receipt.tif", saveReceipt},
    {"receipt.gif", saveReceipt},
    {"receipt.bmp", saveReceipt},
    {"receipt.heic", saveReceipt},
    {"ink.png", inkOnTransparent, 900, 300, false, receiptLines, {}, 4},
    {"grey16.png", inSpace(VIPS_INTERPRETATION_GREY16), 900, 300, false, receiptLines, {}, 1},
    {"cmyk.jpg", inSpace(VIPS_INTERPRETATION_CMYK), 900, 300, false, receiptLines, {}, 4},
    {"Screenshot [2].png", renamedReceipt},
    {"shot[page=1].png", renamedReceipt},
    {"ünïcode ✓.png", renamedReceipt},
    // Stored a quarter turn anticlockwise with EXIF orientation 6: read upright, size as stored.
    {"sideways.jpg", [](const auto& path) { return receipt().storeSideways().save(path); }, 300,
     900},
    {"huge.png", huge, 6000, 4000, false, {"Quarterly report", "Sales grew by nine percent"}},
    screen("light small", white, light, {28, 28, 30}, small, 1000, 300),
    screen("dark small", dark, {43, 43, 43}, {224, 224, 224}, small, 1000, 300),
    screen("terminal", {29, 31, 33}, {29, 31, 33}, {152, 195, 121}, "DejaVu Sans Mono 13", 1000,
           300),
    screen("light large", white, white, black, large, 3000, 900),
    screen("dark large", black, {35, 38, 47}, white, large, 3000, 900),
    screen("blue card", white, blue, white, "Liberation Sans 30", 1400, 400),
    screen("grey caption", white, white, {142, 142, 147}, "Liberation Sans 13", 1000, 300),
    broken("empty.png", bytes("")),
    broken("notes.png", bytes("Shopping list: milk, bread, eggs\n")),
    broken("cut.png", cutShort(0), 900, 300),
    broken("cut.jpg", cutShort(0), 900, 300),
    broken("header-only.png", cutShort(64), 900, 300),
    broken("missing.png", [](const auto&) { return true; }),
    broken("folder.png", [](const auto& path) { return std::filesystem::create_directory(path); }),
    codes("two QR codes and a Micro QR code", {"QR"},
          [](Canvas& c) {
              c.barcode(BarcodeFormat::QRCode, "https://example.org/a", 100, 100, 8);
              c.barcode(BarcodeFormat::QRCode, "second", 600, 100, 8);
              c.modules(microQr, 1100, 100, 12);
          }),
    codes("an Aztec code and a QR code", {"Aztec", "QR"},
          [](Canvas& c) {
              c.barcode(BarcodeFormat::QRCode, "ticket 42", 100, 100, 8);
              c.barcode(BarcodeFormat::Aztec, "boarding pass", 700, 100, 8);
          }),
    codes("an Aztec code near a corner", {"Aztec"},
          [](Canvas& c) { c.barcode(BarcodeFormat::Aztec, "seat 14C", 1350, 500, 8); }),
    codes("a Micro QR code alone", {"QR"}, [](Canvas& c) { c.modules(microQr, 200, 150, 12); }),
    codes("Data Matrix, PDF417 and Code 128", {"Barcode", "DataMatrix", "PDF417"},
          [](Canvas& c) {
              c.barcode(BarcodeFormat::DataMatrix, "parcel 7731", 100, 100, 8);
              c.barcode(BarcodeFormat::PDF417, "membership 99812", 500, 100, 4);
              c.barcode(BarcodeFormat::Code128, "LV-2024-0042", 100, 450, 4);
          }),
};

class ReaderPictureTest : public testing::TestWithParam<Picture> {};

TEST_P(ReaderPictureTest, ReadsTheWordsBarcodesAndStoredSize) {
    const Picture& c = GetParam();
    test::TempDir dir;
    const std::string path = dir.file(c.name);
    if (!c.make(path)) GTEST_SKIP() << "libvips cannot write " << c.name << " here";
    if (c.bands) {
        VipsRef<VipsImage> saved(vips_image_new_from_file(path.c_str(), nullptr));
        ASSERT_TRUE(saved);
        ASSERT_EQ(vips_image_get_bands(saved.get()), c.bands);
    }
    const Reading reading = Reader::read(path, english);
    EXPECT_EQ(reading.failed, c.failed);
    EXPECT_EQ(reading.pixelWidth, c.width);
    EXPECT_EQ(reading.pixelHeight, c.height);
    EXPECT_EQ(missingWords(reading, c.lines), "");
    EXPECT_EQ(reading.barcodes, c.barcodes);
    EXPECT_TRUE(!c.failed || reading.lines.empty());
    if (c.lines.empty()) return;
    ASSERT_FALSE(reading.lines.empty());
    // Boxes belong to the upright (landscape) picture, across which the longest line runs.
    const TextLine& line = *std::max_element(
        reading.lines.begin(), reading.lines.end(),
        [](const auto& a, const auto& b) { return a.text.size() < b.text.size(); });
    EXPECT_GT(line.w * std::max(c.width, c.height), 4 * line.h * std::min(c.width, c.height));
}

INSTANTIATE_TEST_SUITE_P(Pictures, ReaderPictureTest, testing::ValuesIn(pictures));

TEST(ReaderTest, LinesComeInReadingOrderWithBoxesFromTheLowerLeft) {
    test::TempDir dir;
    Canvas canvas(1200, 800, white);
    // Drawn bottom first, right before left, so the order cannot come from drawing.
    const int bottomHeight = canvas.text(black, 100, 600, "Liberation Sans 32", "Bottom line here");
    canvas.text(black, 700, 100, "Liberation Sans 32", "Right column");
    const int leftHeight = canvas.text(black, 100, 100, "Liberation Sans 32", "Left column");
    ASSERT_TRUE(canvas.save(dir.file("order.png")));

    const Reading reading = Reader::read(dir.file("order.png"), english);
    ASSERT_EQ(reading.lines.size(), 3u);
    EXPECT_EQ(reading.lines[0].text, "Left column");
    EXPECT_EQ(reading.lines[1].text, "Right column");
    EXPECT_EQ(reading.lines[2].text, "Bottom line here");
    // The ink lies within the drawn text's area: from x = 100 px, its top near the drawn top.
    const TextLine &left = reading.lines[0], &bottom = reading.lines[2];
    EXPECT_NEAR(left.x, 100.0 / 1200, 0.01);
    EXPECT_NEAR(left.y + left.h, 1 - 100.0 / 800, 0.02);
    EXPECT_GE(left.y, 1 - (100.0 + leftHeight) / 800 - 0.005);
    EXPECT_GT(left.w, 0.1);
    EXPECT_LT(left.h, 0.06);
    EXPECT_NEAR(bottom.y + bottom.h, 1 - 600.0 / 800, 0.02);
    EXPECT_GE(bottom.y, 1 - (600.0 + bottomHeight) / 800 - 0.005);
}

TEST(ReaderTest, ThreadsReadAtOnceAsOneThreadReadsAlone) {
    test::TempDir dir;
    const std::string path = dir.file("receipt.png");
    ASSERT_TRUE(receipt().save(path));
    const Reading alone = Reader::read(path, english);
    ASSERT_FALSE(alone.failed);
    std::vector<Reading> readings(3);
    std::vector<std::thread> threads;
    for (auto& reading : readings)
        threads.emplace_back([&] {
            for (int i = 0; i < 2; ++i)
                reading = Reader::read(path, english);
        });
    for (auto& thread : threads)
        thread.join();
    for (const auto& reading : readings)
        EXPECT_EQ(reading, alone);
}

} // namespace
} // namespace lumivale
