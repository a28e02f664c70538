#include "core/Pattern.h"

#include <cstdio>
#include <cstdlib>
#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace lumivale {

Pattern::Pattern(std::string_view expression, Case letterCase) {
    UErrorCode e = U_ZERO_ERROR;
    UParseError where{};
    const uint32_t flags = letterCase == Case::insensitive ? UREGEX_CASE_INSENSITIVE : 0;
    const icu::UnicodeString source = icu::UnicodeString::fromUTF8(
        icu::StringPiece(expression.data(), static_cast<int32_t>(expression.size())));
    std::unique_ptr<icu::RegexPattern> pattern(icu::RegexPattern::compile(source, flags, where, e));
    if (U_FAILURE(e) || !pattern) {
        // The expressions are the program's own constants: a bad one is a fault in the program.
        std::fprintf(stderr, "lumivale: the pattern %.*s does not compile (%s at offset %d)\n",
                     static_cast<int>(expression.size()), expression.data(), u_errorName(e),
                     where.offset);
        std::abort();
    }
    compiled = std::move(pattern);
}

// Calls visit(matcher, input) after each match until visit returns false. The text is searched
// as UTF-16, ICU's own form, where its matcher takes its fast path (UTF-8 input costs a fifth
// more work over a whole sorting).
template <typename Visit> void Pattern::forEachMatch(std::string_view text, Visit&& visit) const {
    const icu::UnicodeString input = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    UErrorCode e = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(compiled->matcher(input, e));
    if (U_FAILURE(e) || !matcher) return;
    while (matcher->find(e) && U_SUCCESS(e))
        if (!visit(*matcher, input)) break;
}

namespace {

// The text of group `group` of the current match, or nothing when it took no part.
std::optional<std::string> groupText(const icu::RegexMatcher& m, const icu::UnicodeString& input,
                                     int32_t group) {
    UErrorCode e = U_ZERO_ERROR;
    if (group > m.groupCount()) return std::nullopt;
    const int32_t start = m.start(group, e);
    const int32_t end = m.end(group, e);
    if (U_FAILURE(e) || start < 0 || end < start) return std::nullopt;
    std::string out;
    input.tempSubStringBetween(start, end).toUTF8String(out);
    return out;
}

} // namespace

std::vector<std::string> Pattern::matches(std::string_view text) const {
    std::vector<std::string> found;
    forEachMatch(text, [&](const icu::RegexMatcher& m, const icu::UnicodeString& input) {
        if (auto whole = groupText(m, input, 0)) found.push_back(std::move(*whole));
        return true;
    });
    return found;
}

std::vector<std::string> Pattern::groups(std::string_view text) const {
    std::vector<std::string> found;
    forEachMatch(text, [&](const icu::RegexMatcher& m, const icu::UnicodeString& input) {
        if (auto first = groupText(m, input, 1)) found.push_back(std::move(*first));
        return true;
    });
    return found;
}

std::optional<std::string> Pattern::firstMatch(std::string_view text) const {
    std::optional<std::string> found;
    forEachMatch(text, [&](const icu::RegexMatcher& m, const icu::UnicodeString& input) {
        found = groupText(m, input, 0);
        return false;
    });
    return found;
}

std::optional<std::string> Pattern::firstGroup(std::string_view text) const {
    std::optional<std::string> found;
    forEachMatch(text, [&](const icu::RegexMatcher& m, const icu::UnicodeString& input) {
        found = groupText(m, input, 1);
        return !found;
    });
    return found;
}

bool Pattern::contains(std::string_view text) const {
    bool found = false;
    forEachMatch(text, [&](const icu::RegexMatcher&, const icu::UnicodeString&) {
        found = true;
        return false;
    });
    return found;
}

size_t Pattern::count(std::string_view text) const {
    size_t n = 0;
    forEachMatch(text, [&](const icu::RegexMatcher&, const icu::UnicodeString&) {
        ++n;
        return true;
    });
    return n;
}

// The expressions spell their non-ASCII characters as \x{…} escapes so that every code point,
// the invisible text-style selector U+FE0E included, is plain to see.

const Pattern& Pattern::timeStamp() {
    static const Pattern p(R"((^|\s)([01]?\d|2[0-3])[:.][0-5]\d(\s?[AaPp]\.?[Mm]\.?)?)"
                           R"((\s*[\x{2713}\x{2714}\x{FE0E}]+)?\s*$)");
    return p;
}

const Pattern& Pattern::identifier() {
    static const Pattern p(R"(\b[a-z]+[A-Z][a-zA-Z0-9]*\b|\b[a-z]+_[a-z0-9_]+\b)");
    return p;
}

const Pattern& Pattern::money() {
    static const Pattern p(
        R"((?:[\x{20B9}\x{0024}\x{20AC}\x{00A3}\x{00A5}]|\bRs\.?|\bINR|\bUSD|\bEUR|\bGBP|\bAED))"
        R"(\s?\d[\d,]*(?:\.\d{1,2})?)"
        R"(|\d[\d.,]*\s?(?:\x{20AC}|\bEUR\b|\bINR\b))"
        R"(|(?<![\d.,:/])\d{1,3}(?:,\d{2,3})*\.\d{2}(?![\d.:/%]))");
    return p;
}

const Pattern& Pattern::percentOff() {
    static const Pattern p(R"(\d{1,2}\s?%\s?(?:off|OFF|Off))");
    return p;
}

const Pattern& Pattern::airportPair() {
    static const Pattern p(
        R"(\b[A-Z]{3}\s*(?:\x{2192}|->|\x{2014}|\x{2013}|-|\x{2708}\x{FE0E}?|to)\s*[A-Z]{3}\b)");
    return p;
}

const Pattern& Pattern::duration() {
    static const Pattern p(R"(\b\d{1,3}\s?(?:min|mins|hr|hrs|h)\b)", Case::insensitive);
    return p;
}

const Pattern& Pattern::distance() {
    static const Pattern p(R"(\b\d+(?:[.,]\d+)?\s?(?:km|mi|m|ft)\b)");
    return p;
}

} // namespace lumivale
