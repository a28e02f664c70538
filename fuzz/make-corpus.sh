#!/usr/bin/env bash
# Writes the seed corpora of the fuzz targets into fuzz/corpus/: files the program itself writes
# (a library and a journal after scanning and tidying the drawn screenshots), files Python's
# plistlib writes (property lists of every type and shape, locked files sealed with the fuzz
# key), and texts such as screenshots say. Usage: fuzz/make-corpus.sh PATH-TO-lumivale
set -euo pipefail
lumivale="$(realpath "$1")"
here="$(cd "$(dirname "$0")" && pwd)"
corpus="$here/corpus"
. "$here/../tests/support/temp-home.sh"
rm -rf "$corpus"
mkdir -p "$corpus"/{library,journal,lockedfile,plist,search,fold,sensitive,sorter,facts,titles,tidyclean}

# What the program writes.
"$lumivale" fixtures "$home/Pictures/Screenshots" > /dev/null
"$lumivale" scan > /dev/null
"$lumivale" tidy --yes > /dev/null
cp "$LUMIVALE_DATA_DIR/library.plist" "$corpus/library/program.plist"
cp "$LUMIVALE_DATA_DIR/journal.plist" "$corpus/journal/program.plist"
cp "$LUMIVALE_DATA_DIR"/*.plist "$corpus/plist/"

# What plistlib writes, and texts.
python3 - "$corpus" "$here/../tests/core/vaultfile.py" <<'PY'
import datetime, plistlib, subprocess, sys, os
corpus, vaultfile = sys.argv[1], sys.argv[2]
def put(target, name, data):
    with open(os.path.join(corpus, target, name), "wb") as f:
        f.write(data if isinstance(data, bytes) else data.encode())
def binary(value):
    return plistlib.dumps(value, fmt=plistlib.FMT_BINARY)
when = datetime.datetime(2026, 10, 14, 9, 41, 0)
line = {"text": "Grand Total 1,008.00", "x": 0.1, "y": 0.8, "w": 0.5, "h": 0.05}
shot = {"path": "/home/me/Pictures/Screenshots/Screenshot 1.png", "size": 1234, "created": when,
        "modified": when, "pixelWidth": 1170, "pixelHeight": 2532, "lines": [line],
        "barcodes": ["https://example.org"], "guess": "bills", "guessScore": 2.5, "manual": "other",
        "flags": ["cardNumber"], "readAt": when, "failed": False, "reader": 1,
        "folded": "grand total 1,008.00\nscreenshot 1.png"}
library = {"version": 1, "shots": {shot["path"]: shot}, "extraFolders": ["/home/me/Phone"],
           "skippedFolders": []}
put("library", "plistlib.plist", binary(library))
put("library", "empty.plist", binary({"version": 1, "shots": {}, "extraFolders": [], "skippedFolders": []}))
journal = {"id": "5A0F4C1E-8E1B-4C44-9A43-2B1E3E7C9F10", "date": when, "kind": "moved",
           "entries": [{"from": "/a/x.png", "to": "/b/x.png"}], "undone": False}
put("journal", "plistlib.plist", binary({"entries": [journal, dict(journal, kind="trashed", undone=True)]}))
put("lockedfile", "record.plist", binary({"id": "L1", "shot": shot, "lockedAt": when}))
shapes = {
    "scalars": [True, False, 0, -1, 255, 65536, 2**40, -2**63, 2**64 - 1, 1.5, -0.0, float("inf"),
                "", "ascii", "Grüße 😀", b"", b"\x00\xff", when, datetime.datetime(1, 1, 1)],
    "nested": {"a": [{"b": [[], {}, [1, [2, [3]]]]}], "ünïcode": {"k" * 300: "v" * 70000}},
    "many": {str(i): i * 1.25 for i in range(300)},
    "shared": [["same"] * 50, {"x": "same", "y": "same"}],
}
for name, value in shapes.items():
    put("plist", name + ".plist", binary(value))
picture = os.path.join(corpus, "picture.bin")
with open(picture, "wb") as f:
    f.write(b"\x89PNG\r\n\x1a\n" + bytes(range(64)))
subprocess.run([sys.executable, vaultfile, "seal", "2a" * 32, os.path.join(corpus, "lockedfile", "sealed.lvlock"),
                picture, "L1", shot["path"], "1791000000"], check=True)
os.remove(picture)
texts = {
    "receipt": "9:41\nCafé Bloom\nFlat white 4.50\nCroissant 3.20\nGrand Total 1,008.00\nVISA **** 4242\nThank you",
    "boarding": "BOARDING PASS\nLH 400 FRA → JFK\nGate 22  Seat 14C\nBoarding 09:35\nDORAN/ALEX MR",
    "chat": "Messages\nAnna\nAre we still on for lunch?\nYes! 12:30 at the usual place\nDelivered",
    "code": "def main():\n    for i in range(10):\n        print(f\"{i}\")\nif __name__ == '__main__':",
    "ids": "PASSPORT\nP<UTODORAN<<ALEX<<<<<<<<<<<<<<<<<<<<<<<<<<<<\nZ12345678UTO8001014M3001019<<<<<<<<<<<<<<04\nCard 4111 1111 1111 1111\nIBAN DE89 3704 0044 0532 0130 00\nPAN ABCDE1234F\nAadhaar 2341 2341 2346",
    "widths": "ＡＢＣ ｶﾀｶﾅ CAFÉ Skärmavbild İstanbul ß ﬁ e\u0301\u200b\u202e",
}
for name, text in texts.items():
    for target in ("sorter", "facts", "titles", "sensitive", "fold"):
        put(target, name + ".txt", text)
    put("search", name + ".txt", "bloom 1008\n" + text)
put("search", "quoted.txt", "\"grand total\" -x 1.008,00\nGrand Total 1,008.00\n1 008")
for i, text in enumerate([" .", " ..", "  .hidden name", "a/b:c", "...", "\u2028x\u2029", "😀" * 130,
                          "Chat – Invoice 12/03/2024 10:30 – 2026-10-14"]):
    put("tidyclean", f"{i}.txt", text)
PY
echo "seed corpora written to $corpus"
