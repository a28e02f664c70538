#!/usr/bin/env bash
# What Lumivale puts in the Trash is listed and restored by an independent Trash client
# (trash-cli), and its own undo brings a file back out of the Trash.
set -euo pipefail
lumivale="$1"
. "$(dirname "$0")/../support/temp-home.sh"
shots="$home/Pictures/Screenshots"
mkdir -p "$shots"
name='Screenshot 100% café.png'
printf 'picture bytes' > "$shots/$name"
printf 'other bytes' > "$shots/other.png"

"$lumivale" scan > /dev/null # only screenshots in the library go to the Trash
"$lumivale" trash --yes "$shots/$name" > /dev/null
[ ! -e "$shots/$name" ]
trash-list | grep -F "$shots/$name" > /dev/null

# trash-restore asks which item to restore; the only one is 0.
(cd "$shots" && echo 0 | trash-restore "$shots" > /dev/null)
[ "$(cat "$shots/$name")" = "picture bytes" ]

# A file another program trashed is not taken for ours: undo finds nothing to put back.
trash-put "$shots/other.png"
"$lumivale" undo > /dev/null 2>&1 || true
[ ! -e "$shots/other.png" ]

# Undo of Lumivale's own trashing brings the file back from the Trash.
"$lumivale" scan > /dev/null
"$lumivale" trash --yes "$shots/$name" > /dev/null
"$lumivale" undo > "$home/undo.txt"
grep -q "^Put 1 screenshot back" "$home/undo.txt"
[ "$(cat "$shots/$name")" = "picture bytes" ]
if trash-list | grep -F "$shots/$name"; then echo "still listed in the Trash"; exit 1; fi
echo "trash interop: ok"
