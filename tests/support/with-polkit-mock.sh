#!/usr/bin/env bash
# Usage: with-polkit-mock.sh COMMAND [ARG...]: runs COMMAND with a mock polkit authority
# (python3-dbusmock's polkitd template) on a private bus standing in for the system bus. It
# refuses every action until told otherwise through its org.freedesktop.DBus.Mock interface.
set -euo pipefail

if [ "${1:-}" != "--inside-session" ]; then
    exec dbus-run-session -- bash "$0" --inside-session "$@"
fi
shift

export DBUS_SYSTEM_BUS_ADDRESS="$DBUS_SESSION_BUS_ADDRESS"
/usr/bin/python3 -m dbusmock --template polkitd --system >/dev/null &
mock=$!
trap 'kill "$mock" 2>/dev/null; wait "$mock" 2>/dev/null || true' EXIT

gdbus wait --system --timeout 10 org.freedesktop.PolicyKit1 ||
    { echo "with-polkit-mock: the mock authority did not start" >&2; exit 1; }

"$@"
