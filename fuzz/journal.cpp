// The journal book: any bytes load as a book (empty when they are not one) that keeps its limit.
#include "FuzzInput.h"
#include "core/JournalBook.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    JournalBook book = JournalBook::load(fuzz::asFile(data, size));
    if (book.entries.size() > JournalBook::keep) abort();
    if (const auto journal = book.lastUndoable()) {
        book.markUndone(journal->id);
        (void)journal->summary();
    }
    return 0;
}
