// The terminal password prompt, typed into through a pseudo-terminal.
#include "platform/PasswordPrompt.h"

#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace lumivale {
namespace {

using namespace std::chrono_literals;

const std::string reason = "lock screenshots away";
const std::string promptText = "Password to lock screenshots away: ";

// A pseudo-terminal: the test types into and reads from its master side, the prompt opens the
// device; the test holds the device open too, to look at its settings after the prompt.
struct Terminal {
    int master = -1, slave = -1;
    char device[128] = "";

    Terminal() { openpty(&master, &slave, device, nullptr, nullptr); }
    ~Terminal() {
        close(master);
        close(slave);
    }
    // What the terminal showed, read until it holds `until` or nothing comes for a while.
    std::string shown(const std::string& until = {}) {
        std::string out;
        pollfd p{master, POLLIN, 0};
        char buffer[256];
        while ((until.empty() || out.find(until) == std::string::npos) && poll(&p, 1, 200) > 0) {
            const ssize_t n = read(master, buffer, sizeof buffer);
            if (n <= 0) break;
            out.append(buffer, n);
        }
        return out;
    }
    bool echoes() const {
        termios t{};
        return tcgetattr(slave, &t) == 0 && (t.c_lflag & ECHO);
    }
};

TEST(TerminalPasswordPrompt, readsWhatIsTypedWithoutShowingIt) {
    const struct {
        const char* name;
        std::string keys;
        std::optional<std::string> expected;
        bool hangUp = false; // the terminal goes away after the keys
    } cases[] = {
        {"enter ends", " pâss wörd \n", " pâss wörd "},
        // Ctrl+u takes back the whole line, backspace (also on nothing) a letter.
        {"line editing", "wrong\x15\x7f\x08tr0ub4dx\x7for\r", "tr0ub4dor"},
        {"ctrl+c cancels", "tr0ub\x03", std::nullopt},
        {"a terminal that goes away cancels", "tr0ub", std::nullopt, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Terminal terminal;
        ASSERT_TRUE(terminal.echoes());
        auto answer = std::async(std::launch::async,
                                 [&] { return terminalPasswordPrompt(terminal.device)(reason); });
        ASSERT_NE(terminal.shown(promptText).find(promptText), std::string::npos);
        ASSERT_EQ(write(terminal.master, c.keys.data(), c.keys.size()), ssize_t(c.keys.size()));
        if (c.hangUp) close(std::exchange(terminal.master, -1));
        ASSERT_EQ(answer.wait_for(10s), std::future_status::ready);
        const auto password = answer.get();
        EXPECT_EQ(password ? std::optional(std::string(password->view())) : std::nullopt,
                  c.expected);
        if (c.hangUp) continue;
        // Only the line end shows; echo is back on afterwards.
        EXPECT_EQ(terminal.shown(), "\r\n");
        EXPECT_TRUE(terminal.echoes());
    }
    EXPECT_FALSE(terminalPasswordPrompt("/dev/null")(reason)) << "no terminal, no password";
}

} // namespace
} // namespace lumivale
