#include "platform/Authenticator.h"

#include <cstdlib>
#include <cstring>
#include <optional>
#include <polkit/polkit.h>
#include <pwd.h>
#include <security/pam_appl.h>
#include <unistd.h>
#include <vector>

namespace lumivale {
namespace {

// The name of the account this process runs as.
std::optional<std::string> accountName() {
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<size_t>(size) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return std::nullopt;
    return std::string(found->pw_name);
}

struct Conversation {
    const PasswordPrompt& prompt;
    const std::string& reason;
};

void dropReplies(pam_response* replies, int count) {
    for (int i = 0; i < count; ++i)
        if (replies[i].resp) {
            std::memset(replies[i].resp, 0, std::strlen(replies[i].resp));
            std::free(replies[i].resp);
        }
    std::free(replies);
}

// PAM's questions: hidden ones are the password and go to the prompt; PAM frees (and wipes)
// the answers itself. Visible questions are not expected of a password check and end it.
int converse(int count, const pam_message** messages, pam_response** answers, void* data) {
    if (count <= 0 || count > PAM_MAX_NUM_MSG) return PAM_CONV_ERR;
    const auto& conversation = *static_cast<Conversation*>(data);
    auto* replies = static_cast<pam_response*>(std::calloc(count, sizeof(pam_response)));
    if (!replies) return PAM_BUF_ERR;
    for (int i = 0; i < count; ++i) {
        switch (messages[i]->msg_style) {
        case PAM_PROMPT_ECHO_OFF: {
            const std::optional<SecretText> password =
                conversation.prompt ? conversation.prompt(conversation.reason) : std::nullopt;
            if (!password || !(replies[i].resp = strdup(password->c_str()))) {
                dropReplies(replies, count);
                return PAM_CONV_ERR;
            }
            break;
        }
        case PAM_ERROR_MSG:
        case PAM_TEXT_INFO:
            break;
        default:
            dropReplies(replies, count);
            return PAM_CONV_ERR;
        }
    }
    *answers = replies;
    return PAM_SUCCESS;
}

enum class PolkitAnswer { allowed, refused, undecided };

PolkitAnswer askPolkit(const std::string& action) {
    GError* error = nullptr;
    PolkitAuthority* authority = polkit_authority_get_sync(nullptr, &error);
    if (!authority) {
        g_clear_error(&error);
        return PolkitAnswer::undecided;
    }
    PolkitSubject* subject = polkit_unix_process_new_for_owner(getpid(), 0, getuid());
    // No details: polkit refuses details (such as a message of our own) from callers that are
    // not root, so the agent shows the action's own message.
    PolkitAuthorizationResult* result = polkit_authority_check_authorization_sync(
        authority, subject, action.c_str(), nullptr,
        POLKIT_CHECK_AUTHORIZATION_FLAGS_ALLOW_USER_INTERACTION, nullptr, &error);
    g_object_unref(subject);
    g_object_unref(authority);
    if (!result) {
        // Most often the action is not installed or no authority runs.
        g_clear_error(&error);
        return PolkitAnswer::undecided;
    }
    PolkitAnswer answer = PolkitAnswer::refused;
    if (polkit_authorization_result_get_is_authorized(result)) answer = PolkitAnswer::allowed;
    // After user interaction was allowed, a remaining challenge means that no authentication
    // agent was there to put it to the user (a terminal session, for example).
    else if (polkit_authorization_result_get_is_challenge(result))
        answer = PolkitAnswer::undecided;
    g_object_unref(result);
    return answer;
}

} // namespace

bool PamAuthenticator::authenticate(const std::string& reason) {
    const auto user = accountName();
    if (!user) return false;
    Conversation conversation{prompt_, reason};
    const pam_conv conv{converse, &conversation};
    pam_handle_t* handle = nullptr;
    int status = pam_start(service_.c_str(), user->c_str(), &conv, &handle);
    if (status != PAM_SUCCESS) return false;
    status = pam_authenticate(handle, PAM_DISALLOW_NULL_AUTHTOK);
    if (status == PAM_SUCCESS) status = pam_acct_mgmt(handle, PAM_DISALLOW_NULL_AUTHTOK);
    pam_end(handle, status);
    return status == PAM_SUCCESS;
}

bool PolkitAuthenticator::authenticate(const std::string& reason) {
    switch (askPolkit(action_)) {
    case PolkitAnswer::allowed:
        return true;
    case PolkitAnswer::refused:
        return false;
    case PolkitAnswer::undecided:
        break;
    }
    return fallback_ && fallback_->authenticate(reason);
}

std::unique_ptr<Authenticator> systemAuthenticator(PasswordPrompt prompt) {
    return std::make_unique<PolkitAuthenticator>(
        std::make_unique<PamAuthenticator>(std::move(prompt)));
}

} // namespace lumivale
