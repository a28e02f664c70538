#include "reading/Icons.h"

#include <algorithm>
#include <regex>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace lumivale::Icons {

namespace {

// Below this the engine is unsure of a word; real short words and signs read far surer.
constexpr float sureConfidence = 90;
// Two letters read less surely than one sign, even when they are a real word ("km", "of").
constexpr float sureOfTwoLetters = 60;
// The status bar lies within this share of a phone screenshot's height from the top.
constexpr double statusBarDepth = 0.07;
constexpr double phoneShape = 1.6;
constexpr size_t maxCrosses = 3;
// A line whose every word the engine is this unsure of is no text.
constexpr float unsureLine = 25;

bool hasDigit(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A lone sign that stands beside no number of its line is an icon when it is a currency sign the
// engine is unsure of (a back arrow read as "€") or a cross (a tab's or window's close button);
// beside a number it is a price's or a size's ("85 €", "3 x 4").
bool isCross(UChar32 c) {
    return c == 'x' || c == 'X' || c == U'\u00d7';
}

bool isStraySign(const std::vector<Lines::Word>& words, size_t i) {
    const Lines::Word& word = words[i];
    bool crosses = true;
    size_t characters = 0;
    UChar32 c = 0;
    for (int32_t at = 0; at < int32_t(word.text.size());) {
        U8_NEXT(word.text.data(), at, int32_t(word.text.size()), c);
        crosses = crosses && isCross(c);
        ++characters;
    }
    // A close button is read as one cross, or unsurely as a few ("Xx").
    const bool cross = crosses && (characters == 1 ||
                                   (characters <= maxCrosses && word.confidence < sureConfidence));
    const bool unsureCurrency =
        characters == 1 && u_charType(c) == U_CURRENCY_SYMBOL && word.confidence < sureConfidence;
    if (!cross && !unsureCurrency) return false;
    // A number beside it makes it a price's or a size's; an icon beside it is no number.
    const bool numberBefore =
        !word.startsLine && i > 0 && !words[i - 1].icon && hasDigit(words[i - 1].text);
    const bool numberAfter =
        i + 1 < words.size() && !words[i + 1].startsLine && hasDigit(words[i + 1].text);
    return !numberBefore && !numberAfter;
}

// A window's maximise button, a square, read as zeros beside an "O" or a dash ("O0", "-0").
bool isSquare(std::string_view text) {
    return text.size() == 2 && text.find('0') != std::string_view::npos &&
           text.find_first_not_of('0') != std::string_view::npos &&
           text.find_first_not_of("0Oo-") == std::string_view::npos;
}

bool isCodeBracket(char32_t c) {
    return c == '{' || c == '}' || c == '(' || c == ')' || c == '[' || c == ']' || c == ';';
}

} // namespace

bool looksLikeIcon(std::string_view text, float confidence) {
    if (confidence >= sureConfidence) return false;
    if (isSquare(text)) return true;
    size_t characters = 0;
    bool letters = false, brackets = false, otherSigns = false;
    for (int32_t i = 0; i < int32_t(text.size());) {
        UChar32 c;
        U8_NEXT(text.data(), i, int32_t(text.size()), c);
        ++characters;
        if (u_isdigit(c) || u_charType(c) == U_CURRENCY_SYMBOL || c == '%') return false;
        letters = letters || u_isalpha(c);
        brackets = brackets || isCodeBracket(c);
        otherSigns = otherSigns || (!u_isalpha(c) && !isCodeBracket(c));
    }
    // Brackets are code's, unless a sign that code would not put beside them comes along ("@)").
    if (brackets && !otherSigns) return false;
    if (characters == 2 && letters) return confidence < sureOfTwoLetters;
    return characters <= 2 || !letters;
}

std::optional<std::string> statusBarText(std::string_view text, float confidence) {
    static const std::regex clock(R"(([01]?\d|2[0-3])[:.][0-5]\d)");
    static const std::regex battery(R"(\d{1,3}%)");
    static const std::regex badge(R"([2-5]G\+?|LTE\+?|H\+?|E)");
    const std::string word(text);
    if (std::regex_match(word, clock) || std::regex_match(word, badge)) return word;
    if (std::regex_match(word, battery)) {
        // A level is at most 100: a digit more is the signal bars beside it.
        if (std::stoi(word) > 100) return word.substr(word.size() - 3);
        return word;
    }
    const bool letters = std::count_if(word.begin(), word.end(),
                                       [](unsigned char c) { return std::isalpha(c); }) >= 3;
    if (letters && confidence >= sureConfidence) return word;
    return std::nullopt;
}

void mark(std::vector<Lines::Word>& words, int width, int height) {
    for (size_t i = 0; i < words.size(); ++i)
        words[i].icon = looksLikeIcon(words[i].text, words[i].confidence) || isStraySign(words, i);
    // An engine's line none of whose words it is anywhere near sure of is a pattern or a picture
    // read as letters ("CEEC EPEC"), not text.
    for (size_t start = 0; start < words.size();) {
        size_t end = start + 1;
        while (end < words.size() && !words[end].startsLine)
            ++end;
        if (std::all_of(words.begin() + std::ptrdiff_t(start), words.begin() + std::ptrdiff_t(end),
                        [](const Lines::Word& w) { return w.confidence < unsureLine; }))
            for (size_t i = start; i < end; ++i)
                words[i].icon = true;
        start = end;
    }
    if (words.empty() || width <= 0 || height < phoneShape * width) return;
    const auto top = std::min_element(words.begin(), words.end(), [](const auto& a, const auto& b) {
        return a.box.top < b.box.top;
    });
    const Lines::PixelBox bar = top->line;
    if (bar.bottom > statusBarDepth * height) return;
    std::vector<Lines::Word> kept;
    for (Lines::Word& word : words) {
        const int middle = (word.box.top + word.box.bottom) / 2;
        if (middle < bar.top || middle > bar.bottom) {
            kept.push_back(std::move(word));
            continue;
        }
        if (auto text = statusBarText(word.text, word.confidence)) {
            word.text = std::move(*text);
            word.icon = false;
            // Each piece of the bar stands on its own: the clock is not the battery's line.
            word.startsLine = true;
            kept.push_back(std::move(word));
        }
    }
    words = std::move(kept);
}

} // namespace lumivale::Icons
