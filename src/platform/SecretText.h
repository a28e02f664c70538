#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace lumivale {

// A typed secret (a password) in a buffer of its own that is wiped when it goes. It cannot be
// copied, so no stray copy outlives it, and it is never printed.
class SecretText {
public:
    // A copy of these characters.
    explicit SecretText(std::string_view text);
    SecretText(SecretText&& other) noexcept;
    SecretText& operator=(SecretText&& other) noexcept;
    SecretText(const SecretText&) = delete;
    SecretText& operator=(const SecretText&) = delete;
    ~SecretText();

    // The characters, followed by a NUL for C interfaces.
    const char* c_str() const { return data_.get(); }
    std::string_view view() const { return {data_.get(), size_}; }
    size_t size() const { return size_; }

private:
    std::unique_ptr<char[]> data_;
    size_t size_ = 0;
    void wipe();
};

} // namespace lumivale
