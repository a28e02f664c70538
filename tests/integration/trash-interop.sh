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

"$lumivale" trash --yes "$shots/$name" > "$home/out.txt"
grep -q "^Put in the Trash: 1 screenshot" "$home/out.txt"
[ ! -e "$shots/$name" ]
trash-list > "$home/list.txt"
grep -qF "$shots/$name" "$home/list.txt" || { cat "$home/list.txt"; exit 1; }

# trash-restore asks which item to restore; the only one is 0.
(cd "$shots" && echo 0 | trash-restore "$shots" > /dev/null)
[ "$(cat "$shots/$name")" = "picture bytes" ]

# A file another program trashed is not taken for ours: undo finds nothing to put back.
trash-put "$shots/other.png"
"$lumivale" undo > /dev/null 2>&1 || true
[ ! -e "$shots/other.png" ]

# Undo of Lumivale's own trashing brings the file back from the Trash.
"$lumivale" trash --yes "$shots/$name" > /dev/null
[ ! -e "$shots/$name" ]
"$lumivale" undo > "$home/undo.txt"
grep -q "^Put 1 screenshot back" "$home/undo.txt"
[ "$(cat "$shots/$name")" = "picture bytes" ]
trash-list > "$home/list2.txt"
! grep -qF "$shots/$name" "$home/list2.txt"
echo "trash interop: ok"
