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
    const auto first = KeychainKey().key();
    ASSERT_TRUE(first) << first.error();
    const auto second = KeychainKey().key();
    ASSERT_TRUE(second) << second.error();
    EXPECT_EQ(keyBytes(second.value()), keyBytes(first.value()));
    EXPECT_EQ(shell("secret-tool lookup " + item), keyBytes(first.value()));
    // Exactly one item, with its label and attributes.
    const std::string found =
        shell("secret-tool search --all service app.orvane.lumivale.vault 2>&1");
    EXPECT_EQ(found.find("label = "), found.rfind("label = ")) << found;
    for (const char* line :
         {"label = Lumivale locked screenshots\n",
          "attribute.service = app.orvane.lumivale.vault\n", "attribute.account = vault-key\n"})
        EXPECT_NE(found.find(line), std::string::npos) << found;

    // Stored data of another size is refused, and the item is left as it was.
    const std::string stored = "0123456789abcdef";
    ASSERT_TRUE(test::runShell("secret-tool clear " + item + " && printf %s " + stored +
                               " | secret-tool store --label=Old " + item));
    const auto refused = KeychainKey().key();
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), VaultError::keychain(0));
    EXPECT_EQ(shell("secret-tool lookup " + item), stored);
}

TEST(KeychainKeyWithoutService, givesAKeyringErrorPromptly) {
    if (!test::runsInChild(
            {"no-keyring", {}, {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus"}}, 30s}))
        return;
    const auto key = KeychainKey().key();
    ASSERT_FALSE(key);
    EXPECT_EQ(key.error().kind(), VaultError::Kind::keychain);
}

} // namespace
} // namespace lumivale
