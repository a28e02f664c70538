#include "reading/MachineZone.h"

#include "core/Sensitive.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unicode/normalizer2.h>
#include <unicode/utf8.h>

namespace lumivale::MachineZone {

namespace {

constexpr size_t shortestLine = 28;
// A letter after this many fillers cannot be part of a name (names part with "<<").
constexpr size_t fillersBeforeStrayLetter = 3;
// The line lengths of identity cards (30, 36) and passports (44).
constexpr size_t standardLengths[] = {30, 36, 44};

bool isZoneCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '<';
}

// The capital an accented capital is written on ("Á" → "A").
std::optional<char> baseCapital(UChar32 c) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
    icu::UnicodeString parts;
    if (U_FAILURE(status) || !nfd->getDecomposition(c, parts) || parts.isEmpty()) return {};
    const UChar32 base = parts.char32At(0);
    if (base >= 'A' && base <= 'Z') return char(base);
    return {};
}

std::string withoutSpaces(std::string_view text) {
    std::string s(text);
    std::erase(s, ' ');
    return s;
}

size_t closingFillers(const std::string& line) {
    const size_t last = line.find_last_not_of('<');
    return last == std::string::npos ? line.size() : line.size() - last - 1;
}

// The length of a zone's lines: the one most of them have, else a standard one among them.
std::optional<size_t> zoneLength(const std::map<size_t, size_t>& lengths, size_t lineCount) {
    for (const auto& [length, count] : lengths)
        if (count * 2 > lineCount) return length;
    for (size_t standard : standardLengths)
        if (lengths.contains(standard)) return standard;
    return std::nullopt;
}

// A field that a check digit follows; dates hold digits only.
struct CheckedField {
    size_t start, length;
    bool digitsOnly;
};

// The checked fields of line `index` of a zone whose lines are `length` long: an identity card's
// document number on its first line and its dates on the second (30), a passport's or a card's
// document number and dates on the second line (44, 36).
std::vector<CheckedField> checkedFields(size_t length, size_t index) {
    if (length == 30 && index == 0) return {{5, 9, false}};
    if (length == 30 && index == 1) return {{0, 6, true}, {8, 6, true}};
    if ((length == 36 || length == 44) && index == 1)
        return {{0, 9, false}, {13, 6, true}, {21, 6, true}};
    return {};
}

// The digit a letter is misread for, and back; 0 when it has none.
char lookAlike(char c) {
    constexpr std::pair<char, char> pairs[] = {{'0', 'O'}, {'1', 'I'}, {'2', 'Z'}, {'4', 'A'},
                                               {'5', 'S'}, {'6', 'G'}, {'7', 'T'}, {'8', 'B'}};
    for (const auto& [digit, letter] : pairs) {
        if (c == digit) return letter;
        if (c == letter) return digit;
    }
    return 0;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool holds(const std::string& line, const CheckedField& field) {
    const char check = line[field.start + field.length];
    return isDigit(check) &&
           Sensitive::zoneCheckDigit(std::string_view(line).substr(field.start, field.length)) ==
               check - '0';
}

// Puts right the characters of a checked field that the recogniser took for their look-alikes
// ("A" for "4"): letters in dates and in check digits become digits; then, if the check still
// fails, the one swap of a look-alike that makes it hold is made, when there is exactly one.
void putRight(std::string& line, const CheckedField& field) {
    if (line.size() <= field.start + field.length) return;
    const size_t check = field.start + field.length;
    for (size_t i = field.start; i <= check; ++i)
        if ((field.digitsOnly || i == check) && !isDigit(line[i]) && lookAlike(line[i]))
            line[i] = lookAlike(line[i]);
    if (holds(line, field)) return;
    std::optional<std::string> fixed;
    for (size_t i = field.start; i < check; ++i) {
        const char swap = lookAlike(line[i]);
        if (!swap || (field.digitsOnly && !isDigit(swap))) continue;
        std::string candidate = line;
        candidate[i] = swap;
        if (!holds(candidate, field)) continue;
        if (fixed) return; // two ways to make it hold: neither is sure
        fixed = std::move(candidate);
    }
    if (fixed) line = std::move(*fixed);
}

} // namespace

