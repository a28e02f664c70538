#!/usr/bin/env bash
# Reading speed and word recall of Lumivale's reader against plain `tesseract FILE -`.
#
#   bench/reading.sh [FOLDER]
#
# Without a folder, the sixteen made-up screenshots are drawn into a temporary folder with an
# expected.tsv of the texts quoted on them, so word recall is measured too. `ReadingBench --draw
# FOLDER` draws the benchmark's own screenshot-like pictures instead.
# The reader runs first, on three threads as the application reads; then the baseline, one
# picture after another. Uses the build in $LUMIVALE_BUILD_DIR (default: build/).
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
build="${LUMIVALE_BUILD_DIR:-$top/build}"
bench="$build/bench/ReadingBench"
[ -x "$bench" ] || { echo "reading.sh: build first ($bench is missing)" >&2; exit 2; }
command -v tesseract >/dev/null || { echo "reading.sh: the tesseract command is missing" >&2; exit 2; }
export OMP_THREAD_LIMIT=1

folder="${1:-}"
if [ -z "$folder" ]; then
  folder="$(mktemp -d)"
  trap 'rm -rf "$folder"' EXIT
  "$bench" --fixtures "$folder"
fi

"$bench" "$folder"
"$bench" --baseline "$folder"
