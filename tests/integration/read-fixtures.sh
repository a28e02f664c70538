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

# A file that is not a picture, read last, is a failure (1) named on standard error.
mapfile -t paths < <(cut -f4 "$tmp/fixtures.tsv")
printf 'not a picture' >"$tmp/broken.png"
status=0
"$lumivale" read --json "${paths[@]}" "$tmp/broken.png" >"$tmp/read.jsonl" 2>"$tmp/read.err" ||
    status=$?
[ "$status" -eq 1 ] || fail "reading with a broken file exited with $status"
grep -q "broken.png" "$tmp/read.err" || fail "no error names the broken file"

/usr/bin/python3 - "$tmp/fixtures.tsv" "$tmp/read.jsonl" <<'PY'
import json, os, sys

fixtures = [line.rstrip("\n").split("\t") for line in open(sys.argv[1], encoding="utf-8")]
readings = [json.loads(line) for line in open(sys.argv[2], encoding="utf-8")]
if len(readings) != len(fixtures) + 1:
    sys.exit(f"FAIL: {len(readings)} readings for {len(fixtures)} fixtures and a broken file")
broken = readings.pop()
problems = []
if not (broken["failed"] and broken["lines"] == [] and broken["shelf"] == "other"
        and broken["title"] is None and broken["pixelWidth"] == 0):
    problems.append(f"broken file: {broken}")

keys = ["path", "pixelWidth", "pixelHeight", "failed", "lines", "barcodes", "shelf",
        "confidence", "scores", "flags", "title", "facts", "seconds"]
shelves = {"ids", "bills", "tickets", "chats", "code", "shopping", "maps", "other"}
for (kind, expected, sensitive, path), r in zip(fixtures, readings):
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
    if not 0 <= r["confidence"] <= 1 or set(r["scores"]) != shelves:
        problems.append(f"{kind}: confidence {r['confidence']} or scores {r['scores']}")
    problems += [f"{kind}: box of {l['text']!r} outside the picture" for l in r["lines"]
                 if not all(0 <= l[k] <= 1 for k in "xywh")]
    if kind == "sunset" and any(sum(c.isalpha() for c in l["text"]) >= 3 for l in r["lines"]):
        problems.append(f"sunset: text read where there is none: {r['lines']}")

by_kind = {f[0]: r for f, r in zip(fixtures, readings)}
for kind, key, want in [("idCard", "flags", "nationalID"), ("passport", "flags", "passport"),
                        ("boardingPass", "barcodes", "Aztec"), ("trainTicket", "barcodes", "QR"),
                        ("movieTicket", "barcodes", "QR")]:
    if want not in by_kind[kind][key]:
        problems.append(f"{kind}: no {want} among its {key} {by_kind[kind][key]}")
if problems:
    print("\n".join("FAIL: " + p for p in problems), file=sys.stderr)
    sys.exit(1)
PY

# Wrong usage is 2.
for usage in "read" "read --frobnicate $tmp/x.png" "read --lang" "fixtures"; do
    status=0; "$lumivale" $usage >/dev/null 2>&1 || status=$?
    [ "$status" -eq 2 ] || fail "'$usage' exited with $status"
done

# Plain text for people: the shelf, then the words.
"$lumivale" read --lang en-US "${paths[0]}" >"$tmp/plain.txt"
grep -q "bills" "$tmp/plain.txt" || fail "plain output lacks the shelf"
grep -q "Grand Total" "$tmp/plain.txt" || fail "plain output lacks the receipt's words"
echo "read-fixtures: all sixteen on their shelves"
