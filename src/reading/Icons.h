#pragma once

#include "reading/Lines.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Icons that the recogniser reads as text: a status bar's signal, Wi-Fi and battery ("al > @"),
// a tab's favicon and close button, a back arrow. A platform recogniser reads none of them.
namespace lumivale::Icons {

// Whether a word reads like an icon: the engine is unsure of it, and it is one character, two
// of which one is a letter (a two-letter word needs the engine to be very unsure), or holds no
// letter; numbers (but a maximise button's "O0" or "-0"), currency and per cent signs never are,
// nor the brackets of code unless a sign of another kind stands with them ("@)", a favicon).
bool looksLikeIcon(std::string_view text, float confidence);

// What a word of a phone's status bar stands for, if it is text: a clock time, a battery level
// (the signal bars read into it taken off: "449%" is "49%"), a network badge, or a word of three
// letters or more that the engine is sure of (a carrier); nothing for an icon.
std::optional<std::string> statusBarText(std::string_view text, float confidence);

// Marks the words that look like icons, and the lone signs that stand beside no number of their
// line: a currency sign the engine is unsure of (a back arrow read as "€") and a cross (a close
// button; a few unsure ones, "Xx", too). On a phone's screenshot (upright, at least 1.6 times as
// tall as wide) the status bar, the first row of words when it lies in the top 7 % of the picture,
// keeps only its text. `width` × `height` is the size of the recognised picture.
void mark(std::vector<Lines::Word>& words, int width, int height);

} // namespace lumivale::Icons