bool looksLikeZoneLine(std::string_view text) {
    const std::string s = withoutSpaces(text);
    if (s.size() < shortestLine || s.find("<<") == std::string::npos) return false;
    // Fillers are misread as lower case ("c", "e") and signs; capitals and digits are read well.
    const auto fitting = std::count_if(s.begin(), s.end(), isZoneCharacter);
    const auto misread = std::count_if(s.begin(), s.end(),
                                       [](char c) { return (c >= 'a' && c <= 'z') || c == '#'; });
    return size_t(fitting) * 10 >= s.size() * 6 && size_t(fitting + misread) * 10 >= s.size() * 9;
}

std::string repaired(std::string_view text) {
    const std::string s = withoutSpaces(text);
    // Guillemets stand for two fillers or one; a capital with an accent for the capital (a zone
    // holds none); other characters beyond ASCII for one filler.
    std::string out;
    for (int32_t i = 0; i < int32_t(s.size());) {
        UChar32 c;
        U8_NEXT(s.data(), i, int32_t(s.size()), c);
        if (c == U'\u00ab' || c == U'\u00bb')
            out += "<<";
        else if (c >= 0 && c < 0x80)
            out += isZoneCharacter(char(c)) ? char(c) : '<';
        else
            out += baseCapital(c).value_or('<');
    }
    size_t fillers = 0;
    for (size_t i = 0; i < out.size(); ++i) {
        if (out[i] >= 'A' && out[i] <= 'Z' && fillers >= fillersBeforeStrayLetter) {
            // A run of letters after the fillers that a filler or the line's end closes.
            size_t end = i;
            while (end < out.size() && out[end] >= 'A' && out[end] <= 'Z')
                ++end;
            if (end == out.size() || out[end] == '<')
                std::fill(out.begin() + i, out.begin() + end, '<');
        }
        fillers = out[i] == '<' ? fillers + 1 : 0;
    }
    return out;
}

void repair(std::vector<TextLine>& lines) {
    // Nothing is printed between the lines of a zone: what is read there within their width is
    // the ground's pattern, and what is read beside them belongs after them (a signature).
    for (size_t i = 1; i + 1 < lines.size(); ++i) {
        const TextLine &above = lines[i - 1], &line = lines[i];
        if (!looksLikeZoneLine(above.text) || looksLikeZoneLine(line.text) ||
            !looksLikeZoneLine(lines[i + 1].text))
            continue;
        if (line.x >= above.x && line.x + line.w <= above.x + above.w) {
            lines.erase(lines.begin() + std::ptrdiff_t(i));
            continue;
        }
        size_t end = i + 1;
        while (end < lines.size() && looksLikeZoneLine(lines[end].text))
            ++end;
        std::rotate(lines.begin() + std::ptrdiff_t(i), lines.begin() + std::ptrdiff_t(i + 1),
                    lines.begin() + std::ptrdiff_t(end));
    }
    for (size_t start = 0; start < lines.size();) {
        size_t end = start;
        while (end < lines.size() && looksLikeZoneLine(lines[end].text))
            ++end;
        if (end == start) {
            ++start;
            continue;
        }
        std::map<size_t, size_t> lengths;
        for (size_t i = start; i < end; ++i) {
            lines[i].text = repaired(lines[i].text);
            ++lengths[lines[i].text.size()];
        }
        if (const auto common = zoneLength(lengths, end - start))
            for (size_t i = start; i < end; ++i) {
                std::string& text = lines[i].text;
                const size_t closing = closingFillers(text);
                if (text.size() > *common && text.size() - *common < closing)
                    text.resize(*common);
                else if (text.size() < *common && closing > 0)
                    text.append(*common - text.size(), '<');
            }
        for (size_t i = start; i < end; ++i)
            for (const CheckedField& field : checkedFields(lines[i].text.size(), i - start))
                putRight(lines[i].text, field);
        start = end;
    }
}

} // namespace lumivale::MachineZone
