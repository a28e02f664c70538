#include "core/VaultKey.h"

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <openssl/crypto.h>
#include <openssl/rand.h>
#include <ostream>

namespace lumivale {

void randomBytes(std::span<uint8_t> out) {
    constexpr size_t chunk = std::numeric_limits<int>::max();
    for (size_t done = 0; done < out.size(); done += chunk) {
        const size_t n = std::min(chunk, out.size() - done);
        if (RAND_bytes(out.data() + done, static_cast<int>(n)) != 1) {
            std::fputs("lumivale: the system's random number source failed\n", stderr);
            std::abort();
        }
    }
}

VaultKey::VaultKey(std::span<const uint8_t, size> bytes) {
    std::copy(bytes.begin(), bytes.end(), bytes_.begin());
}

VaultKey VaultKey::random() {
    std::array<uint8_t, size> fresh;
    randomBytes(fresh);
    VaultKey key(fresh);
    OPENSSL_cleanse(fresh.data(), fresh.size());
    return key;
}

VaultKey::~VaultKey() {
    OPENSSL_cleanse(bytes_.data(), bytes_.size());
}

std::ostream& operator<<(std::ostream& out, const VaultKey&) {
    return out << "VaultKey(hidden)";
}

std::string VaultError::description() const {
    switch (kind_) {
    case Kind::keychain:
        return "The keyring refused (" + std::to_string(code_) + ").";
    case Kind::notAFile:
        return "That isn't a locked screenshot.";
    case Kind::cannotRead:
        return "The screenshot couldn't be read.";
    case Kind::cannotOpen:
        return "This locked screenshot can't be opened with this computer's key.";
    case Kind::verifyFailed:
        return "The locked copy didn't check out, so the original was left where it is.";
    case Kind::io:
        return message_;
    }
    return message_;
}

std::ostream& operator<<(std::ostream& out, const VaultError& error) {
    return out << error.description();
}

} // namespace lumivale
