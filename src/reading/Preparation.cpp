#include "reading/Preparation.h"

#include "reading/Marks.h"
#include "reading/VipsHandles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace lumivale::Preparation {

namespace {

// Measured on real-looking screenshots (bench/screens.sh): letters of 12 to 30 pixels read well;
// smaller ones are brought to 13 (below that the recogniser runs small words together), larger
// ones to 30.
constexpr double goodLetter = 13;
constexpr double smallestGoodLetter = 12;
constexpr double largestGoodLetter = 30;
constexpr double largestEnlargement = 3;
constexpr double pixelBudget = 16e6; // bounds the recogniser's memory and time

// A mark is ink when it is this much darker than the picture's median.
constexpr int inkContrast = 64;
// Fewer letter-shaped marks than this say nothing about the text size; so does a picture
// whose marks are mostly not letter-shaped (a photograph, noise: enlarging it would only
// multiply the specks the recogniser wades through).
constexpr size_t fewestLetters = 8;
constexpr size_t marksPerLetter = 4;

// Background whitening works on tiles of 8 × 8 pixels; a tile's ground is the median of the
// tile medians around it (5 × 5 tiles), so that letters, even bold ones, never count as ground.
constexpr int tileSize = 8;
constexpr int groundReach = 2;
// A tile whose grey levels span less than this holds no text.
constexpr int textContrast = 32;
// At least one tile in this many of a region of light text is bare ground.
constexpr size_t flatShare = 4;
// Ink whose darkest pixels within this many tiles are lighter than `faintInk` but still
// `inkContrast` below white (grey text) is deepened, so that the recogniser's one threshold
// between ink and ground keeps it.
constexpr int inkReach = 1;
constexpr int faintInk = 96;
constexpr int edgeShare = 6;
// Neighbouring tiles whose grounds differ by at most this belong to the same region.
constexpr int sameGround = 16;

uint8_t median(const GrayImage& image) {
    std::array<size_t, 256> histogram{};
    for (uint8_t v : image.pixels)
        ++histogram[v];
    size_t seen = 0;
    int level = 0;
    while ((seen += histogram[level]) * 2 < image.pixels.size())
        ++level;
    return uint8_t(level);
}

bool looksLikeLetter(const Marks::Box& box, int imageHeight) {
    const int w = box.width(), h = box.height();
    // Not specks, rules, frames or whole words run together; thin strokes (l, i, |) say little.
    return h >= 4 && h <= imageHeight / 4 && w <= 2 * h && 5 * w >= h;
}

// Per tile: the median, lowest and highest grey, and the greys a third of the way from either
// end (text covers less than a third of a tile: beyond these lies only text).
struct Tiles {
    int columns = 0, rows = 0;
    std::vector<int> median, low, high, lowerThird, upperThird;

    explicit Tiles(const GrayImage& image)
        : columns((image.width + tileSize - 1) / tileSize),
          rows((image.height + tileSize - 1) / tileSize) {
        const size_t count = size_t(columns) * size_t(rows);
        median.resize(count);
        low.resize(count);
        high.resize(count);
        lowerThird.resize(count);
        upperThird.resize(count);
        std::array<uint8_t, tileSize * tileSize> values;
        for (int ty = 0; ty < rows; ++ty)
            for (int tx = 0; tx < columns; ++tx) {
                size_t n = 0;
                const int right = std::min(image.width, (tx + 1) * tileSize);
                for (int y = ty * tileSize; y < std::min(image.height, (ty + 1) * tileSize); ++y) {
                    const uint8_t* row = &image.pixels[size_t(y) * size_t(image.width)];
                    for (int x = tx * tileSize; x < right; ++x)
                        values[n++] = row[x];
                }
                std::sort(values.begin(), values.begin() + n);
                const size_t i = index(tx, ty);
                low[i] = values[0];
                high[i] = values[n - 1];
                median[i] = values[n / 2];
                lowerThird[i] = values[n / 3];
                upperThird[i] = values[n - 1 - n / 3];
            }
    }

    size_t index(int tx, int ty) const { return size_t(ty) * size_t(columns) + size_t(tx); }

