#include "platform/SecretText.h"

#include <cstring>
#include <openssl/crypto.h>

namespace lumivale {

SecretText::SecretText(std::string_view text)
    : data_(new char[text.size() + 1]), size_(text.size()) {
    std::memcpy(data_.get(), text.data(), text.size());
    data_[text.size()] = '\0';
}

SecretText::SecretText(SecretText&& other) noexcept
    : data_(std::move(other.data_)), size_(other.size_) {
    other.size_ = 0;
}

SecretText& SecretText::operator=(SecretText&& other) noexcept {
    if (this != &other) {
        wipe();
        data_ = std::move(other.data_);
        size_ = other.size_;
        other.size_ = 0;
    }
    return *this;
}

SecretText::~SecretText() {
    wipe();
}

void SecretText::wipe() {
    if (data_) OPENSSL_cleanse(data_.get(), size_ + 1);
    data_.reset();
    size_ = 0;
}

} // namespace lumivale
