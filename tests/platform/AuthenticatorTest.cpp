// Authentication as the program does it: a mock polkit authority (python3-dbusmock) on a private
// bus, and behind it real PAM (through pam_wrapper, with pam_matrix checking passwords from a
// file). Without any system bus the fall-back to PAM is driven by
// tests/integration/lock-restore.sh.
#include "platform/Authenticator.h"

#include "support/ChildRun.h"
#include "support/TempDir.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace lumivale {
namespace {

using namespace std::chrono_literals;

TEST(Authenticator, followsPolkitAndFallsBackToPamWhenItCannotDecide) {
    // A "lumivale" PAM service that checks passwords with pam_matrix against the file that
    // PAM_MATRIX_PASSWD names; pam_wrapper must be there from the process's start.
    const test::TempDir dir;
    const std::string module =
        test::runShell("ls /usr/lib/*/pam_wrapper/pam_matrix.so | head -n 1 | tr -d '\\n'")
            .value_or("pam_matrix.so");
    test::writeFile(dir.file("services/lumivale"),
                    "auth required " + module + "\naccount required " + module + "\n");
    if (!test::runsInChild({"auth",
                            {"bash", LUMIVALE_TEST_SOURCE_DIR "/tests/support/with-polkit-mock.sh",
                             "env", "LD_PRELOAD=libpam_wrapper.so", "PAM_WRAPPER=1",
                             "PAM_WRAPPER_SERVICE_DIR=" + dir.file("services")},
                            {},
                            90s}))
        return;
    const std::string reason = "open your locked screenshots", password = "correct horse";
    // What the mock authority is told through its Mock interface before each case.
    const std::string checkDoing =
        "AddMethod '' CheckAuthorization '(sa{sv})sa{ss}us' '(bba{ss})' ";
    const std::string noAgent = checkDoing + "'ret = (False, True, {})'";
    const struct {
        const char* name;
        std::string polkit;
        std::optional<std::string> typed;
        bool expected, asksForPassword;
        const char* allowedService = "lumivale"; // the service pam_matrix lets the account use
    } cases[] = {
        {"refused", "SetAllowed \"[]\"", password, false, false},
        {"allowed", "SetAllowed \"['app.orvane.lumivale.unlock']\"", std::nullopt, true, false},
        {"no agent to ask: right password", noAgent, password, true, true},
        {"no agent to ask: wrong password", noAgent, password + "!", false, true},
        {"no agent to ask: cancelled prompt", noAgent, std::nullopt, false, true},
        {"no agent to ask: account not allowed", noAgent, password, false, true, "sshd"},
        {"action not installed",
         checkDoing + "\"raise dbus.exceptions.DBusException('Action is not registered', "
                      "name='org.freedesktop.PolicyKit1.Error.Failed')\"",
         password, true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(test::runShell("gdbus call --system --dest org.freedesktop.PolicyKit1 "
                                   "--object-path /org/freedesktop/PolicyKit1/Authority "
                                   "--method org.freedesktop.DBus.Mock." +
                                   c.polkit));
        const std::string passdb = std::string(getpwuid(getuid())->pw_name) + ":" + password + ":" +
                                   c.allowedService + "\n";
        setenv("PAM_MATRIX_PASSWD", test::writeFile(dir.file("passdb"), passdb).c_str(), 1);
        std::vector<std::string> asked;
        const auto prompt = [&](const std::string& why) -> std::optional<SecretText> {
            asked.push_back(why);
            return c.typed ? std::optional(SecretText(*c.typed)) : std::nullopt;
        };
        EXPECT_EQ(systemAuthenticator(prompt)->authenticate(reason), c.expected);
        EXPECT_EQ(asked, c.asksForPassword ? std::vector{reason} : std::vector<std::string>{});
    }
}

} // namespace
} // namespace lumivale
