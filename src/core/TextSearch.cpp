#include "core/TextSearch.h"

#include <cstdint>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define LUMIVALE_WIDE_SEARCH 1
#endif

namespace lumivale {
namespace {

constexpr size_t none = std::string_view::npos;

#ifdef LUMIVALE_WIDE_SEARCH
// AVX2 for this code only (the lambdas within included); the rest runs on any x86-64.
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
// Sixty-four starts at a time: a start is worth a full comparison only where the needle's
// first, second and last bytes are all in place, which in real text is rare. Needs a needle of
// two bytes or more that fits in the text from `from` on.
size_t findWide(std::string_view text, std::string_view needle, size_t from) {
    const char* const data = text.data();
    const size_t lastAt = needle.size() - 1;
    const size_t ends = text.size() - lastAt; // every start before this leaves room for the needle
    // What lies between the second and the last byte (nothing for a needle of three or fewer).
    const char* const middle = needle.data() + 2;
    const size_t middleSize = needle.size() > 3 ? needle.size() - 3 : 0;
    const __m256i firsts = _mm256_set1_epi8(needle[0]);
    const __m256i seconds = _mm256_set1_epi8(needle[1]);
    const __m256i lasts = _mm256_set1_epi8(needle.back());
    // The first start in the 64 from `at` where the whole needle is in place, or none.
    const auto inBlock = [&](size_t at) {
        const auto candidates = [&](size_t start) {
            const auto load = [&](size_t offset) {
                return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data + start + offset));
            };
            return _mm256_and_si256(_mm256_and_si256(_mm256_cmpeq_epi8(load(0), firsts),
                                                     _mm256_cmpeq_epi8(load(1), seconds)),
                                    _mm256_cmpeq_epi8(load(lastAt), lasts));
        };
        const __m256i low = candidates(at);
        const __m256i high = candidates(at + 32);
        const __m256i any = _mm256_or_si256(low, high);
        if (_mm256_testz_si256(any, any)) return none;
        uint64_t starts = static_cast<uint32_t>(_mm256_movemask_epi8(low)) |
                          uint64_t{static_cast<uint32_t>(_mm256_movemask_epi8(high))} << 32;
        for (; starts; starts &= starts - 1) {
            const size_t start = at + static_cast<size_t>(__builtin_ctzll(starts));
            if (std::memcmp(data + start + 2, middle, middleSize) == 0) return start;
        }
        return none;
    };
    if (ends - from >= 64) {
        for (size_t at = from; at + 64 <= ends; at += 64)
            if (const size_t hit = inBlock(at); hit != none) return hit;
        // The last starts, in a block that overlaps the one before: a start seen twice was no
        // match the first time either.
        return inBlock(ends - 64);
    }
    for (size_t at = from; at < ends; ++at)
        if (data[at] == needle[0] && data[at + 1] == needle[1] &&
            data[at + lastAt] == needle.back() &&
            std::memcmp(data + at + 2, middle, middleSize) == 0)
            return at;
    return none;
}
#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

bool hasWideSearch() {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}
#endif

// The top `bits` bits of a Fibonacci hash of the two bytes from `at`.
uint32_t pairHash(std::string_view text, size_t at, int bits) {
    const uint32_t pair = uint32_t{static_cast<unsigned char>(text[at])} << 8 |
                          static_cast<unsigned char>(text[at + 1]);
    return (pair * 0x9E3779B1u) >> (32 - bits);
}

} // namespace

size_t findText(std::string_view text, std::string_view needle, size_t from) {
    if (from > text.size() || needle.size() > text.size() - from) return none;
#ifdef LUMIVALE_WIDE_SEARCH
    if (needle.size() >= 2 && hasWideSearch()) return findWide(text, needle, from);
#endif
    return text.find(needle, from);
}

// A byte for each bit first, as setting a byte needs no read of what was there; then each eight
// bytes of 0 or 1 are gathered into eight bits with one multiplication.
PairSketch sketchPairs(std::string_view text) {
    std::array<uint8_t, 1024> seen{};
    for (size_t i = 0; i + 1 < text.size(); ++i)
        seen[pairHash(text, i, 10)] = 1;
    PairSketch sketch{};
    for (size_t at = 0; at < seen.size(); at += 8) {
        uint64_t eight;
        std::memcpy(&eight, &seen[at], 8);
        sketch[at / 64] |= (eight * 0x0102040810204080u >> 56) << (at % 64);
    }
    return sketch;
}

uint64_t lineStartBit(std::string_view needle) {
    return needle.size() < 2 ? 0 : uint64_t{1} << pairHash(needle, 0, 6);
}

uint64_t sketchLineStarts(std::string_view text) {
    uint64_t sketch = lineStartBit(text);
    for (size_t feed = text.find('\n'); feed != none; feed = text.find('\n', feed + 1))
        sketch |= lineStartBit(text.substr(feed + 1));
    return sketch;
}

bool mayHold(const PairSketch& text, const PairSketch& needle) {
    uint64_t missing = 0;
    for (size_t i = 0; i < needle.size(); ++i)
        missing |= needle[i] & ~text[i];
    return missing == 0;
}

} // namespace lumivale
