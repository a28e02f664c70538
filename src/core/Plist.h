#pragma once

// The binary property-list format ("bplist00"): a writer that streams values straight from the
// records into bytes, and a strict reader that gives typed, checked access to a file's objects
// without building a tree. The library file, the journal book and the locked files' header use it.

#include "core/Date.h"

#include <cstdint>
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
class Writer {
public:
    Writer();

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

    // The whole file, with `root` as its top object. The writer is spent afterwards.
    std::string finish(Ref root);

private:
    std::string out_;
    std::vector<uint64_t> offsets_;
    std::unordered_map<std::string, Ref> keys_;
    Ref begin();
};

class Document;

// A checked view of one dictionary of a document.
class Dict {
public:
    // The value under this key, or nothing.
    std::optional<Ref> find(std::string_view key) const;
    size_t size() const { return keys_.size(); }
    // The i-th key and value refs, in file order.
    Ref keyAt(size_t i) const { return keys_[i]; }
    Ref valueAt(size_t i) const { return values_[i]; }

private:
    friend class Document;
    const Document* doc_ = nullptr;
    std::vector<Ref> keys_, values_;
};

// A validated, read-only view over the bytes of a binary property list. The bytes must outlive
// it. Every accessor checks the object's type, offsets and sizes and gives nothing when they
// are wrong, so a damaged or hostile file can only fail to decode.
class Document {
public:
    // Checks the header, trailer and offset table; nothing when they are not sound.
    static std::optional<Document> open(std::span<const uint8_t> bytes);

    Ref root() const { return root_; }

    std::optional<std::string> string(Ref ref) const;
    std::optional<int64_t> integer(Ref ref) const;
    // A real; integers are not accepted in its place.
    std::optional<double> real(Ref ref) const;
    std::optional<bool> boolean(Ref ref) const;
    std::optional<Date> date(Ref ref) const;
    std::optional<std::vector<uint8_t>> data(Ref ref) const;
    std::optional<std::vector<Ref>> array(Ref ref) const;
    std::optional<Dict> dict(Ref ref) const;
    // Whether the dictionary's key at `ref` equals `key` (without copying it).
    bool keyEquals(Ref ref, std::string_view key) const;

private:
    std::span<const uint8_t> bytes_;
    uint64_t objectCount_ = 0;
    uint64_t offsetTableStart_ = 0;
    uint8_t offsetSize_ = 0;
    uint8_t refSize_ = 0;
    Ref root_ = 0;
    // Where object `ref` starts, or nothing when its offset is out of bounds.
    std::optional<uint64_t> offsetOf(Ref ref) const;
};

} // namespace lumivale::plist
