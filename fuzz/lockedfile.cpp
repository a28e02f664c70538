// A locked file: its layout and sealed header are checked before anything is trusted, and the
// record inside (a property list) decodes or fails.
#include "FuzzInput.h"
#include "core/Vault.h"
#include "core/VaultKey.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    // The key the seeds in fuzz/corpus/lockedfile were sealed with: 32 bytes of 0x2A.
    static const std::array<uint8_t, VaultKey::size> bytes = [] {
        std::array<uint8_t, VaultKey::size> b;
        b.fill(0x2A);
        return b;
    }();
    static const VaultKey key{bytes};
    const std::string file = fuzz::asFile(data, size);
    const Vault vault("/nonexistent");
    (void)vault.parts(file);
    (void)vault.header(file, key);
    if (const auto record = decodeLockedShot({data, size})) (void)encodeLockedShot(*record);
    return 0;
}
