#!/usr/bin/env bash
# The self-check through both of its entries, in a home furnished as a user's, which every run
# must leave byte for byte as it was. `lumivale selfcheck DIR` passes all 47 checks and exits 0;
# without text-recognition models, `LUMIVALE_SELFTEST=DIR lumivale` reports failures and exits 1.
# Run by root it passes too: the self-check gives up root's power over every file, since one
# check takes permissions away from a folder.
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
put .config/Lumivale/Lumivale.ini '[General]\nblurPrivate=false\nwelcomeDone=true\n'
put ".local/share/Trash/files/Screenshot gone.png" "trashed by the user"
put ".local/share/Trash/info/Screenshot gone.png.trashinfo" \
    "[Trash Info]\nPath=$home/Desktop/Screenshot%%20gone.png\nDeletionDate=2024-01-02T03:04:05\n"
put .local/share/keyrings/login.keyring "the user's keyring"
"${run[@]}" "$lumivale" fixtures "$dir/drawn" > "$dir/drawn.tsv"
mkdir -p "$home/Pictures/Screenshots"
cp -p "$(sed -n 1p "$dir/drawn.tsv" | cut -f4)" "$(sed -n 6p "$dir/drawn.tsv" | cut -f4)" \
    "$home/Pictures/Screenshots/"
"${run[@]}" "$lumivale" folders add "$home/Pictures/Phone" > /dev/null
snapshot() { (cd "$home" && find . -printf '%p %M %T@\n' -type f -exec sha256sum {} +) | sort; }
before="$(snapshot)"

# Runs the self-check into $dir/NAME through ENTRY ("variable" or "command") with any further
# environment, and checks that it exits with STATUS and ends its report with a line matching
# VERDICT after every check; that the report is printed, followed by the time, which stays out
# of the report; and that only the report is left in its folder.
selfcheck() {
  local name="$1" entry="$2" want="$3" verdict="$4" status=0
  local how=("$lumivale" selfcheck "$dir/$name") report="$dir/$name/selftest.txt" out="$dir/$name.out"
  [ "$entry" = command ] || how=("LUMIVALE_SELFTEST=$dir/$name" "$lumivale")
  "${run[@]}" "${@:5}" "${how[@]}" > "$out" 2> "$dir/$name.err" || status=$?
  cat "$out" "$dir/$name.err"
  [ -f "$report" ] || fail "$name: no report"
  [ "$(grep -c '^PASS \|^FAIL ' "$report")" -eq 47 ] || fail "$name: expected 47 checks"
  [ "$(wc -l < "$report")" -eq 48 ] || fail "$name: the report holds more than the checks and the verdict"
  tail -n 1 "$report" | grep -Eq "^$verdict\$" || fail "$name: the verdict is not $verdict"
  [ "$status" -eq "$want" ] || fail "$name: exited $status"
  [ "$(ls "$dir/$name")" = "selftest.txt" ] || fail "$name: the working files stayed"
  diff <(head -n -1 "$out") "$report" > /dev/null || fail "$name: the report shown is not the one written"
  tail -n 1 "$out" | grep -Eq '^\([0-9]+\.[0-9] seconds; report in .*/selftest.txt\)$' || fail "$name: the time is not shown"
  ! grep -q 'seconds' "$report" || fail "$name: the time went into the report"
}

selfcheck pass command 0 "ALL PASS"
# No models to read with: every reading fails, fast.
selfcheck broken variable 1 "[1-9][0-9]* FAILED" "TESSDATA_PREFIX=$dir/no-models"
diff <(echo "$before") <(snapshot) || fail "the self-check changed the user's home"
