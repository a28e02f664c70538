#!/usr/bin/env bash
# A folder of hostile files (see tests/support/hostile-folder.sh): the scan finishes, marks what it
# cannot read, reads the rest and leaves alone the name that is not UTF-8; tidy and undo then
# lose nothing. (Time and memory: bench/hostile-folders.sh.)
set -euo pipefail
lumivale="$1"
here="$(cd "$(dirname "$0")" && pwd)"
. "$here/../support/temp-home.sh"
. "$here/../support/hostile-folder.sh"
shots="$home/Pictures/Screenshots"
fail() { echo "FAIL: $1"; exit 1; }
hostile_folder "$shots"
files() { find "$home/Pictures" -type f -exec sha256sum {} + | cut -d' ' -f1 | sort; }
before="$(files)"

timeout 300 "$lumivale" scan --json > "$home/scan.json" 2> "$home/scan.err" || fail "the scan did not finish: $(cat "$home/scan.err")"
grep -q "left alone .*caf\\\\xE9.png" "$home/scan.err" || fail "the name that is not UTF-8 is named"
"$lumivale" list --json > "$home/list.json"
python3 - "$home/list.json" "$shots" <<'PY'
import json, sys
shots = {s["path"][len(sys.argv[2]) + 1:]: s for s in map(json.loads, open(sys.argv[1]))}
long = "n" * 251 + ".png"
# Each listed file: whether it can be read. Links, the pipe, the empty file, the one named
# wrongly and those deeper than the folder is read are not listed.
expected = {"real.png": True, "line\nfeed.png": True, long: True, "folder.png/inside.png": True,
            "truncated.png": False, "huge-declared.png": False, "sparse.png": False}
assert set(shots) == set(expected), sorted(shots)
for name, readable in expected.items():
    assert shots[name]["read"], name
    assert shots[name]["failed"] != readable, (name, shots[name]["failed"])
PY
"$lumivale" scan --json 2> /dev/null | grep -q '"read":0' || fail "nothing is read a second time"

"$lumivale" tidy --yes --scope everything > "$home/tidy.out" 2>&1 || fail "the tidy failed: $(cat "$home/tidy.out")"
[ "$(files)" = "$before" ] || fail "the tidy lost or changed a file"
"$lumivale" undo > "$home/undo.out" 2>&1 || fail "the undo failed: $(cat "$home/undo.out")"
[ "$(files)" = "$before" ] || fail "the undo lost or changed a file"
[ -f "$shots/real.png" ] && [ -f "$shots/line"$'\n'"feed.png" ] || fail "the undo put the files back"
echo "hostile folders: ok"
