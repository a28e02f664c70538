#!/usr/bin/env bash
# Times the independent property-list tools on a library of 10,000 read shots, to compare with
# LibraryBench: libplist's plistutil turning the XML form into a binary file and the binary form
# into XML, and Python's plistlib reading and writing the binary form. Prints seconds.
#
#   bench/plist-baselines.sh [path to LibraryBench] [number of shots]
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
bench="${1:-${LUMIVALE_BUILD_DIR:-$top/build}/bench/LibraryBench}"
shots="${2:-10000}"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

seconds() { # command... : runs it and prints how long it took
    local TIMEFORMAT=%R
    { time "$@" >/dev/null; } 2>&1
}

"$bench" --write-only "$work/ours.plist" --shots "$shots" >/dev/null
/usr/bin/python3 -c 'import plistlib, sys; plistlib.dump(plistlib.load(open(sys.argv[1], "rb")), open(sys.argv[2], "wb"))' \
    "$work/ours.plist" "$work/ours.xml"
echo "library of $shots shots: $(stat -c %s "$work/ours.plist") bytes binary, $(stat -c %s "$work/ours.xml") bytes XML"
echo "Lumivale (LibraryBench --shots $shots):"
"$bench" --shots "$shots" | grep -E '^(save|load)' | sed 's/^/    /'
echo "plistutil, XML to binary:              $(seconds plistutil -i "$work/ours.xml" -o "$work/from-xml.plist" -f bin) s"
# Given a binary file and asked for binary, plistutil only copies it; reading is timed as binary to XML.
echo "plistutil, binary to XML:              $(seconds plistutil -i "$work/ours.plist" -o "$work/again.xml" -f xml) s"
/usr/bin/python3 - "$work/ours.plist" "$work/python.plist" <<'EOF'
import plistlib, sys, time
with open(sys.argv[1], "rb") as f:
    start = time.perf_counter()
    library = plistlib.load(f)
    read = time.perf_counter() - start
start = time.perf_counter()
with open(sys.argv[2], "wb") as f:
    plistlib.dump(library, f, fmt=plistlib.FMT_BINARY)
print(f"plistlib, reading the binary file:     {read:.2f} s")
print(f"plistlib, writing it as binary:        {time.perf_counter() - start:.2f} s")
EOF
