#!/usr/bin/env bash
# Full disks on small real file systems (tmpfs in a private mount namespace): a tidy whose archive
# fills up part-way, an undo onto a full disk, and a library that cannot be saved. Each leaves
# every picture exactly once, byte for byte, and the library, the journal and what the command
# said agree with the disk. Skipped (exit 77) where no private mount namespace can be had.
set -euo pipefail
lumivale="$(realpath "$1")"
if [ -z "${LUMIVALE_PRIVATE_MOUNTS:-}" ]; then
  if ! unshare -rm true 2> /dev/null; then
    echo "skipped: this machine allows no private mount namespace (unshare -rm)"
    exit 77
  fi
  exec unshare -rm env LUMIVALE_PRIVATE_MOUNTS=1 bash "$0" "$@"
fi
. "$(dirname "$0")/../support/temp-home.sh"
shots="$home/Pictures/Screenshots"
archive="$home/Pictures/Lumivale Archive"
mkdir -p "$shots" "$archive" "$LUMIVALE_DATA_DIR"
mount -t tmpfs -o size=2m shots "$shots"
mount -t tmpfs -o size=150k archive "$archive"
mount -t tmpfs -o size=1m data "$LUMIVALE_DATA_DIR"
trap 'umount "$shots" "$archive" "$LUMIVALE_DATA_DIR"; rm -rf "$home"' EXIT
fail() { echo "FAIL: $1"; exit 1; }

# Six pictures of noise, about 62 kB each: two fit the archive.
for i in 1 2 3 4 5 6; do vips gaussnoise "$shots/shot $i.png" 250 250 --mean 128 --sigma 60; done
sums="$(cd "$shots" && sha256sum *.png | cut -d' ' -f1 | sort)"
"$lumivale" scan > /dev/null

# Every picture once, byte for byte, wherever it is; and the library lists exactly the files on disk.
whole() {
  [ "$(find "$shots" "$archive" -name '*.png' -exec sha256sum {} + | cut -d' ' -f1 | sort)" = "$sums" ] ||
    fail "$1: a picture was lost, doubled or damaged"
  [ "$(find "$shots" "$archive" -name '*.png' | sort)" = \
    "$("$lumivale" list --json | python3 -c 'import json,sys; print("\n".join(sorted(json.loads(l)["path"] for l in sys.stdin)))')" ] ||
    fail "$1: the library does not list what is on disk"
}
# Runs lumivale ARGS, which must exit with STATUS and say SAID (a regular expression) on the first
# line of its output. Usage: expect STATUS SAID ARGS...
expect() {
  local want="$1" said="$2" status=0
  shift 2
  "$lumivale" "$@" < /dev/null > "$home/out" 2>&1 || status=$?
  [ "$status" -eq "$want" ] || fail "$*: exited $status, not $want: $(cat "$home/out")"
  grep -Eq -- "$said" "$home/out" || fail "$*: said '$(cat "$home/out")', not /$said/"
}

# The archive fills up part-way: what fits is filed, the rest stays, and undo takes back what moved.
expect 1 "^Moved 2; 4 screenshots couldn't be moved: No space left on device" tidy --yes
[ "$(find "$archive" -name '*.png' | wc -l)" -eq 2 ] || fail "two pictures were filed"
[ -z "$(find "$archive" -name '.lumivale-*')" ] || fail "no partial copy is left in the archive"
whole "a tidy into a full archive"
"$lumivale" undo --list | grep -q "Moved 2 screenshots$" || fail "the journal holds the two that moved"
expect 0 "^Put 2 screenshots back" undo
whole "the undo of that tidy"

# Undo onto a full disk: nothing comes back, and all of it stays undoable until there is room.
umount "$archive" && mount -t tmpfs -o size=2m archive "$archive" # the filed folders are empty now
expect 0 "^Moved 6 screenshots" tidy --yes
head -c 4m /dev/zero > "$shots/filler" 2> /dev/null || true
expect 1 "^Put 0 back; 6 couldn't come back" undo
whole "an undo onto a full disk"
"$lumivale" undo --list | grep -q "Moved 6 screenshots$" || fail "what did not come back stays undoable"
rm "$shots/filler"
expect 0 "^Put 6 screenshots back" undo
whole "the undo once there is room"

# A library that cannot be saved: the command says so, and the library file stays as it was.
library="$(sha256sum "$LUMIVALE_DATA_DIR/library.plist")"
head -c 2m /dev/zero > "$LUMIVALE_DATA_DIR/filler" 2> /dev/null || true
expect 1 "couldn't be saved in $LUMIVALE_DATA_DIR: No space left on device" shelf "$shots/shot 1.png" code
[ "$(sha256sum "$LUMIVALE_DATA_DIR/library.plist")" = "$library" ] || fail "the library file was damaged"
expect 1 "^Nothing was moved: Lumivale can't write its journal" tidy --yes
whole "a tidy that cannot write its journal"
rm "$LUMIVALE_DATA_DIR/filler"
[ -z "$(find "$LUMIVALE_DATA_DIR" -name '.lumivale-*')" ] || fail "no temporary file is left in the data folder"
echo "full disks: ok"
