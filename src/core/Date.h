#pragma once

#include <chrono>

namespace lumivale {

// A point in time with sub-second precision.
using Date = std::chrono::sys_time<std::chrono::nanoseconds>;

// Seconds between 1970-01-01 and 2001-01-01, the reference date of property-list dates.
inline constexpr double kPlistEpochOffset = 978307200.0;

// Seconds since 1970-01-01 UTC, with fractions.
inline double secondsSince1970(Date d) {
    return std::chrono::duration<double>(d.time_since_epoch()).count();
}

// The date that lies the given seconds after 1970-01-01 UTC.
inline Date dateFromSeconds(double seconds) {
    return Date(std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(seconds)));
}

// The current time.
inline Date now() { return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now()); }

// A date long before any file existed (the year 1716, well inside what a Date can hold); it
// stands in where a file system gives no date.
inline Date distantPast() { return dateFromSeconds(-8.0e9); }

} // namespace lumivale
