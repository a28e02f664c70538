#pragma once

#include "reading/GrayImage.h"

#include <optional>

namespace lumivale {

// Makes a picture ready for the text recogniser, which reads dark letters on a light ground
// best when their lowercase letters stand about ten pixels tall.
namespace Preparation {

// Whether the picture is mostly dark (a dark theme, a terminal): its median grey is below
// the middle.
bool isDark(const GrayImage& image);

// Light becomes dark and dark becomes light.
void invert(GrayImage& image);

// The typical height in pixels of the letters of dark text on a light picture: the median
// height of the letter-shaped dark marks; 0 when there are too few to tell, or when most marks
// are not letter-shaped (a photograph).
double letterHeight(const GrayImage& image);

// The factor that brings letters of this height to a good size, for a picture of this many
// pixels: small letters are enlarged (within a pixel budget), huge ones reduced; 1 when they
// are fine or unknown.
double scaleFor(double letterHeight, int width, int height);

// Makes the ground of every region white and its text dark, so tinted panels, cards, bubbles,
// coloured buttons and dark panels all read like print on paper.
void darkTextOnWhite(GrayImage& image);

// Deepens faint ink on white ground (small grey text) until its darkest pixels are black, so
// that a single threshold between ink and ground keeps its letters whole.
void deepenFaintInk(GrayImage& image);

// The picture scaled by `factor`; nothing when it cannot be scaled.
std::optional<GrayImage> scaled(const GrayImage& image, double factor);

// The picture made ready for recognition: dark text on white ground everywhere, letters of a
// good size; a picture without measurable letters is only made light.
GrayImage prepare(GrayImage image);

} // namespace Preparation
} // namespace lumivale
