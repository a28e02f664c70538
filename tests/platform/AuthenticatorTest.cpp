// Authentication against real PAM (through pam_wrapper, with pam_matrix checking passwords from
// a file) and a mock polkit authority (python3-dbusmock) on a private bus. Without any system bus
// the fall-back to PAM is driven end to end by tests/integration/lock-restore.sh.
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

const std::string reason = "open your locked screenshots";
const std::string rightPassword = "correct horse";

// The environment that puts PAM under pam_wrapper from the process's start, with a "lumivale"
// service in `dir` that checks passwords with pam_matrix against the file PAM_MATRIX_PASSWD names.
std::vector<std::pair<std::string, std::string>> underPamWrapper(const test::TempDir& dir) {
    const std::string module =
        test::runShell("ls /usr/lib/*/pam_wrapper/pam_matrix.so | head -n 1 | tr -d '\\n'")
            .value_or("pam_matrix.so");
    test::writeFile(dir.file("services/lumivale"),
                    "auth required " + module + "\naccount required " + module + "\n");
    return {{"LD_PRELOAD", "libpam_wrapper.so"},
            {"PAM_WRAPPER", "1"},
            {"PAM_WRAPPER_SERVICE_DIR", dir.file("services")}};
}

// Makes pam_matrix know the user with this password, allowed to use `service`.
void knowUser(const test::TempDir& dir, const std::string& password, const std::string& service) {
    const std::string passdb =
        test::writeFile(dir.file("passdb-" + service), std::string(getpwuid(getuid())->pw_name) +
                                                           ":" + password + ":" + service + "\n");
    setenv("PAM_MATRIX_PASSWD", passdb.c_str(), 1);
}

// A prompt that notes each question and gives this answer (nothing: the user cancels).
PasswordPrompt answering(std::optional<std::string> answer, std::vector<std::string>& asked) {
    return [answer, &asked](const std::string& why) -> std::optional<SecretText> {
        asked.push_back(why);
        return answer ? std::optional(SecretText(*answer)) : std::nullopt;
    };
}

TEST(PamAuthenticator, checksThePasswordAndTheAccount) {
    const test::TempDir services;
    if (!test::runsInChild({"pam", {}, underPamWrapper(services), 60s})) return;
    const struct {
        const char* name;
        std::optional<std::string> typed;
        const char* allowedService;
        bool expected;
    } cases[] = {
        {"right password", rightPassword, "lumivale", true},
        {"wrong password", "correct horse!", "lumivale", false},
        {"cancelled prompt", std::nullopt, "lumivale", false},
        {"account not allowed this service", rightPassword, "sshd", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        knowUser(services, rightPassword, c.allowedService);
        std::vector<std::string> asked;
        EXPECT_EQ(PamAuthenticator(answering(c.typed, asked)).authenticate(reason), c.expected);
        EXPECT_EQ(asked, std::vector<std::string>{reason});
    }
}

TEST(PolkitAuthenticator, followsTheAuthorityAndFallsBackToPamWhenItCannotDecide) {
    const test::TempDir services;
    std::vector<std::string> wrapper{
        "bash", LUMIVALE_TEST_SOURCE_DIR "/tests/support/with-polkit-mock.sh", "env"};
    for (const auto& [key, value] : underPamWrapper(services))
        wrapper.push_back(key + "=" + value);
    if (!test::runsInChild({"polkit", wrapper, {}, 90s})) return;
    knowUser(services, rightPassword, "lumivale");
    // What the mock authority is told through its Mock interface before each case.
    const std::string checkDoing =
        "AddMethod '' CheckAuthorization '(sa{sv})sa{ss}us' '(bba{ss})' ";
    const struct {
        const char* name;
        std::string tell;
        std::optional<std::string> typed;
        bool expected, asksForPassword;
    } cases[] = {
        {"refused", "SetAllowed \"[]\"", rightPassword, false, false},
        {"allowed", "SetAllowed \"['app.orvane.lumivale.unlock']\"", std::nullopt, true, false},
        {"no agent to ask", checkDoing + "'ret = (False, True, {})'", rightPassword, true, true},
        {"action not installed",
         checkDoing + "\"raise dbus.exceptions.DBusException('Action is not registered', "
                      "name='org.freedesktop.PolicyKit1.Error.Failed')\"",
         "wrong", false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(test::runShell("gdbus call --system --dest org.freedesktop.PolicyKit1 "
                                   "--object-path /org/freedesktop/PolicyKit1/Authority "
                                   "--method org.freedesktop.DBus.Mock." +
                                   c.tell));
        std::vector<std::string> asked;
        PolkitAuthenticator polkit(std::make_unique<PamAuthenticator>(answering(c.typed, asked)));
        EXPECT_EQ(polkit.authenticate(reason), c.expected);
        EXPECT_EQ(asked.size(), c.asksForPassword ? 1u : 0u);
    }
}

} // namespace
} // namespace lumivale
