#pragma once

#include <string>
#include <string_view>

namespace lumivale {

// A fresh random (version 4) UUID in its upper-case text form,
// "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
std::string newUuid();

// Whether the text is a UUID in the 8-4-4-4-12 hexadecimal form (either case).
bool isUuid(std::string_view text);

} // namespace lumivale