    // The ground around each tile: the median of the tile medians within reach.
    std::vector<int> grounds() const {
        std::vector<int> ground(median.size());
        std::vector<int> near;
        for (int ty = 0; ty < rows; ++ty)
            for (int tx = 0; tx < columns; ++tx) {
                near.clear();
                for (int y = std::max(0, ty - groundReach);
                     y <= std::min(rows - 1, ty + groundReach); ++y)
                    for (int x = std::max(0, tx - groundReach);
                         x <= std::min(columns - 1, tx + groundReach); ++x)
                        near.push_back(median[index(x, y)]);
                std::nth_element(near.begin(), near.begin() + near.size() / 2, near.end());
                ground[index(tx, ty)] = near[near.size() / 2];
            }
        return ground;
    }
};

// Whether the tile lies inside its region: the tiles around it are mostly its ground. Only
// there does a tile tell the region's text from its ground; at a region's edge the lighter
// side may be the next region (the page beside a bold letter's stroke).
bool inside(const Tiles& tiles, const std::vector<int>& ground, int tx, int ty) {
    const int own = ground[tiles.index(tx, ty)];
    for (int y = std::max(0, ty - 1); y <= std::min(tiles.rows - 1, ty + 1); ++y)
        for (int x = std::max(0, tx - 1); x <= std::min(tiles.columns - 1, tx + 1); ++x)
            if (std::abs(tiles.median[tiles.index(x, y)] - own) > sameGround) return false;
    return true;
}

// A tile's vote for the polarity of its region's text: +1 light, -1 dark, 0 none. Text is the
// side further from the ground, and covers less than a third of the tile; where the far side
// covers more, it is no text but a neighbouring ground or the inside of a bold stroke.
int vote(const Tiles& tiles, size_t i, int ground) {
    if (tiles.high[i] - ground > ground - tiles.low[i])
        return 2 * tiles.upperThird[i] < ground + tiles.high[i] ? 1 : 0;
    return 2 * tiles.lowerThird[i] > ground + tiles.low[i] ? -1 : 0;
}

// Groups tiles into regions of one ground, and says for each region whether its text is
// lighter than its ground: the majority of its tiles that hold text decides.
std::vector<bool> lightTextByTile(const Tiles& tiles, const std::vector<int>& ground) {
    std::vector<int> region(ground.size(), -1);
    std::vector<int> votes; // > 0: lighter text
    std::vector<size_t> size, flat;
    std::vector<size_t> pending;
    for (size_t start = 0; start < ground.size(); ++start) {
        if (region[start] >= 0) continue;
        const int id = int(votes.size());
        votes.push_back(0);
        size.push_back(0);
        flat.push_back(0);
        region[start] = id;
        pending.push_back(start);
        while (!pending.empty()) {
            const size_t i = pending.back();
            pending.pop_back();
            const int tx = int(i % size_t(tiles.columns)), ty = int(i / size_t(tiles.columns));
            const bool text = tiles.high[i] - tiles.low[i] >= textContrast;
            ++size[id];
            flat[id] += !text;
            if (text && inside(tiles, ground, tx, ty)) votes[id] += vote(tiles, i, ground[i]);
            for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
                const int x = tx + dx, y = ty + dy;
                if (x < 0 || y < 0 || x >= tiles.columns || y >= tiles.rows) continue;
                const size_t j = tiles.index(x, y);
                if (region[j] < 0 && std::abs(ground[j] - ground[i]) <= sameGround) {
                    region[j] = id;
                    pending.push_back(j);
                }
            }
        }
    }
    // A panel or button has bare ground around its text; a cluster of bold dark letters, whose
    // ink can pass for a dark ground, has hardly any.
    std::vector<bool> light(ground.size());
    for (size_t i = 0; i < ground.size(); ++i) {
        const int id = region[i];
        light[i] = votes[id] > 0 && flat[id] * flatShare >= size[id];
    }
    return light;
}

} // namespace

void deepenFaintInk(GrayImage& image) {
    if (image.pixels.empty()) return;
    const int columns = (image.width + tileSize - 1) / tileSize;
    const int rows = (image.height + tileSize - 1) / tileSize;
    std::vector<int> darkest(size_t(columns) * size_t(rows), 255);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            int& d = darkest[size_t(y / tileSize) * size_t(columns) + size_t(x / tileSize)];
            d = std::min<int>(d, image.at(x, y));
        }
    for (int ty = 0; ty < rows; ++ty)
        for (int tx = 0; tx < columns; ++tx) {
            int ink = 255;
            for (int y = std::max(0, ty - inkReach); y <= std::min(rows - 1, ty + inkReach); ++y)
                for (int x = std::max(0, tx - inkReach); x <= std::min(columns - 1, tx + inkReach);
                     ++x)
                    ink = std::min(ink, darkest[size_t(y) * size_t(columns) + size_t(x)]);
            const int depth = 255 - ink;
            if (depth < inkContrast || depth >= 255 - faintInk) continue;
            // The darkest sixth of the ink's depth becomes black and the faintest sixth white:
            // the letters' cores darken, the marks around them (a card's hatching,
            // anti-aliasing) fade.
            const int black = ink + depth / edgeShare, span = depth - 2 * (depth / edgeShare);
            for (int y = ty * tileSize; y < std::min(image.height, (ty + 1) * tileSize); ++y)
                for (int x = tx * tileSize; x < std::min(image.width, (tx + 1) * tileSize); ++x) {
                    uint8_t& pixel = image.pixels[size_t(y) * size_t(image.width) + size_t(x)];
                    pixel = uint8_t(std::clamp((pixel - black) * 255 / span, 0, 255));
                }
        }
}

