#pragma once

#include "core/Shot.h"

#include <string>
#include <string_view>
#include <vector>

// The machine-readable zone of passports and identity cards: lines of capitals, digits and "<"
// fillers in a monospaced font, which the recogniser misreads as "c", "«" or stray letters.
namespace lumivale::MachineZone {

// Whether a recognised line looks like a line of a zone: at least 28 characters once spaces are
// gone, holding "<<", and made mostly of capitals, digits and fillers (six in ten at least), the
// rest but a few of fillers misread as lower case or "#".
bool looksLikeZoneLine(std::string_view text);

// A zone line with its fillers put right: spaces removed, "«" and "‹" read as fillers, an
// accented capital as its capital, every
// character a zone cannot hold (lower case, signs) a filler, and letters that follow three
// or more fillers and are followed by one (or end the line) fillers too.
std::string repaired(std::string_view text);

// Repairs each zone line among `lines` (in reading order), drops what was read between two zone
// lines within their width (the ground's pattern) and moves what was read beside them after the
// zone, and makes the lines of one zone
// equally long, as their monospaced font has them: a line whose closing run of fillers makes it
// longer or shorter than most lines of its zone (or, when two disagree, than the one of a
// standard length: 30, 36 or 44) has that run cut or lengthened. In the fields that a check digit
// guards (document numbers, dates), characters read as their look-alikes ("A" for "4", "O" for
// "0") are put right where the check digit tells which.
void repair(std::vector<TextLine>& lines);

} // namespace lumivale::MachineZone
