#include "core/JsonWriter.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>

namespace lumivale {
namespace {

TEST(JsonWriterTest, QuotesEscapeAndRepairText) {
    struct Case {
        std::string_view in;
        std::string out;
    };
    const Case cases[] = {
        {"", R"("")"},
        {"plain text", R"("plain text")"},
        {"say \"hi\"", R"("say \"hi\"")"},
        {"C:\\path", R"("C:\\path")"},
        {"a\nb\tc\rd", R"("a\nb\tc\rd")"},
        {std::string_view("\x01\x1f\x7f\b\f", 5), R"("\u0001\u001f\u007f\b\f")"},
        {std::string_view("nul\0byte", 8), R"("nul\u0000byte")"},
        // Valid UTF-8 of every length passes through untouched.
        {"₹1,008.00 · Café ✓ 𝄞", "\"₹1,008.00 · Café ✓ 𝄞\""},
        {"/", R"("/")"},
        // Broken UTF-8: each bad byte becomes U+FFFD, the rest is kept.
        {"a\xff"
         "b",
         R"("a\ufffdb")"},
        {"\x80", R"("\ufffd")"},
        {"cut \xe2\x82", R"("cut \ufffd\ufffd")"},
        {"\xc0\xaf", R"("\ufffd\ufffd")"},                     // overlong "/"
        {"\xed\xa0\x80", R"("\ufffd\ufffd\ufffd")"},           // a lone surrogate
        {"\xf4\x90\x80\x80", R"("\ufffd\ufffd\ufffd\ufffd")"}, // past U+10FFFF
        {"\xe2\x82\xb9\xe2", "\"₹\\ufffd\""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.out);
        EXPECT_EQ(jsonQuoted(c.in), c.out);
    }
}

TEST(JsonWriterTest, NumbersAreShortestAndNeverInvalid) {
    struct Case {
        double d;
        std::string out;
    };
    const double inf = std::numeric_limits<double>::infinity();
    for (const Case& c : {Case{0, "0"}, Case{0.1, "0.1"}, Case{-2.5, "-2.5"}, Case{1e21, "1e+21"},
                          Case{0.82142857142857151, "0.8214285714285715"},
                          Case{std::nan(""), "null"}, Case{inf, "null"}, Case{-inf, "null"}}) {
        SCOPED_TRACE(c.out);
        EXPECT_EQ(JsonWriter().number(c.d).text(), c.out);
    }
    // A box coordinate keeps its float digits, not the double's noise.
    EXPECT_EQ(JsonWriter().number(0.1f).text(), "0.1");
    EXPECT_EQ(JsonWriter().number(0.87654321f).text(), "0.8765432");
    EXPECT_EQ(JsonWriter().number(std::numeric_limits<float>::infinity()).text(), "null");
    EXPECT_EQ(JsonWriter().integer(-9007199254740993).text(), "-9007199254740993");
}

TEST(JsonWriterTest, NestsWithCommasInTheirPlaces) {
    JsonWriter w;
    w.beginObject();
    w.key("path").string("/a b/c.png");
    w.key("lines").beginArray();
    for (int i = 0; i < 2; ++i)
        w.beginObject().key("text").string(i ? "two" : "one").key("x").number(0.5f).endObject();
    w.endArray();
    w.key("empty").beginArray().endArray();
    w.key("none").beginObject().endObject();
    w.key("title").null();
    w.key("failed").boolean(false);
    w.key("n").integer(3);
    w.endObject();
    EXPECT_EQ(w.text(), R"({"path":"/a b/c.png","lines":[{"text":"one","x":0.5},{"text":"two",)"
                        R"("x":0.5}],"empty":[],"none":{},"title":null,"failed":false,"n":3})");
    JsonWriter list;
    list.beginArray()
        .boolean(true)
        .null()
        .string("x")
        .beginArray()
        .integer(1)
        .endArray()
        .endArray();
    EXPECT_EQ(list.text(), R"([true,null,"x",[1]])");
}

} // namespace
} // namespace lumivale
