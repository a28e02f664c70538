#pragma once

// The vault key, the locked area's errors and the result type of its operations.

#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>

namespace lumivale {

// Fills `out` from the system's random source. A key or nonce must never come from a weak
// source, so the program stops if that source fails.
void randomBytes(std::span<uint8_t> out);

// The 256-bit vault key. Its bytes are wiped when it goes and are never printed.
class VaultKey {
public:
    static constexpr size_t size = 32;

    // A key of exactly these 32 bytes.
    explicit VaultKey(std::span<const uint8_t, size> bytes);
    // A new key from the system's random source.
    static VaultKey random();

    VaultKey(const VaultKey&) = default;
    VaultKey& operator=(const VaultKey&) = default;
    ~VaultKey();

    std::span<const uint8_t, size> bytes() const { return bytes_; }
    bool operator==(const VaultKey&) const = default;

private:
    std::array<uint8_t, size> bytes_{};
};

// Shows that a key is there, never what it is.
std::ostream& operator<<(std::ostream& out, const VaultKey& key);

// Why a locked-area operation failed.
class VaultError {
public:
    enum class Kind { keychain, notAFile, cannotRead, cannotOpen, verifyFailed, io };

    // The keyring service refused, with its error code (0 for a stored key of the wrong size).
    static VaultError keychain(int32_t code) { return VaultError(Kind::keychain, code, {}); }
    static VaultError notAFile() { return VaultError(Kind::notAFile, 0, {}); }
    static VaultError cannotRead() { return VaultError(Kind::cannotRead, 0, {}); }
    static VaultError cannotOpen() { return VaultError(Kind::cannotOpen, 0, {}); }
    static VaultError verifyFailed() { return VaultError(Kind::verifyFailed, 0, {}); }
    // A file-system failure passed on, in the system's words.
    static VaultError io(std::string message) {
        return VaultError(Kind::io, 0, std::move(message));
    }

    Kind kind() const { return kind_; }
    int32_t code() const { return code_; }
    // The text shown to the user as it stands.
    std::string description() const;

    // Same case and, for the keyring, the same code.
    bool operator==(const VaultError& other) const {
        return kind_ == other.kind_ && code_ == other.code_ &&
               (kind_ != Kind::io || message_ == other.message_);
    }

private:
    VaultError(Kind kind, int32_t code, std::string message)
        : kind_(kind), code_(code), message_(std::move(message)) {}
    Kind kind_;
    int32_t code_;
    std::string message_;
};

std::ostream& operator<<(std::ostream& out, const VaultError& error);

// A value, or the VaultError that kept the operation from giving one.
template <class T> class VaultResult {
public:
    VaultResult(T value) : state_(std::move(value)) {}
    VaultResult(VaultError error) : state_(std::move(error)) {}

    explicit operator bool() const { return state_.index() == 0; }
    bool ok() const { return state_.index() == 0; }
    // The value; only when ok().
    T& value() & { return std::get<0>(state_); }
    const T& value() const& { return std::get<0>(state_); }
    T&& value() && { return std::get<0>(std::move(state_)); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    // The error; only when not ok().
    const VaultError& error() const { return std::get<1>(state_); }

private:
    std::variant<T, VaultError> state_;
};

// Success, or the VaultError of an operation that gives nothing back.
template <> class VaultResult<void> {
public:
    VaultResult() = default;
    VaultResult(VaultError error) : error_(std::move(error)) {}

    explicit operator bool() const { return !error_; }
    bool ok() const { return !error_; }
    const VaultError& error() const { return *error_; }

private:
    std::optional<VaultError> error_;
};

} // namespace lumivale
