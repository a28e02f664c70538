#include "core/Uuid.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <openssl/rand.h>

namespace lumivale {

std::string newUuid() {
    std::array<uint8_t, 16> bytes{};
    // Without random bytes no name or identifier can be trusted to be unique: stop.
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) std::abort();
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(36);
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) out += '-';
        out += hex[bytes[i] >> 4];
        out += hex[bytes[i] & 0x0F];
    }
    return out;
}

bool isUuid(std::string_view text) {
    if (text.size() != 36) return false;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash ? text[i] != '-' : !std::isxdigit(static_cast<unsigned char>(text[i])))
            return false;
    }
    return true;
}

} // namespace lumivale
