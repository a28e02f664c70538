// The naming rules every placed file follows: the collision rule, the file-name rule and the
// date folder names.

#include "core/PathName.h"
#include "core/TidyPlan.h"
#include "core/Uuid.h"

#include <cstdlib>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace lumivale::Tidy {
namespace {

constexpr int32_t kMaxNameCharacters = 120;
// The longest file name Linux file systems take, in bytes.
constexpr size_t kMaxNameBytes = 255;
// Room a cleaned name leaves for a collision number and an extension (" 10000.jpeg").
constexpr size_t kRoomForNumberAndExtension = 11;

bool isSpace(UChar32 c) {
    return u_charType(c) == U_SPACE_SEPARATOR;
}

bool isSpaceOrLineBreak(UChar32 c) {
    const int8_t type = u_charType(c);
    return type == U_SPACE_SEPARATOR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR;
}

// Control characters (including line feeds and tabs) are already gone when trimming, so white
// space here is the separator categories.
icu::UnicodeString trimmed(const icu::UnicodeString& s, bool (*isBlank)(UChar32)) {
    int32_t start = 0, end = s.length();
    while (start < end && isBlank(s.char32At(start)))
        start = s.moveIndex32(start, 1);
    while (end > start && isBlank(s.char32At(s.moveIndex32(end, -1))))
        end = s.moveIndex32(end, -1);
    return icu::UnicodeString(s, start, end - start);
}

// Where the text must end to keep at most `count` grapheme clusters and `bytes` bytes of UTF-8,
// cut only between clusters; nothing when it fits whole.
std::optional<int32_t> endOfCharacters(const icu::UnicodeString& s, int32_t count, size_t bytes) {
    const auto utf8Length = [&](int32_t from, int32_t to) {
        size_t n = 0;
        for (int32_t i = from; i < to; i = s.moveIndex32(i, 1))
            n += U8_LENGTH(s.char32At(i));
        return n;
    };
    if (s.countChar32() <= count && utf8Length(0, s.length()) <= bytes) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) std::abort(); // ICU's own data is missing: nothing can be named safely
    characters->setText(s);
    int32_t end = characters->first();
    size_t used = 0;
    for (int32_t i = 0; i < count; ++i) {
        const int32_t next = characters->next();
        if (next == icu::BreakIterator::DONE) return std::nullopt;
        used += utf8Length(end, next);
        if (used > bytes) break;
        end = next;
    }
    if (end >= s.length()) return std::nullopt;
    return end;
}

// The longest start of a UTF-8 text that fits `bytes` without cutting a character (a name that
// is not UTF-8 is cut at the byte).
std::string fitBytes(const std::string& text, size_t bytes) {
    if (text.size() <= bytes) return text;
    size_t end = bytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

std::string utf8(const icu::UnicodeString& s) {
    std::string out;
    s.toUTF8String(out);
    return out;
}

// A formatter with a fixed pattern, the POSIX locale and the system's time zone. ICU's const
// formatting calls may be shared between threads.
std::unique_ptr<const icu::SimpleDateFormat> makeFormatter(const char* pattern) {
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<const icu::SimpleDateFormat>(
        icu::UnicodeString(pattern), icu::Locale("en_US_POSIX"), status);
    if (U_FAILURE(status))
        std::abort(); // a constant pattern that does not build is a programming error
    return formatter;
}

std::string format(const icu::SimpleDateFormat& formatter, Date date) {
    icu::UnicodeString out;
    formatter.format(static_cast<UDate>(secondsSince1970(date) * 1000.0), out);
    return utf8(out);
}

} // namespace

std::string unique(const std::string& candidate, const std::string& from,
                   const std::unordered_set<std::string>& claimed, const ExistsTest& exists) {
    const auto isFree = [&](const std::string& path) {
        return path == from || (!claimed.count(path) && !exists(path));
    };
    if (isFree(candidate)) return candidate;
    const std::string_view name = lastComponent(candidate);
    const std::string folder(candidate, 0, candidate.size() - name.size());
    const std::string base(baseOf(name));
    const std::string_view ext = extensionOf(name);
    const std::string dotExt = ext.empty() ? std::string() : "." + std::string(ext);
    for (int n = 2; n <= 10000; ++n) {
        const std::string suffix = " " + std::to_string(n) + dotExt;
        // A name already at the length limit gives up the end of its base for the number.
        const size_t room = kMaxNameBytes > suffix.size() ? kMaxNameBytes - suffix.size() : 0;
        std::string numbered = folder + fitBytes(base, room) + suffix;
        if (isFree(numbered)) return numbered;
    }
    return folder + newUuid() + dotExt;
}

std::string clean(std::string_view text) {
    const icu::UnicodeString input = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    icu::UnicodeString s;
    for (int32_t i = 0; i < input.length(); i = input.moveIndex32(i, 1)) {
        UChar32 c = input.char32At(i);
        const int8_t type = u_charType(c);
        if (type == U_CONTROL_CHAR || type == U_FORMAT_CHAR) continue;
        if (c == '/' || c == ':') c = '-';
        s.append(c);
    }
    // White space may hide dots (" .hidden") and dots white space ("..  x"): drop both until
    // neither leads.
    s = trimmed(s, isSpaceOrLineBreak);
    while (s.startsWith(u"."))
        s = trimmed(icu::UnicodeString(s, 1), isSpaceOrLineBreak);
    // 120 characters may be far more bytes than a file name can hold.
    if (const auto end =
            endOfCharacters(s, kMaxNameCharacters, kMaxNameBytes - kRoomForNumberAndExtension))
        s = trimmed(icu::UnicodeString(s, 0, *end), isSpace);
    return s.isEmpty() ? std::string("Screenshot") : utf8(s);
}

std::string month(Date date) {
    static const auto formatter = makeFormatter("yyyy-MM");
    return format(*formatter, date);
}

std::string day(Date date) {
    static const auto formatter = makeFormatter("yyyy-MM-dd");
    return format(*formatter, date);
}

} // namespace lumivale::Tidy
