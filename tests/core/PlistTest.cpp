#include "core/Plist.h"

#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <map>

using namespace lumivale;
using namespace lumivale::plist;
using namespace std::chrono;

namespace {

std::span<const uint8_t> spanOf(const std::string& s) {
    return {reinterpret_cast<const uint8_t*>(s.data()), s.size()};
}

int64_t microsOf(Date d) {
    return duration_cast<microseconds>(d.time_since_epoch()).count();
}

// Whether each accessor reads `ref`, as a string of the accessors' initials: "i", "r", "b"...
std::string readableAs(const Document& doc, Ref ref) {
    std::string scratch;
    return std::string(doc.integer(ref) ? "i" : "") + (doc.real(ref) ? "r" : "") +
           (doc.boolean(ref) ? "b" : "") + (doc.date(ref) ? "t" : "") + (doc.data(ref) ? "d" : "") +
           (doc.string(ref) ? "s" : "") + (doc.stringView(ref, scratch) ? "v" : "") +
           (doc.array(ref) ? "a" : "") + (doc.dict(ref) ? "k" : "");
}

using test::expectSameLeaf;
using test::leafOf;

TEST(PlistTest, ValuesGoBothWaysWithPlistlib) {
    Writer writer;
    std::vector<Ref> refs;
    std::vector<test::Leaf> want;
    const auto add = [&](Ref r, test::Leaf leaf) {
        refs.push_back(r);
        want.push_back(std::move(leaf));
    };
    for (int64_t v : std::initializer_list<int64_t>{0, 255, 256, 65536, 0xFFFFFFFF, 1LL << 32,
                                                    INT64_MAX, -1, INT64_MIN})
        add(writer.integer(v), {"int", std::to_string(v)});
    // Lengths of 14 (the longest in the marker), 15, 300 and 70000 (four bytes); UTF-16 with
    // surrogate pairs.
    for (const std::string& v :
         {std::string(), std::string("fourteen chars"), std::string("fifteen chars!!"),
          std::string(300, 'x'), std::string("snow ☃ नमस्ते and 😀 𝄞"), std::string("nul\0inside", 10),
          std::string(70000, 'y') + "é"})
        add(writer.string(v), {"str", test::hexOf(v)});
    // Bytes that are not UTF-8: cut, a surrogate, overlong, beyond U+10FFFF.
    for (const auto& [in, out] : {std::pair{"a\xff-b cut \xc3", "a\uFFFD-b cut \uFFFD"},
                                  {"\xed\xa0\x80 \xc0\xaf", "\uFFFD\uFFFD\uFFFD \uFFFD\uFFFD"},
                                  {"\xf4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}})
        add(writer.string(in), {"str", test::hexOf(out)});
    // No 0.0 beside -0.0: plistlib would write the two as one.
    for (double v : {-0.0, 1.5, -1e308, 5e-324, 1.0 / 3, std::numeric_limits<double>::infinity(),
                     std::nan("")}) {
        char hex[32];
        std::snprintf(hex, sizeof hex, "%a", v);
        add(writer.real(v), {"float", hex});
    }
    // plistlib reads the ends of our range to within a microsecond.
    for (Date v : {Date(seconds(978307200)), Date(seconds(0)),
                   Date(sys_days(2024y / March / 5)) + 37872345678us,
                   Date(sys_days(1931y / December / 24)) + 1234567us, Date::min(), Date::max()})
        add(writer.date(v), {"date", std::to_string(microsOf(v))});
    const Date july = Date(sys_days(2025y / July / 1));
    add(writer.date(july + 123456789ns), {"date", std::to_string(microsOf(july + 123457us))});
    add(writer.boolean(false), {"bool", "false"});
    add(writer.boolean(true), {"bool", "true"});
    std::string blob(300, '\0');
    for (size_t i = 0; i < blob.size(); ++i)
        blob[i] = static_cast<char>(i * 7);
    add(writer.data(spanOf(blob)), {"data", test::hexOf(blob)});

    const test::TempDir dir;
    const std::string ours =
        test::writeFile(dir.file("ours.plist"), writer.finish(writer.array(refs)));
    const auto leaves = test::readWithPlistlib(ours);
    ASSERT_TRUE(leaves);
    // plistlib writes the values again its own way, then values beyond what ours can hold and
    // enough objects to need refs and offsets of two bytes.
    ASSERT_TRUE(test::rewriteWithPlistlib(ours, dir.file("theirs.plist"),
                                          "value += [2**63, datetime.datetime(1, 1, 1), "
                                          "datetime.datetime(9999, 12, 31)] + "
                                          "[str(i) for i in range(300)]"));
    // 2^63 is no 64-bit integer; dates beyond our range are clamped to its ends.
    want.push_back({"unreadable", ""});
    want.push_back({"date", std::to_string(microsOf(Date::min()))});
    want.push_back({"date", std::to_string(microsOf(Date::max()))});
    for (int i = 0; i < 300; ++i)
        want.push_back({"str", test::hexOf(std::to_string(i))});
    const std::string theirBytes = test::readFile(dir.file("theirs.plist"));
    const auto theirs = Document::open(spanOf(theirBytes));
    ASSERT_TRUE(theirs);
    const auto back = theirs->array(theirs->root());
    ASSERT_TRUE(back && back->size() == want.size());
    const std::map<std::string, std::string> readers = {
        {"int", "i"},  {"str", "sv"}, {"float", "r"},    {"date", "t"},
        {"bool", "b"}, {"data", "d"}, {"unreadable", ""}};
    for (size_t i = 0; i < want.size(); ++i) {
        SCOPED_TRACE(i);
        if (i < refs.size()) expectSameLeaf(leaves->at("|" + std::to_string(i)), want[i], 1us);
        expectSameLeaf(leafOf(*theirs, (*back)[i]), want[i]);
        EXPECT_EQ(readableAs(*theirs, (*back)[i]), readers.at(want[i].type))
            << "no other accessor reads it";
    }
}

TEST(PlistTest, KeysNumbersAndBooleansAreWrittenOnce) {
    Writer writer;
    EXPECT_EQ(writer.key("k"), writer.key("k"));
    EXPECT_NE(writer.key("k"), writer.key("K"));
    EXPECT_EQ(writer.boolean(false), writer.boolean(false));
    EXPECT_EQ(writer.integer(7), writer.integer(7));
    EXPECT_NE(writer.real(0.0), writer.real(-0.0));
}

// Writes `value` big-endian into the `n` bytes of `file` at `at` (from the end when negative).
void patch(std::string& file, long at, uint64_t value, size_t n) {
    const size_t start = at < 0 ? file.size() + at : static_cast<size_t>(at);
    for (size_t i = 0; i < n; ++i)
        file[start + i] = static_cast<char>(value >> (8 * (n - 1 - i)));
}

std::string raw(std::initializer_list<int> bytes) {
    std::string s;
    for (int b : bytes)
        s += static_cast<char>(b);
    return s;
}

// A small property list put together byte by byte (refs and offsets of one byte), with object 0
// at its top, so tests can make files the writer never would.
std::string assemble(const std::vector<std::string>& objects) {
    std::string file = "bplist00", table;
    for (const std::string& object : objects) {
        table += static_cast<char>(file.size());
        file += object;
    }
    const uint64_t tableStart = file.size();
    file += table + std::string(6, '\0') + raw({1, 1}) + std::string(24, '\0');
    patch(file, -24, objects.size(), 8);
    patch(file, -8, tableStart, 8);
    return file;
}

TEST(PlistTest, OpenRejectsUnsoundHeadersAndTrailers) {
    // Three objects: an array of two refs, an integer and a string.
    const std::string sound = assemble({raw({0xA2, 1, 2}), raw({0x10, 5}), raw({0x51, 'x'})});
    ASSERT_TRUE(Document::open(spanOf(sound)));

    // Trailer fields, counted from the end: offset size -26, ref size -25, object count -24, root
    // -16, offset table start -8. (Files cut short at every length are the library file's cases.)
    const struct {
        const char* name;
        std::function<void(std::string&)> damage;
    } cases[] = {
        {"another version", [](std::string& f) { f[7] = '1'; }},
        {"offset size 0", [](std::string& f) { patch(f, -26, 0, 1); }},
        {"ref size 9", [](std::string& f) { patch(f, -25, 9, 1); }},
        {"no objects", [](std::string& f) { patch(f, -24, 0, 8); }},
        {"more objects than offsets", [](std::string& f) { patch(f, -24, 4, 8); }},
        {"largest object count", [](std::string& f) { patch(f, -24, ~uint64_t{0}, 8); }},
        {"root beyond the objects", [](std::string& f) { patch(f, -16, 3, 8); }},
        {"huge root", [](std::string& f) { patch(f, -16, ~uint64_t{0}, 8); }},
        {"table in the header", [](std::string& f) { patch(f, -8, 4, 8); }},
        {"table in the trailer", [](std::string& f) { patch(f, -8, f.size() - 20, 8); }},
        {"largest table start", [](std::string& f) { patch(f, -8, ~uint64_t{0}, 8); }},
        {"table runs into the trailer", [](std::string& f) { patch(f, -8, f.size() - 34, 8); }},
        {"root offset in the header", [](std::string& f) { f[f.size() - 32 - 3] = 2; }},
        {"root offset in the table",
         [](std::string& f) { f[f.size() - 32 - 3] = static_cast<char>(f.size() - 35); }},
    };
    for (const auto& c : cases) {
        std::string file = sound;
        c.damage(file);
        EXPECT_FALSE(Document::open(spanOf(file))) << c.name;
    }
}

// An unsound object fails only its own reading: the file opens and the object before it reads.
TEST(PlistTest, AccessorsRejectUnsoundObjects) {
    const std::string e7 = raw({0, 0, 0, 0, 0, 0, 0}); // seven zero bytes
    // Object 0 is a sound string; object 1 is the one under test, the last in the object area.
    const std::pair<const char*, std::string> cases[] = {
        {"string longer than the area", raw({0x55, 'a', 'b'})},
        {"long length beyond the area", raw({0x5F, 0x11, 0x01, 0x00, 'a'})},
        {"long length of 2^63", raw({0x5F, 0x13, 0x80}) + e7 + "a"},
        {"long length not an integer", raw({0x5F, 0x21, 0x01, 'a'})},
        {"long length cut off", raw({0x5F, 0x12, 0x00})},
        {"marker at the very end", raw({0x5F})},
        {"ASCII above 127", raw({0x52, 'a', 0xE9})},
        {"lone high surrogate", raw({0x61, 0xD8, 0x3D})},
        {"high surrogate then a letter", raw({0x62, 0xD8, 0x3D, 0x00, 0x41})},
        {"UTF-16 cut in half a unit", raw({0x62, 0x00, 0x41, 0x00})},
        {"UTF-16 of 2^62 units", raw({0x6F, 0x13, 0x40}) + e7 + "ab"},
        {"data longer than the area", raw({0x45, 1, 2})},
        {"integer of 32 bytes", raw({0x15}) + std::string(32, '\0')},
        {"integer cut off", raw({0x13, 0, 0, 0})},
        {"sixteen-byte integer beyond 64 bits", raw({0x14, 0, 0, 0, 0, 0, 0, 0, 1}) + e7 + "\x01"},
        {"real of two bytes", raw({0x21, 0, 0})},
        {"real cut off", raw({0x23, 0, 0, 0})},
        {"date with a four-byte marker", raw({0x32, 0, 0, 0, 0})},
        {"date that is not a number", raw({0x33, 0x7F, 0xF8, 0, 0, 0, 0, 0, 0})},
        {"null is not a boolean", raw({0x00})},
        {"array ref beyond the objects", raw({0xA2, 0, 2})},
        {"array of 2^63 refs", raw({0xAF, 0x13, 0x80}) + e7 + raw({0})},
        {"dict missing its values", raw({0xD1, 0})},
        {"dict value beyond the objects", raw({0xD1, 0, 9})},
        {"dict of 2^62 entries", raw({0xDF, 0x13, 0x40}) + e7 + raw({0, 0})},
    };
    for (const auto& [name, object] : cases) {
        SCOPED_TRACE(name);
        const std::string file = assemble({raw({0x51, 'k'}), object});
        const auto doc = Document::open(spanOf(file));
        ASSERT_TRUE(doc);
        EXPECT_EQ(doc->string(0), "k");
        EXPECT_EQ(readableAs(*doc, 1), "");
        EXPECT_EQ(readableAs(*doc, 2), "") << "no such object";
    }
}

} // namespace
