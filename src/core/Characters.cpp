#include "core/Characters.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace lumivale {
namespace {

int32_t length32(std::string_view s) {
    return static_cast<int32_t>(s.size());
}

UChar32 firstCodePoint(std::string_view s) {
    if (s.empty()) return U_SENTINEL;
    int32_t i = 0;
    UChar32 c;
    U8_NEXT(s.data(), i, length32(s), c);
    return c;
}

// Break iterators are not safe to share between threads, so each call works on its own clone
// of one prototype built on first use.
std::unique_ptr<icu::BreakIterator> characterIterator() {
    static const std::unique_ptr<icu::BreakIterator> prototype = [] {
        UErrorCode e = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> it(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), e));
        if (U_FAILURE(e) || !it) {
            std::fprintf(stderr, "lumivale: ICU has no character break rules (%s)\n",
                         u_errorName(e));
            std::abort();
        }
        return it;
    }();
    return std::unique_ptr<icu::BreakIterator>(prototype->clone());
}

bool isWhiteSpace(UChar32 c) {
    return c >= 0 && u_isUWhiteSpace(c);
}

bool isSpaceOrTab(UChar32 c) {
    return c == '\t' || (c >= 0 && u_charType(c) == U_SPACE_SEPARATOR);
}

// s without the characters that `isBlank` picks out at either end.
std::string_view trimmedBoth(std::string_view s, bool (*isBlank)(UChar32)) {
    int32_t begin = 0;
    int32_t end = length32(s);
    while (begin < end) {
        int32_t next = begin;
        UChar32 c;
        U8_NEXT(s.data(), next, end, c);
        if (!isBlank(c)) break;
        begin = next;
    }
    while (end > begin) {
        int32_t previous = end;
        UChar32 c;
        U8_PREV(s.data(), begin, previous, c);
        if (!isBlank(c)) break;
        end = previous;
    }
    return s.substr(static_cast<size_t>(begin), static_cast<size_t>(end - begin));
}

} // namespace

std::vector<size_t> characterBounds(std::string_view s) {
    std::vector<size_t> bounds;
    bounds.reserve(s.size() + 1);
    if (isAscii(s)) {
        // Among ASCII characters only a carriage return and line feed pair form one character.
        for (size_t i = 0; i < s.size(); ++i)
            if (i == 0 || s[i - 1] != '\r' || s[i] != '\n') bounds.push_back(i);
        bounds.push_back(s.size());
        return bounds;
    }
    UErrorCode e = U_ZERO_ERROR;
    UText text = UTEXT_INITIALIZER;
    utext_openUTF8(&text, s.data(), static_cast<int64_t>(s.size()), &e);
    std::unique_ptr<icu::BreakIterator> it = characterIterator();
    it->setText(&text, e);
    if (U_FAILURE(e)) {
        // Cannot happen for text held in memory; fall back to code points.
        for (int32_t i = 0; i < length32(s);) {
            bounds.push_back(static_cast<size_t>(i));
            U8_FWD_1(s.data(), i, length32(s));
        }
    } else {
        for (int32_t b = it->first(); b != icu::BreakIterator::DONE; b = it->next())
            bounds.push_back(static_cast<size_t>(b));
    }
    utext_close(&text);
    if (bounds.empty() || bounds.back() != s.size()) bounds.push_back(s.size());
    if (bounds.front() != 0) bounds.insert(bounds.begin(), 0);
    return bounds;
}

size_t characterCount(std::string_view s) {
    return characterBounds(s).size() - 1;
}

std::string_view firstCharacters(std::string_view s, size_t n) {
    const std::vector<size_t> bounds = characterBounds(s);
    return n + 1 >= bounds.size() ? s : s.substr(0, bounds[n]);
}

bool isLetterCharacter(std::string_view character) {
    const UChar32 c = firstCodePoint(character);
    return c >= 0 && u_hasBinaryProperty(c, UCHAR_ALPHABETIC);
}

bool isNumberCharacter(std::string_view character) {
    const UChar32 c = firstCodePoint(character);
    return c >= 0 && u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

std::string decimalDigits(std::string_view s) {
    std::string out;
    for (int32_t i = 0; i < length32(s);) {
        UChar32 c;
        U8_NEXT(s.data(), i, length32(s), c);
        const int32_t value = c >= 0 ? u_charDigitValue(c) : -1;
        if (value >= 0) out += static_cast<char>('0' + value);
    }
    return out;
}

bool isAllDecimalDigits(std::string_view s) {
    if (s.empty()) return false;
    for (int32_t i = 0; i < length32(s);) {
        UChar32 c;
        U8_NEXT(s.data(), i, length32(s), c);
        if (c < 0 || u_charDigitValue(c) < 0) return false;
    }
    return true;
}

std::string_view trimmedEnd(std::string_view s) {
    int32_t end = length32(s);
    while (end > 0) {
        int32_t previous = end;
        UChar32 c;
        U8_PREV(s.data(), 0, previous, c);
        if (!isWhiteSpace(c)) break;
        end = previous;
    }
    return s.substr(0, static_cast<size_t>(end));
}

std::string_view trimmed(std::string_view s) {
    return trimmedBoth(s, isWhiteSpace);
}

std::string_view trimmedSpaces(std::string_view s) {
    return trimmedBoth(s, isSpaceOrTab);
}

bool isAscii(std::string_view s) {
    unsigned char any = 0;
    for (unsigned char c : s)
        any |= c;
    return any < 0x80;
}

std::string_view trimmedSpacesAndTabs(std::string_view s) {
    const size_t start = s.find_first_not_of(" \t");
    if (start == std::string_view::npos) return {};
    return s.substr(start, s.find_last_not_of(" \t") - start + 1);
}

std::string lowered(std::string_view s) {
    std::string out;
    if (isAscii(s)) {
        out = s;
        for (char& c : out)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return out;
    }
    icu::UnicodeString::fromUTF8(icu::StringPiece(s.data(), length32(s)))
        .toLower(icu::Locale::getRoot())
        .toUTF8String(out);
    return out;
}

} // namespace lumivale
