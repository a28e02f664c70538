#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// Text measured the way a reader sees it: in user-perceived characters (grapheme clusters), so
// a Devanagari letter with its vowel sign, or a letter with its accent, is one character.
// Everything is UTF-8.

// The byte offsets where each character starts, followed by the text's length.
std::vector<size_t> characterBounds(std::string_view s);

// The number of characters.
size_t characterCount(std::string_view s);

// The first n characters (all of s when it has fewer).
std::string_view firstCharacters(std::string_view s, size_t n);

// Whether the character starting at the front of `character` is a letter of any script.
bool isLetterCharacter(std::string_view character);

// Whether the character starting at the front of `character` is a number of any script.
bool isNumberCharacter(std::string_view character);

// The decimal digits of s, in order, as ASCII digits ("١٢-34" → "1234").
std::string decimalDigits(std::string_view s);

// Whether every character of s is a decimal digit, and there is at least one.
bool isAllDecimalDigits(std::string_view s);

// s without white space or line breaks at either end.
std::string_view trimmed(std::string_view s);

// s without white space or line breaks at its end.
std::string_view trimmedEnd(std::string_view s);

// s without spaces and tabs at either end.
std::string_view trimmedSpacesAndTabs(std::string_view s);

// s without spaces of any width (no-break and full-width ones too) and tabs at either end.
std::string_view trimmedSpaces(std::string_view s);

// Whether every byte of s is ASCII.
bool isAscii(std::string_view s);

// s lowercased, with no locale.
std::string lowered(std::string_view s);

} // namespace lumivale
