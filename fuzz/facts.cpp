// Facts from any lines: labelled values, each with some text.
#include "core/Facts.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    const Shot shot = fuzz::shotOf({reinterpret_cast<const char*>(data), size});
    for (const Fact& fact : Facts::of(shot))
        if (fact.label.empty() || fact.value.empty()) abort();
    (void)Facts::total(fuzz::linesOf(shot.text()));
    return 0;
}
