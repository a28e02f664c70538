// A file name from any text keeps its promises: no "/", no NUL, never empty, ".", ".." or hidden,
// and room left in 255 bytes for a collision number and an extension.
#include "core/TidyPlan.h"

#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    const std::string name = Tidy::clean({reinterpret_cast<const char*>(data), size});
    if (name.empty() || name.starts_with('.') || name.find('/') != std::string::npos ||
        name.find('\0') != std::string::npos ||
        name.size() + std::string_view(" 10000.jpeg").size() > 255)
        abort();
    return 0;
}
