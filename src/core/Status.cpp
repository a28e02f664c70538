#include "core/Status.h"

#include <cstring>

namespace lumivale {

std::string describeErrno(int err) {
    char buffer[256];
    // The GNU strerror_r may return a static string instead of filling the buffer.
    const char* text = strerror_r(err, buffer, sizeof buffer);
    return text ? std::string(text) : std::string("Unknown error");
}

} // namespace lumivale
