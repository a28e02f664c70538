#pragma once

// The property-list form of a shot, shared by the library file and the locked files' header.

#include "core/Plist.h"
#include "core/Shot.h"

#include <optional>

namespace lumivale {

// Writes a shot dictionary with the keys "path", "size", "created", "modified", "pixelWidth",
// "pixelHeight", "lines", "barcodes", "guess", "guessScore", "manual" (only when set), "flags",
// "readAt" (only when set), "failed", "reader", "folded".
plist::Ref writeShot(plist::Writer& writer, const Shot& shot);

// The shot in this dictionary, or nothing when a required key is missing or mistyped. Its
// search text is left for the caller to index (Shot::indexSearchText), which may take it
// to another thread.
std::optional<Shot> readShot(const plist::Document& doc, plist::Ref ref);

} // namespace lumivale
