// Private numbers in any text: found or not, never a crash or a hang.
#include "core/Sensitive.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    (void)Sensitive::find(text);
    (void)Sensitive::luhn(text);
    (void)Sensitive::verhoeff(text);
    (void)Sensitive::mod97(text);
    return 0;
}
