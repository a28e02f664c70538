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

# 16 fixtures, the copy in Older and the broken file, two of them private.
"$lumivale" scan --json | tail -n 1 | "$py" -c 'import json, sys; r = json.load(sys.stdin)
assert [r[k] for k in ("total", "read", "unread", "sensitive")] == [18, 18, 0, 2], r'

"$lumivale" list --place bills --json | "$py" -c 'import json, sys
got = {(r["path"], r["shelf"]) for r in map(json.loads, sys.stdin)}
rows = [l.rstrip("\n").split("\t") for l in open(sys.argv[1])]
want = {(p, "bills") for kind, shelf, s, p in rows if shelf == "bills"} | {(sys.argv[2], "bills")}
assert got == want, got' \
    "$home/fixtures.tsv" "$shots/Older/IMG_0001.png"

"$lumivale" search "bloom 1008" > "$home/search.txt"
[ "$(grep -c . "$home/search.txt")" -eq 2 ] || { cat "$home/search.txt"; echo "expected the receipt and its copy"; exit 1; }
grep -q "Brew\|Screenshot" "$home/search.txt"

# A second scan reads nothing again, and without a terminal it prints nothing but its result.
"$lumivale" scan > "$home/scan3.txt" 2> "$home/scan3.err"
[ ! -s "$home/scan3.err" ] || { cat "$home/scan3.err"; exit 1; }
grep -q "^Read 0 pictures." "$home/scan3.txt"
echo "scan, list and search: ok"
