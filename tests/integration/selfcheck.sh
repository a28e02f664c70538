#!/usr/bin/env bash
# The self-check through both of its entries, in a home furnished as a user's, which every run
# must leave byte for byte as it was. `LUMIVALE_SELFTEST=DIR lumivale` passes all 47 checks and
# exits 0; without text-recognition models, it and `lumivale selfcheck DIR` report the same
# failures and exit 1. As root it runs as "nobody": permissions do not hold for root, and one
# check takes them away from a folder.
set -euo pipefail
lumivale="$1"
dir="$(mktemp -d)"
trap 'rm -rf "$dir"' EXIT
home="$dir/home"
mkdir -p -m 700 "$home/.run"
run=(env "HOME=$home" "XDG_CONFIG_HOME=$home/.config" "XDG_DATA_HOME=$home/.local/share"
     "XDG_CACHE_HOME=$home/.cache" "XDG_STATE_HOME=$home/.local/state" "XDG_RUNTIME_DIR=$home/.run"
     "LUMIVALE_DATA_DIR=$home/.local/share/Lumivale")
fail() { echo "$1"; exit 1; }

# The user's own screenshots, library, added folder, archive, settings, Trash and keyring.
put() { mkdir -p "$(dirname "$home/$1")"; printf "$2" > "$home/$1"; }
put .config/user-dirs.dirs 'XDG_DESKTOP_DIR="$HOME/Desktop"\nXDG_PICTURES_DIR="$HOME/Pictures"\n'
put "Desktop/Screenshot 2024-02-03 at 10.11.12 AM.png" "a picture of the user's own"
put Pictures/Phone/IMG_0001.png "the user's phone picture"
put "Pictures/Lumivale Archive/Bills and receipts/Screenshot old.png" "filed long ago"
put .config/Lumivale/Lumivale.conf '[General]\nblurPrivate=false\nwelcomeDone=true\n'
put ".local/share/Trash/files/Screenshot gone.png" "trashed by the user"
put ".local/share/Trash/info/Screenshot gone.png.trashinfo" \
    "[Trash Info]\nPath=$home/Desktop/Screenshot%%20gone.png\nDeletionDate=2024-01-02T03:04:05\n"
put .local/share/keyrings/login.keyring "the user's keyring"
"${run[@]}" "$lumivale" fixtures "$dir/drawn" > "$dir/drawn.tsv"
mkdir -p "$home/Pictures/Screenshots"
cp -p "$(sed -n 1p "$dir/drawn.tsv" | cut -f4)" "$(sed -n 6p "$dir/drawn.tsv" | cut -f4)" \
    "$home/Pictures/Screenshots/"
if [ "$(id -u)" -eq 0 ]; then
  chmod 755 "$dir"
  chown -R nobody "$dir"
  run=(setpriv --reuid=nobody --regid=nogroup --clear-groups --reset-env "${run[@]}" "PATH=$PATH"
       "TZ=${TZ:-}" "LANG=C.UTF-8" QT_QPA_PLATFORM=offscreen OMP_THREAD_LIMIT=1)
fi
"${run[@]}" "$lumivale" folders add "$home/Pictures/Phone" > /dev/null
snapshot() { (cd "$home" && find . -printf '%p %M %T@\n' -type f -exec sha256sum {} +) | sort; }
before="$(snapshot)"

# Runs the self-check into $dir/NAME through ENTRY ("variable" or "command") with any further
# environment, keeping what it prints in $dir/NAME.out and .err; gives its exit status.
selfcheck() {
  local name="$1" how=("$lumivale" selfcheck "$dir/$1") status=0
  [ "$2" = command ] || how=("LUMIVALE_SELFTEST=$dir/$name" "$lumivale")
  "${run[@]}" "${@:3}" "${how[@]}" > "$dir/$name.out" 2> "$dir/$name.err" || status=$?
  return "$status"
}

# A finished run: every check and the verdict in the report, printed and then followed by the
# time, which stays out of the report; only the report is left in its folder.
finished() {
  local name="$1" report="$dir/$1/selftest.txt" out="$dir/$1.out"
  [ -f "$report" ] || fail "$name: no report"
  [ "$(grep -c '^PASS \|^FAIL ' "$report")" -eq 47 ] || fail "$name: expected 47 checks"
  [ "$(wc -l < "$report")" -eq 48 ] || fail "$name: the report holds more than the checks and the verdict"
  [ "$(ls "$dir/$name")" = "selftest.txt" ] || fail "$name: the working files stayed"
  diff <(head -n -1 "$out") "$report" > /dev/null || fail "$name: the report shown is not the one written"
  tail -n 1 "$out" | grep -Eq '^\([0-9]+\.[0-9] seconds; report in .*/selftest.txt\)$' || fail "$name: the time is not shown"
  ! grep -q 'seconds' "$report" || fail "$name: the time went into the report"
}

status=0
selfcheck pass variable || status=$?
cat "$dir/pass.out" "$dir/pass.err"
finished pass
[ "$(tail -n 1 "$dir/pass/selftest.txt")" = "ALL PASS" ] || fail "the self-check failed"
[ "$status" -eq 0 ] || fail "a run that passes exits $status"

# No models to read with: every reading fails, fast.
for entry in command variable; do
  status=0
  selfcheck "broken-$entry" "$entry" "TESSDATA_PREFIX=$dir/no-models" || status=$?
  finished "broken-$entry"
  tail -n 1 "$dir/broken-$entry/selftest.txt" | grep -Eq '^[1-9][0-9]* FAILED$' || fail "$entry: no failures counted"
  [ "$status" -eq 1 ] || fail "$entry: a run with failures exits $status"
done
# The name of the renamed ticket holds the day, which may differ between the runs.
same() { sed 's/^\(.... renamed from its words: \).*/\1/' "$1"; }
diff <(same "$dir/broken-command/selftest.txt") <(same "$dir/broken-variable/selftest.txt") ||
  fail "the two entries report differently"
diff <(echo "$before") <(snapshot) || fail "the self-check changed the user's home"
