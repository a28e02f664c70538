#pragma once

#include "core/Shot.h"

#include <cstddef>
#include <optional>
#include <string>

namespace lumivale::Titles {

// A title from the first line near the top of the shot that reads like one (not a clock,
// battery, button or other chrome), cleaned for use in a file name and cut to at most `max`
// characters plus "…"; nothing when no line qualifies.
std::optional<std::string> of(const Shot& shot, size_t max);

} // namespace lumivale::Titles
