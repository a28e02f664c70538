#pragma once

#include "core/Shot.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// What the user typed into the search field, as terms that must all occur in a shot's search
// text (Shot::folded). Capitals, accents, character width and digit grouping do not count.
struct SearchQuery {
    // Folded and squashed, in the order typed; never empty strings.
    std::vector<std::string> terms;

    SearchQuery() = default;
    // Splits typed text into terms at white space outside quotation marks (straight or curly);
    // a quoted phrase is one term, and an unclosed quote runs to the end.
    explicit SearchQuery(std::string_view typed);

    bool isEmpty() const { return terms.empty(); }
    // Whether every term occurs in the shot's search text; always true without terms.
    bool matches(const Shot& shot) const;
    // The indices, ascending, of the shot's lines that hold any of the terms.
    std::vector<size_t> hitLines(const Shot& shot) const;
    // The shots that match, most relevant first (each term scores its occurrences up to five,
    // two more when it starts a line, one more when it is in the file name); equal scores, and
    // every shot when there are no terms, newest first. Shots must not be null.
    std::vector<ShotPtr> rank(const std::vector<ShotPtr>& shots) const;

    bool operator==(const SearchQuery&) const = default;
};

} // namespace lumivale
