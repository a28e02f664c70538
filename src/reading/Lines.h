#pragma once

#include "core/Shot.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale::Lines {

// A box in pixels from the picture's top-left corner; right and bottom lie just outside it.
struct PixelBox {
    int left = 0, top = 0, right = 0, bottom = 0;
};

// One word as the engine recognised it, and the box of the engine's line that holds it.
struct Word {
    std::string text;
    PixelBox box;
    PixelBox line;
    bool startsLine = false; // the first word of the engine's line
    float confidence = 100;  // the engine's, 0 to 100
    bool icon = false;       // likely an icon read as text
};

// A run of words with the box around them.
struct Piece {
    std::string text;
    PixelBox box;
};

// The engine's lines rebuilt from their words, each cut where two words stand further apart
// than twice the line's height: a label and its value at either edge of a screen, or two
// columns, are separate lines, as separate pieces of text. Words marked as icons are left out
// at either end of a piece (a favicon, a tab's close button); between words they stay. A piece
// that lies inside another's box and reads as part of it is an echo of that one, and goes.
std::vector<Piece> pieces(const std::vector<Word>& words);

// The line kept from one line of recognised text: the text without the spaces, tabs and
// closing line feeds around it, the box in fractions of a width × height picture from its
// lower-left corner; nothing when no text is left.
std::optional<TextLine> make(std::string_view text, PixelBox box, int width, int height);

// Whether line a is read before line b: the higher one first when their bottoms lie more than
// 0.008 of the picture's height apart, else (one row) the one further left.
bool precedes(const TextLine& a, const TextLine& b);

// Puts the lines into reading order; lines neither of which precedes the other keep their order.
void sort(std::vector<TextLine>& lines);

} // namespace lumivale::Lines
