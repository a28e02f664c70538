#include "core/Fold.h"

#include "core/Characters.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace lumivale {
namespace {

struct Normalizers {
    const icu::Normalizer2* nfkd;
    const icu::Normalizer2* nfd;
    const icu::Normalizer2* nfc;
};

const Normalizers& normalizers() {
    static const Normalizers n = [] {
        UErrorCode e = U_ZERO_ERROR;
        Normalizers r{icu::Normalizer2::getNFKDInstance(e), icu::Normalizer2::getNFDInstance(e),
                      icu::Normalizer2::getNFCInstance(e)};
        if (U_FAILURE(e)) std::abort(); // ICU's own data is missing: nothing can be folded.
        return r;
    }();
    return n;
}

bool isNumeric(UChar32 c) {
    return c >= 0 && u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

// In plain ASCII only the digits are numeric; anything else is decoded and looked up.
bool isAsciiDigit(unsigned char b) {
    return b >= '0' && b <= '9';
}

bool numericEndsAt(std::string_view s, size_t end) {
    if (end == 0) return false;
    const auto b = static_cast<unsigned char>(s[end - 1]);
    if (b < 0x80) return isAsciiDigit(b);
    auto i = static_cast<int32_t>(end);
    UChar32 c;
    U8_PREV(s.data(), 0, i, c);
    return isNumeric(c);
}

bool numericStartsAt(std::string_view s, size_t start) {
    if (start >= s.size()) return false;
    const auto b = static_cast<unsigned char>(s[start]);
    if (b < 0x80) return isAsciiDigit(b);
    auto i = static_cast<int32_t>(start);
    UChar32 c;
    U8_NEXT(s.data(), i, static_cast<int32_t>(s.size()), c);
    return isNumeric(c);
}

// The length in bytes of the separator at `at` if squashing drops it, else 0: a comma, space,
// no-break space U+00A0 or narrow no-break space U+202F with numbers on both sides. None of
// the separators' bytes can be inside another character, so any byte may be tested; the first
// test turns most of them away.
size_t droppedSeparatorAt(std::string_view s, size_t at) {
    const auto b = static_cast<unsigned char>(s[at]);
    if (b != ',' && b != ' ' && b != 0xC2 && b != 0xE2) return 0;
    size_t length = 0;
    if (b == ',' || b == ' ')
        length = 1;
    else if (s.substr(at).starts_with("\u00A0"))
        length = 2;
    else if (s.substr(at).starts_with("\u202F"))
        length = 3;
    return length && numericEndsAt(s, at) && numericStartsAt(s, at + length) ? length : 0;
}

// How many bytes the two texts share at their starts, compared eight at a time.
size_t commonStart(std::string_view a, std::string_view b) {
    const size_t size = std::min(a.size(), b.size());
    size_t at = 0;
    for (; at + 8 <= size; at += 8) {
        uint64_t x, y;
        std::memcpy(&x, a.data() + at, 8);
        std::memcpy(&y, b.data() + at, 8);
        if (x != y) return at + static_cast<size_t>(__builtin_ctzll(x ^ y) / 8);
    }
    while (at < size && a[at] == b[at])
        ++at;
    return at;
}

} // namespace

std::string foldText(std::string_view s) {
    if (isAscii(s)) {
        std::string out(s);
        for (char& c : out)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        return out;
    }
    const Normalizers& n = normalizers();
    const icu::UnicodeString in =
        icu::UnicodeString::fromUTF8(icu::StringPiece(s.data(), static_cast<int32_t>(s.size())));

    // Only the <wide> and <narrow> compatibility forms are decomposed; ligatures, superscripts
    // and the like stay as they are. The mapping is taken raw, one level deep: the full one
    // would go on through other compatibility forms (full-width macron → space + combining
    // macron instead of the plain macron).
    icu::UnicodeString text;
    for (int32_t i = 0; i < in.length();) {
        const UChar32 c = in.char32At(i);
        i += U16_LENGTH(c);
        const int type = u_getIntPropertyValue(c, UCHAR_DECOMPOSITION_TYPE);
        icu::UnicodeString plain;
        if ((type == U_DT_WIDE || type == U_DT_NARROW) && n.nfkd->getRawDecomposition(c, plain))
            text.append(plain);
        else
            text.append(c);
    }
    text.foldCase(U_FOLD_CASE_DEFAULT);

    UErrorCode e = U_ZERO_ERROR;
    const icu::UnicodeString decomposed = n.nfd->normalize(text, e);
    icu::UnicodeString bare;
    for (int32_t i = 0; i < decomposed.length();) {
        const UChar32 c = decomposed.char32At(i);
        i += U16_LENGTH(c);
        if (u_charType(c) != U_NON_SPACING_MARK) bare.append(c);
    }
    const icu::UnicodeString composed = n.nfc->normalize(bare, e);
    std::string out;
    (U_SUCCESS(e) ? composed : bare).toUTF8String(out);
    return out;
}

// A separator can only go where numbers stand on both sides, so text without numbers is
// returned as it is.
std::string squash(std::string_view s) {
    std::string out;
    size_t kept = 0; // s before this is in out, or dropped
    for (size_t at = 0; at < s.size(); ++at) {
        if (const size_t length = droppedSeparatorAt(s, at)) {
            out.append(s.substr(kept, at - kept));
            kept = at + length;
            at = kept - 1;
        }
    }
    if (kept == 0) return std::string(s);
    out.append(s.substr(kept));
    return out;
}

// Where the two part, the byte of `s` must be a separator that squashing drops. Keeping such a
// byte where `copy` has it too is always right: the numbers on both sides of a dropped one
// cannot stand where a separator does.
bool isSquashedInPart(std::string_view copy, std::string_view s) {
    size_t at = 0, copyAt = 0;
    for (;;) {
        const size_t same = commonStart(s.substr(at), copy.substr(copyAt));
        at += same;
        copyAt += same;
        if (at == s.size()) return copyAt == copy.size();
        const size_t dropped = droppedSeparatorAt(s, at);
        if (!dropped) return false;
        at += dropped;
    }
}

bool hasNumeric(std::string_view s) {
    for (int32_t i = 0; i < static_cast<int32_t>(s.size());) {
        UChar32 c;
        U8_NEXT(s.data(), i, static_cast<int32_t>(s.size()), c);
        if (isNumeric(c)) return true;
    }
    return false;
}

} // namespace lumivale
