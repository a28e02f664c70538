#pragma once

#include <string>

class QImage;

namespace lumivale {

// A thumbnail at most `longestSide` long, made by libvips while loading (never decoding the whole
// picture at full size), turned upright, carrying the picture's upright size as the keys
// "Thumb::Image::Width" and "Thumb::Image::Height"; a null image when the file is not a picture
// that libvips reads.
QImage makeThumbnail(const std::string& picture, int longestSide);

} // namespace lumivale
