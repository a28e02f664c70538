#include "core/Sensitive.h"

#include "core/Characters.h"
#include "core/Fold.h"
#include "core/Keywords.h"
#include "core/Pattern.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <vector>

namespace lumivale::Sensitive {
namespace {

const Pattern& cardRun() {
    static const Pattern p(R"((?<!\d)(?:\d[ -]?){12,18}\d(?!\d))");
    return p;
}

const Pattern& aadhaar() {
    static const Pattern p(R"((?<!\d)([2-9]\d{3})[ -]?(\d{4})[ -]?(\d{4})(?!\d))");
    return p;
}

const Pattern& ssn() {
    static const Pattern p(R"((?<!\d)(?!000|666|9\d\d)\d{3}-(?!00)\d{2}-(?!0000)\d{4}(?!\d))");
    return p;
}

const Pattern& pan() {
    static const Pattern p(R"(\b[A-Z]{3}[PCHFATBLJG][A-Z]\d{4}[A-Z]\b)");
    return p;
}

const Pattern& mrz() {
    static const Pattern p(R"((?m)^P[<A-Z][A-Z<]{3}[A-Z<]{20,}$|^[A-Z0-9<]{9}\d[A-Z<]{3}\d{6})");
    return p;
}

const Pattern& passportNumber() {
    static const Pattern p(R"(\b[A-Z]\d{7}\b)");
    return p;
}

const Pattern& iban() {
    static const Pattern p(R"(\b[A-Z]{2}\d{2}(?: ?[A-Z0-9]{4}){2,7}(?: ?[A-Z0-9]{1,4})?\b)");
    return p;
}

const Pattern& accountNumber() {
    static const Pattern p(
        R"((?i)(?:account (?:number|no\.?)|a/c (?:no\.?)?|acct\.? no\.?)\s*[:#]?\s*(\d[\d ]{8,20}\d))");
    return p;
}

constexpr std::array<std::string_view, 15> cardWords = {
    "card",       "visa",          "mastercard", "rupay", "amex", "american express",
    "valid thru", "valid through", "expiry",     "exp",   "cvv",  "debit",
    "credit",     "discover",      "maestro"};

// The published Verhoeff tables: multiplication in the dihedral group D5, and the position
// permutations.
// clang-format off
constexpr int multiplication[10][10] = {
    {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
    {1, 2, 3, 4, 0, 6, 7, 8, 9, 5},
    {2, 3, 4, 0, 1, 7, 8, 9, 5, 6},
    {3, 4, 0, 1, 2, 8, 9, 5, 6, 7},
    {4, 0, 1, 2, 3, 9, 5, 6, 7, 8},
    {5, 9, 8, 7, 6, 0, 4, 3, 2, 1},
    {6, 5, 9, 8, 7, 1, 0, 4, 3, 2},
    {7, 6, 5, 9, 8, 2, 1, 0, 4, 3},
    {8, 7, 6, 5, 9, 3, 2, 1, 0, 4},
    {9, 8, 7, 6, 5, 4, 3, 2, 1, 0}};
constexpr int permutation[8][10] = {
    {0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
    {1, 5, 7, 6, 2, 8, 3, 0, 9, 4},
    {5, 8, 0, 3, 7, 9, 6, 1, 4, 2},
    {8, 9, 1, 6, 0, 4, 3, 5, 2, 7},
    {9, 4, 5, 3, 1, 2, 6, 8, 7, 0},
    {4, 2, 8, 6, 5, 7, 3, 9, 0, 1},
    {2, 7, 9, 3, 8, 0, 6, 4, 1, 5},
    {7, 0, 4, 6, 9, 1, 3, 2, 5, 8}};
// clang-format on

// A phrase is present when it stands as whole words in the text's word form.
bool hasPhrase(const std::string& words, std::string_view phrase) {
    std::string needle = " ";
    needle += phrase;
    needle += ' ';
    return words.find(needle) != std::string::npos;
}

bool hasCardWord(std::string_view folded) {
    const std::string words = wordText(folded);
    return std::any_of(cardWords.begin(), cardWords.end(),
                       [&](std::string_view w) { return hasPhrase(words, w); });
}

bool hasSeparator(std::string_view s) {
    return s.find_first_of(" -") != s.npos;
}

// Whether a number split by spaces or hyphens has a group other than the last that is not four
// digits long ("4111 11 1111111111"); a single run is not irregular.
bool irregularlyGrouped(std::string_view run) {
    std::vector<size_t> lengths;
    size_t start = 0;
    while (start <= run.size()) {
        const size_t end = std::min(run.find_first_of(" -", start), run.size());
        if (end > start) lengths.push_back(characterCount(run.substr(start, end - start)));
        start = end + 1;
    }
    return lengths.size() >= 2 &&
           std::any_of(lengths.begin(), lengths.end() - 1, [](size_t n) { return n != 4; });
}

bool plausibleCardDigits(const std::string& d) {
    if (d.size() < 13 || d.size() > 19) return false;
    if (d[0] < '3' || d[0] > '6') return false;
    if (std::set<char>(d.begin(), d.end()).size() < 2) return false;
    return luhn(d);
}

bool contains(std::string_view text, std::string_view word) {
    return text.find(word) != text.npos;
}

// A line of a machine-readable zone: only capitals, digits and "<" fillers.
bool isZoneLine(std::string_view line, size_t length) {
    return line.size() == length && std::all_of(line.begin(), line.end(), [](char c) {
               return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '<';
           });
}

// Whether the check digit that follows the field of `length` characters at `start` holds.
bool fieldHolds(std::string_view line, size_t start, size_t length) {
    const char check = line[start + length];
    return check >= '0' && check <= '9' &&
           zoneCheckDigit(line.substr(start, length)) == check - '0';
}

// An identity card's zone starts with its document code: I, A or C (P is a passport, V a visa).
bool isIdentityCode(std::string_view line) {
    return line[0] == 'I' || line[0] == 'A' || line[0] == 'C';
}

// Three lines of 30 (TD1) whose document number and birth date check out.
bool isCardZone(std::string_view first, std::string_view second, std::string_view third) {
    return isZoneLine(first, 30) && isZoneLine(second, 30) && isZoneLine(third, 30) &&
           isIdentityCode(first) && fieldHolds(first, 5, 9) && fieldHolds(second, 0, 6);
}

// Two lines of 36 (TD2) whose document number and birth date check out.
bool isTwoLineCardZone(std::string_view first, std::string_view second) {
    return isZoneLine(first, 36) && isZoneLine(second, 36) && isIdentityCode(first) &&
           fieldHolds(second, 0, 9) && fieldHolds(second, 13, 6);
}

// The text's lines with their spaces removed (a reader may split a zone line into words).
std::vector<std::string> compactLines(std::string_view text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start <= text.size()) {
        const size_t end = std::min(text.find('\n', start), text.size());
        std::string line(text.substr(start, end - start));
        std::erase(line, ' ');
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

bool hasIdentityCardZone(std::string_view text) {
    const std::vector<std::string> lines = compactLines(text);
    for (size_t i = 0; i + 1 < lines.size(); ++i) {
        if (isTwoLineCardZone(lines[i], lines[i + 1])) return true;
        if (i + 2 < lines.size() && isCardZone(lines[i], lines[i + 1], lines[i + 2])) return true;
    }
    return false;
}

} // namespace

SensitiveKinds find(std::string_view text) {
    const std::string folded = foldText(text);
    SensitiveKinds kinds;
    if (hasCard(text, folded)) kinds.insert(SensitiveKind::cardNumber);
    if (hasNationalID(text, folded)) kinds.insert(SensitiveKind::nationalID);
    if (pan().contains(text)) kinds.insert(SensitiveKind::taxID);
    if (hasPassport(text, folded)) kinds.insert(SensitiveKind::passport);
    if (hasBankAccount(text)) kinds.insert(SensitiveKind::bankAccount);
    return kinds;
}

bool hasCard(std::string_view text, std::string_view folded) {
    std::optional<bool> cardWord; // looked for only when a number needs it
    for (const std::string& run : cardRun().matches(text)) {
        if (!plausibleCardDigits(decimalDigits(run))) continue;
        // A number grouped in fours is a card by itself; an ungrouped or oddly grouped one
        // needs a card word nearby to tell it from an order or phone number.
        if (!irregularlyGrouped(run) && hasSeparator(run)) return true;
        if (!cardWord) cardWord = hasCardWord(folded);
        if (*cardWord) return true;
    }
    return false;
}

bool hasNationalID(std::string_view text, std::string_view folded) {
    const bool hint = contains(folded, "aadhaar") || contains(folded, "aadhar") ||
                      contains(folded, "uidai") || contains(text, "आधार");
    for (const std::string& number : aadhaar().matches(text))
        if (verhoeff(decimalDigits(number)) && (hasSeparator(number) || hint)) return true;
    // The cheap substring test first: the word form is needed only when "ssn" is there at all.
    if ((contains(folded, "social security") ||
         (contains(folded, "ssn") && hasPhrase(wordText(folded), "ssn"))) &&
        ssn().contains(text))
        return true;
    return hasIdentityCardZone(text);
}

bool hasPassport(std::string_view text, std::string_view folded) {
    std::string compact(text);
    std::erase(compact, ' ');
    if (mrz().contains(compact) && contains(compact, "<<")) return true;
    if (contains(folded, "passport")) return passportNumber().contains(text);
    return false;
}

bool hasBankAccount(std::string_view text) {
    for (std::string number : iban().matches(text)) {
        std::erase(number, ' ');
        if (mod97(number)) return true;
    }
    for (const std::string& number : accountNumber().groups(text))
        if (decimalDigits(number).size() > 8) return true;
    return false;
}

bool luhn(std::string_view digits) {
    if (!isAllDecimalDigits(digits)) return false;
    const std::string d = decimalDigits(digits);
    if (d.size() < 2) return false;
    int sum = 0;
    for (size_t position = 0; position < d.size(); ++position) {
        int digit = d[d.size() - 1 - position] - '0';
        if (position % 2 == 1) digit = digit >= 5 ? digit * 2 - 9 : digit * 2;
        sum += digit;
    }
    return sum % 10 == 0;
}

bool verhoeff(std::string_view digits) {
    if (!isAllDecimalDigits(digits)) return false;
    const std::string d = decimalDigits(digits);
    int c = 0;
    for (size_t i = 0; i < d.size(); ++i)
        c = multiplication[c][permutation[i % 8][d[d.size() - 1 - i] - '0']];
    return c == 0;
}

bool mod97(std::string_view iban) {
    const size_t length = characterCount(iban);
    if (length < 15 || length > 34) return false;
    const std::string rotated = std::string(iban.substr(4)) + std::string(iban.substr(0, 4));
    int n = 0;
    for (char c : rotated) {
        if (c >= '0' && c <= '9')
            n = (n * 10 + (c - '0')) % 97;
        else if (c >= 'A' && c <= 'Z')
            n = (n * 100 + (c - 55)) % 97;
        else
            return false;
    }
    return n == 1;
}

int zoneCheckDigit(std::string_view field) {
    constexpr int weights[] = {7, 3, 1};
    int sum = 0;
    for (size_t i = 0; i < field.size(); ++i) {
        const char c = field[i];
        const int value = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'Z' ? c - 'A' + 10 : 0;
        sum += value * weights[i % 3];
    }
    return sum % 10;
}

int verhoeffDigit(std::string_view prefix) {
    std::string candidate(prefix);
    candidate += '0';
    for (char digit = '0'; digit <= '9'; ++digit) {
        candidate.back() = digit;
        if (verhoeff(candidate)) return digit - '0';
    }
    return 0;
}

} // namespace lumivale::Sensitive
