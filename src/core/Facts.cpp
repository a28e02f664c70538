#include "core/Facts.h"

#include "core/Characters.h"
#include "core/Pattern.h"

#include <algorithm>
#include <charconv>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace lumivale::Facts {
namespace {

const Pattern& totalLine() {
    static const Pattern p(
        R"((?i)\b(grand total|total amount|amount paid|amount due|balance due|total|paid|amount)\b)");
    return p;
}

const Pattern& pnr() {
    static const Pattern p(R"((?i)\bPNR(?:\s*(?:no\.?|number))?\s*[:#]?\s*([A-Z0-9]{6,10})\b)");
    return p;
}

const Pattern& bookingRef() {
    static const Pattern p(
        R"((?i)\b(?:booking (?:id|ref(?:erence)?)|confirmation (?:number|no\.?|code)|)"
        R"(order (?:id|no\.?|#))\s*[:#]?\s*([A-Z0-9-]{5,20})\b)");
    return p;
}

const Pattern& flight() {
    static const Pattern p(
        R"(\b((?:6E|AI|UK|SG|QP|IX|I5|EK|QR|BA|LH|AF|SQ|UA|AA|DL|EY|TK|[A-Z]{2}))"
        R"(\s?\d{2,4})\b)");
    return p;
}

const Pattern& utr() {
    static const Pattern p(R"((?i)\b(?:UTR|UPI Ref(?:\.|erence)?(?: No\.?)?|Transaction ID|)"
                           R"(Txn ID)\s*[:#]?\s*([A-Z0-9]{8,24})\b)");
    return p;
}

const Pattern& date() {
    static const Pattern p(
        R"(\b(\d{1,2}(?:st|nd|rd|th)?\s(?:Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Sept|Oct|Nov|Dec))"
        R"([a-z]*,?\s\d{2,4}|(?:Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Sept|Oct|Nov|Dec)[a-z]*\s)"
        R"(\d{1,2},?\s\d{4}|\d{1,2}[/.-]\d{1,2}[/.-]\d{2,4}|\d{4}-\d{2}-\d{2})\b)");
    return p;
}

bool hasNumberAndLetter(std::string_view s) {
    bool number = false, letter = false;
    const std::vector<size_t> bounds = characterBounds(s);
    for (size_t k = 0; k + 1 < bounds.size(); ++k) {
        const std::string_view c = s.substr(bounds[k], bounds[k + 1] - bounds[k]);
        number = number || isNumberCharacter(c);
        letter = letter || isLetterCharacter(c);
    }
    return number && letter;
}

// The amount an amount of money stands for: its digits and points read as a number, so
// "₹1,250.00" is 1250; 0 when they do not read as one.
double valueOf(std::string_view money) {
    std::string number;
    for (int32_t i = 0; i < static_cast<int32_t>(money.size());) {
        UChar32 c;
        U8_NEXT(money.data(), i, static_cast<int32_t>(money.size()), c);
        if (c == '.')
            number += '.';
        else if (const int32_t digit = c >= 0 ? u_charDigitValue(c) : -1; digit >= 0)
            number += static_cast<char>('0' + digit);
    }
    double value = 0;
    const char* end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data(), end, value);
    return error == std::errc() && stop == end ? value : 0.0;
}

std::string trimmedCopy(std::string_view s) {
    return std::string(trimmed(s));
}

void addTicketFacts(const std::string& text, std::vector<Fact>& facts) {
    if (auto code = pnr().firstGroup(text))
        facts.push_back({"PNR", *code});
    else if (auto booking = bookingRef().firstGroup(text))
        facts.push_back({"Booking", *booking});

    // A code like "AI 302" is only taken for a flight on a page that speaks of flights.
    const std::string lower = lowered(text);
    if (lower.find("flight") == std::string::npos && lower.find("boarding") == std::string::npos)
        return;
    for (const std::string& code : flight().groups(text))
        if (hasNumberAndLetter(code)) {
            facts.push_back({"Flight", code});
            return;
        }
}

void addBillFacts(const std::vector<std::string>& lines, const std::string& text,
                  std::vector<Fact>& facts) {
    if (auto amount = total(lines)) facts.push_back({"Total", *amount});
    if (auto reference = utr().firstGroup(text)) facts.push_back({"Reference", *reference});
}

std::string holdsOf(const SensitiveKinds& flags) {
    std::vector<std::string_view> names;
    for (SensitiveKind kind : flags)
        names.push_back(sensitiveKindTitle(kind));
    std::sort(names.begin(), names.end());
    std::string out;
    for (std::string_view name : names) {
        if (!out.empty()) out += ", ";
        out += name;
    }
    return out;
}

} // namespace

std::vector<Fact> of(const Shot& shot) {
    std::vector<std::string> lines;
    lines.reserve(shot.lines.size());
    for (const TextLine& line : shot.lines)
        lines.push_back(line.text);
    const std::string text = shot.text();

    std::vector<Fact> facts;
    const Shelf shelf = shot.category();
    if (shelf == Shelf::tickets) addTicketFacts(text, facts);
    if (shelf == Shelf::bills || shelf == Shelf::shopping) addBillFacts(lines, text, facts);
    if (auto when = date().firstGroup(text)) facts.push_back({"Date", *when});
    if (!shot.flags.empty()) facts.push_back({"Holds", holdsOf(shot.flags)});
    return facts;
}

std::optional<std::string> total(const std::vector<std::string>& lines) {
    // From the bottom up, so the last total line (on receipts, the grand total) wins; the
    // amount may stand on the label's line or on the line below it.
    for (size_t i = lines.size(); i-- > 0;) {
        if (!totalLine().contains(lines[i]) ||
            lowered(lines[i]).find("subtotal") != std::string::npos)
            continue;
        if (auto amounts = Pattern::money().matches(lines[i]); !amounts.empty())
            return trimmedCopy(amounts.back());
        if (i + 1 < lines.size())
            if (auto below = Pattern::money().firstMatch(lines[i + 1])) return trimmedCopy(*below);
    }

    std::optional<std::string> best;
    double bestValue = 0;
    for (const std::string& line : lines)
        for (const std::string& amount : Pattern::money().matches(line))
            if (const double value = valueOf(amount); !best || value > bestValue) {
                best = trimmedCopy(amount);
                bestValue = value;
            }
    return best;
}

} // namespace lumivale::Facts
