#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unicode/uversion.h>
#include <vector>

U_NAMESPACE_BEGIN
class RegexPattern;
U_NAMESPACE_END

namespace lumivale {

// One compiled regular expression (ICU syntax) over UTF-8 text. Compiled once and shared;
// every search runs on its own matcher, so one pattern may be used from any thread.
class Pattern {
  public:
    enum class Case { sensitive, insensitive };

    // Compiles a constant expression; one that does not compile stops the program.
    explicit Pattern(std::string_view expression, Case letterCase = Case::sensitive);

    // The texts of all non-overlapping matches, left to right.
    std::vector<std::string> matches(std::string_view text) const;
    // Capture group 1 of every match in which that group took part, left to right.
    std::vector<std::string> groups(std::string_view text) const;
    // The first match, or nothing.
    std::optional<std::string> firstMatch(std::string_view text) const;
    // Capture group 1 of the first match in which that group took part, or nothing.
    std::optional<std::string> firstGroup(std::string_view text) const;
    // Whether the pattern matches anywhere in the text.
    bool contains(std::string_view text) const;
    // The number of non-overlapping matches.
    size_t count(std::string_view text) const;

    // A line that is only a clock time, 24-hour or with AM/PM, optionally with read ticks.
    static const Pattern& timeStamp();
    // A camel-case or snake-case word.
    static const Pattern& identifier();
    // An amount of money, with or without a currency.
    static const Pattern& money();
    // A discount such as "50% off".
    static const Pattern& percentOff();
    // Two airport codes joined by an arrow, a dash, a plane or "to".
    static const Pattern& airportPair();
    // A duration in minutes or hours (case-insensitive).
    static const Pattern& duration();
    // A distance in kilometres, miles, metres or feet.
    static const Pattern& distance();

  private:
    template <typename Visit> void forEachMatch(std::string_view text, Visit&& visit) const;

    std::shared_ptr<const icu::RegexPattern> compiled;
};

} // namespace lumivale
