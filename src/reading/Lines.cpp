#include "reading/Lines.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace lumivale::Lines {

namespace {
constexpr float rowTolerance = 0.008f;
// Words further apart than this many line heights belong to different lines.
constexpr int widestGap = 2;
} // namespace

std::vector<Piece> pieces(const std::vector<Word>& words) {
    // The words of each piece, found first, then joined without the icons at their ends.
    std::vector<std::vector<const Word*>> runs;
    for (size_t i = 0; i < words.size(); ++i) {
        const Word& word = words[i];
        const int lineHeight = word.line.bottom - word.line.top;
        if (i == 0 || word.startsLine ||
            word.box.left - words[i - 1].box.right > widestGap * lineHeight)
            runs.emplace_back();
        runs.back().push_back(&word);
    }
    std::vector<Piece> found;
    for (const auto& run : runs) {
        auto first = run.begin(), last = run.end();
        while (first != last && (*first)->icon)
            ++first;
        while (last != first && (*(last - 1))->icon)
            --last;
        if (first == last) continue;
        Piece piece{(*first)->text, (*first)->box};
        for (auto it = first + 1; it != last; ++it) {
            const Word& word = **it;
            piece.text += " " + word.text;
            piece.box = {std::min(piece.box.left, word.box.left),
                         std::min(piece.box.top, word.box.top),
                         std::max(piece.box.right, word.box.right),
                         std::max(piece.box.bottom, word.box.bottom)};
        }
        found.push_back(std::move(piece));
    }
    // The engine now and then reads part of a line twice, as a line of its own inside the
    // other's box ("hat" within "< Chats"): such an echo goes.
    const auto inside = [](const PixelBox& a, const PixelBox& b) {
        return a.left >= b.left && a.right <= b.right && a.top >= b.top && a.bottom <= b.bottom;
    };
    std::vector<Piece> kept;
    for (size_t i = 0; i < found.size(); ++i) {
        const bool echo = std::any_of(found.begin(), found.end(), [&](const Piece& other) {
            return &other != &found[i] && other.text.size() > found[i].text.size() &&
                   inside(found[i].box, other.box) &&
                   other.text.find(found[i].text) != std::string::npos;
        });
        if (!echo) kept.push_back(std::move(found[i]));
    }
    return kept;
}

std::optional<TextLine> make(std::string_view text, PixelBox box, int width, int height) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos || width <= 0 || height <= 0) return std::nullopt;
    // The engine closes every line with a line feed; white space inside a line stays.
    const size_t last = text.find_last_not_of(" \t\n");
    if (last == std::string_view::npos || last < first) return std::nullopt;
    const float w = float(width), h = float(height);
    return TextLine{std::string(text.substr(first, last - first + 1)), float(box.left) / w,
                    1.0f - float(box.bottom) / h, float(box.right - box.left) / w,
                    float(box.bottom - box.top) / h};
}

bool precedes(const TextLine& a, const TextLine& b) {
    if (std::fabs(a.y - b.y) > rowTolerance) return a.y > b.y;
    return a.x < b.x;
}

void sort(std::vector<TextLine>& lines) {
    // The row tolerance makes the order intransitive (a ~ b and b ~ c, yet a before c), which
    // the standard sorts do not allow; a stable insertion sort is well defined for any order,
    // and a picture holds at most a few hundred lines.
    for (size_t i = 1; i < lines.size(); ++i) {
        TextLine line = std::move(lines[i]);
        size_t j = i;
        for (; j > 0 && precedes(line, lines[j - 1]); --j)
            lines[j] = std::move(lines[j - 1]);
        lines[j] = std::move(line);
    }
}

} // namespace lumivale::Lines
