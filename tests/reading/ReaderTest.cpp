#include "reading/Reader.h"

#include "Drawing.h"
#include "core/Fold.h"
#include "support/TempDir.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>

namespace lumivale {
namespace {

using test::black;
using test::Canvas;
using test::Colour;
using test::white;

const std::vector<std::string> english{"en-US"};

std::set<std::string> wordsOf(std::string text) {
    text = foldText(text);
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x80 && !std::isalnum(c); },
        ' ');
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

// The words of `expected` that the reading does not hold, joined with spaces.
std::string missingWords(const Reading& reading, const std::vector<std::string>& expected) {
    std::string read, missing;
    for (const auto& line : reading.lines)
        read += line.text + "\n";
    const std::set<std::string> words = wordsOf(read);
    for (const auto& line : expected)
        for (const auto& word : wordsOf(line))
            if (!words.count(word)) missing += " " + word;
    return missing;
}

const std::vector<std::string> receiptLines{"Invoice number 4821 from Corner Bakery",
                                            "Payment due on Friday the twelfth",
                                            "Thank you for shopping with us"};
const std::vector<std::string> meetingLines{"Meeting moved to Thursday",
                                            "Bring the signed contract"};

// Three lines of ink on a ground, 900 × 300.
Canvas receipt(const Colour& ground = white, const Colour& ink = black) {
    Canvas canvas(900, 300, ground);
    int y = 40;
    for (const auto& line : receiptLines)
        y += canvas.text(ink, 40, y, "Liberation Sans 30", line) + 40;
    return canvas;
}

// Makes a picture file at `path`; false when libvips cannot write it.
using Make = std::function<bool(const std::string& path)>;

bool saveReceipt(const std::string& path) {
    return receipt().save(path);
}

// A file holding these bytes.
Make bytes(const std::string& text) {
    return [text](const std::string& path) { return !test::writeFile(path, text).empty(); };
}

// The receipt saved in the format of the name, then cut to half its bytes.
bool saveHalfReceipt(const std::string& path) {
    if (!receipt().save(path)) return false;
    const std::string whole = test::readFile(path);
    return !test::writeFile(path, whole.substr(0, whole.size() / 2)).empty();
}

// A Micro QR code (version M2) for "12345": the detector's writer makes no Micro QR codes.
const std::string microQr = "#######.#.#.#\n#.....#......\n#.###.#.###.#\n#.###.#.#..##\n"
                            "#.###.#.####.\n#.....#..##.#\n#######.##..#\n.........####\n"
                            "##.#.#.####..\n.....#.#..#..\n#......#..##.\n.##.#####...#\n"
                            "##..#.#######\n";

struct Picture {
    std::string name;
    Make make;
    int64_t width = 900, height = 300; // as stored in the file
    bool failed = false;
    std::vector<std::string> lines = receiptLines, barcodes = {};
};

void PrintTo(const Picture& p, std::ostream* out) {
    *out << p.name;
}

// Two lines on a panel of a screen.
Picture screen(const std::string& name, Colour panel, Colour ink, const std::string& font, int w,
               int h) {
    const Make make = [=](const std::string& path) {
        Canvas canvas(w, h, white);
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

const Colour clear{0, 0, 0, 0}, opaque{0, 0, 0, 255}; // black, with opacity
using ZXing::BarcodeFormat;

const Picture pictures[] = {
    {"receipt.png", saveReceipt},
    {"receipt.jpg", saveReceipt},
    {"receipt.webp", saveReceipt},
    {"receipt.tif", saveReceipt},
    {"receipt.gif", saveReceipt},
    {"receipt.bmp", saveReceipt},
    {"receipt.heic", saveReceipt},
    // Black ink whose opacity is the text, as a window capture's cut-out.
    {"ink.png", [](const auto& p) { return receipt(clear, opaque).save(p); }},
    {"grey16.png", [](const auto& p) { return receipt().save(p, VIPS_INTERPRETATION_GREY16); }},
    // Saved under a plain name and renamed: libvips would take "[…]" in a name as load options.
    {"shöt ✓.png[page=1]",
     [](const std::string& path) {
         const auto plain = std::filesystem::path(path).parent_path() / "plain.png";
         return receipt().save(plain) && std::rename(plain.c_str(), path.c_str()) == 0;
     }},
    // Stored a quarter turn anticlockwise with EXIF orientation 6: read upright, size as stored.
    {"sideways.jpg", [](const auto& p) { return receipt().storeSideways().save(p); }, 300, 900},
    // Small letters on a tinted panel.
    screen("light small", {236, 236, 236}, {28, 28, 30}, "Liberation Sans 12", 1000, 300),
    // Read from a reduced copy, recorded at its full size.
    screen("huge", white, black, "Liberation Sans 160", 6000, 4000),
    broken("empty.png", bytes("")),
    broken("notes.png", bytes("Shopping list: milk, bread, eggs\n")),
    broken("cut.png", saveHalfReceipt, 900, 300),
    broken("missing.png", [](const auto&) { return true; }),
    broken("folder.png", [](const auto& path) { return std::filesystem::create_directory(path); }),
    codes("two QR codes and a Micro QR code", {"QR"},
          [](Canvas& c) {
              c.barcode(BarcodeFormat::QRCode, "https://example.org/a", 100, 100, 8);
              c.barcode(BarcodeFormat::QRCode, "second", 600, 100, 8);
              c.modules(microQr, 1100, 100, 12);
          }),
    codes("a QR code and an Aztec code near a corner", {"Aztec", "QR"},
          [](Canvas& c) {
              c.barcode(BarcodeFormat::QRCode, "ticket 42", 100, 100, 8);
              c.barcode(BarcodeFormat::Aztec, "seat 14C", 1350, 500, 8);
          }),
    codes("Data Matrix, PDF417, Code 128 and a Micro QR code",
          {"Barcode", "DataMatrix", "PDF417", "QR"},
          [](Canvas& c) {
              c.barcode(BarcodeFormat::DataMatrix, "parcel 7731", 100, 100, 8);
              c.barcode(BarcodeFormat::PDF417, "membership 99812", 500, 100, 4);
              c.barcode(BarcodeFormat::Code128, "LV-2024-0042", 100, 450, 4);
              c.modules(microQr, 1100, 450, 12);
          }),
};

class ReaderPictureTest : public testing::TestWithParam<Picture> {};

TEST_P(ReaderPictureTest, ReadsTheWordsBarcodesAndStoredSize) {
    const Picture& c = GetParam();
    test::TempDir dir;
    const std::string path = dir.file(c.name);
    if (!c.make(path)) GTEST_SKIP() << "libvips cannot write " << c.name << " here";
    const Reading reading = Reader::read(path, english);
    EXPECT_EQ(reading.failed, c.failed);
    EXPECT_EQ(std::pair(reading.pixelWidth, reading.pixelHeight), std::pair(c.width, c.height));
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

} // namespace
} // namespace lumivale
