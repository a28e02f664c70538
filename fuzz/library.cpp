// The library file: any bytes load as a library or as nothing, and what loads saves again.
#include "core/Library.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    if (const auto library = Library::load(fuzz::asFile(data, size)))
        for (const ShotPtr& shot : library->all())
            if (library->find(shot->path) != shot.get()) abort();
    return 0;
}
