#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumivale::ScreenshotName {

// The 39 name prefixes that screenshot tools give their files in many languages, folded, in
// their fixed order (one appears twice, as it always has).
const std::vector<std::string>& prefixes();

// Whether the folded name begins with one of the prefixes; only the start of the name counts.
bool looksLikeScreenshot(std::string_view name);

} // namespace lumivale::ScreenshotName
