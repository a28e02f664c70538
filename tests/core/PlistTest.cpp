#include "core/Plist.h"

#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <bit>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>

using namespace lumivale;
using namespace lumivale::plist;
using namespace std::chrono;

namespace {

std::span<const uint8_t> spanOf(const std::string& s) {
    return {reinterpret_cast<const uint8_t*>(s.data()), s.size()};
}

Date at(sys_days day, nanoseconds time) {
    return Date(day) + time;
}

// Writes `values` into an array with `put` and reads each back with `get`.
template <class T, class Put, class Get>
auto roundTrip(const std::vector<T>& values, Put put, Get get) {
    Writer writer;
    std::vector<Ref> refs;
    for (const T& v : values)
        refs.push_back(put(writer, v));
    const std::string file = writer.finish(writer.array(refs));
    const auto doc = Document::open(spanOf(file));
    std::vector<std::invoke_result_t<Get, const Document&, Ref>> back;
    const auto items = doc ? doc->array(doc->root()) : std::nullopt;
    if (items)
        for (Ref r : *items)
            back.push_back(std::invoke(get, *doc, r));
    return back;
}

template <class T> std::vector<std::optional<T>> optionals(const std::vector<T>& values) {
    return {values.begin(), values.end()};
}

const auto putInteger = [](Writer& w, int64_t v) { return w.integer(v); };
const auto putString = [](Writer& w, const std::string& v) { return w.string(v); };
const auto putReal = [](Writer& w, double v) { return w.real(v); };
const auto putDate = [](Writer& w, Date v) { return w.date(v); };

const std::vector<int64_t> integers = {0,          1,         255,       256, 65535, 65536,
                                       0xFFFFFFFF, 1LL << 32, INT64_MAX, -1,  -256,  INT64_MIN};

const std::vector<std::string> strings = {
    "",
    "a",
    "fourteen chars",      // the longest length that fits in the marker
    "fifteen chars!!",     // the first that needs a separate length
    std::string(300, 'x'), // a two-byte length
    "café crème",          // Latin with accents
    "नमस्ते दुनिया",          // Devanagari
    "snow ☃ and 😀 and 𝄞",  // outside the basic plane: surrogate pairs
    std::string("nul\0inside", 10),
    std::string(70000, 'y') + "é", // a four-byte length, in UTF-16
};

const std::vector<double> reals = {0.0,    -0.0, 1.5,     -1e308,
                                   5e-324, 0.1,  1.0 / 3, std::numeric_limits<double>::infinity()};

const std::vector<Date> dates = {
    Date(seconds(978307200)),                       // the format's own epoch
    Date(seconds(0)),                               // 1970
    at(sys_days(2024y / March / 5), 37872345678us), // microseconds survive
    at(sys_days(1931y / December / 24), 1234567us), // before both epochs
};

TEST(PlistTest, ScalarsRoundTrip) {
    EXPECT_EQ(roundTrip(integers, putInteger, &Document::integer), optionals(integers));
    EXPECT_EQ(roundTrip(strings, putString, &Document::string), optionals(strings));
    EXPECT_EQ(roundTrip(dates, putDate, &Document::date), optionals(dates));
    EXPECT_EQ(roundTrip(
                  std::vector<bool>{true, false}, [](Writer& w, bool v) { return w.boolean(v); },
                  &Document::boolean),
              (std::vector<std::optional<bool>>{true, false}));
    std::vector<uint8_t> long_(300);
    for (size_t i = 0; i < long_.size(); ++i)
        long_[i] = static_cast<uint8_t>(i * 7);
    const std::vector<std::vector<uint8_t>> blobs = {{}, {0, 255, 10}, long_};
    EXPECT_EQ(roundTrip(
                  blobs, [](Writer& w, const std::vector<uint8_t>& v) { return w.data(v); },
                  &Document::data),
              optionals(blobs));

    // Reals by their bits, so that -0 and not-a-number count too.
    std::vector<double> withNan = reals;
    withNan.push_back(std::nan(""));
    const auto back = roundTrip(withNan, putReal, &Document::real);
    ASSERT_EQ(back.size(), withNan.size());
    for (size_t i = 0; i < withNan.size(); ++i)
        EXPECT_EQ(std::bit_cast<uint64_t>(back[i].value_or(42.0)),
                  std::bit_cast<uint64_t>(withNan[i]))
            << i;
}

TEST(PlistTest, DatesKeepMicrosecondsAndTheEndsOfTheirRange) {
    EXPECT_EQ(roundTrip(std::vector<Date>{at(sys_days(2025y / July / 1), 123456789ns)}, putDate,
                        &Document::date),
              optionals(std::vector<Date>{at(sys_days(2025y / July / 1), 123457us)}));
    const std::vector<Date> ends = {Date::min(), Date::max()};
    const auto back = roundTrip(ends, putDate, &Document::date);
    ASSERT_EQ(back.size(), 2u);
    for (size_t i = 0; i < ends.size(); ++i) {
        ASSERT_TRUE(back[i]);
        EXPECT_LE(abs(*back[i] - ends[i]), 1us);
    }
}

TEST(PlistTest, InvalidUtf8IsWrittenAsReplacementCharacters) {
    const struct {
        std::string in, out;
    } cases[] = {
        {"a\xff"
         "b",
         "a\uFFFDb"},
        {"cut \xc3", "cut \uFFFD"},
        {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"},           // an encoded surrogate
        {"\xc0\xaf", "\uFFFD\uFFFD"},                     // an overlong slash
        {"\xf4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond U+10FFFF
        {"ok é \x80", "ok é \uFFFD"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.out);
        EXPECT_EQ(roundTrip(std::vector<std::string>{c.in}, putString, &Document::string),
                  optionals(std::vector<std::string>{c.out}));
    }
}

TEST(PlistTest, KeysAreWrittenOnce) {
    const auto build = [](bool asKeys) {
        Writer writer;
        std::vector<Ref> dicts;
        for (int i = 0; i < 50; ++i) {
            const Ref value = writer.integer(i);
            const Ref name = asKeys ? writer.key("a rather long key name")
                                    : writer.string("a rather long key name");
            const std::pair<Ref, Ref> entry[] = {{name, value}};
            dicts.push_back(writer.dict(entry));
        }
        return writer.finish(writer.array(dicts));
    };
    const std::string shared = build(true), repeated = build(false);
    EXPECT_LT(shared.size() + 49 * 22, repeated.size());

    Writer writer;
    EXPECT_EQ(writer.key("k"), writer.key("k"));
    EXPECT_NE(writer.key("k"), writer.key("K"));
    EXPECT_NE(writer.string("s"), writer.string("s"));

    const auto doc = Document::open(spanOf(shared));
    ASSERT_TRUE(doc);
    const auto items = doc->array(doc->root());
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 50u);
    for (size_t i = 0; i < items->size(); ++i) {
        const auto dict = doc->dict((*items)[i]);
        ASSERT_TRUE(dict);
        EXPECT_EQ(doc->integer(dict->find("a rather long key name").value_or(0)),
                  static_cast<int64_t>(i));
    }
}

TEST(PlistTest, NumbersAndBooleansAreShared) {
    Writer writer;
    EXPECT_EQ(writer.integer(70000), writer.integer(70000));
    EXPECT_EQ(writer.real(0.25), writer.real(0.25));
    EXPECT_NE(writer.real(0.0), writer.real(-0.0));
    EXPECT_NE(writer.real(1), writer.integer(1));
    EXPECT_EQ(writer.boolean(false), writer.boolean(false));
    EXPECT_NE(writer.boolean(false), writer.boolean(true));
    // Enough distinct numbers to make the table of known numbers grow several times.
    std::vector<Ref> refs;
    for (int i = 0; i < 5000; ++i)
        refs.push_back(i % 2 ? writer.real(i / 7.0) : writer.integer(i * 1000003LL));
    for (int i = 0; i < 5000; ++i)
        ASSERT_EQ(refs[i], i % 2 ? writer.real(i / 7.0) : writer.integer(i * 1000003LL)) << i;
    const std::string file = writer.finish(writer.array(refs));
    const auto doc = Document::open(spanOf(file));
    ASSERT_TRUE(doc);
    for (int i = 0; i < 5000; ++i)
        if (i % 2)
            ASSERT_EQ(doc->real(refs[i]), i / 7.0) << i;
        else
            ASSERT_EQ(doc->integer(refs[i]), i * 1000003LL) << i;
}

TEST(PlistTest, AWriterWithASinkGivesTheSameFileInPieces) {
    const auto build = [](Writer& writer) {
        std::vector<Ref> refs;
        for (int i = 0; i < 40000; ++i)
            refs.push_back(
                writer.string("line " + std::to_string(i) + " with a café and some more words"));
        return writer.finish(writer.array(refs));
    };
    Writer whole;
    const std::string expected = build(whole);
    ASSERT_GT(expected.size(), 3u << 20);

    std::vector<size_t> pieces;
    std::string joined;
    Writer piecewise([&](std::string_view piece) {
        pieces.push_back(piece.size());
        joined += piece;
    });
    joined += build(piecewise);
    EXPECT_EQ(joined, expected);
    ASSERT_GE(pieces.size(), 3u);
    for (size_t size : pieces)
        EXPECT_LT(size, 2u << 20) << "pieces stay small";
}

TEST(PlistTest, ContainersKeepOrderAndNesting) {
    Writer writer;
    const Ref one = writer.integer(1), two = writer.string("two");
    const Ref inner = writer.array(std::vector<Ref>{one, two});
    const Ref accented = writer.key("clé");
    const std::pair<Ref, Ref> entries[] = {
        {writer.key("b"), one}, {writer.key("a"), inner}, {accented, two}};
    const Ref root = writer.dict(entries);
    const std::string file = writer.finish(root);

    const auto doc = Document::open(spanOf(file));
    ASSERT_TRUE(doc);
    const auto dict = doc->dict(doc->root());
    ASSERT_TRUE(dict);
    ASSERT_EQ(dict->size(), 3u);
    EXPECT_TRUE(doc->keyEquals(dict->keyAt(0), "b"));
    EXPECT_TRUE(doc->keyEquals(dict->keyAt(1), "a"));
    EXPECT_TRUE(doc->keyEquals(dict->keyAt(2), "clé"));
    EXPECT_FALSE(doc->keyEquals(dict->keyAt(2), "cle"));
    EXPECT_EQ(doc->string(*dict->find("clé")), "two");
    EXPECT_FALSE(dict->find("c"));
    const auto array = doc->array(*dict->find("a"));
    ASSERT_TRUE(array);
    ASSERT_EQ(array->size(), 2u);
    EXPECT_EQ(doc->integer((*array)[0]), 1);
    EXPECT_EQ(doc->string((*array)[1]), "two");
    std::string scratch;
    EXPECT_EQ(doc->stringView(dict->keyAt(2), scratch), "clé");
}

TEST(PlistTest, AccessorsCheckTheType) {
    Writer writer;
    const std::vector<Ref> refs = {writer.integer(7),
                                   writer.real(7),
                                   writer.boolean(true),
                                   writer.date(Date{}),
                                   writer.data(std::vector<uint8_t>{1}),
                                   writer.string("s"),
                                   writer.string("é"),
                                   writer.array(std::vector<Ref>{}),
                                   writer.dict(std::vector<std::pair<Ref, Ref>>{})};
    const std::string file = writer.finish(writer.array(refs));
    const auto doc = Document::open(spanOf(file));
    ASSERT_TRUE(doc);
    const std::vector<std::pair<const char*, std::function<bool(Ref)>>> accessors = {
        {"integer", [&](Ref r) { return doc->integer(r).has_value(); }},
        {"real", [&](Ref r) { return doc->real(r).has_value(); }},
        {"boolean", [&](Ref r) { return doc->boolean(r).has_value(); }},
        {"date", [&](Ref r) { return doc->date(r).has_value(); }},
        {"data", [&](Ref r) { return doc->data(r).has_value(); }},
        {"string", [&](Ref r) { return doc->string(r).has_value(); }},
        {"string", [&](Ref r) { return doc->string(r).has_value(); }},
        {"array", [&](Ref r) { return doc->array(r).has_value(); }},
        {"dict", [&](Ref r) { return doc->dict(r).has_value(); }},
    };
    for (size_t object = 0; object < refs.size(); ++object)
        for (size_t asked = 0; asked < accessors.size(); ++asked) {
            SCOPED_TRACE(std::string(accessors[object].first) + " read as " +
                         accessors[asked].first);
            const bool sameKind = std::string(accessors[object].first) == accessors[asked].first;
            EXPECT_EQ(accessors[asked].second(refs[object]), sameKind);
        }
}

// A property list put together by hand, so tests can make files the writer never would.
struct Assembly {
    std::vector<std::string> objects;
    uint64_t root = 0;
    uint8_t refSize = 1, offsetSize = 1;

    std::string bytes() const {
        std::string out = "bplist00";
        std::vector<uint64_t> offsets;
        for (const std::string& o : objects) {
            offsets.push_back(out.size());
            out += o;
        }
        const uint64_t tableStart = out.size();
        for (uint64_t offset : offsets)
            put(out, offset, offsetSize);
        out.append(6, '\0');
        out += static_cast<char>(offsetSize);
        out += static_cast<char>(refSize);
        put(out, objects.size(), 8);
        put(out, root, 8);
        put(out, tableStart, 8);
        return out;
    }
    static void put(std::string& out, uint64_t v, size_t n) {
        for (size_t i = 0; i < n; ++i)
            out += static_cast<char>(v >> (8 * (n - 1 - i)));
    }
};

std::string raw(std::initializer_list<int> bytes) {
    std::string s;
    for (int b : bytes)
        s += static_cast<char>(b);
    return s;
}

// Overwrites big-endian bytes of `file` at `at` (from the end when negative).
void patch(std::string& file, long at, uint64_t value, size_t n) {
    const size_t start = at < 0 ? file.size() + at : static_cast<size_t>(at);
    for (size_t i = 0; i < n; ++i)
        file[start + i] = static_cast<char>(value >> (8 * (n - 1 - i)));
}

TEST(PlistTest, OpenRejectsUnsoundHeadersAndTrailers) {
    // Three objects: an array of two refs, an integer and a string.
    const Assembly sound{{raw({0xA2, 1, 2}), raw({0x10, 5}), raw({0x51, 'x'})}};
    ASSERT_TRUE(Document::open(spanOf(sound.bytes())));

    // Trailer fields, counted from the end: offset size -26, ref size -25, object count -24,
    // root -16, offset table start -8.
    const struct {
        const char* name;
        std::function<void(std::string&)> damage;
    } cases[] = {
        {"empty", [](std::string& f) { f.clear(); }},
        {"header only", [](std::string& f) { f = "bplist00"; }},
        {"another version", [](std::string& f) { f[7] = '1'; }},
        {"not a property list", [](std::string& f) { f.replace(0, 6, "xplist"); }},
        {"cut trailer", [](std::string& f) { f.pop_back(); }},
        {"offset size 0", [](std::string& f) { patch(f, -26, 0, 1); }},
        {"offset size 9", [](std::string& f) { patch(f, -26, 9, 1); }},
        {"ref size 0", [](std::string& f) { patch(f, -25, 0, 1); }},
        {"ref size 9", [](std::string& f) { patch(f, -25, 9, 1); }},
        {"no objects", [](std::string& f) { patch(f, -24, 0, 8); }},
        {"more objects than offsets", [](std::string& f) { patch(f, -24, 4, 8); }},
        {"huge object count", [](std::string& f) { patch(f, -24, uint64_t{1} << 62, 8); }},
        {"largest object count", [](std::string& f) { patch(f, -24, ~uint64_t{0}, 8); }},
        {"root beyond the objects", [](std::string& f) { patch(f, -16, 3, 8); }},
        {"huge root", [](std::string& f) { patch(f, -16, ~uint64_t{0}, 8); }},
        {"table in the header", [](std::string& f) { patch(f, -8, 4, 8); }},
        {"table at the end of the header", [](std::string& f) { patch(f, -8, 8, 8); }},
        {"table in the trailer", [](std::string& f) { patch(f, -8, f.size() - 20, 8); }},
        {"table beyond the file", [](std::string& f) { patch(f, -8, f.size() + 100, 8); }},
        {"largest table start", [](std::string& f) { patch(f, -8, ~uint64_t{0}, 8); }},
        {"table runs into the trailer", [](std::string& f) { patch(f, -8, f.size() - 34, 8); }},
        {"root offset in the header", [](std::string& f) { f[f.size() - 32 - 3] = 2; }},
        {"root offset in the table",
         [](std::string& f) { f[f.size() - 32 - 3] = static_cast<char>(f.size() - 35); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string file = sound.bytes();
        c.damage(file);
        EXPECT_FALSE(Document::open(spanOf(file)));
    }
}

TEST(PlistTest, RefsMustBeAbleToNameEveryObject) {
    Assembly many;
    for (int i = 0; i < 300; ++i)
        many.objects.push_back(raw({0x10, i & 0xFF}));
    many.offsetSize = 2;
    many.refSize = 1;
    EXPECT_FALSE(Document::open(spanOf(many.bytes())));
    many.refSize = 2;
    EXPECT_TRUE(Document::open(spanOf(many.bytes())));
}

TEST(PlistTest, AccessorsRejectUnsoundObjects) {
    using Check = std::function<bool(const Document&)>;
    const Check string = [](const Document& d) { return d.string(1).has_value(); };
    const Check data = [](const Document& d) { return d.data(1).has_value(); };
    const Check integer = [](const Document& d) { return d.integer(1).has_value(); };
    const Check real = [](const Document& d) { return d.real(1).has_value(); };
    const Check date = [](const Document& d) { return d.date(1).has_value(); };
    const Check boolean = [](const Document& d) { return d.boolean(1).has_value(); };
    const Check array = [](const Document& d) { return d.array(1).has_value(); };
    const Check dict = [](const Document& d) { return d.dict(1).has_value(); };
    const std::string e8 = raw({0, 0, 0, 0, 0, 0, 0}); // seven zero bytes

    // Object 0 is a sound string; object 1 is the one under test, the last in the object area.
    const struct {
        const char* name;
        std::string object;
        Check check;
    } cases[] = {
        {"string longer than the area", raw({0x55, 'a', 'b'}), string},
        {"long length beyond the area", raw({0x5F, 0x11, 0x01, 0x00, 'a'}), string},
        {"long length of 2^63", raw({0x5F, 0x13, 0x80}) + e8 + "a", string},
        {"long length not an integer", raw({0x5F, 0x21, 0x01, 'a'}), string},
        {"long length of sixteen bytes", raw({0x5F, 0x14, 0x01}) + e8 + e8 + "a", string},
        {"long length cut off", raw({0x5F, 0x12, 0x00}), string},
        {"marker at the very end", raw({0x5F}), string},
        {"ASCII above 127", raw({0x52, 'a', 0xE9}), string},
        {"lone high surrogate", raw({0x61, 0xD8, 0x3D}), string},
        {"lone low surrogate", raw({0x61, 0xDC, 0x00}), string},
        {"high surrogate then a letter", raw({0x62, 0xD8, 0x3D, 0x00, 0x41}), string},
        {"UTF-16 cut in half a unit", raw({0x62, 0x00, 0x41, 0x00}), string},
        {"UTF-16 of 2^62 units", raw({0x6F, 0x13, 0x40}) + e8 + "ab", string},
        {"data longer than the area", raw({0x45, 1, 2}), data},
        {"integer of 32 bytes", raw({0x15}) + std::string(32, '\0'), integer},
        {"integer cut off", raw({0x13, 0, 0, 0}), integer},
        {"sixteen-byte integer beyond 64 bits", raw({0x14, 0, 0, 0, 0, 0, 0, 0, 1}) + e8 + "\x01",
         integer},
        {"real of two bytes", raw({0x21, 0, 0}), real},
        {"real cut off", raw({0x23, 0, 0, 0}), real},
        {"date with a four-byte marker", raw({0x32, 0, 0, 0, 0}), date},
        {"date that is not a number", raw({0x33, 0x7F, 0xF8, 0, 0, 0, 0, 0, 0}), date},
        {"date cut off", raw({0x33, 0x41, 0xC0}), date},
        {"null is not a boolean", raw({0x00}), boolean},
        {"fill is not a boolean", raw({0x0F}), boolean},
        {"array ref beyond the objects", raw({0xA2, 0, 2}), array},
        {"array longer than the area", raw({0xA3, 0, 0}), array},
        {"array of 2^63 refs", raw({0xAF, 0x13, 0x80}) + e8 + raw({0}), array},
        {"dict missing its values", raw({0xD1, 0}), dict},
        {"dict value beyond the objects", raw({0xD1, 0, 9}), dict},
        {"dict of 2^62 entries", raw({0xDF, 0x13, 0x40}) + e8 + raw({0, 0}), dict},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string file = Assembly{{raw({0x51, 'k'}), c.object}}.bytes();
        const auto doc = Document::open(spanOf(file));
        ASSERT_TRUE(doc);
        EXPECT_FALSE(c.check(*doc));
    }
}

TEST(PlistTest, OffsetsOutsideTheObjectAreaAreRejected) {
    for (uint64_t offset : {0, 7, 12, 13, 200}) { // header, header, offset table, table, beyond
        SCOPED_TRACE(offset);
        std::string file = Assembly{{raw({0x51, 'k'}), raw({0x10, 5})}}.bytes();
        ASSERT_EQ(file.size(), 8u + 4 + 2 + 32);
        file[13] = static_cast<char>(offset); // the second offset
        const auto doc = Document::open(spanOf(file));
        ASSERT_TRUE(doc);
        EXPECT_EQ(doc->string(0), "k");
        EXPECT_FALSE(doc->integer(1));
        EXPECT_FALSE(doc->string(2)); // no such object
    }
}

TEST(PlistTest, ContainersThatHoldThemselvesOnlyFailTheirType) {
    // Object 1 is a dictionary {"k": itself}; object 2 an array holding itself.
    const std::string file =
        Assembly{{raw({0x51, 'k'}), raw({0xD1, 0, 1}), raw({0xA1, 2})}, 1}.bytes();
    const auto doc = Document::open(spanOf(file));
    ASSERT_TRUE(doc);
    const auto dict = doc->dict(1);
    ASSERT_TRUE(dict);
    EXPECT_EQ(dict->find("k"), Ref{1});
    EXPECT_FALSE(doc->string(*dict->find("k")));
    const auto array = doc->array(2);
    ASSERT_TRUE(array);
    EXPECT_FALSE(doc->dict((*array)[0]));
    EXPECT_FALSE(doc->integer((*array)[0]));
}

TEST(PlistTest, PlistlibReadsWhatTheWriterWrites) {
    Writer writer;
    std::vector<Ref> items;
    for (int64_t v : integers)
        items.push_back(writer.integer(v));
    for (const std::string& s : strings)
        items.push_back(writer.string(s));
    for (double d : reals)
        items.push_back(writer.real(d));
    for (Date d : dates)
        items.push_back(writer.date(d));
    items.push_back(writer.boolean(true));
    items.push_back(writer.data(std::vector<uint8_t>{0, 1, 254}));
    const test::TempDir dir;
    const std::string path =
        test::writeFile(dir.file("values.plist"), writer.finish(writer.array(items)));

    const auto leaves = test::readWithPlistlib(path);
    ASSERT_TRUE(leaves);
    std::vector<test::Leaf> expected;
    for (int64_t v : integers)
        expected.push_back({"int", std::to_string(v)});
    for (const std::string& s : strings)
        expected.push_back({"str", test::hexOf(s)});
    for (size_t i = 0; i < reals.size(); ++i)
        expected.push_back({"float", std::to_string(i)}); // the index into `reals`
    for (Date d : dates)
        expected.push_back(
            {"date", std::to_string(duration_cast<microseconds>(d.time_since_epoch()).count())});
    expected.push_back({"bool", "true"});
    expected.push_back({"data", "0001fe"});
    ASSERT_EQ(leaves->at("").value, std::to_string(expected.size()));
    for (size_t i = 0; i < expected.size(); ++i) {
        const test::Leaf& got = leaves->at("|" + std::to_string(i));
        SCOPED_TRACE(i);
        EXPECT_EQ(got.type, expected[i].type);
        if (got.type == "float")
            EXPECT_EQ(std::strtod(got.value.c_str(), nullptr),
                      reals[std::stoul(expected[i].value)]);
        else
            EXPECT_EQ(got.value, expected[i].value);
    }
}

TEST(PlistTest, ReadsWhatPlistlibWrites) {
    // Over 256 objects, so plistlib uses two-byte refs and offsets.
    const char* script = R"(
import datetime, plistlib, sys
value = {
    "ints": [0, 200, 70000, 2**40, -3, 2**63 - 1, -2**63, 2**63],
    "text": ["plain", "Zürich", "😀", ""],
    "reals": [0.5, -2.25e-300],
    "when": datetime.datetime(2024, 3, 5, 10, 11, 12, 345000),
    "first": datetime.datetime(1, 1, 1),
    "last": datetime.datetime(9999, 12, 31),
    "yes": False,
    "blob": b"\x00\xff",
    "many": [str(i) for i in range(300)],
}
with open(sys.argv[1], "wb") as f:
    plistlib.dump(value, f, fmt=plistlib.FMT_BINARY, sort_keys=False)
)";
    const test::TempDir dir;
    const std::string path = dir.file("python.plist");
    ASSERT_TRUE(test::runPython(script, "'" + path + "'"));
    const std::string bytes = test::readFile(path);
    const auto doc = Document::open(spanOf(bytes));
    ASSERT_TRUE(doc);
    const auto top = doc->dict(doc->root());
    ASSERT_TRUE(top);

    const auto ints = doc->array(top->find("ints").value());
    ASSERT_TRUE(ints);
    const std::vector<std::optional<int64_t>> wantInts = {0,  200,       70000,     1LL << 40,
                                                          -3, INT64_MAX, INT64_MIN, std::nullopt};
    ASSERT_EQ(ints->size(), wantInts.size());
    for (size_t i = 0; i < wantInts.size(); ++i)
        EXPECT_EQ(doc->integer((*ints)[i]), wantInts[i]) << i;

    const auto text = doc->array(top->find("text").value());
    ASSERT_TRUE(text);
    const std::vector<std::string> wantText = {"plain", "Zürich", "😀", ""};
    ASSERT_EQ(text->size(), wantText.size());
    for (size_t i = 0; i < wantText.size(); ++i)
        EXPECT_EQ(doc->string((*text)[i]), wantText[i]);

    const auto reals = doc->array(top->find("reals").value());
    ASSERT_TRUE(reals && reals->size() == 2);
    EXPECT_EQ(doc->real((*reals)[0]), 0.5);
    EXPECT_EQ(doc->real((*reals)[1]), -2.25e-300);
    EXPECT_EQ(doc->date(top->find("when").value()), at(sys_days(2024y / March / 5), 36672345ms));
    EXPECT_EQ(doc->date(top->find("first").value()), Date::min()) << "clamped to the earliest date";
    EXPECT_EQ(doc->date(top->find("last").value()), Date::max()) << "clamped to the latest date";
    EXPECT_EQ(doc->boolean(top->find("yes").value()), false);
    EXPECT_EQ(doc->data(top->find("blob").value()), (std::vector<uint8_t>{0, 255}));
    const auto many = doc->array(top->find("many").value());
    ASSERT_TRUE(many && many->size() == 300);
    EXPECT_EQ(doc->string((*many)[299]), "299");
}

} // namespace
