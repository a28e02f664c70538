#pragma once

#include <cstddef>
#include <string_view>

namespace lumivale {

// The first position at or after `from` where `needle` occurs in `text` byte for byte, or
// std::string_view::npos. An empty needle occurs at `from` when `from` is within the text.
// Made for scanning many texts quickly: search runs over every shot's search text.
size_t findText(std::string_view text, std::string_view needle, size_t from = 0);

} // namespace lumivale
