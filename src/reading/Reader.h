#pragma once

#include "core/Reading.h"

#include <string>
#include <vector>

namespace lumivale::Reader {

// Reads the picture file at `path` with the given recognition languages (tags such as "en-US").
// Never throws: a file that cannot be opened, decoded or analysed gives a reading marked failed.
// Safe to call from several threads at once; each thread keeps its own recognition engine.
Reading read(const std::string& path, const std::vector<std::string>& languages);

// Tesseract's own threads would only compete with the reading threads, and the OpenMP runtime
// reads its thread limit once, when the program loads. A program that reads pictures calls this
// first thing in main: it starts the program again with the limit set to one, and returns at
// once when that limit is already in force (or the program cannot be started again).
void startWithOneRecognitionThread(char** argv);

// The kind name stored for a barcode format name of the detector ("QRCode" → "QR").
std::string name(const std::string& symbology);

} // namespace lumivale::Reader
