#include "reading/MachineZone.h"

#include <algorithm>
#include <map>
#include <optional>

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
    std::string s = withoutSpaces(text);
    // Guillemets stand for two fillers or one; other characters beyond ASCII for one.
    std::string out;
    for (size_t i = 0; i < s.size();) {
        const unsigned char c = s[i];
        if (s.compare(i, 2, "\u00ab") == 0 || s.compare(i, 2, "\u00bb") == 0) {
            out += "<<";
            i += 2;
            continue;
        }
        size_t length = 1;
        if (c >= 0xf0)
            length = 4;
        else if (c >= 0xe0)
            length = 3;
        else if (c >= 0xc0)
            length = 2;
        out += length == 1 && isZoneCharacter(char(c)) ? char(c) : '<';
        i += length;
    }
    size_t fillers = 0;
    for (size_t i = 0; i < out.size(); ++i) {
        const bool stray = out[i] >= 'A' && out[i] <= 'Z' && fillers >= fillersBeforeStrayLetter &&
                           i + 1 < out.size() && out[i + 1] == '<';
        if (stray) out[i] = '<';
        fillers = out[i] == '<' ? fillers + 1 : 0;
    }
    return out;
}

void repair(std::vector<TextLine>& lines) {
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
        start = end;
    }
}

} // namespace lumivale::MachineZone
