#include "core/Plist.h"

#include "core/Characters.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace lumivale::plist {
namespace {

constexpr std::string_view kMagic = "bplist00";
constexpr size_t kTrailerSize = 32;
// Every ref is written with four bytes: containers are written before the object count is
// known, and four bytes name more objects than any library can hold.
constexpr uint8_t kRefSize = 4;
constexpr int64_t kEpochOffset = static_cast<int64_t>(kPlistEpochOffset);
// A writer with a sink hands its bytes on in pieces of this size.
constexpr size_t kPiece = size_t{1} << 20;

// Object types: the high nibble of an object's marker byte.
enum Type : uint8_t {
    simple = 0x0, // null, booleans, fill
    integerType = 0x1,
    realType = 0x2,
    dateType = 0x3,
    dataType = 0x4,
    asciiType = 0x5,
    utf16Type = 0x6,
    arrayType = 0xA,
    dictType = 0xD,
};
constexpr uint8_t kFalse = 0x08, kTrue = 0x09, kDateMarker = 0x33, kDoubleMarker = 0x23;

uint64_t readBigEndian(const uint8_t* p, size_t n) {
    switch (n) {
    case 1:
        return p[0];
    case 2:
        return static_cast<uint64_t>(p[0]) << 8 | p[1];
    case 4: {
        uint32_t v;
        std::memcpy(&v, p, 4);
        return std::endian::native == std::endian::little ? __builtin_bswap32(v) : v;
    }
    case 8: {
        uint64_t v;
        std::memcpy(&v, p, 8);
        return std::endian::native == std::endian::little ? __builtin_bswap64(v) : v;
    }
    default: {
        uint64_t v = 0;
        for (size_t i = 0; i < n; ++i)
            v = (v << 8) | p[i];
        return v;
    }
    }
}

void appendBigEndian(std::string& out, uint64_t v, size_t n) {
    const uint64_t big = std::endian::native == std::endian::little ? __builtin_bswap64(v) : v;
    char bytes[8];
    std::memcpy(bytes, &big, 8);
    out.append(bytes + 8 - n, n);
}

// The fewest of 1, 2, 4 or 8 bytes that hold `v`, as the power of two the format stores.
uint8_t widthLog2(uint64_t v) {
    if (v <= 0xFF) return 0;
    if (v <= 0xFFFF) return 1;
    if (v <= 0xFFFFFFFF) return 2;
    return 3;
}

// Encodes UTF-8 as big-endian UTF-16 into `out`, which has room for two bytes a byte of `s`,
// with U+FFFD for each byte that does not start a valid sequence; the number of units.
size_t toUtf16(std::string_view s, char* out) {
    const auto* p = reinterpret_cast<const unsigned char*>(s.data());
    const size_t n = s.size();
    char* o = out;
    const auto put = [&o](char32_t unit) {
        *o++ = static_cast<char>(unit >> 8);
        *o++ = static_cast<char>(unit & 0xFF);
    };
    for (size_t i = 0; i < n;) {
        const unsigned char c = p[i];
        if (c < 0x80) {
            put(c);
            ++i;
            continue;
        }
        size_t length = 0;
        char32_t cp = 0, least = 0;
        if (c >= 0xC2 && c <= 0xDF)
            length = 2, cp = c & 0x1F, least = 0x80;
        else if (c >= 0xE0 && c <= 0xEF)
            length = 3, cp = c & 0x0F, least = 0x800;
        else if (c >= 0xF0 && c <= 0xF4)
            length = 4, cp = c & 0x07, least = 0x10000;
        bool valid = length > 0 && i + length <= n;
        for (size_t k = 1; valid && k < length; ++k) {
            valid = (p[i + k] & 0xC0) == 0x80;
            cp = (cp << 6) | (p[i + k] & 0x3F);
        }
        valid = valid && cp >= least && cp <= 0x10FFFF && (cp < 0xD800 || cp > 0xDFFF);
        if (!valid) {
            put(0xFFFD);
            ++i;
            continue;
        }
        if (cp < 0x10000) {
            put(cp);
        } else {
            put(0xD800 + ((cp - 0x10000) >> 10));
            put(0xDC00 + ((cp - 0x10000) & 0x3FF));
        }
        i += length;
    }
    return static_cast<size_t>(o - out) / 2;
}

// Decodes `count` big-endian UTF-16 units as UTF-8 into `out`, which has room for three bytes a
// unit; the length written, or nothing on an unpaired surrogate.
std::optional<size_t> fromUtf16(const uint8_t* p, uint64_t count, char* out) {
    const auto unit = [p](uint64_t i) -> char32_t {
        return (char32_t(p[2 * i]) << 8) | p[2 * i + 1];
    };
    // Four units at once are ASCII when every high byte is zero and every low byte below 0x80.
    constexpr uint64_t nonAscii =
        std::endian::native == std::endian::little ? 0x80FF80FF80FF80FF : 0xFF80FF80FF80FF80;
    char* o = out;
    for (uint64_t i = 0; i < count;) {
        if (i + 4 <= count) {
            uint64_t four;
            std::memcpy(&four, p + 2 * i, 8);
            if ((four & nonAscii) == 0) {
                for (int k = 0; k < 4; ++k)
                    *o++ = static_cast<char>(p[2 * i + 2 * k + 1]);
                i += 4;
                continue;
            }
        }
        char32_t cp = unit(i++);
        if (cp < 0x80) {
            *o++ = static_cast<char>(cp);
            continue;
        }
        if ((cp & 0xF800) == 0xD800) {
            if (cp >= 0xDC00 || i >= count || (unit(i) & 0xFC00) != 0xDC00) return std::nullopt;
            cp = 0x10000 + ((cp - 0xD800) << 10) + (unit(i++) - 0xDC00);
        }
        if (cp < 0x800) {
            *o++ = static_cast<char>(0xC0 | (cp >> 6));
        } else if (cp < 0x10000) {
            *o++ = static_cast<char>(0xE0 | (cp >> 12));
            *o++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        } else {
            *o++ = static_cast<char>(0xF0 | (cp >> 18));
            *o++ = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            *o++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        }
        *o++ = static_cast<char>(0x80 | (cp & 0x3F));
    }
    return static_cast<size_t>(o - out);
}

// Seconds since 2001-01-01, split so that dates far from 1970 keep their fractions.
double secondsSince2001(Date d) {
    const int64_t ns = d.time_since_epoch().count();
    const int64_t whole = ns / 1'000'000'000, rest = ns % 1'000'000'000;
    return static_cast<double>(whole - kEpochOffset) + static_cast<double>(rest) / 1e9;
}

std::optional<Date> dateFromSince2001(double seconds) {
    if (!std::isfinite(seconds)) return std::nullopt;
    double whole = std::floor(seconds);
    int64_t micros = std::llround((seconds - whole) * 1e6);
    if (micros == 1'000'000) whole += 1, micros = 0;
    const double since1970 = whole + static_cast<double>(kEpochOffset);
    // Date spans about ±9.22e9 seconds around 1970.
    constexpr double limit = 9.3e9;
    if (since1970 >= limit) return Date::max();
    if (since1970 <= -limit) return Date::min();
    int64_t ns = 0;
    if (__builtin_mul_overflow(static_cast<int64_t>(since1970), int64_t{1'000'000'000}, &ns) ||
        __builtin_add_overflow(ns, micros * 1000, &ns))
        return since1970 > 0 ? Date::max() : Date::min();
    return Date(std::chrono::nanoseconds(ns));
}

} // namespace

// Writer

Writer::Writer() {
    out_.assign(kMagic);
}

Writer::Writer(Sink sink) : Writer() {
    sink_ = std::move(sink);
    out_.reserve(2 * kPiece);
}

void Writer::reserve(size_t bytes, size_t objects) {
    if (!sink_) out_.reserve(bytes);
    offsets_.reserve(objects);
}

void Writer::pass() {
    if (sink_ && out_.size() >= kPiece) {
        sink_(out_);
        passed_ += out_.size();
        out_.clear();
    }
}

Ref Writer::begin() {
    pass();
    offsets_.push_back(passed_ + out_.size());
    return static_cast<Ref>(offsets_.size() - 1);
}

void Writer::marker(uint8_t type, uint64_t count) {
    if (count < 15) {
        out_ += static_cast<char>(type << 4 | count);
        return;
    }
    out_ += static_cast<char>(type << 4 | 0xF);
    const uint8_t width = widthLog2(count);
    out_ += static_cast<char>(integerType << 4 | width);
    appendBigEndian(out_, count, size_t{1} << width);
}

void Writer::putRefs(std::span<const Ref> refs) {
    const size_t at = out_.size();
    out_.resize(at + refs.size() * kRefSize);
    auto* p = reinterpret_cast<uint8_t*>(out_.data() + at);
    for (Ref r : refs) {
        p[0] = static_cast<uint8_t>(r >> 24);
        p[1] = static_cast<uint8_t>(r >> 16);
        p[2] = static_cast<uint8_t>(r >> 8);
        p[3] = static_cast<uint8_t>(r);
        p += kRefSize;
    }
}

Ref Writer::string(std::string_view utf8) {
    const Ref ref = begin();
    if (isAscii(utf8)) {
        marker(asciiType, utf8.size());
        out_.append(utf8);
        return ref;
    }
    utf16_.resize(2 * utf8.size());
    const size_t units = toUtf16(utf8, utf16_.data());
    marker(utf16Type, units);
    out_.append(utf16_.data(), 2 * units);
    return ref;
}

Ref Writer::key(std::string_view utf8) {
    if (const auto it = keys_.find(utf8); it != keys_.end()) return it->second;
    const Ref ref = string(utf8);
    keys_.emplace(std::string(utf8), ref);
    return ref;
}

Ref& Writer::NumberRefs::slot(uint64_t bits) {
    if (2 * (used_ + 1) > slots_.size()) {
        std::vector<std::pair<uint64_t, Ref>> old(std::max<size_t>(64, 2 * slots_.size()),
                                                  {0, none});
        old.swap(slots_);
        used_ = 0;
        for (const auto& [oldBits, ref] : old)
            if (ref != none) slot(oldBits) = ref;
    }
    const size_t mask = slots_.size() - 1;
    // Fibonacci hashing spreads the bits of doubles, whose low bits are often all zero.
    for (size_t i = (bits * 0x9E3779B97F4A7C15) >> 32 & mask;; i = (i + 1) & mask) {
        auto& [slotBits, ref] = slots_[i];
        if (ref == none) {
            slotBits = bits;
            ++used_;
            return ref;
        }
        if (slotBits == bits) return ref;
    }
}

Ref Writer::integer(int64_t value) {
    Ref& known = integers_.slot(static_cast<uint64_t>(value));
    if (known != NumberRefs::none) return known;
    const Ref ref = known = begin();
    // One, two and four byte integers are unsigned; eight bytes are signed.
    const uint8_t width = value < 0 ? 3 : widthLog2(static_cast<uint64_t>(value));
    out_ += static_cast<char>(integerType << 4 | width);
    appendBigEndian(out_, static_cast<uint64_t>(value), size_t{1} << width);
    return ref;
}

Ref Writer::real(double value) {
    Ref& known = reals_.slot(std::bit_cast<uint64_t>(value));
    if (known != NumberRefs::none) return known;
    const Ref ref = known = begin();
    out_ += static_cast<char>(kDoubleMarker);
    appendBigEndian(out_, std::bit_cast<uint64_t>(value), 8);
    return ref;
}

Ref Writer::boolean(bool value) {
    std::optional<Ref>& known = booleans_[value];
    if (!known) {
        known = begin();
        out_ += static_cast<char>(value ? kTrue : kFalse);
    }
    return *known;
}

Ref Writer::date(Date value) {
    const Ref ref = begin();
    out_ += static_cast<char>(kDateMarker);
    appendBigEndian(out_, std::bit_cast<uint64_t>(secondsSince2001(value)), 8);
    return ref;
}

Ref Writer::data(std::span<const uint8_t> bytes) {
    const Ref ref = begin();
    marker(dataType, bytes.size());
    out_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return ref;
}

Ref Writer::array(std::span<const Ref> items) {
    const Ref ref = begin();
    marker(arrayType, items.size());
    putRefs(items);
    return ref;
}

Ref Writer::dict(std::span<const std::pair<Ref, Ref>> entries) {
    const Ref ref = begin();
    marker(dictType, entries.size());
    const size_t at = out_.size();
    out_.resize(at + 2 * entries.size() * kRefSize);
    auto* keys = reinterpret_cast<uint8_t*>(out_.data() + at);
    auto* values = keys + entries.size() * kRefSize;
    for (const auto& [k, v] : entries) {
        for (int i = 0; i < 4; ++i) {
            keys[i] = static_cast<uint8_t>(k >> (24 - 8 * i));
            values[i] = static_cast<uint8_t>(v >> (24 - 8 * i));
        }
        keys += kRefSize;
        values += kRefSize;
    }
    return ref;
}

std::string Writer::finish(Ref root) {
    const uint64_t tableStart = passed_ + out_.size();
    const uint8_t offsetSize = uint8_t{1} << widthLog2(offsets_.empty() ? 0 : offsets_.back());
    for (uint64_t offset : offsets_) {
        appendBigEndian(out_, offset, offsetSize);
        pass();
    }
    out_.append(6, '\0'); // unused bytes and the sort version
    out_ += static_cast<char>(offsetSize);
    out_ += static_cast<char>(kRefSize);
    appendBigEndian(out_, offsets_.size(), 8);
    appendBigEndian(out_, root, 8);
    appendBigEndian(out_, tableStart, 8);
    offsets_ = {};
    keys_ = {};
    integers_ = {};
    reals_ = {};
    return std::move(out_);
}

// Reading

Ref Refs::operator[](size_t i) const {
    return static_cast<Ref>(readBigEndian(at_ + i * width_, width_));
}

std::optional<Ref> Dict::find(std::string_view key) const {
    for (size_t i = 0; i < size(); ++i)
        if (doc_->keyEquals(keys_[i], key)) return values_[i];
    return std::nullopt;
}

std::optional<Document> Document::open(std::span<const uint8_t> bytes) {
    // The header, at least one object byte, at least one offset and the trailer.
    if (bytes.size() < kMagic.size() + 2 + kTrailerSize ||
        std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) != 0)
        return std::nullopt;
    const uint64_t trailerStart = bytes.size() - kTrailerSize;
    const uint8_t* trailer = bytes.data() + trailerStart;
    Document doc;
    doc.bytes_ = bytes;
    doc.offsetSize_ = trailer[6];
    doc.refSize_ = trailer[7];
    doc.objectCount_ = readBigEndian(trailer + 8, 8);
    const uint64_t root = readBigEndian(trailer + 16, 8);
    doc.offsetTableStart_ = readBigEndian(trailer + 24, 8);

    if (doc.offsetSize_ < 1 || doc.offsetSize_ > 8 || doc.refSize_ < 1 || doc.refSize_ > 8)
        return std::nullopt;
    if (doc.objectCount_ < 1 || doc.objectCount_ > std::numeric_limits<Ref>::max() ||
        root >= doc.objectCount_)
        return std::nullopt;
    // Refs of this width must be able to name every object.
    if (doc.refSize_ < 8 && doc.objectCount_ - 1 > (uint64_t{1} << (8 * doc.refSize_)) - 1)
        return std::nullopt;
    if (doc.offsetTableStart_ <= kMagic.size() || doc.offsetTableStart_ >= trailerStart ||
        doc.objectCount_ > (trailerStart - doc.offsetTableStart_) / doc.offsetSize_)
        return std::nullopt;
    doc.root_ = static_cast<Ref>(root);
    if (!doc.offsetOf(doc.root_)) return std::nullopt;
    return doc;
}

std::optional<uint64_t> Document::offsetOf(Ref ref) const {
    if (ref >= objectCount_) return std::nullopt;
    const uint64_t offset =
        readBigEndian(bytes_.data() + offsetTableStart_ + uint64_t{ref} * offsetSize_, offsetSize_);
    if (offset < kMagic.size() || offset >= offsetTableStart_) return std::nullopt;
    return offset;
}

std::optional<Document::Object> Document::object(Ref ref) const {
    const auto offset = offsetOf(ref);
    if (!offset) return std::nullopt;
    const uint8_t* p = bytes_.data() + *offset;
    const uint8_t* end = bytes_.data() + offsetTableStart_;
    Object o{static_cast<uint8_t>(*p >> 4), static_cast<uint8_t>(*p & 0xF), 0, nullptr, 0};
    ++p;
    o.count = o.info;
    const bool counted = o.type == dataType || o.type == asciiType || o.type == utf16Type ||
                         o.type == arrayType || o.type == dictType;
    if (counted && o.info == 0xF) {
        // A longer count follows as an integer object of 1, 2, 4 or 8 bytes.
        if (p >= end || (*p >> 4) != integerType || (*p & 0xF) > 3) return std::nullopt;
        const size_t width = size_t{1} << (*p & 0xF);
        ++p;
        if (static_cast<size_t>(end - p) < width) return std::nullopt;
        o.count = readBigEndian(p, width);
        p += width;
    }
    o.body = p;
    o.room = static_cast<uint64_t>(end - p);
    return o;
}

std::optional<Refs> Document::refs(const uint8_t* at, uint64_t count) const {
    for (uint64_t i = 0; i < count; ++i)
        if (readBigEndian(at + i * refSize_, refSize_) >= objectCount_) return std::nullopt;
    Refs r;
    r.at_ = at;
    r.count_ = count;
    r.width_ = refSize_;
    return r;
}

std::optional<std::string_view> Document::stringView(Ref ref, std::string& scratch) const {
    const auto o = object(ref);
    if (!o) return std::nullopt;
    if (o->type == asciiType && o->count <= o->room) {
        const std::string_view text(reinterpret_cast<const char*>(o->body), o->count);
        if (!isAscii(text)) return std::nullopt;
        return text;
    }
    if (o->type != utf16Type || o->count > o->room / 2) return std::nullopt;
    scratch.resize(3 * o->count);
    const auto length = fromUtf16(o->body, o->count, scratch.data());
    if (!length) return std::nullopt;
    scratch.resize(*length);
    return std::string_view(scratch);
}

std::optional<std::string> Document::string(Ref ref) const {
    const auto o = object(ref);
    // A short UTF-16 string is decoded on the stack, so the result is allocated once, at its size.
    if (o && o->type == utf16Type && o->count <= 256 && o->count <= o->room / 2) {
        char buffer[3 * 256];
        const auto length = fromUtf16(o->body, o->count, buffer);
        if (!length) return std::nullopt;
        return std::string(buffer, *length);
    }
    std::string scratch;
    const auto view = stringView(ref, scratch);
    if (!view) return std::nullopt;
    if (view->data() != scratch.data()) return std::string(*view);
    scratch.shrink_to_fit();
    return scratch;
}

bool Document::keyEquals(Ref ref, std::string_view key) const {
    std::string scratch;
    const auto view = stringView(ref, scratch);
    return view && *view == key;
}

std::optional<int64_t> Document::integer(Ref ref) const {
    const auto o = object(ref);
    if (!o || o->type != integerType || o->info > 4 || o->room < (uint64_t{1} << o->info))
        return std::nullopt;
    switch (o->info) {
    case 0:
    case 1:
    case 2:
        return static_cast<int64_t>(readBigEndian(o->body, size_t{1} << o->info));
    case 3:
        return static_cast<int64_t>(readBigEndian(o->body, 8));
    default: {
        // Sixteen bytes, signed: accepted when the value fits in 64 bits.
        const uint64_t high = readBigEndian(o->body, 8);
        const auto low = static_cast<int64_t>(readBigEndian(o->body + 8, 8));
        if ((high == 0 && low >= 0) || (high == ~uint64_t{0} && low < 0)) return low;
        return std::nullopt;
    }
    }
}

std::optional<double> Document::real(Ref ref) const {
    const auto o = object(ref);
    if (!o || o->type != realType) return std::nullopt;
    if (o->info == 2 && o->room >= 4)
        return std::bit_cast<float>(static_cast<uint32_t>(readBigEndian(o->body, 4)));
    if (o->info == 3 && o->room >= 8) return std::bit_cast<double>(readBigEndian(o->body, 8));
    return std::nullopt;
}

std::optional<bool> Document::boolean(Ref ref) const {
    const auto o = object(ref);
    if (!o || o->type != simple || (o->info != (kTrue & 0xF) && o->info != (kFalse & 0xF)))
        return std::nullopt;
    return o->info == (kTrue & 0xF);
}

std::optional<Date> Document::date(Ref ref) const {
    const auto o = object(ref);
    if (!o || (o->type << 4 | o->info) != kDateMarker || o->room < 8) return std::nullopt;
    return dateFromSince2001(std::bit_cast<double>(readBigEndian(o->body, 8)));
}

std::optional<std::vector<uint8_t>> Document::data(Ref ref) const {
    const auto o = object(ref);
    if (!o || o->type != dataType || o->count > o->room) return std::nullopt;
    return std::vector<uint8_t>(o->body, o->body + o->count);
}

std::optional<Refs> Document::array(Ref ref) const {
    const auto o = object(ref);
    if (!o || o->type != arrayType || o->count > o->room / refSize_) return std::nullopt;
    return refs(o->body, o->count);
}

std::optional<Dict> Document::dict(Ref ref) const {
    const auto o = object(ref);
    if (!o || o->type != dictType || o->count > o->room / (2u * refSize_)) return std::nullopt;
    const auto all = refs(o->body, 2 * o->count);
    if (!all) return std::nullopt;
    Dict d;
    d.doc_ = this;
    d.keys_ = *all;
    d.keys_.count_ = o->count;
    d.values_ = d.keys_;
    d.values_.at_ = o->body + o->count * refSize_;
    return d;
}

} // namespace lumivale::plist
