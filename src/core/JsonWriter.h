#pragma once

// A small writer of JSON text for the command line's JSON Lines output.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// Builds one JSON text value by value, keys in the order given. The caller pairs every begin
// with its end and gives a key before each value inside an object.
class JsonWriter {
  public:
    JsonWriter& beginObject();
    JsonWriter& endObject();
    JsonWriter& beginArray();
    JsonWriter& endArray();
    JsonWriter& key(std::string_view name);
    JsonWriter& string(std::string_view s);
    // The shortest decimal form that reads back as the same double; null when not finite.
    JsonWriter& number(double d);
    // The shortest decimal form that reads back as the same float; null when not finite.
    JsonWriter& number(float f);
    JsonWriter& integer(int64_t n);
    JsonWriter& boolean(bool b);
    JsonWriter& null();

    const std::string& text() const { return out_; }

  private:
    void beforeValue();
    JsonWriter& open(char bracket);
    JsonWriter& close(char bracket);

    std::string out_;
    std::vector<bool> filled_; // per open container: whether it holds an item yet
    bool afterKey_ = false;
};

// s as a JSON string literal: quoted, with quotes, backslashes and control characters escaped,
// and every byte that is not part of valid UTF-8 replaced by U+FFFD.
std::string jsonQuoted(std::string_view s);

} // namespace lumivale
