#!/usr/bin/env bash
# Usage: with-keyring.sh COMMAND [ARG...]: runs COMMAND in a private D-Bus session whose Secret
# Service (gnome-keyring) has a new, empty, unlocked login keyring, never the user's own.
set -euo pipefail

if [ "${1:-}" != "--inside-session" ]; then
    exec dbus-run-session -- bash "$0" --inside-session "$@"
fi
shift

home="$(mktemp -d "${TMPDIR:-/tmp}/lumivale-keyring-XXXXXX")"
mkdir -p -m 700 "$home/run"
# The daemon alone gets the private home for its keyring files; --unlock makes the login keyring,
# the default one, with the password read from standard input.
printf 'lumivale-test' | HOME="$home" XDG_DATA_HOME="$home/data" XDG_CONFIG_HOME="$home/config" \
    XDG_CACHE_HOME="$home/cache" XDG_RUNTIME_DIR="$home/run" \
    gnome-keyring-daemon --foreground --unlock --components=secrets >/dev/null &
daemon=$!
trap 'kill "$daemon" 2>/dev/null; wait "$daemon" 2>/dev/null || true; rm -rf "$home"' EXIT

# Wait for the service's name without asking for it, which could start a second daemon.
gdbus wait --session --timeout 10 org.freedesktop.secrets ||
    { echo "with-keyring: the Secret Service did not start" >&2; exit 1; }

LUMIVALE_TEST_KEYRING=1 "$@"
