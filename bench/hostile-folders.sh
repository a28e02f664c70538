#!/usr/bin/env bash
# How long a scan of a folder of hostile files takes and how much memory it needs at most: the
# folder of tests/support/hostile-folder.sh, scanned once from nothing and once again.
#
#   bench/hostile-folders.sh
#
# Uses the build in $LUMIVALE_BUILD_DIR (default: build/).
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
lumivale="${LUMIVALE_BUILD_DIR:-$top/build}/src/cli/lumivale"
[ -x "$lumivale" ] || { echo "hostile-folders.sh: build first ($lumivale is missing)" >&2; exit 2; }
. "$top/tests/support/temp-home.sh"
. "$top/tests/support/hostile-folder.sh"
hostile_folder "$home/Pictures/Screenshots"
for scan in first again; do
  /usr/bin/time -f "$scan scan: %e s, peak memory %M kB" "$lumivale" scan > /dev/null 2> "$home/err" ||
    { cat "$home/err"; exit 1; }
  tail -n 1 "$home/err"
done
