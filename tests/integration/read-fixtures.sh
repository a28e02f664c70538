#!/usr/bin/env bash
# Draws the sixteen made-up screenshots, reads them with the real reader and sorter, and checks
# that every one lands on its shelf and that exactly the ID card and the passport are private.
# Also checks the exit statuses of `read` and `fixtures` for wrong usage and unreadable files.
set -euo pipefail

lumivale="$1"
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

"$lumivale" fixtures "$tmp/shots" >"$tmp/fixtures.tsv"
[ "$(wc -l <"$tmp/fixtures.tsv")" -eq 16 ] || fail "fixtures listed $(wc -l <"$tmp/fixtures.tsv") files"

mapfile -t paths < <(cut -f4 "$tmp/fixtures.tsv")
"$lumivale" read --json "${paths[@]}" >"$tmp/read.jsonl" || fail "read exited with $?"

/usr/bin/python3 - "$tmp/fixtures.tsv" "$tmp/read.jsonl" <<'EOF'
import json, os, sys

fixtures = [line.rstrip("\n").split("\t") for line in open(sys.argv[1], encoding="utf-8")]
readings = [json.loads(line) for line in open(sys.argv[2], encoding="utf-8")]
problems = []
if len(readings) != len(fixtures):
    sys.exit(f"FAIL: {len(readings)} readings for {len(fixtures)} fixtures")

keys = ["path", "pixelWidth", "pixelHeight", "failed", "lines", "barcodes", "shelf",
        "confidence", "scores", "flags", "title", "facts", "seconds"]
print(f"{'kind':16} {'expected':9} {'shelf':9} {'conf':>5}  flags")
for (kind, expected, sensitive, path), r in zip(fixtures, readings):
    print(f"{kind:16} {expected:9} {r['shelf']:9} {r['confidence']:5.2f}  {','.join(r['flags'])}")
    if sorted(r) != sorted(keys):
        problems.append(f"{kind}: keys {sorted(r)}")
        continue
    if os.path.realpath(r["path"]) != os.path.realpath(path):
        problems.append(f"{kind}: result for {r['path']} out of order")
    if r["failed"]:
        problems.append(f"{kind}: reading failed")
    if r["shelf"] != expected:
        top = sorted(r["scores"].items(), key=lambda kv: -kv[1])[:3]
        problems.append(f"{kind}: shelf {r['shelf']}, expected {expected}; top scores {top}; "
                        f"lines {[l['text'] for l in r['lines']]}")
    if bool(r["flags"]) != (sensitive == "true"):
        problems.append(f"{kind}: flags {r['flags']}, expected sensitive {sensitive}")
    if not (0 <= r["confidence"] <= 1) or set(r["scores"]) != {
            "ids", "bills", "tickets", "chats", "code", "shopping", "maps", "other"}:
        problems.append(f"{kind}: confidence {r['confidence']} or scores {r['scores']}")
    for line in r["lines"]:
        box = [line[k] for k in ("x", "y", "w", "h")]
        if not all(0 <= v <= 1 for v in box):
            problems.append(f"{kind}: box {box} of {line['text']!r} outside the picture")
    if kind == "sunset" and any(sum(c.isalpha() for c in l["text"]) >= 3 for l in r["lines"]):
        problems.append(f"sunset: text read where there is none: {r['lines']}")

by_kind = {f[0]: r for f, r in zip(fixtures, readings)}
if "nationalID" not in by_kind["idCard"]["flags"]:
    problems.append(f"idCard: no ID number among {by_kind['idCard']['flags']}")
if "passport" not in by_kind["passport"]["flags"]:
    problems.append(f"passport: no passport among {by_kind['passport']['flags']}")
if "Aztec" not in by_kind["boardingPass"]["barcodes"]:
    problems.append(f"boardingPass: barcodes {by_kind['boardingPass']['barcodes']}")
for kind in ("trainTicket", "movieTicket"):
    if "QR" not in by_kind[kind]["barcodes"]:
        problems.append(f"{kind}: barcodes {by_kind[kind]['barcodes']}")

if problems:
    print("\n".join("FAIL: " + p for p in problems), file=sys.stderr)
    sys.exit(1)
EOF

# Wrong usage is 2; a file that is not a picture is a failure (1) reported in the output.
for usage in "read" "read --frobnicate $tmp/x.png" "read --lang" "fixtures"; do
    status=0; "$lumivale" $usage >/dev/null 2>&1 || status=$?
    [ "$status" -eq 2 ] || fail "'$usage' exited with $status"
done

printf 'not a picture' >"$tmp/broken.png"
status=0
"$lumivale" read --json "$tmp/broken.png" "${paths[0]}" >"$tmp/broken.jsonl" 2>"$tmp/broken.err" || status=$?
[ "$status" -eq 1 ] || fail "reading a broken file exited with $status"
/usr/bin/python3 - "$tmp/broken.jsonl" <<'EOF'
import json, sys
rows = [json.loads(line) for line in open(sys.argv[1], encoding="utf-8")]
assert len(rows) == 2, rows
assert rows[0]["failed"] and rows[0]["lines"] == [] and rows[0]["shelf"] == "other", rows[0]
assert rows[0]["title"] is None and rows[0]["pixelWidth"] == 0, rows[0]
assert not rows[1]["failed"] and rows[1]["shelf"] == "bills", rows[1]
EOF
grep -q "broken.png" "$tmp/broken.err" || fail "no error names the broken file"

# Plain text for people: the shelf, then the words.
"$lumivale" read --lang en-US "${paths[0]}" >"$tmp/plain.txt"
grep -q "bills" "$tmp/plain.txt" || fail "plain output lacks the shelf"
grep -q "Grand Total" "$tmp/plain.txt" || fail "plain output lacks the receipt's words"
echo "read-fixtures: all sixteen on their shelves"
