#pragma once

// Shared ways of printing shots and counts, as JSON Lines or as plain text for people.

#include "core/Shot.h"
#include "core/Tally.h"

#include <QJsonObject>

#include <string>

namespace lumivale::cli {

// Prints one JSON object on one line.
void printJsonLine(const QJsonObject& object);
// A date as local ISO 8601 with the offset ("2026-11-21T14:03:09+05:30").
QString isoDate(Date date);
// A shot as the list and search commands give it.
QJsonObject shotJson(const Shot& shot);
// Text for a terminal: line feeds, tabs, other control characters and bytes that are not UTF-8
// written as escapes ("\n", "\x1B", "\xFF"), and so a backslash too ("\\").
std::string printable(std::string_view text);
// One line for people: shelf, date, name, private mark, path.
std::string shotLine(const Shot& shot);
// The counts of a tally.
QJsonObject tallyJson(const Tally& tally);
std::string tallyText(const Tally& tally);
// A byte count for people ("1.4 MB").
std::string byteText(int64_t bytes);

} // namespace lumivale::cli
