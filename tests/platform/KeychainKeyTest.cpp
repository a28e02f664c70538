// The keyring key against a real Secret Service: gnome-keyring on a private D-Bus session,
// checked with libsecret's own command-line client.
#include "platform/KeychainKey.h"

#include "support/ChildRun.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace lumivale {
namespace {

using namespace std::chrono_literals;

std::string sourceDir() {
    const char* dir = std::getenv("LUMIVALE_SOURCE_DIR");
    return dir ? dir : LUMIVALE_TEST_SOURCE_DIR;
}

// Each test runs in a fresh keyring of its own.
test::ChildSetup inKeyring() {
    return {"keyring", {"bash", sourceDir() + "/tests/support/with-keyring.sh"}, {}, 60s};
}

// Standard output of a shell command.
std::string shell(const std::string& command) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return out;
    std::array<char, 4096> buffer;
    size_t n;
    while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        out.append(buffer.data(), n);
    pclose(pipe);
    return out;
}

std::string keyBytes(const VaultKey& key) {
    return {reinterpret_cast<const char*>(key.bytes().data()), key.bytes().size()};
}

int countOf(const std::string& text, const std::string& part) {
    int n = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

TEST(KeychainKey, firstCallMakesOneItemThatLaterCallsAndOtherClientsFind) {
    if (!test::runsInChild(inKeyring())) return;
    KeychainKey keychain;
    const auto first = keychain.key();
    ASSERT_TRUE(first) << first.error();

    const std::string items =
        shell("secret-tool search --all service app.orvane.lumivale.vault 2>&1");
    EXPECT_EQ(countOf(items, "label = "), 1) << items;
    EXPECT_NE(items.find("label = Lumivale locked screenshots\n"), std::string::npos) << items;
    EXPECT_NE(items.find("attribute.service = app.orvane.lumivale.vault\n"), std::string::npos);
    EXPECT_NE(items.find("attribute.account = vault-key\n"), std::string::npos);

    const auto second = KeychainKey().key();
    ASSERT_TRUE(second) << second.error();
    EXPECT_EQ(keyBytes(second.value()), keyBytes(first.value()));
    EXPECT_EQ(shell("secret-tool lookup service app.orvane.lumivale.vault account vault-key"),
              keyBytes(first.value()));
}

TEST(KeychainKey, storedDataOfAnotherSizeIsRefusedAndKept) {
    if (!test::runsInChild(inKeyring())) return;
    for (const std::string& stored : {std::string("0123456789abcdef"), std::string(33, 'k')}) {
        SCOPED_TRACE(std::to_string(stored.size()) + " bytes");
        ASSERT_EQ(system(("printf %s '" + stored +
                          "' | secret-tool store --label=Old service app.orvane.lumivale.vault "
                          "account vault-key")
                             .c_str()),
                  0);
        const auto key = KeychainKey().key();
        ASSERT_FALSE(key);
        EXPECT_EQ(key.error(), VaultError::keychain(0));
        // The foreign item is left as it was, not replaced by a new key.
        EXPECT_EQ(shell("secret-tool lookup service app.orvane.lumivale.vault account vault-key"),
                  stored);
        EXPECT_EQ(countOf(shell("secret-tool search --all service app.orvane.lumivale.vault 2>&1"),
                          "label = "),
                  1);
        ASSERT_EQ(system("secret-tool clear service app.orvane.lumivale.vault"), 0);
    }
}

TEST(KeychainKeyWithoutService, givesAKeyringErrorPromptly) {
    const test::ChildSetup noBus{
        "no-keyring",
        {},
        {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/lumivale-bus"}},
        30s};
    if (!test::runsInChild(noBus)) return;
    const auto key = KeychainKey().key();
    ASSERT_FALSE(key);
    EXPECT_EQ(key.error().kind(), VaultError::Kind::keychain);
    EXPECT_EQ(key.error().description().rfind("The keyring refused (", 0), 0u)
        << key.error().description();
}

} // namespace
} // namespace lumivale
