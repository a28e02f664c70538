// The keyring key against a real Secret Service: gnome-keyring on a private D-Bus session,
// checked with libsecret's own command-line client.
#include "platform/KeychainKey.h"

#include "support/ChildRun.h"

#include <gtest/gtest.h>
#include <string>

namespace lumivale {
namespace {

using namespace std::chrono_literals;

const std::string item = "service app.orvane.lumivale.vault account vault-key";

std::string shell(const std::string& command) {
    return test::runShell(command).value_or("(failed)");
}

std::string keyBytes(const VaultKey& key) {
    return {reinterpret_cast<const char*>(key.bytes().data()), key.bytes().size()};
}

TEST(KeychainKey, isMadeOnceFoundByOtherClientsAndNeverReplaced) {
    if (!test::runsInChild(
            {"keyring", {"bash", LUMIVALE_TEST_SOURCE_DIR "/tests/support/with-keyring.sh"}}))
        return;
    // The items of the vault's service, as secret-tool describes them: exactly one, labelled.
    const auto expectOneItem = [](const std::string& label) {
        const std::string found =
            shell("secret-tool search --all service app.orvane.lumivale.vault 2>&1");
        EXPECT_EQ(found.find("label = "), found.rfind("label = ")) << "one item: " << found;
        EXPECT_NE(found.find("label = " + label + "\n"), std::string::npos) << found;
        return found;
    };
    const auto first = KeychainKey().key();
    ASSERT_TRUE(first) << first.error();
    const std::string found = expectOneItem("Lumivale locked screenshots");
    EXPECT_NE(found.find("attribute.service = app.orvane.lumivale.vault\n"), std::string::npos);
    EXPECT_NE(found.find("attribute.account = vault-key\n"), std::string::npos);
    const auto second = KeychainKey().key();
    ASSERT_TRUE(second) << second.error();
    EXPECT_EQ(keyBytes(second.value()), keyBytes(first.value()));
    EXPECT_EQ(shell("secret-tool lookup " + item), keyBytes(first.value()));

    // Stored data of another size is refused, and the item is left as it was.
    for (const std::string& stored : {std::string("0123456789abcdef"), std::string(33, 'k')}) {
        SCOPED_TRACE(std::to_string(stored.size()) + " bytes");
        ASSERT_TRUE(test::runShell("secret-tool clear " + item + " && printf %s '" + stored +
                                   "' | secret-tool store --label=Old " + item));
        const auto key = KeychainKey().key();
        ASSERT_FALSE(key);
        EXPECT_EQ(key.error(), VaultError::keychain(0));
        EXPECT_EQ(shell("secret-tool lookup " + item), stored);
        expectOneItem("Old");
    }
}

TEST(KeychainKeyWithoutService, givesAKeyringErrorPromptly) {
    if (!test::runsInChild(
            {"no-keyring", {}, {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus"}}, 30s}))
        return;
    const auto key = KeychainKey().key();
    ASSERT_FALSE(key);
    EXPECT_EQ(key.error().kind(), VaultError::Kind::keychain);
    EXPECT_EQ(key.error().description().rfind("The keyring refused (", 0), 0u)
        << key.error().description();
}

} // namespace
} // namespace lumivale
