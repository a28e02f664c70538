#include "core/JsonWriter.h"

#include <charconv>
#include <cmath>

namespace lumivale {
namespace {

// The length of the valid UTF-8 sequence that starts s, or 0 when s does not start with one
// (stray continuation bytes, overlong forms, surrogates, code points past U+10FFFF, cut-off
// sequences).
size_t validSequence(std::string_view s) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    size_t length;
    unsigned char low = 0x80, high = 0xBF; // allowed range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2;
    else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else
        return 0;
    if (s.size() < length || byte(1) < low || byte(1) > high) return 0;
    for (size_t i = 2; i < length; ++i)
        if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
    return length;
}

template <typename Real> std::string shortest(Real value) {
    char buffer[64];
    const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return ec == std::errc() ? std::string(buffer, end) : std::string("null");
}

} // namespace

std::string jsonQuoted(std::string_view s) {
    static constexpr char hex[] = "0123456789abcdef";
    std::string out = "\"";
    out.reserve(s.size() + 2);
    for (size_t i = 0; i < s.size();) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c >= 0x80) {
            const size_t length = validSequence(s.substr(i));
            if (length == 0) {
                out += "\\ufffd";
                ++i;
            } else {
                out.append(s.substr(i, length));
                i += length;
            }
            continue;
        }
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        case '\b':
            out += "\\b";
            break;
        case '\f':
            out += "\\f";
            break;
        default:
            if (c < 0x20 || c == 0x7F) {
                out += "\\u00";
                out += hex[c >> 4];
                out += hex[c & 0xF];
            } else {
                out += static_cast<char>(c);
            }
        }
        ++i;
    }
    out += '"';
    return out;
}

void JsonWriter::beforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (!filled_.empty()) {
        if (filled_.back()) out_ += ',';
        filled_.back() = true;
    }
}

JsonWriter& JsonWriter::open(char bracket) {
    beforeValue();
    out_ += bracket;
    filled_.push_back(false);
    return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
    out_ += bracket;
    if (!filled_.empty()) filled_.pop_back();
    return *this;
}

JsonWriter& JsonWriter::beginObject() {
    return open('{');
}
JsonWriter& JsonWriter::endObject() {
    return close('}');
}
JsonWriter& JsonWriter::beginArray() {
    return open('[');
}
JsonWriter& JsonWriter::endArray() {
    return close(']');
}

JsonWriter& JsonWriter::key(std::string_view name) {
    beforeValue();
    out_ += jsonQuoted(name);
    out_ += ':';
    afterKey_ = true;
    return *this;
}

JsonWriter& JsonWriter::string(std::string_view s) {
    beforeValue();
    out_ += jsonQuoted(s);
    return *this;
}

JsonWriter& JsonWriter::number(double d) {
    beforeValue();
    out_ += std::isfinite(d) ? shortest(d) : "null";
    return *this;
}

JsonWriter& JsonWriter::number(float f) {
    beforeValue();
    out_ += std::isfinite(f) ? shortest(f) : "null";
    return *this;
}

JsonWriter& JsonWriter::integer(int64_t n) {
    beforeValue();
    out_ += std::to_string(n);
    return *this;
}

JsonWriter& JsonWriter::boolean(bool b) {
    beforeValue();
    out_ += b ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::null() {
    beforeValue();
    out_ += "null";
    return *this;
}

} // namespace lumivale
