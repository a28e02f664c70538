#include "core/Titles.h"

#include "core/Characters.h"
#include "core/Pattern.h"

#include <algorithm>
#include <vector>

namespace lumivale::Titles {
namespace {

// A whole line of phone or window chrome: a clock, a battery level, a network badge, a back
// arrow, a button, bullets, or nothing but punctuation. Case-sensitive, so "DONE" is a heading.
const Pattern& chrome() {
    static const Pattern p(R"(^(?:\d{1,2}[:.]\d{2}(?:\s?[AaPp][Mm])?|[0-9]{1,3}%|5G|4G|LTE|)"
                           R"(Wi-?Fi|<|Back|Done|Cancel|Edit|Share|\x{2022}+|\W+)$)");
    return p;
}

constexpr size_t linesLookedAt = 12;

bool hasLetter(std::string_view s) {
    const std::vector<size_t> bounds = characterBounds(s);
    for (size_t k = 0; k + 1 < bounds.size(); ++k)
        if (isLetterCharacter(s.substr(bounds[k], bounds[k + 1] - bounds[k]))) return true;
    return false;
}

bool readsLikeTitle(std::string_view line) {
    const size_t length = characterCount(line);
    // A short line that ends in a clock time ("Mom 9:41") is a status or chat stamp; a long
    // one is a chat line that happens to carry its time.
    return length >= 3 && !chrome().contains(line) && hasLetter(line) &&
           (!Pattern::timeStamp().contains(line) || length > 11);
}

// The length in bytes of the line break that starts at byte i, or 0 when none does.
size_t lineBreakAt(std::string_view s, size_t i) {
    static constexpr std::string_view breaks[] = {"\n",     "\r",     "\v",    "\f",
                                                  "\u0085", "\u2028", "\u2029"};
    for (std::string_view b : breaks)
        if (s.substr(i).starts_with(b)) return b.size();
    return 0;
}

// Fit for a file name: no "/" or ":", and the line's pieces joined by single spaces, trimmed
// again since a ":" at either end becomes a space.
std::string cleaned(std::string_view line) {
    std::string out, piece;
    auto endPiece = [&] {
        if (piece.empty()) return;
        if (!out.empty()) out += ' ';
        out += piece;
        piece.clear();
    };
    for (size_t i = 0; i < line.size();) {
        if (const size_t width = lineBreakAt(line, i)) {
            endPiece();
            i += width;
        } else {
            piece += line[i] == '/' ? '-' : line[i] == ':' ? ' ' : line[i];
            ++i;
        }
    }
    endPiece();
    return std::string(trimmed(out));
}

} // namespace

std::optional<std::string> of(const Shot& shot, size_t max) {
    const size_t n = std::min(shot.lines.size(), linesLookedAt);
    for (size_t i = 0; i < n; ++i) {
        const std::string_view line = trimmed(shot.lines[i].text);
        if (!readsLikeTitle(line)) continue;
        std::string title = cleaned(line);
        if (characterCount(title) <= max) return title;
        return std::string(trimmedEnd(firstCharacters(title, max))) + "…";
    }
    return std::nullopt;
}

} // namespace lumivale::Titles
