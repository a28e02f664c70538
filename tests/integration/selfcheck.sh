#!/usr/bin/env bash
# The self-check passes all 47 checks, in order. Run as root, it runs as an ordinary user, since
# permissions (one check takes them away from a folder) do not hold for root.
set -euo pipefail
lumivale="$1"
dir="$(mktemp -d)"
trap 'rm -rf "$dir"' EXIT
run=()
if [ "$(id -u)" -eq 0 ]; then
  chmod 755 "$dir"
  chown nobody "$dir"
  run=(setpriv --reuid=nobody --regid=nogroup --clear-groups --reset-env env "PATH=$PATH" "HOME=$dir" "TZ=${TZ:-}" "LANG=C.UTF-8" QT_QPA_PLATFORM=offscreen OMP_THREAD_LIMIT=1)
fi
status=0
"${run[@]}" "$lumivale" selfcheck "$dir/run" > "$dir/out.txt" || status=$?
cat "$dir/out.txt"
report="$dir/run/selftest.txt"
[ -f "$report" ] || { echo "no report"; exit 1; }
[ "$(tail -n 1 "$report")" = "ALL PASS" ] || { echo "the self-check failed"; exit 1; }
[ "$(grep -c '^PASS ' "$report")" -eq 47 ] || { echo "expected 47 checks"; exit 1; }
[ "$status" -eq 0 ]
# Only the report stays.
[ "$(ls "$dir/run")" = "selftest.txt" ]
