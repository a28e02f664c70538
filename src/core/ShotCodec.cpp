#include "core/ShotCodec.h"

#include <array>

namespace lumivale {
namespace {

using plist::Document;
using plist::Ref;
using plist::Writer;

// The keys of a shot dictionary, in the order they are written.
enum Field : uint8_t {
    path,
    size,
    created,
    modified,
    pixelWidth,
    pixelHeight,
    lines,
    barcodes,
    guess,
    guessScore,
    manual,
    flags,
    readAt,
    failed,
    reader,
    folded,
    fieldCount
};
constexpr std::array<std::string_view, fieldCount> fieldNames = {
    "path",  "size",       "created", "modified", "pixelWidth", "pixelHeight", "lines",  "barcodes",
    "guess", "guessScore", "manual",  "flags",    "readAt",     "failed",      "reader", "folded"};
constexpr uint32_t bit(Field f) {
    return uint32_t{1} << f;
}
constexpr uint32_t requiredFields = ((uint32_t{1} << fieldCount) - 1) & ~bit(manual) & ~bit(readAt);

enum LineField : uint8_t { text, x, y, w, h, lineFieldCount };
constexpr std::array<std::string_view, lineFieldCount> lineFieldNames = {"text", "x", "y", "w",
                                                                         "h"};

// The index of `name` in `names`, or names.size().
template <size_t N>
size_t indexOf(const std::array<std::string_view, N>& names, std::string_view name) {
    for (size_t i = 0; i < N; ++i)
        if (names[i] == name) return i;
    return N;
}

using LineKeys = std::array<Ref, lineFieldCount>;

// The refs of the line keys, looked up once a shot rather than once a line.
LineKeys lineKeys(Writer& writer) {
    LineKeys keys;
    for (size_t i = 0; i < lineFieldCount; ++i)
        keys[i] = writer.key(lineFieldNames[i]);
    return keys;
}

Ref writeLine(Writer& writer, const TextLine& line, const LineKeys& keys) {
    const std::array<Ref, lineFieldCount> values = {writer.string(line.text), writer.real(line.x),
                                                    writer.real(line.y), writer.real(line.w),
                                                    writer.real(line.h)};
    std::array<std::pair<Ref, Ref>, lineFieldCount> entries;
    for (size_t i = 0; i < lineFieldCount; ++i)
        entries[i] = {keys[i], values[i]};
    return writer.dict(entries);
}

std::optional<TextLine> readLine(const Document& doc, Ref ref, std::string& scratch) {
    const auto dict = doc.dict(ref);
    if (!dict) return std::nullopt;
    TextLine line;
    uint32_t seen = 0;
    for (size_t i = 0; i < dict->size(); ++i) {
        const auto name = doc.stringView(dict->keyAt(i), scratch);
        if (!name) return std::nullopt;
        const size_t field = indexOf(lineFieldNames, *name);
        if (field == lineFieldCount) continue; // a key this version does not know
        if (seen & (uint32_t{1} << field)) return std::nullopt;
        seen |= uint32_t{1} << field;
        const Ref value = dict->valueAt(i);
        if (field == text) {
            auto s = doc.string(value);
            if (!s) return std::nullopt;
            line.text = std::move(*s);
            continue;
        }
        const auto number = doc.real(value);
        if (!number) return std::nullopt;
        float& coordinate = field == x   ? line.x
                            : field == y ? line.y
                            : field == w ? line.w
                                         : line.h;
        coordinate = static_cast<float>(*number);
    }
    if (seen != (uint32_t{1} << lineFieldCount) - 1) return std::nullopt;
    return line;
}

std::optional<Shelf> readShelf(const Document& doc, Ref ref, std::string& scratch) {
    const auto id = doc.stringView(ref, scratch);
    return id ? shelfFromId(*id) : std::nullopt;
}

// Reads one field's value into the shot; false when it is mistyped or out of range.
bool readField(const Document& doc, Field field, Ref value, Shot& shot, std::string& scratch) {
    const auto into = [](auto& target, auto&& source) {
        if (!source) return false;
        target = std::move(*source);
        return true;
    };
    switch (field) {
    case path:
        return into(shot.path, doc.string(value));
    case size:
        return into(shot.size, doc.integer(value));
    case created:
        return into(shot.created, doc.date(value));
    case modified:
        return into(shot.modified, doc.date(value));
    case pixelWidth:
        return into(shot.pixelWidth, doc.integer(value));
    case pixelHeight:
        return into(shot.pixelHeight, doc.integer(value));
    case lines: {
        const auto items = doc.array(value);
        if (!items) return false;
        shot.lines.reserve(items->size());
        for (Ref item : *items)
            if (!into(shot.lines.emplace_back(), readLine(doc, item, scratch))) return false;
        return true;
    }
    case barcodes: {
        const auto items = doc.array(value);
        if (!items) return false;
        shot.barcodes.reserve(items->size());
        for (Ref item : *items)
            if (!into(shot.barcodes.emplace_back(), doc.string(item))) return false;
        return true;
    }
    case guess:
        return into(shot.guess, readShelf(doc, value, scratch));
    case guessScore:
        return into(shot.guessScore, doc.real(value));
    case manual:
        return into(shot.manual, readShelf(doc, value, scratch));
    case flags: {
        const auto items = doc.array(value);
        if (!items) return false;
        for (Ref item : *items) {
            const auto id = doc.stringView(item, scratch);
            const auto kind = id ? sensitiveKindFromId(*id) : std::nullopt;
            if (!kind) return false;
            shot.flags.insert(*kind);
        }
        return true;
    }
    case readAt:
        return into(shot.readAt, doc.date(value));
    case failed:
        return into(shot.failed, doc.boolean(value));
    case reader:
        return into(shot.reader, doc.integer(value));
    case folded:
        return into(shot.folded, doc.string(value));
    case fieldCount:
        break;
    }
    return false;
}

} // namespace

Ref writeShot(Writer& writer, const Shot& shot) {
    const LineKeys keys = lineKeys(writer);
    std::array<std::pair<Field, Ref>, fieldCount> values;
    size_t count = 0;
    const auto put = [&](Field field, Ref ref) { values[count++] = {field, ref}; };

    put(path, writer.string(shot.path));
    put(size, writer.integer(shot.size));
    put(created, writer.date(shot.created));
    put(modified, writer.date(shot.modified));
    put(pixelWidth, writer.integer(shot.pixelWidth));
    put(pixelHeight, writer.integer(shot.pixelHeight));
    std::vector<Ref> items;
    items.reserve(shot.lines.size());
    for (const TextLine& line : shot.lines)
        items.push_back(writeLine(writer, line, keys));
    put(lines, writer.array(items));
    items.clear();
    for (const std::string& code : shot.barcodes)
        items.push_back(writer.string(code));
    put(barcodes, writer.array(items));
    // Shelf and flag names repeat across shots, so they are shared like keys.
    put(guess, writer.key(shelfId(shot.guess)));
    put(guessScore, writer.real(shot.guessScore));
    if (shot.manual) put(manual, writer.key(shelfId(*shot.manual)));
    items.clear();
    for (SensitiveKind kind : shot.flags)
        items.push_back(writer.key(sensitiveKindId(kind)));
    put(flags, writer.array(items));
    if (shot.readAt) put(readAt, writer.date(*shot.readAt));
    put(failed, writer.boolean(shot.failed));
    put(reader, writer.integer(shot.reader));
    put(folded, writer.string(shot.folded));

    std::array<std::pair<Ref, Ref>, fieldCount> entries;
    for (size_t i = 0; i < count; ++i)
        entries[i] = {writer.key(fieldNames[values[i].first]), values[i].second};
    return writer.dict(std::span(entries.data(), count));
}

std::optional<Shot> readShot(const Document& doc, Ref ref) {
    const auto dict = doc.dict(ref);
    if (!dict) return std::nullopt;
    Shot shot;
    std::string scratch;
    uint32_t seen = 0;
    for (size_t i = 0; i < dict->size(); ++i) {
        const auto name = doc.stringView(dict->keyAt(i), scratch);
        if (!name) return std::nullopt;
        const auto field = static_cast<Field>(indexOf(fieldNames, *name));
        if (field == fieldCount) continue; // a key this version does not know
        if (seen & bit(field)) return std::nullopt;
        seen |= bit(field);
        if (!readField(doc, field, dict->valueAt(i), shot, scratch)) return std::nullopt;
    }
    if ((seen & requiredFields) != requiredFields) return std::nullopt;
    return shot;
}

} // namespace lumivale
