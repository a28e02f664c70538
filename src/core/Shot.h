#pragma once

#include "core/Date.h"
#include "core/Shelf.h"
#include "core/TextSearch.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// One line of recognised text with its box, in normalised coordinates with the origin at the
// picture's lower left (x, y is the box's lower-left corner).
struct TextLine {
    std::string text;
    float x = 0, y = 0, w = 0, h = 0;

    bool operator==(const TextLine&) const = default;
};

// Everything known about one picture file.
struct Shot {
    // What a search reads of every shot comes first, together: the sketches of `folded` (until
    // it is indexed, sketches that rule nothing out), where in it the folded file name (0 when it
    // is not found there) and the squashed copy (0 when there is none) begin, the dates that
    // order the results, and the search text itself.
    alignas(64) PairSketch pairs = anyPairs;
    uint64_t lineStarts = ~0ull;
    size_t nameAt = 0;
    size_t squashedAt = 0;
    Date created{};
    Date modified{};
    std::string folded;

    std::string path;
    int64_t size = 0;
    int64_t pixelWidth = 0;
    int64_t pixelHeight = 0;
    std::vector<TextLine> lines;
    std::vector<std::string> barcodes;
    Shelf guess = Shelf::other;
    double guessScore = 0;
    std::optional<Shelf> manual;
    SensitiveKinds flags;
    std::optional<Date> readAt;
    bool failed = false;
    int64_t reader = 0;

    Shot() = default;
    // A new, unread shot of a file just found.
    Shot(std::string path, int64_t size, Date created, Date modified);

    // The file name with its extension.
    std::string_view name() const;
    // The containing folder's path.
    std::string_view folder() const;
    // The hand-picked shelf if there is one, else the sorter's guess.
    Shelf category() const { return manual ? *manual : guess; }
    bool isRead() const { return readAt.has_value(); }
    // On the IDs shelf, or holding any private number.
    bool isSensitive() const { return shelfIsSensitive(category()) || !flags.empty(); }
    // The line texts joined with line feeds.
    std::string text() const;
    // The earlier of created and modified (created on a tie).
    Date date() const { return modified < created ? modified : created; }

    // Replaces the lines and recomputes the search text.
    void setLines(std::vector<TextLine> newLines);
    // Recomputes the search text from the lines and the file name.
    void refold();
    // Finds nameAt and squashedAt, and sketches the pairs and line starts, of a search text
    // taken as it is (read from a file).
    void indexSearchText();
    // Whether a file of this size and modification date is still the one that was read:
    // same size, and dates less than one second apart.
    bool matches(int64_t otherSize, Date otherModified) const;

    bool operator==(const Shot&) const = default;
};

// Shots are shared and never changed in place, so copying a whole library (to save it in the
// background) costs one pointer per shot.
using ShotPtr = std::shared_ptr<const Shot>;

// The search text of a shot with these lines and this file name: the folded text, and the
// squashed form after it when squashing changes it.
std::string searchTextOf(const std::vector<TextLine>& lines, std::string_view fileName);

} // namespace lumivale
