#!/usr/bin/env bash
# What the command line refuses, and how: each row runs one command and checks its exit status,
# what it says, and that nothing it refused happened. Wrong usage exits 2, a refused or failed
# action 1 with the reason; no command claims a change it did not keep.
set -euo pipefail
lumivale="$1"
. "$(dirname "$0")/../support/temp-home.sh"
shots="$home/Pictures/Screenshots"
mkdir -p "$shots" "$home/folder"
fail() { echo "FAIL: $1"; exit 1; }

# Three small pictures, one with a line feed in its name, and two whose names are not UTF-8.
for name in one.png two.png $'three\nlines.png' $'caf\xe9.png' $'caf\xe8.png'; do
  vips black "$shots/$name" 40 30
done
echo "notes" > "$home/notes.txt"
"$lumivale" scan > "$home/scan.out" 2> "$home/scan.err"
[ "$(grep -c 'left alone .*caf\\xE[89]\.png: its name isn.t valid UTF-8' "$home/scan.err")" -eq 2 ] ||
  fail "the two names that are not UTF-8 are named: $(cat "$home/scan.err")"
[ "$("$lumivale" list --json | wc -l)" -eq 3 ] || fail "exactly the three UTF-8 names are kept"
"$lumivale" scan --json 2> /dev/null | grep -q '"read":0' || fail "nothing is read again"
"$lumivale" list | grep -qF 'three\nlines.png' || fail "a line feed in a name is shown as \\n"
[ "$("$lumivale" list | wc -l)" -eq 3 ] || fail "one line per screenshot"

# A data folder that nothing can be saved in: a file in its place, or a journal that cannot
# be replaced (a folder of that name), which root cannot get around either.
echo "not a folder" > "$home/datafile"
blocked="$home/blocked"
cp -r "$LUMIVALE_DATA_DIR" "$blocked"
rm -f "$blocked/journal.plist"
mkdir -p "$blocked/journal.plist/in the way"
one="$shots/one.png"

# Each row: exit status, what standard error says (an extended regular expression), the command.
rows=(
  "1|isn't a screenshot in the library|trash $home/notes.txt --yes"
  "1|isn't a screenshot in the library|trash $home/folder --yes"
  "1|isn't a screenshot in the library|lock $home/notes.txt --yes"
  "2|--data needs a folder|--data= list"
  "2|--version takes nothing after it|--version extra"
  "2|unknown option '--bogus'|--bogus"
  "2|unknown command 'bogus'|bogus"
  "1|there is no folder at /nonexistent|folders add /nonexistent"
  "2|no reading model for 'xx-bogus' is installed|read --lang xx-bogus $one"
  "1|the self-check can't write into $home/notes.txt|selfcheck $home/notes.txt"
  "1|couldn't be saved in $home/datafile: Not a directory|--data $home/datafile scan"
  "1|couldn't be saved in $home/datafile|--data $home/datafile folders add $home/folder"
  "1|couldn't be saved in $blocked: Is a directory|--data $blocked shelf $one code"
  "1|^Nothing was moved: Lumivale can't write its journal|--data $blocked tidy --yes"
  "1|^Nothing was moved: Lumivale can't write its journal|--data $blocked trash $one --yes"
)
for row in "${rows[@]}"; do
  IFS='|' read -r want said command <<< "$row"
  status=0
  # shellcheck disable=SC2086 # the command's words are split on purpose
  "$lumivale" $command < /dev/null > "$home/out" 2> "$home/err" || status=$?
  [ "$status" -eq "$want" ] || fail "$command: exited $status, not $want: $(cat "$home/out" "$home/err")"
  grep -Eq -- "$said" "$home/err" || fail "$command: said '$(cat "$home/err")', not /$said/"
done
"$lumivale" --data "" list > /dev/null 2>&1 && fail "an empty --data is refused"
[ -f "$home/notes.txt" ] && [ -d "$home/folder" ] || fail "nothing outside the library went to the Trash"
[ ! -e "$XDG_DATA_HOME/Trash/files" ] || [ -z "$(ls "$XDG_DATA_HOME/Trash/files")" ] || fail "the Trash stays empty"
[ "$(find "$shots" -mindepth 1 -printf x)" = xxxxx ] || fail "nothing left the screenshot folder"

# A search with no match says so to a person at a terminal, and prints nothing for a script.
[ -z "$("$lumivale" search zzqx-nothing)" ] || fail "no lines for a script"
script -qec "$lumivale search zzqx-nothing" /dev/null | grep -q "No screenshot matches .zzqx-nothing." ||
  fail "a person is told that nothing matches"

# The settings file the README names is the one the program reads.
settings="$(grep -o '~/\.config/Lumivale/[A-Za-z.]*' "$(dirname "$0")/../../README.md" | head -n 1)"
settings="$home/.config/${settings#\~/.config/}"
mkdir -p "$(dirname "$settings")"
printf '[General]\narchiveFolder=%s\n' "$home/Elsewhere" > "$settings"
"$lumivale" folders --json | grep -q "\"path\":\"$home/Elsewhere\"" || fail "the README names $settings, which is not read"
echo "command-line refusals: ok"
