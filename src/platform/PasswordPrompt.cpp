#include "platform/PasswordPrompt.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <openssl/crypto.h>
#include <termios.h>
#include <unistd.h>

namespace lumivale {
namespace {

constexpr char ctrlC = 0x03, ctrlD = 0x04, ctrlU = 0x15, backspace = 0x08, del = 0x7f;

void writeText(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        done += static_cast<size_t>(n);
    }
}

// Reads one line without echo, with signals off so that Ctrl+C arrives as a character and
// cancels instead of killing the program with echo still off.
std::optional<SecretText> readHidden(int fd, const std::string& prompt) {
    termios saved{};
    if (tcgetattr(fd, &saved) != 0) return std::nullopt;
    termios quiet = saved;
    quiet.c_lflag &= ~(ECHO | ICANON | ISIG);
    quiet.c_cc[VMIN] = 1;
    quiet.c_cc[VTIME] = 0;
    // Echo goes off before the prompt shows, so nothing typed after it can appear. What was
    // typed before it is dropped: it was not meant as this password.
    if (tcsetattr(fd, TCSAFLUSH, &quiet) != 0) return std::nullopt;
    writeText(fd, prompt);

    std::array<char, 1024> typed;
    size_t length = 0;
    bool cancelled = false;
    for (;;) {
        char c = 0;
        const ssize_t n = ::read(fd, &c, 1);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0 || c == ctrlC || c == ctrlD) {
            cancelled = true;
            break;
        }
        if (c == '\n' || c == '\r') break;
        if (c == del || c == backspace)
            length -= length > 0 ? 1 : 0;
        else if (c == ctrlU)
            length = 0;
        else if (length < typed.size())
            typed[length++] = c;
    }
    tcsetattr(fd, TCSADRAIN, &saved);
    writeText(fd, "\n");

    std::optional<SecretText> password;
    if (!cancelled) password.emplace(std::string_view(typed.data(), length));
    OPENSSL_cleanse(typed.data(), typed.size());
    return password;
}

} // namespace

PasswordPrompt terminalPasswordPrompt(std::string device) {
    return [device = std::move(device)](const std::string& reason) -> std::optional<SecretText> {
        const int fd = ::open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (fd < 0) return std::nullopt;
        auto password = readHidden(fd, "Password to " + reason + ": ");
        close(fd);
        return password;
    };
}

} // namespace lumivale
