#!/usr/bin/env bash
# On a temporary home whose screenshot folder holds the sixteen drawn screenshots and a few other
# pictures, `lumivale scan` reads them all, `list` and `search` answer from the library, and a
# second scan reads nothing again.
set -euo pipefail
lumivale="$1"
py=/usr/bin/python3
. "$(dirname "$0")/../support/temp-home.sh"
shots="$home/Pictures/Screenshots"
mkdir -p "$shots/Older"

"$lumivale" fixtures "$shots" > "$home/fixtures.tsv"
[ "$(wc -l < "$home/fixtures.tsv")" -eq 16 ] || { echo "expected sixteen fixtures"; exit 1; }
# A few other pictures: a copy of the receipt in a sub-folder, a file that is not a picture,
# and a hidden one.
cp "$(cut -f4 "$home/fixtures.tsv" | head -n 1)" "$shots/Older/IMG_0001.png"
echo "not an image" > "$shots/notes.png"
cp "$(cut -f4 "$home/fixtures.tsv" | head -n 2 | tail -n 1)" "$shots/.hidden copy.png"

"$lumivale" scan --json > "$home/scan1.json"
"$py" - "$home/scan1.json" <<'PY'
import json, sys
result = json.loads(open(sys.argv[1]).read().splitlines()[-1])
assert result["total"] == 18, result      # 16 fixtures, the copy in Older, the broken file
assert result["read"] == 18, result
assert result["unread"] == 0, result
assert result["sensitive"] == 2, result
PY

"$lumivale" list --place bills --json > "$home/bills.json"
"$py" - "$home/bills.json" "$home/fixtures.tsv" "$shots/Older/IMG_0001.png" <<'PY'
import json, sys
bills = [json.loads(l) for l in open(sys.argv[1]) if l.strip()]
fixtures = [l.rstrip("\n").split("\t") for l in open(sys.argv[2]) if l.strip()]
expected = {path for kind, shelf, sensitive, path in fixtures if shelf == "bills"} | {sys.argv[3]}
got = {b["path"] for b in bills}
assert got == expected, (expected, got)
assert all(b["shelf"] == "bills" for b in bills), bills
PY

"$lumivale" search "bloom 1008" > "$home/search.txt"
[ "$(grep -c . "$home/search.txt")" -eq 2 ] || { cat "$home/search.txt"; echo "expected the receipt and its copy"; exit 1; }
grep -q "Brew\|Screenshot" "$home/search.txt"
"$lumivale" search --json "ZZZ-nothing" > "$home/none.json"
[ ! -s "$home/none.json" ]

"$lumivale" scan --json > "$home/scan2.json"
"$py" -c 'import json,sys; r=json.loads(open(sys.argv[1]).read()); assert r["read"] == 0, r' "$home/scan2.json"

# Without a terminal, scan prints nothing but its result.
"$lumivale" scan > "$home/scan3.txt" 2> "$home/scan3.err"
[ ! -s "$home/scan3.err" ] || { cat "$home/scan3.err"; exit 1; }
grep -q "^Read 0 pictures." "$home/scan3.txt"
echo "scan, list and search: ok"
