#include "core/Sorter.h"

#include "core/Keywords.h"
#include "core/Sensitive.h"
#include "core/Shape.h"

#include <algorithm>
#include <vector>

namespace lumivale::Sorter {
namespace {

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i) text += '\n';
        text += lines[i];
    }
    return text;
}

size_t wordCount(std::string_view words) {
    size_t n = 0;
    bool inWord = false;
    for (char c : words) {
        n += c != ' ' && !inWord;
        inWord = c != ' ';
    }
    return n;
}

void addKeywordScores(const std::string& words, std::map<Shelf, double>& scores) {
    for (const auto& [shelf, keywords] : Keywords::table())
        for (const Keyword& k : keywords)
            if (words.find(k.text) != std::string::npos) scores[shelf] += k.weight;
}

void addShape(const Shape& shape, std::map<Shelf, double>& scores) {
    scores[Shelf::chats] += shape.chatScore;
    scores[Shelf::code] += shape.codeScore;
    scores[Shelf::bills] += std::min(1.5 * static_cast<double>(shape.moneyCount), 6.0);
    if (shape.hasPercentOff) scores[Shelf::shopping] += 3.0;
    if (shape.moneyCount >= 1) scores[Shelf::shopping] += 1.0;
    if (shape.hasAirportPair) scores[Shelf::tickets] += 4.0;
    scores[Shelf::maps] += static_cast<double>(std::min<int64_t>(shape.durationCount, 3)) +
                           std::min(static_cast<double>(shape.distanceCount), 3.0);
}

void addBarcodes(const std::vector<std::string>& barcodes, std::map<Shelf, double>& scores) {
    // Aztec and PDF417 are what boarding passes and rail tickets carry; a QR code is common
    // everywhere and says little.
    const auto travel = std::find_if(barcodes.begin(), barcodes.end(), [](const std::string& b) {
        return b == "Aztec" || b == "PDF417";
    });
    if (travel != barcodes.end()) {
        scores[Shelf::tickets] += 6.0;
    } else if (std::find(barcodes.begin(), barcodes.end(), "QR") != barcodes.end()) {
        scores[Shelf::tickets] += 1.5;
        scores[Shelf::bills] += 0.5;
    }
}

void addPrivateNumbers(const SensitiveKinds& flags, std::map<Shelf, double>& scores) {
    if (flags.contains(SensitiveKind::nationalID) || flags.contains(SensitiveKind::passport) ||
        flags.contains(SensitiveKind::taxID))
        scores[Shelf::ids] += 8.0;
    if (flags.contains(SensitiveKind::cardNumber)) scores[Shelf::ids] += 3.0;
}

// Highest score first; equal scores by the shelf's stored name, so the order never depends on
// how the map happens to be laid out.
std::vector<std::pair<Shelf, double>> ranked(const std::map<Shelf, double>& scores) {
    std::vector<std::pair<Shelf, double>> ranking(scores.begin(), scores.end());
    std::stable_sort(ranking.begin(), ranking.end(), [](const auto& a, const auto& b) {
        if (a.second != b.second) return a.second > b.second;
        return shelfId(a.first) < shelfId(b.first);
    });
    return ranking;
}

double confidenceOf(double top, double second) {
    const double margin = (top - second) / top;
    const double strength = std::min(top / 14.0, 1.0);
    const double confidence =
        std::min(0.15 * margin + 0.35 * strength + 0.65 * strength * margin, 1.0);
    return std::max(confidence, 0.05);
}

} // namespace

Verdict sort(const std::vector<std::string>& lines, const std::vector<std::string>& barcodes) {
    const std::string text = joined(lines);
    const std::string words = wordText(text);

    Verdict verdict;
    verdict.flags = Sensitive::find(text);
    for (Shelf shelf : allShelves)
        verdict.scores[shelf] = 0;
    addKeywordScores(words, verdict.scores);
    addShape(Shape(lines, text), verdict.scores);
    addBarcodes(barcodes, verdict.scores);
    addPrivateNumbers(verdict.flags, verdict.scores);

    const std::vector<std::pair<Shelf, double>> ranking = ranked(verdict.scores);
    if (ranking.empty() || ranking.front().second < threshold || wordCount(words) < 3)
        return verdict; // other, with confidence 0; the scores and flags still tell why
    const double top = ranking.front().second;
    const double second = ranking.size() > 1 ? ranking[1].second : 0.0;
    verdict.category = ranking.front().first;
    verdict.confidence = confidenceOf(top, second);
    return verdict;
}

void apply(const Reading& reading, Shot& shot) {
    shot.setLines(reading.lines);
    shot.barcodes = reading.barcodes;
    shot.pixelWidth = reading.pixelWidth;
    shot.pixelHeight = reading.pixelHeight;
    shot.failed = reading.failed;

    std::vector<std::string> texts;
    texts.reserve(reading.lines.size());
    for (const TextLine& line : reading.lines)
        texts.push_back(line.text);
    const Verdict verdict = sort(texts, reading.barcodes);
    shot.guess = verdict.category;
    shot.guessScore = verdict.confidence;
    shot.flags = verdict.flags;
    shot.reader = readerVersion;
}

} // namespace lumivale::Sorter
