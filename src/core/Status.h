#pragma once

#include <string>
#include <utility>

namespace lumivale {

// The outcome of an operation that gives nothing back: success, or the reason it failed
// in plain words (with the system's error number where there was one).
class Status {
public:
    static Status ok() { return Status(); }
    static Status failure(std::string message, int code = 0) {
        Status s;
        s.failed_ = true;
        s.message_ = std::move(message);
        s.code_ = code;
        return s;
    }

    explicit operator bool() const { return !failed_; }
    bool isOk() const { return !failed_; }
    const std::string& message() const { return message_; }
    int code() const { return code_; }

private:
    bool failed_ = false;
    std::string message_;
    int code_ = 0;
};

// The system's description of an error number, as a user should read it.
std::string describeErrno(int err);

} // namespace lumivale
