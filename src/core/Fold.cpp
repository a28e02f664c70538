#include "core/Fold.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <vector>

namespace lumivale {
namespace {

bool isAscii(std::string_view s) {
    for (unsigned char c : s)
        if (c >= 0x80)
            return false;
    return true;
}

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
        if (U_FAILURE(e))
            std::abort(); // ICU's own data is missing: nothing can be folded.
        return r;
    }();
    return n;
}

bool isNumeric(UChar32 c) { return u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE; }

bool isSeparator(UChar32 c) { return c == ',' || c == ' ' || c == 0x00A0 || c == 0x202F; }

} // namespace

std::string foldText(std::string_view s) {
    if (isAscii(s)) {
        std::string out(s);
        for (char& c : out)
            if (c >= 'A' && c <= 'Z')
                c = static_cast<char>(c - 'A' + 'a');
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
        if (u_charType(c) != U_NON_SPACING_MARK)
            bare.append(c);
    }
    const icu::UnicodeString composed = n.nfc->normalize(bare, e);
    std::string out;
    (U_SUCCESS(e) ? composed : bare).toUTF8String(out);
    return out;
}

std::string squash(std::string_view s) {
    // Decode once, remembering where each character starts.
    struct Char {
        UChar32 c;
        int32_t start, length;
    };
    std::vector<Char> chars;
    chars.reserve(s.size());
    bool anyNumeric = false;
    for (int32_t i = 0; i < static_cast<int32_t>(s.size());) {
        const int32_t start = i;
        UChar32 c;
        U8_NEXT(s.data(), i, static_cast<int32_t>(s.size()), c);
        chars.push_back({c, start, i - start});
        anyNumeric = anyNumeric || (c >= 0 && isNumeric(c));
    }
    if (!anyNumeric)
        return std::string(s);

    std::string out;
    out.reserve(s.size());
    for (size_t k = 0; k < chars.size(); ++k) {
        const bool dropped = isSeparator(chars[k].c) && k > 0 && k + 1 < chars.size() &&
                             chars[k - 1].c >= 0 && isNumeric(chars[k - 1].c) &&
                             chars[k + 1].c >= 0 && isNumeric(chars[k + 1].c);
        if (!dropped)
            out.append(s.substr(static_cast<size_t>(chars[k].start), static_cast<size_t>(chars[k].length)));
    }
    return out;
}

} // namespace lumivale
