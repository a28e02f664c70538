#!/usr/bin/env bash
# The self-check through both of its entries. `LUMIVALE_SELFTEST=DIR lumivale` passes all 47
# checks in order, exits 0, prints the report and how long it took, and leaves only the report,
# which does not hold the time. Without text-recognition models, `lumivale selfcheck DIR` and
# the variable both run every check to the end, write the same report and exit 1.
# Run as root, it runs as an ordinary user, since permissions (one check takes them away from a
# folder) do not hold for root.
set -euo pipefail
lumivale="$1"
dir="$(mktemp -d)"
trap 'rm -rf "$dir"' EXIT
# A home of its own, like every test.
run=(env "HOME=$dir" "XDG_CONFIG_HOME=$dir/.config" "XDG_DATA_HOME=$dir/.local/share" "XDG_CACHE_HOME=$dir/.cache"
     "XDG_STATE_HOME=$dir/.local/state" "LUMIVALE_DATA_DIR=$dir/data")
if [ "$(id -u)" -eq 0 ]; then
  chmod 755 "$dir"
  chown nobody "$dir"
  run=(setpriv --reuid=nobody --regid=nogroup --clear-groups --reset-env "${run[@]}" "PATH=$PATH" "TZ=${TZ:-}"
       "LANG=C.UTF-8" QT_QPA_PLATFORM=offscreen OMP_THREAD_LIMIT=1)
fi
fail() { echo "$1"; exit 1; }

# Runs the self-check into $dir/$1 with the given entry ("variable" or "command") and any
# further environment; keeps what it prints in $dir/$1.out (and .err) and gives its exit status.
selfcheck() {
  local name="$1" entry="$2"
  shift 2
  local status=0
  if [ "$entry" = variable ]; then
    "${run[@]}" "$@" "LUMIVALE_SELFTEST=$dir/$name" "$lumivale" > "$dir/$name.out" 2> "$dir/$name.err" || status=$?
  else
    "${run[@]}" "$@" "$lumivale" selfcheck "$dir/$name" > "$dir/$name.out" 2> "$dir/$name.err" || status=$?
  fi
  return "$status"
}

# What a finished run must show: every check in order, the verdict, the report printed and then
# the time it took, which stays out of the report; only the report left in the folder.
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
