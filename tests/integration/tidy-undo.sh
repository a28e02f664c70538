#!/usr/bin/env bash
# End to end on a temporary home: the sixteen drawn screenshots are scanned, `tidy` files the
# fourteen that are not private into the archive's shelf folders keeping their readings, `undo`
# puts every one back, and `clear --days 30` puts exactly the old, read, non-private ones in the
# Trash.
set -euo pipefail
lumivale="$1"
py=/usr/bin/python3
. "$(dirname "$0")/../support/temp-home.sh"
shots="$home/Pictures/Screenshots"
archive="$home/Pictures/Lumivale Archive"

"$lumivale" fixtures "$shots" > "$home/fixtures.tsv"
"$lumivale" scan --json > /dev/null

"$lumivale" tidy --yes < /dev/null > "$home/tidy.txt"
grep -q "^Moved 14 screenshots" "$home/tidy.txt" || { cat "$home/tidy.txt"; exit 1; }
"$py" - "$home/fixtures.tsv" "$shots" "$archive" <<'PY'
import os, sys
fixtures = [l.rstrip("\n").split("\t") for l in open(sys.argv[1])]
shots, archive = sys.argv[2], sys.argv[3]
folders = {"ids": "IDs and documents", "bills": "Bills and receipts", "tickets": "Tickets and bookings",
           "chats": "Chats", "code": "Code", "shopping": "Shopping", "maps": "Maps and places", "other": "Other"}
private = sorted(os.path.basename(p) for k, s, sens, p in fixtures if sens == "true")
assert sorted(os.listdir(shots)) == private, os.listdir(shots)
for kind, shelf, sensitive, path in fixtures:
    filed = os.path.join(archive, folders[shelf], os.path.basename(path))
    assert sensitive == "true" or os.path.exists(filed), (kind, filed)
PY
# Every reading travelled with its file: a scan reads nothing again.
"$lumivale" scan --json | "$py" -c 'import json,sys; r=json.load(sys.stdin); assert r["read"] == 0 and r["total"] == 16, r'
"$lumivale" list --place "$archive" --json | "$py" -c 'import json,sys; l=[json.loads(x) for x in sys.stdin]; assert len(l) == 14 and all(s["read"] for s in l), l'

"$lumivale" undo > "$home/undo.txt"
grep -q "^Put 14 screenshots back" "$home/undo.txt" || { cat "$home/undo.txt"; exit 1; }
if "$lumivale" undo 2> "$home/undo2.err"; then echo "a second undo should find nothing"; exit 1; fi
grep -q "nothing to undo" "$home/undo2.err"
"$lumivale" undo --list | grep -q "Moved 14 screenshots  (undone)"

# Clearing out: the hardware receipt (33.3 days) and the sunset (41 days) are the only read,
# non-private fixtures older than 30 days; the passport (19.4 days) is private anyway. Neither a
# dry run nor an unconfirmed one puts anything in the Trash (and undo put all sixteen back).
[ "$("$lumivale" clear --days 30 --dry-run --json | wc -l)" -eq 2 ]
if "$lumivale" clear --days 30 < /dev/null > /dev/null 2>&1; then echo "clearing must not go ahead unconfirmed"; exit 1; fi
[ "$(ls "$shots" | wc -l)" -eq 16 ]
"$lumivale" clear --days 30 --yes > "$home/clear.txt"
grep -q "^Put in the Trash: 2 screenshots" "$home/clear.txt" || { cat "$home/clear.txt"; exit 1; }
[ "$(ls "$XDG_DATA_HOME/Trash/files")" = "$(awk -F'\t' '$1 == "hardwareReceipt" || $1 == "sunset" {
    n = split($4, path, "/"); print path[n] }' "$home/fixtures.tsv" | sort)" ]
if "$lumivale" clear --days 45 --yes > /dev/null 2>&1; then echo "45 days is not one of the ages"; exit 1; fi
echo "tidy, undo and clear: ok"
