#!/usr/bin/env bash
# End to end with real services on a temporary home: the drawn passport is locked away with its
# key in a real keyring (gnome-keyring on a private D-Bus session) after the password typed at the
# terminal is checked by PAM (pam_wrapper with pam_matrix); then it is listed and restored.
set -euo pipefail
lumivale="$1"
here="$(cd "$(dirname "$0")" && pwd)"
if [ -z "${LUMIVALE_TEST_KEYRING:-}" ]; then
    exec bash "$here/../support/with-keyring.sh" bash "$0" "$@"
fi
py=/usr/bin/python3
. "$here/../support/temp-home.sh"
# No system bus, so no polkit: the password is asked for on the terminal and checked with PAM.
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$home/no-system-bus"
shots="$home/Pictures/Screenshots"
locked="$LUMIVALE_DATA_DIR/Locked"
password="plum tree 42"
fail() { echo "lock-restore: $*" >&2; exit 1; }

# PAM: a "lumivale" service that checks passwords against a file of our own.
matrix="$(ls /usr/lib/*/pam_wrapper/pam_matrix.so | head -n 1)"
mkdir -p "$home/pam"
printf 'auth required %s\naccount required %s\n' "$matrix" "$matrix" > "$home/pam/lumivale"
printf '%s:%s:lumivale\n' "$(id -un)" "$password" > "$home/passdb"
pam=(env LD_PRELOAD=libpam_wrapper.so PAM_WRAPPER=1 PAM_WRAPPER_SERVICE_DIR="$home/pam"
     PAM_MATRIX_PASSWD="$home/passdb")

# Runs a command on a terminal of its own and types PASSWORD when the prompt shows (typing
# earlier would be flushed away). Standard output goes to OUT, the terminal's text to SCREEN.
cat > "$home/typed.py" <<'PY'
import os, pty, select, sys, time
password, out, screen, command = sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4:]
pid, fd = pty.fork()
if pid == 0:
    os.dup2(os.open(out, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), 1)
    os.execvp(command[0], command)
seen, typed, deadline = b"", False, time.monotonic() + 120
while True:
    left = deadline - time.monotonic()
    if left <= 0:
        os.kill(pid, 9)
        open(screen, "wb").write(seen)
        sys.exit("typed: no end after 120 s; the terminal showed: " + seen.decode(errors="replace"))
    if not select.select([fd], [], [], left)[0]:
        continue
    try:
        chunk = os.read(fd, 4096)
    except OSError:  # the program closed its terminal
        break
    if not chunk:
        break
    seen += chunk
    if not typed and b"Password to " in seen:
        os.write(fd, password.encode() + b"\n")
        typed = True
open(screen, "wb").write(seen)
sys.exit(os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]))
PY
# Runs lumivale ARGS with PAM under pam_wrapper, typing PASSWORD; its standard output lands in
# $home/NAME.out and its terminal's text in $home/NAME.screen. Usage: typed PASSWORD NAME ARGS...
typed() {
    "$py" "$home/typed.py" "$1" "$home/$2.out" "$home/$2.screen" "${pam[@]}" "$lumivale" "${@:3}"
}

"$lumivale" fixtures "$shots" > "$home/fixtures.tsv"
passport="$(awk -F'\t' '$1 == "passport" { print $4 }' "$home/fixtures.tsv")"
name="$(basename "$passport")"
[ -f "$passport" ] || fail "no passport among the fixtures"
cp -p "$passport" "$home/passport-before"
"$lumivale" scan --json > /dev/null
"$lumivale" list --json > "$home/list-before.json"
grep -qF "\"$passport\"" "$home/list-before.json" || fail "the scan did not find the passport"
[ -n "$("$lumivale" search Z1234567)" ] || fail "search should find the passport number"

# A file that is not in the library is not locked.
echo "notes" > "$home/notes.png"
if "$lumivale" lock --yes "$home/notes.png" < /dev/null 2> "$home/stray.err"; then
    fail "lock took a file that is not in the library"
fi
grep -q "isn't in the library" "$home/stray.err" || fail "lock: $(cat "$home/stray.err")"
[ -f "$home/notes.png" ] && [ ! -d "$XDG_DATA_HOME/Trash" ] && [ ! -d "$locked" ] ||
    fail "a file outside the library was touched"

# Lock it away: one password question, then the banner.
typed "$password" lock lock --yes "$passport" ||
    fail "lock failed: $(cat "$home/lock.out" "$home/lock.screen")"
[ "$(grep -c "Password to lock screenshots away: " "$home/lock.screen")" -eq 1 ] ||
    fail "expected one password prompt: $(cat "$home/lock.screen")"
grep -qx "Locked 1 screenshot. The originals are in the Trash." "$home/lock.out" ||
    fail "unexpected banner: $(cat "$home/lock.out")"

[ "$(find "$locked" -name '*.lvlock' | wc -l)" -eq 1 ] || fail "expected one locked file"
lockfile="$(find "$locked" -name '*.lvlock')"
if grep -aqE "DORAN|Z1234567" "$lockfile"; then fail "the locked file shows the words"; fi
cmp -s "$XDG_DATA_HOME/Trash/files/$name" "$home/passport-before" ||
    fail "the original is not in the Trash"
[ -f "$XDG_DATA_HOME/Trash/info/$name.trashinfo" ] || fail "the Trash has no record of the original"
[ ! -e "$passport" ] || fail "the original is still in the screenshot folder"
"$lumivale" list --json > "$home/list-after.json"
[ "$(wc -l < "$home/list-after.json")" -eq 15 ] || fail "expected fifteen screenshots left"
if grep -qF "\"$passport\"" "$home/list-after.json"; then fail "the library still lists it"; fi
[ -z "$("$lumivale" search Z1234567)" ] || fail "search still finds the passport number"
secret-tool lookup service app.orvane.lumivale.vault account vault-key > "$home/key" ||
    fail "the key is not in the keyring"
[ -s "$home/key" ] || fail "the keyring holds an empty key"

# A wrong password opens nothing.
if typed "not my password" wrong locked --json; then
    fail "a wrong password opened the locked area"
fi
[ ! -s "$home/wrong.out" ] || fail "a wrong password listed: $(cat "$home/wrong.out")"

typed "$password" locked locked --json ||
    fail "locked failed: $(cat "$home/locked.screen")"
grep -q "Password to open your locked screenshots: " "$home/locked.screen" || fail "no prompt"
id="$("$py" - "$home/locked.out" "$name" "$shots" "$(basename "$lockfile" .lvlock)" <<'PY'
import json, sys
items = [json.loads(l) for l in open(sys.argv[1]) if l.strip()]
assert len(items) == 1, items
item = items[0]
assert item["name"] == sys.argv[2] and item["from"] == sys.argv[3], item
assert item["shelf"] == "ids" and item["id"] == sys.argv[4], item
print(item["id"])
PY
)"

# Restore it: the same bytes and modification time, back in the screenshot folder.
typed "$password" restore restore "$id" ||
    fail "restore failed: $(cat "$home/restore.out" "$home/restore.screen")"
grep -qxF "Restored “$name” to ~/Pictures/Screenshots" "$home/restore.out" ||
    fail "unexpected banner: $(cat "$home/restore.out")"
cmp "$passport" "$home/passport-before" || fail "the restored picture differs"
[ "$(stat -c %Y "$passport")" = "$(stat -c %Y "$home/passport-before")" ] ||
    fail "the restored picture lost its modification time"
[ "$(find "$locked" -name '*.lvlock' | wc -l)" -eq 0 ] || fail "the locked file is still there"
echo "lock and restore: ok"
