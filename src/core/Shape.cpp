#include "core/Shape.h"

#include "core/Characters.h"
#include "core/Pattern.h"

#include <algorithm>
#include <array>

namespace lumivale {
namespace {

// Each sign is capped so that a long chat or a long listing cannot outweigh every other shelf
// by its length alone.
double chatScoreOf(const std::vector<std::string>& lines) {
    int64_t clockLines = 0, shortLines = 0, questionLines = 0;
    for (const std::string& line : lines) {
        clockLines += Pattern::timeStamp().contains(line);
        shortLines += characterCount(line) <= 40;
        questionLines += line.ends_with('?');
    }
    const size_t n = lines.size();
    double score = std::min(1.5 * static_cast<double>(clockLines), 7.0);
    if (n > 5 && clockLines >= 2 && static_cast<double>(shortLines) / static_cast<double>(n) > 0.7)
        score += 2.0;
    return score + std::min(0.5 * static_cast<double>(questionLines), 2.0);
}

bool endsLikeCode(std::string_view line) {
    const std::string_view t = trimmedSpacesAndTabs(line);
    return t.ends_with(';') || t.ends_with('{') || t == "}" || t.ends_with("})");
}

bool isPrompt(std::string_view line) {
    return line.starts_with("$ ") || line.starts_with("% ") || line.starts_with(">>> ");
}

double symbolDensity(std::string_view raw) {
    constexpr std::string_view symbols = "{}();=<>[]_";
    const std::vector<size_t> bounds = characterBounds(raw);
    int64_t count = 0;
    for (size_t k = 0; k + 1 < bounds.size(); ++k)
        count += bounds[k + 1] - bounds[k] == 1 && symbols.find(raw[bounds[k]]) != symbols.npos;
    const double characters = static_cast<double>(bounds.size() - 1);
    return static_cast<double>(count) / std::max(characters, 1.0);
}

double codeScoreOf(const std::vector<std::string>& lines, std::string_view raw) {
    constexpr std::array<std::string_view, 11> tokens = {"=>", "->", "==", "!=", "//", "/*",
                                                         "</", "()", "::", "&&", "||"};
    int64_t codeEndings = 0, prompts = 0;
    for (const std::string& line : lines) {
        codeEndings += endsLikeCode(line);
        prompts += isPrompt(line);
    }
    const double density = symbolDensity(raw);
    double score = density > 0.07 ? 5.0 : density > 0.04 ? 3.0 : 0.0;
    score += std::min(0.7 * static_cast<double>(codeEndings), 5.0);
    for (std::string_view token : tokens)
        score += raw.find(token) != raw.npos ? 1.0 : 0.0;
    score += std::min(static_cast<double>(prompts), 2.0);
    score += std::min(0.3 * static_cast<double>(Pattern::identifier().count(raw)), 3.0);
    return score;
}

} // namespace

Shape::Shape(const std::vector<std::string>& lines, std::string_view raw)
    : chatScore(chatScoreOf(lines)), codeScore(codeScoreOf(lines, raw)),
      moneyCount(static_cast<int64_t>(Pattern::money().count(raw))),
      hasPercentOff(Pattern::percentOff().contains(raw)),
      hasAirportPair(Pattern::airportPair().contains(raw)),
      durationCount(static_cast<int64_t>(Pattern::duration().count(raw))),
      distanceCount(static_cast<int64_t>(Pattern::distance().count(raw))) {}

} // namespace lumivale
