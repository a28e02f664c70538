#pragma once

#include "core/VaultKeySource.h"

#include <string>
#include <string_view>
#include <utility>

namespace lumivale {

// The vault key kept in the user's keyring (the freedesktop Secret Service, through libsecret)
// as one item found by its "service" and "account" attributes. Made once, at random, the first
// time it is asked for; asked for again on every call, never cached.
class KeychainKey : public VaultKeySource {
public:
    static constexpr std::string_view defaultService = "app.orvane.lumivale.vault";
    static constexpr std::string_view defaultAccount = "vault-key";
    static constexpr std::string_view label = "Lumivale locked screenshots";

    explicit KeychainKey(std::string service = std::string(defaultService),
                         std::string account = std::string(defaultAccount))
        : service_(std::move(service)), account_(std::move(account)) {}

    // The stored key, or a new one stored in the default collection when there is none.
    // keychain(code) when the keyring fails (its error code) or holds data that is not 32 bytes
    // (code 0).
    VaultResult<VaultKey> key() override;

    const std::string& service() const { return service_; }
    const std::string& account() const { return account_; }

private:
    std::string service_;
    std::string account_;
    VaultResult<VaultKey> makeAndStore();
};

} // namespace lumivale
