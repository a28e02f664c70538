#pragma once

// Reads property-list files with independent tools (Python's plistlib, libplist's plistutil),
// so tests can check that other programs read what Lumivale writes, and the other way round.

#include "core/Plist.h"
#include "support/ChildRun.h"
#include "support/TempDir.h"

#include <bit>
#include <chrono>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <sstream>
#include <string>

namespace lumivale::test {

// Runs a Python script (Debian's python3) with the given shell-quoted arguments.
inline std::optional<std::string> runPython(const std::string& script, const std::string& args) {
    const TempDir dir;
    const std::string file = writeFile(dir.file("script.py"), script);
    return runShell("PYTHONIOENCODING=utf-8 /usr/bin/python3 '" + file + "' " + args);
}

// One value of a property list as plistlib sees it. `type` is dict (value: its keys, sorted,
// joined by ","), array (value: its length), str (value: its UTF-8 bytes in hex), int, float
// (value: Python's float.hex), bool ("true"/"false"), date (microseconds since 1970 UTC) or
// data (hex).
struct Leaf {
    std::string type, value;
};

// Every value of the file by its path from the top, segments joined by "|" ("|shots|/a.png|size"),
// as read by plistlib; nothing when plistlib cannot read the file.
inline std::optional<std::map<std::string, Leaf>> readWithPlistlib(const std::string& file) {
    static const char* script = R"(
import datetime, plistlib, sys
epoch, micro = datetime.datetime(1970, 1, 1), datetime.timedelta(microseconds=1)
kinds = [(bool, "bool", lambda v: str(v).lower()), (int, "int", str), (float, "float", float.hex),
         (str, "str", lambda v: v.encode().hex()), (bytes, "data", bytes.hex),
         (datetime.datetime, "date", lambda v: (v - epoch) // micro)]
def walk(path, v):
    if isinstance(v, dict):
        print(path, "dict", ",".join(sorted(v)), sep="\t")
        children = v.items()
    elif isinstance(v, list):
        print(path, "array", len(v), sep="\t")
        children = enumerate(v)
    else:
        kind, show = next((k, f) for t, k, f in kinds if isinstance(v, t))
        print(path, kind, show(v), sep="\t")
        children = []
    for k, x in children:
        walk(f"{path}|{k}", x)
with open(sys.argv[1], "rb") as f:
    walk("", plistlib.load(f))
)";
    const auto output = runPython(script, "'" + file + "'");
    if (!output) return std::nullopt;
    std::map<std::string, Leaf> leaves;
    std::istringstream lines(*output);
    for (std::string line; std::getline(lines, line);) {
        const auto tab1 = line.find('\t'), tab2 = line.find('\t', tab1 + 1);
        leaves[line.substr(0, tab1)] = {line.substr(tab1 + 1, tab2 - tab1 - 1),
                                        line.substr(tab2 + 1)};
    }
    return leaves;
}

// Has plistlib read `from`, run the Python `edit` on what it read (`value`) and write that to
// `to` its own way (its own ref sizes, object order and sharing); false when it fails.
inline bool rewriteWithPlistlib(const std::string& from, const std::string& to,
                                const std::string& edit = "") {
    const std::string script =
        "import datetime, plistlib, sys\n"
        "with open(sys.argv[1], 'rb') as f:\n"
        "    value = plistlib.load(f)\n" +
        edit +
        "\nwith open(sys.argv[2], 'wb') as f:\n"
        "    plistlib.dump(value, f, fmt=plistlib.FMT_BINARY, sort_keys=False)\n";
    return runPython(script, "'" + from + "' '" + to + "'").has_value();
}

// The bytes of a string in lower-case hex, as `Leaf` holds strings.
inline std::string hexOf(std::string_view bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char c : bytes) {
        hex += digits[c >> 4];
        hex += digits[c & 0xF];
    }
    return hex;
}

// A value as `readWithPlistlib` gives it (reals as C's "%a"), read with the accessor that takes it.
inline Leaf leafOf(const plist::Document& d, plist::Ref r) {
    using namespace std::chrono;
    char real[32];
    if (const auto v = d.integer(r)) return {"int", std::to_string(*v)};
    if (const auto v = d.real(r)) return {"float", (std::snprintf(real, 32, "%a", *v), real)};
    if (const auto v = d.boolean(r)) return {"bool", *v ? "true" : "false"};
    if (const auto v = d.date(r))
        return {"date", std::to_string(duration_cast<microseconds>(v->time_since_epoch()).count())};
    if (const auto v = d.data(r))
        return {"data", hexOf({reinterpret_cast<const char*>(v->data()), v->size()})};
    if (const auto v = d.string(r)) return {"str", hexOf(*v)};
    return {"unreadable", ""};
}

// Expects the same value: reals by their bits (so -0 and not-a-number count), dates within `slack`.
inline void expectSameLeaf(const Leaf& got, const Leaf& want,
                           std::chrono::microseconds slack = {}) {
    EXPECT_EQ(got.type, want.type);
    if (want.type == "float")
        EXPECT_EQ(std::bit_cast<uint64_t>(std::strtod(got.value.c_str(), nullptr)),
                  std::bit_cast<uint64_t>(std::strtod(want.value.c_str(), nullptr)));
    else if (want.type == "date" && got.type == "date")
        EXPECT_LE(std::abs(std::stoll(got.value) - std::stoll(want.value)), slack.count());
    else
        EXPECT_EQ(got.value, want.value);
}

} // namespace lumivale::test
