#pragma once

#include <string>
#include <string_view>

namespace lumivale {

// Folding for search, sorting, keywords, prefixes and hints: full-width and half-width forms
// to their ordinary forms, full case folding, and accents removed, with no locale.
// "CAFÉ" → "cafe", "ＡＢＣ" → "abc". Input and output are UTF-8.
std::string foldText(std::string_view s);

// The text with digit-group separators (comma, space, no-break spaces) dropped where a
// number stands on both sides: "1,25,000" → "125000"; "a, b" is kept.
std::string squash(std::string_view s);

// Whether the text holds a numeric character (a digit in any script, a fraction, a numeral):
// without one, squashing leaves text as it is.
bool hasNumeric(std::string_view s);

} // namespace lumivale
