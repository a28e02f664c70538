// The sorter over any lines (the last one taken as a barcode): a shelf with a confidence in range.
#include "core/Sorter.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    std::vector<std::string> lines = fuzz::linesOf({reinterpret_cast<const char*>(data), size});
    const std::vector<std::string> barcodes = {lines.back()};
    lines.pop_back();
    const Verdict verdict = Sorter::sort(lines, barcodes);
    if (!(verdict.confidence >= 0 && verdict.confidence <= 1)) abort();
    return 0;
}
