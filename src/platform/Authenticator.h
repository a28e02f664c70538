#pragma once

#include "platform/PasswordPrompt.h"

#include <memory>
#include <string>
#include <string_view>

namespace lumivale {

// Asks the system to confirm that the person at the computer is the account's owner.
class Authenticator {
public:
    virtual ~Authenticator() = default;
    // True only when the owner authenticated; cancelling or failing gives false. `reason` says
    // what for ("open your locked screenshots").
    virtual bool authenticate(const std::string& reason) = 0;
};

// Checks the account password, read through `prompt`, with PAM.
class PamAuthenticator : public Authenticator {
public:
    static constexpr std::string_view defaultService = "lumivale";

    // Linux-PAM itself uses the system's "other" stack when the service has no file of its own.
    explicit PamAuthenticator(PasswordPrompt prompt,
                              std::string service = std::string(defaultService))
        : prompt_(std::move(prompt)), service_(std::move(service)) {}

    // Authenticates and checks the account (pam_authenticate, then pam_acct_mgmt).
    bool authenticate(const std::string& reason) override;

private:
    PasswordPrompt prompt_;
    std::string service_;
};

// Asks polkit whether this process may perform the unlock action, letting the desktop's
// authentication agent ask the user (password or fingerprint). Where polkit cannot decide (no
// authority, the action not installed, no agent to ask the user), `fallback` decides.
class PolkitAuthenticator : public Authenticator {
public:
    static constexpr std::string_view unlockAction = "app.orvane.lumivale.unlock";

    explicit PolkitAuthenticator(std::unique_ptr<Authenticator> fallback,
                                 std::string action = std::string(unlockAction))
        : fallback_(std::move(fallback)), action_(std::move(action)) {}

    bool authenticate(const std::string& reason) override;

private:
    std::unique_ptr<Authenticator> fallback_;
    std::string action_;
};

// polkit first, then PAM with this prompt: what the application uses.
std::unique_ptr<Authenticator> systemAuthenticator(PasswordPrompt prompt);

} // namespace lumivale
