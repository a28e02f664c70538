#pragma once

#include "core/VaultKey.h"

namespace lumivale {

// Where the locked area's key comes from: the keyring normally, memory for demonstrations.
class VaultKeySource {
public:
    virtual ~VaultKeySource() = default;
    // The vault key, or why it could not be had.
    virtual VaultResult<VaultKey> key() = 0;
};

// A key held in memory for the life of the object, so demonstration data never touches the
// user's real key.
class MemoryKey : public VaultKeySource {
public:
    // A fresh random key.
    MemoryKey() : k_(VaultKey::random()) {}
    // This key.
    explicit MemoryKey(const VaultKey& k) : k_(k) {}

    // The same key every time; never fails.
    VaultResult<VaultKey> key() override { return k_; }

private:
    VaultKey k_;
};

} // namespace lumivale
