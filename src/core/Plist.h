#pragma once

// The binary property-list format ("bplist00"): a writer that streams values straight from the
// records into bytes, and a strict reader that gives typed, checked access to a file's objects
// without building a tree. The library file, the journal book and the locked files' header use it.

#include "core/Date.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace lumivale::plist {

// An object's number in the file's object table.
using Ref = uint32_t;

// Writes objects children first: each call writes one object and gives its number, which a
// container written later refers to. `finish` adds the offset table and the trailer.
// Numbers and booleans are written once per value and shared, which keeps a file of many
// similar records small. Strings are UTF-8; bytes that are not valid UTF-8 are written as U+FFFD.
class Writer {
  public:
    // Where a file written in pieces goes.
    using Sink = std::function<void(std::string_view)>;

    Writer();
    // Passes the file to `sink` in pieces of about a megabyte as it grows, so that it never
    // sits in memory whole; `finish` then gives only the last piece.
    explicit Writer(Sink sink);

    // Makes room for about this many bytes and objects, so a large file is built without copying.
    void reserve(size_t bytes, size_t objects);

    Ref string(std::string_view utf8);
    // A string written once per writer however often it is asked for (dictionary keys).
    Ref key(std::string_view utf8);
    Ref integer(int64_t value);
    Ref real(double value);
    Ref boolean(bool value);
    Ref date(Date value);
    Ref data(std::span<const uint8_t> bytes);
    Ref array(std::span<const Ref> items);
    // A dictionary of (key, value) pairs, in the order given.
    Ref dict(std::span<const std::pair<Ref, Ref>> entries);

    // The whole file (or, with a sink, its last piece), with `root` as its top object. The
    // writer is spent afterwards.
    std::string finish(Ref root);

  private:
    struct KeyHash {
        using is_transparent = void;
        size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
    };

    // Refs of the numbers written so far, by their 64 bits: open addressing, so that millions
    // of numbers cost a multiplication and a probe or two each.
    class NumberRefs {
      public:
        static constexpr Ref none = ~Ref{0};
        // The ref stored for `bits`; `none` in a new slot, for the caller to fill.
        Ref& slot(uint64_t bits);

      private:
        std::vector<std::pair<uint64_t, Ref>> slots_;
        size_t used_ = 0;
    };

    Sink sink_;
    std::string out_;
    uint64_t passed_ = 0; // bytes already given to the sink
    std::vector<uint64_t> offsets_;
    std::unordered_map<std::string, Ref, KeyHash, std::equal_to<>> keys_;
    NumberRefs integers_, reals_;
    std::optional<Ref> booleans_[2];
    std::string utf16_; // scratch for a string's UTF-16 bytes
    Ref begin();
    // Gives the bytes so far to the sink once they make a piece.
    void pass();
    void marker(uint8_t type, uint64_t count);
    void putRefs(std::span<const Ref> refs);
};

class Document;

// The object numbers held by an array or a dictionary, read from the file on demand. They were
// checked against the object table when the container was opened.
class Refs {
  public:
    size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    // The i-th number; i < size().
    Ref operator[](size_t i) const;

    struct iterator {
        const Refs* refs;
        size_t i;
        Ref operator*() const { return (*refs)[i]; }
        iterator& operator++() {
            ++i;
            return *this;
        }
        bool operator==(const iterator&) const = default;
    };
    iterator begin() const { return {this, 0}; }
    iterator end() const { return {this, count_}; }

  private:
    friend class Document;
    const uint8_t* at_ = nullptr;
    size_t count_ = 0;
    uint8_t width_ = 0;
};

// A checked view of one dictionary of a document.
class Dict {
  public:
    // The value under this key, or nothing.
    std::optional<Ref> find(std::string_view key) const;
    size_t size() const { return keys_.size(); }
    // The i-th key and value refs, in file order; i < size().
    Ref keyAt(size_t i) const { return keys_[i]; }
    Ref valueAt(size_t i) const { return values_[i]; }

  private:
    friend class Document;
    const Document* doc_ = nullptr;
    Refs keys_, values_;
};

// A validated, read-only view over the bytes of a binary property list. The bytes must outlive
// it. Every accessor checks the object's type, offsets and sizes and gives nothing when they
// are wrong, so a damaged or hostile file can only fail to decode. Nothing recurses: callers
// ask for the type they expect, so an object that contains itself simply fails that check.
class Document {
  public:
    // Checks the header, trailer and offset table; nothing when they are not sound.
    static std::optional<Document> open(std::span<const uint8_t> bytes);

    Ref root() const { return root_; }

    std::optional<std::string> string(Ref ref) const;
    // The string's UTF-8 text: a view into the file for an ASCII string, else decoded into
    // `scratch` (so a caller that only compares or copies avoids an allocation).
    std::optional<std::string_view> stringView(Ref ref, std::string& scratch) const;
    std::optional<int64_t> integer(Ref ref) const;
    // A real; integers are not accepted in its place.
    std::optional<double> real(Ref ref) const;
    std::optional<bool> boolean(Ref ref) const;
    // A date, to the microsecond (a file's date is a double, which holds about a tenth of a
    // microsecond for today's dates); dates beyond what `Date` spans are clamped to its ends.
    std::optional<Date> date(Ref ref) const;
    std::optional<std::vector<uint8_t>> data(Ref ref) const;
    std::optional<Refs> array(Ref ref) const;
    std::optional<Dict> dict(Ref ref) const;
    // Whether the dictionary's key at `ref` equals `key` (without copying it).
    bool keyEquals(Ref ref, std::string_view key) const;

  private:
    // One object's marker, parsed and checked: its type nibble, its count (a length for
    // strings, data and containers) and where its body starts.
    struct Object {
        uint8_t type;
        uint8_t info;
        uint64_t count;
        const uint8_t* body;
        uint64_t room; // bytes from body to the end of the object area
    };

    std::span<const uint8_t> bytes_;
    uint64_t objectCount_ = 0;
    uint64_t offsetTableStart_ = 0;
    uint8_t offsetSize_ = 0;
    uint8_t refSize_ = 0;
    Ref root_ = 0;
    // Where object `ref` starts, or nothing when its offset is out of bounds.
    std::optional<uint64_t> offsetOf(Ref ref) const;
    std::optional<Object> object(Ref ref) const;
    std::optional<Refs> refs(const uint8_t* at, uint64_t count) const;
};

} // namespace lumivale::plist
