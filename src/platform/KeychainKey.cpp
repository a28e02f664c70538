#include "platform/KeychainKey.h"

#include <libsecret/secret.h>

namespace lumivale {
namespace {

// Items are matched by their two attributes only, not by the schema's name, so an item made by
// another client (secret-tool) under the same service and account is the same item.
const SecretSchema* keySchema() {
    static const SecretSchema schema = {
        "app.orvane.lumivale.VaultKey",
        SECRET_SCHEMA_DONT_MATCH_NAME,
        {
            {"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
            {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
            {nullptr, SecretSchemaAttributeType(0)},
        },
    };
    return &schema;
}

// The keyring's error as ours; the GError is freed.
VaultError keyringError(GError* error) {
    const int32_t code = error ? error->code : 0;
    g_clear_error(&error);
    return VaultError::keychain(code);
}

} // namespace

VaultResult<VaultKey> KeychainKey::key() {
    GError* error = nullptr;
    SecretValue* value =
        secret_password_lookup_binary_sync(keySchema(), nullptr, &error, "service",
                                           service_.c_str(), "account", account_.c_str(), nullptr);
    if (error) return keyringError(error);
    if (!value) return makeAndStore();
    // libsecret keeps the value in memory that it wipes when the value is released.
    gsize length = 0;
    const auto* data = reinterpret_cast<const uint8_t*>(secret_value_get(value, &length));
    std::optional<VaultKey> found;
    if (data && length == VaultKey::size)
        found.emplace(std::span<const uint8_t, VaultKey::size>(data, VaultKey::size));
    secret_value_unref(value);
    if (!found) return VaultError::keychain(0);
    return *found;
}

VaultResult<VaultKey> KeychainKey::makeAndStore() {
    VaultKey key = VaultKey::random();
    SecretValue* value = secret_value_new(reinterpret_cast<const gchar*>(key.bytes().data()),
                                          VaultKey::size, "application/octet-stream");
    GError* error = nullptr;
    const std::string itemLabel(label);
    const gboolean stored = secret_password_store_binary_sync(
        keySchema(), SECRET_COLLECTION_DEFAULT, itemLabel.c_str(), value, nullptr, &error,
        "service", service_.c_str(), "account", account_.c_str(), nullptr);
    secret_value_unref(value);
    if (!stored) return keyringError(error);
    return key;
}

} // namespace lumivale
