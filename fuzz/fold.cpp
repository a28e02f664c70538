// Folding: any text, even bytes that are not UTF-8, folds and squashes to valid UTF-8, and
// squashing only takes characters away.
#include "core/Fold.h"

#include "core/Folders.h"

#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string folded = foldText(text);
    const std::string squashed = squash(folded);
    (void)isSquashedInPart(squashed, folded);
    (void)hasNumeric(text);
    if (!Folders::isUtf8(folded) || !Folders::isUtf8(squashed) || squashed.size() > folded.size())
        abort();
    return 0;
}
