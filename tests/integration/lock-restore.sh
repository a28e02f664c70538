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

# Runs lumivale ARGS under pam_wrapper on a terminal of its own, typing PASSWORD once the prompt
# shows (typing earlier would be flushed away); its standard output lands in $home/NAME.out and
# its terminal's text in $home/NAME.screen. Usage: typed PASSWORD NAME ARGS...
typed() {
    timeout 120 "$py" -c '
import os, pty, sys
seen = b""
def read(fd):
    global seen
    data = os.read(fd, 4096)
    if b"Password to " in seen + data and b"Password to " not in seen:
        os.write(fd, sys.argv[1].encode() + b"\n")
    seen += data
    return data
sys.exit(os.waitstatus_to_exitcode(pty.spawn(sys.argv[2:], read)))' "$1" \
        env LD_PRELOAD=libpam_wrapper.so PAM_WRAPPER=1 PAM_WRAPPER_SERVICE_DIR="$home/pam" \
        PAM_MATRIX_PASSWD="$home/passdb" sh -c 'exec "$@" > "$0"' "$home/$2.out" \
        "$lumivale" "${@:3}" < /dev/null > "$home/$2.screen"
}

"$lumivale" fixtures "$shots" > "$home/fixtures.tsv"
passport="$(awk -F'\t' '$1 == "passport" { print $4 }' "$home/fixtures.tsv")"
name="$(basename "$passport")"
cp -p "$passport" "$home/passport-before"
"$lumivale" scan --json > /dev/null
[ -n "$("$lumivale" search Z1234567)" ] || fail "search should find the passport number"

# Lock it away: one password question, then the banner.
typed "$password" lock lock --yes "$passport" ||
    fail "lock failed: $(cat "$home/lock.out" "$home/lock.screen")"
[ "$(grep -c "Password to lock screenshots away: " "$home/lock.screen")" -eq 1 ] ||
    fail "expected one password prompt: $(cat "$home/lock.screen")"
grep -qx "Locked 1 screenshot. The originals are in the Trash." "$home/lock.out" ||
    fail "unexpected banner: $(cat "$home/lock.out")"
lockfile="$(ls "$locked"/*.lvlock)"
[ "$(wc -l <<< "$lockfile")" -eq 1 ] || fail "expected one locked file: $lockfile"
if grep -aqE "DORAN|Z1234567" "$lockfile"; then fail "the locked file shows the words"; fi
[ ! -e "$passport" ] && cmp -s "$XDG_DATA_HOME/Trash/files/$name" "$home/passport-before" ||
    fail "the original is not in the Trash"
if "$lumivale" list --json | grep -qF "\"$passport\""; then fail "the library still lists it"; fi
[ -z "$("$lumivale" search Z1234567)" ] || fail "search still finds the passport number"

# A wrong password opens nothing.
if typed "not my password" wrong locked --json; then fail "a wrong password opened the area"; fi
[ ! -s "$home/wrong.out" ] || fail "a wrong password listed: $(cat "$home/wrong.out")"

typed "$password" locked locked --json || fail "locked failed: $(cat "$home/locked.screen")"
grep -q "Password to open your locked screenshots: " "$home/locked.screen" || fail "no prompt"
id="$(basename "$lockfile" .lvlock)"
"$py" -c 'import json, sys
(item,) = [json.loads(line) for line in open(sys.argv[1])]
assert [item[k] for k in ("name", "from", "shelf", "id")] == sys.argv[2:], item' \
    "$home/locked.out" "$name" "$shots" ids "$id"

# Restore it: the same bytes, back in the screenshot folder.
typed "$password" restore restore "$id" ||
    fail "restore failed: $(cat "$home/restore.out" "$home/restore.screen")"
grep -qxF "Restored “$name” to ~/Pictures/Screenshots" "$home/restore.out" ||
    fail "unexpected banner: $(cat "$home/restore.out")"
cmp "$passport" "$home/passport-before" || fail "the restored picture differs"
[ -z "$(ls "$locked")" ] || fail "the locked file is still there"
echo "lock and restore: ok"
