// A title from any lines: nothing, or some text of at most the asked number of characters
// (grapheme clusters), with "…" after it where it was cut.
#include "core/Folders.h"
#include "core/Titles.h"

#include "FuzzInput.h"

#include <memory>
#include <unicode/brkiter.h>
#include <unicode/unistr.h>

namespace {

size_t characters(const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    static const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) abort();
    const icu::UnicodeString s = icu::UnicodeString::fromUTF8(text);
    breaks->setText(s);
    size_t n = 0;
    for (breaks->first(); breaks->next() != icu::BreakIterator::DONE;)
        ++n;
    return n;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    // The reader gives UTF-8 only; how other bytes count as characters is not a title's concern.
    if (!Folders::isUtf8({reinterpret_cast<const char*>(data), size})) return 0;
    const Shot shot = fuzz::shotOf({reinterpret_cast<const char*>(data), size});
    if (auto title = Titles::of(shot, 40)) {
        if (title->ends_with("\u2026"))
            title->resize(title->size() - std::string_view("\u2026").size());
        if (title->empty() || characters(*title) > 40) abort();
    }
    return 0;
}
