#pragma once

#include "platform/SecretText.h"

#include <functional>
#include <optional>
#include <string>

namespace lumivale {

// Asks the user for their account password, saying why (`reason`, such as "lock screenshots
// away"); nothing when the user cancels or cannot be asked.
using PasswordPrompt = std::function<std::optional<SecretText>(const std::string& reason)>;

// A prompt on a terminal (the controlling one by default) that shows no typed character.
// Enter ends the password; Ctrl+C, Ctrl+D or the end of input cancel; Backspace and Ctrl+U
// edit. Nothing when the terminal cannot be opened.
PasswordPrompt terminalPasswordPrompt(std::string device = "/dev/tty");

} // namespace lumivale
