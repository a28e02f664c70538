#!/usr/bin/env bash
# One process writes a library at a time. On a private session bus and X server: a second start
# brings the first window forward and exits; commands typed while the window is open run in the
# window's process; pairs of simultaneous changes lose nothing, with a window and without one;
# without a session bus, a command that would change the window's library is refused.
set -euo pipefail
lumivale="$1"
py=/usr/bin/python3
. "$(dirname "$0")/../support/temp-home.sh"
shots="$home/Pictures/Screenshots"

if [ -z "${LUMIVALE_IN_SESSION:-}" ]; then
  export LUMIVALE_IN_SESSION=1
  exec xvfb-run -a -s "-screen 0 1280x800x24" dbus-run-session -- bash "$0" "$@"
fi
export QT_QPA_PLATFORM=xcb
no_bus=(env DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent)

"$lumivale" fixtures "$shots" > /dev/null
"$lumivale" scan > /dev/null
mkdir -p "$XDG_CONFIG_HOME/Lumivale"
printf '[General]\nwelcomeDone=true\n' >> "$XDG_CONFIG_HOME/Lumivale/Lumivale.ini"
mapfile -t files < <(ls -d "$shots"/* | sort)
first="${files[0]}" second="${files[1]}"

fail() { echo "FAIL: $*" >&2; exit 1; }
# The shelf of a shot as the saved library file has it (read without asking any window).
saved_shelf() {
  "${no_bus[@]}" "$lumivale" list --json --place all | "$py" -c 'import json, sys
print(next(r["shelf"] for r in map(json.loads, sys.stdin) if r["path"] == sys.argv[1]))' "$1"
}
# Sets two shots' shelves from two processes at once, twenty times, and checks each pair landed.
simultaneous_pairs() {
  local shelves=(bills code chats maps tickets shopping other ids) i a b
  for i in $(seq 0 19); do
    a="${shelves[$((i % 8))]}" b="${shelves[$(((i + 3) % 8))]}"
    "$lumivale" shelf "$first" "$a" > /dev/null 2>&1 &
    local one=$!
    "$lumivale" shelf "$second" "$b" > /dev/null 2>&1 &
    wait "$one" $! || fail "$1: a change of pair $i failed"
    [ "$(saved_shelf "$first")" = "$a" ] && [ "$(saved_shelf "$second")" = "$b" ] ||
      fail "$1: pair $i lost a change ($(saved_shelf "$first") $(saved_shelf "$second") instead of $a $b)"
  done
  echo "$1: twenty pairs of simultaneous changes, none lost"
}

simultaneous_pairs "without a window"

"$lumivale" > "$home/window.log" 2>&1 &
app=$!
trap 'kill $app 2>/dev/null || true; rm -rf "$home"' EXIT
xdotool search --sync --limit 1 --name '^Lumivale$' > /dev/null
gdbus wait --session --timeout 10 app.orvane.lumivale

started=$(date +%s%N)
"$lumivale" || fail "a second start exited $?"
elapsed=$(( ($(date +%s%N) - started) / 1000000 ))
[ "$elapsed" -lt 2000 ] || fail "a second start took $elapsed ms"
windows="$(pgrep -c -f -x "$lumivale" || true)"
[ "$windows" -eq 1 ] || fail "$windows processes after a second start"
[ "$(xdotool search --onlyvisible --name '^Lumivale$' | wc -l)" -eq 1 ] || fail "more than one window shows"
kill -0 "$app" || fail "the first window is gone"
echo "a second start brought the first window forward and exited after $elapsed ms"

"$lumivale" shelf "$first" maps | grep -q 'Maps & places (by hand)' || fail "shelf through the window"
# `list` asks the window's process while it is open, and the saved file agrees.
"$lumivale" list --json --place maps | grep -qF "\"path\":\"$first\"" || fail "the window's model lacks the change"
[ "$(saved_shelf "$first")" = maps ] || fail "the saved file lacks the change"
echo "a shelf typed in a terminal changed the window's model and the saved file"

simultaneous_pairs "with the window open"

if "${no_bus[@]}" "$lumivale" shelf "$first" code 2> "$home/refused.txt"; then fail "a second writer went ahead"; fi
grep -q "has the library in .* open" "$home/refused.txt" || fail "no clear refusal: $(cat "$home/refused.txt")"
[ "$(saved_shelf "$first")" != code ] || fail "the refused change was made"
echo "without a session bus, a second writer was refused: $(cat "$home/refused.txt")"

# A question asked by a command run in the window's process comes back to this process: without a
# terminal to answer it, the trashing is declined and nothing moves.
if "$lumivale" trash "$first" < /dev/null 2> "$home/asked.txt"; then fail "trash went ahead unasked"; fi
grep -q "Not confirmed: run with --yes" "$home/asked.txt" || fail "unexpected answer: $(cat "$home/asked.txt")"
[ -f "$first" ] || fail "the declined trashing moved the file"
echo "PASS"
