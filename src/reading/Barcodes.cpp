#include "reading/Barcodes.h"

#include "reading/Marks.h"
#include "reading/Reader.h"

#include <ZXing/ReadBarcode.h>
#include <algorithm>

namespace lumivale::Barcodes {

namespace {

// The detector looks for Aztec and Data Matrix codes only from the middle of the picture it
// is given, so each place that may hold one is also given to it on its own. Such places are
// found as marks of a copy reduced by taking the darkest pixel of each 8 × 8 block, in which
// a code's modules run together into one mark.
constexpr int blockSize = 8;
constexpr int smallestPlace = 3;     // blocks on the shorter side
constexpr int longestRatio = 5;      // a Data Matrix code may be a rectangle up to 4:1
constexpr size_t mostPlaces = 30;    // the largest ones
constexpr double placeMargin = 0.25; // of the larger side, added all round

const auto centredKinds = ZXing::BarcodeFormat::Aztec | ZXing::BarcodeFormat::DataMatrix;

void addKinds(const ZXing::ImageView& view, ZXing::BarcodeFormats formats,
              std::vector<std::string>& names) {
    // zxing-cpp 1.4 aborts on an assertion when it compares two linear results while gathering
    // several, so linear codes are asked for one at a time: only their kind is kept anyway.
    const auto matrix = formats & ZXing::BarcodeFormat::MatrixCodes;
    const auto linear = formats & ZXing::BarcodeFormat::LinearCodes;
    if (!matrix.empty())
        for (const ZXing::Result& result :
             ZXing::ReadBarcodes(view, ZXing::DecodeHints().setFormats(matrix).setTryHarder(true)))
            if (result.isValid())
                names.push_back(Reader::name(ZXing::ToString(result.format())));
    if (!linear.empty()) {
        const ZXing::Result result =
            ZXing::ReadBarcode(view, ZXing::DecodeHints().setFormats(linear).setTryHarder(true));
        if (result.isValid())
            names.push_back(Reader::name(ZXing::ToString(result.format())));
    }
}

GrayImage darkestOfBlocks(const GrayImage& picture) {
    GrayImage blocks{(picture.width + blockSize - 1) / blockSize,
                     (picture.height + blockSize - 1) / blockSize,
                     {}};
    blocks.pixels.assign(size_t(blocks.width) * size_t(blocks.height), 255);
    for (int y = 0; y < picture.height; ++y) {
        const uint8_t* row = &picture.pixels[size_t(y) * size_t(picture.width)];
        uint8_t* blockRow = &blocks.pixels[size_t(y / blockSize) * size_t(blocks.width)];
        for (int x = 0; x < picture.width; ++x)
            blockRow[x / blockSize] = std::min(blockRow[x / blockSize], row[x]);
    }
    return blocks;
}

// Boxes, in the picture's pixels, around the places that may hold a code.
std::vector<Marks::Box> placesOfCodes(const GrayImage& picture) {
    const GrayImage blocks = darkestOfBlocks(picture);
    std::vector<Marks::Box> places;
    for (const Marks::Box& mark : Marks::find(blocks, 128)) {
        const int shorter = std::min(mark.width(), mark.height());
        const int longer = std::max(mark.width(), mark.height());
        // A mark over half the picture is a dark ground; a code that fills the picture was
        // looked for already, in the picture as a whole.
        const bool ground = 2 * mark.width() * mark.height() > blocks.width * blocks.height;
        if (shorter >= smallestPlace && longer <= longestRatio * shorter && !ground)
            places.push_back(mark);
    }
    std::sort(places.begin(), places.end(), [](const Marks::Box& a, const Marks::Box& b) {
        return a.width() * a.height() > b.width() * b.height();
    });
    if (places.size() > mostPlaces) places.resize(mostPlaces);
    for (Marks::Box& place : places) {
        const int margin = int(placeMargin * std::max(place.width(), place.height())) + 1;
        place = {std::max(0, place.left - margin) * blockSize,
                 std::max(0, place.top - margin) * blockSize,
                 std::min(picture.width - 1, (place.right + 1 + margin) * blockSize - 1),
                 std::min(picture.height - 1, (place.bottom + 1 + margin) * blockSize - 1)};
    }
    return places;
}

ZXing::ImageView viewOf(const GrayImage& picture) {
    return ZXing::ImageView(picture.pixels.data(), picture.width, picture.height,
                            ZXing::ImageFormat::Lum);
}

void addKinds(const GrayImage& picture, std::vector<std::string>& names) {
    const auto* pixels = picture.pixels.data();
    addKinds(viewOf(picture), ZXing::BarcodeFormat::Any, names);
    for (const Marks::Box& place : placesOfCodes(picture))
        addKinds(ZXing::ImageView(
                     pixels + size_t(place.top) * size_t(picture.width) + size_t(place.left),
                     place.width(), place.height(), ZXing::ImageFormat::Lum, picture.width),
                 centredKinds, names);
}

} // namespace

std::vector<std::string> kindsIn(const GrayImage& picture) {
    std::vector<std::string> names;
    if (picture.pixels.empty()) return names;
    addKinds(picture, names);
    // Dark screens show their codes on light cards as a rule; a light code on the dark ground
    // itself is looked for as a whole only.
    if (Preparation::isDark(picture)) {
        GrayImage inverse = picture;
        Preparation::invert(inverse);
        addKinds(viewOf(inverse), ZXing::BarcodeFormat::MatrixCodes, names);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

} // namespace lumivale::Barcodes