bool isDark(const GrayImage& image) {
    return !image.pixels.empty() && median(image) < 128;
}

void invert(GrayImage& image) {
    for (uint8_t& v : image.pixels)
        v = uint8_t(255 - v);
}

double letterHeight(const GrayImage& image) {
    if (image.pixels.empty()) return 0;
    const int inkBelow = int(median(image)) - inkContrast;
    const std::vector<Marks::Box> marks = Marks::find(image, inkBelow);
    std::vector<int> heights;
    for (const Marks::Box& box : marks)
        if (looksLikeLetter(box, image.height)) heights.push_back(box.height());
    if (heights.size() < fewestLetters || heights.size() * marksPerLetter < marks.size()) return 0;
    std::nth_element(heights.begin(), heights.begin() + heights.size() / 2, heights.end());
    return heights[heights.size() / 2];
}

double scaleFor(double letterHeight, int width, int height) {
    if (letterHeight <= 0 || width <= 0 || height <= 0) return 1;
    if (letterHeight > largestGoodLetter) return largestGoodLetter / letterHeight;
    if (letterHeight >= smallestGoodLetter) return 1;
    const double budget = std::sqrt(pixelBudget / (double(width) * double(height)));
    return std::max(1.0, std::min({goodLetter / letterHeight, largestEnlargement, budget}));
}

void darkTextOnWhite(GrayImage& image) {
    if (image.pixels.empty()) return;
    const Tiles tiles(image);
    const std::vector<int> ground = tiles.grounds();
    const std::vector<bool> lightText = lightTextByTile(tiles, ground);
    std::vector<int> near;
    for (int ty = 0; ty < tiles.rows; ++ty)
        for (int tx = 0; tx < tiles.columns; ++tx) {
            // A region of light text is worked on inverted, which makes its text the dark one.
            const bool light = lightText[tiles.index(tx, ty)];
            // Where two grounds meet (a card's edge), a tile holds both: each pixel is taken
            // against the darkest ground around that is not darker than itself, so both
            // grounds turn white and no edge is left to read as a bracket.
            near.clear();
            for (int y = std::max(0, ty - groundReach);
                 y <= std::min(tiles.rows - 1, ty + groundReach); ++y)
                for (int x = std::max(0, tx - groundReach);
                     x <= std::min(tiles.columns - 1, tx + groundReach); ++x)
                    if (const size_t j = tiles.index(x, y); lightText[j] == light) {
                        // Among dark text, a ground darker than the middle is no paper but ink:
                        // an icon, a cluster of bold letters. Taken as ground, it would whiten
                        // the text around it.
                        const int paper = light ? 255 - ground[j] : ground[j];
                        if (light || paper >= 128) near.push_back(std::max(paper, 1));
                    }
            std::sort(near.begin(), near.end());
            if (near.empty() || (!light && near.front() == 255)) continue; // nothing to do
            for (int y = ty * tileSize; y < std::min(image.height, (ty + 1) * tileSize); ++y)
                for (int x = tx * tileSize; x < std::min(image.width, (tx + 1) * tileSize); ++x) {
                    uint8_t& pixel = image.pixels[size_t(y) * size_t(image.width) + size_t(x)];
                    const int v = light ? 255 - pixel : pixel;
                    const auto base = std::lower_bound(near.begin(), near.end(), v - sameGround);
                    pixel = uint8_t(
                        std::min(255, v * 255 / (base == near.end() ? near.back() : *base)));
                }
        }
}

std::optional<GrayImage> scaled(const GrayImage& image, double factor) {
    VipsRef<VipsImage> in(vipsImageOf(image));
    VipsImage* out = nullptr;
    if (!in || vips_resize(in.get(), &out, factor, nullptr)) {
        vips_error_clear();
        return std::nullopt;
    }
    VipsRef<VipsImage> resized(out);
    return pixelsOf(resized.get());
}

GrayImage prepare(GrayImage image) {
    if (isDark(image)) invert(image);
    // A picture without letters to measure (a photograph, a picture with hardly any text) is
    // read as it is: evened out and enlarged, its texture would become a sea of specks.
    if (letterHeight(image) == 0) return image;
    // Measured again once every region's text is dark: the light text of dark panels counts.
    darkTextOnWhite(image);
    deepenFaintInk(image);
    const double factor = scaleFor(letterHeight(image), image.width, image.height);
    if (factor != 1)
        if (auto resized = scaled(image, factor)) image = std::move(*resized);
    return image;
}

} // namespace lumivale::Preparation
