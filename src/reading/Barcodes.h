#pragma once

#include "reading/Preparation.h"

#include <string>
#include <vector>

namespace lumivale::Barcodes {

// The kind names of the barcodes in a picture ("Aztec", "QR", …), distinct and sorted; on a
// dark picture, light codes on dark ground count too.
std::vector<std::string> kindsIn(const GrayImage& picture);

} // namespace lumivale::Barcodes
