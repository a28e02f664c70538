#pragma once

#include "core/Shelf.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// A word or phrase that speaks for a shelf, and how strongly.
struct Keyword {
    std::string text;
    double weight = 0;

    bool operator==(const Keyword&) const = default;
};

using KeywordTable = std::map<Shelf, std::vector<Keyword>>;

namespace Keywords {

// Every shelf's keywords as written, in their stored order; `other` has none.
const KeywordTable& raw();

// The same keywords in word-text form (" driver s license "), weights and order unchanged.
const KeywordTable& table();

} // namespace Keywords

// The text folded and reduced to its words: one leading space, letters and numbers kept,
// every run of other characters turned into one space, one trailing space. "Valid-thru:
// 12/29" → " valid thru 12 29 ". A phrase in this form occurs in a text in this form only
// as whole words.
std::string wordText(std::string_view s);

} // namespace lumivale
