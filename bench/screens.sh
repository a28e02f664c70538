#!/usr/bin/env bash
# How well Lumivale reads a set of real-looking screenshots with ground truth (a folder with a
# manifest.json and its scorer score.py), and how fast against plain `tesseract FILE -`.
#
#   bench/screens.sh [SET] [--no-speed]
#
# SET defaults to shared/screens beside the checkout. Prints, in turn: the scorer's figures for
# `lumivale read --json` (words, search hits, sensitive recall and precision, shelves); the
# scorer's shelves for the sorter on the set's true text; titles; search as a user meets it after
# `lumivale scan`; and the core-seconds of the reader and of plain tesseract on the same pictures,
# timed in turn by farm-bench. Uses the build in $LUMIVALE_BUILD_DIR (default: build/).
set -euo pipefail
top="$(cd "$(dirname "$0")/.." && pwd)"
build="${LUMIVALE_BUILD_DIR:-$top/build}"
lumivale="$build/src/cli/lumivale"
truth="$build/bench/ScreensBench"
for tool in "$lumivale" "$truth"; do
  [ -x "$tool" ] || { echo "screens.sh: build first ($tool is missing)" >&2; exit 2; }
done

set_dir=""
speed=1
for arg in "$@"; do
  case "$arg" in
    --no-speed) speed=0 ;;
    *) set_dir="$arg" ;;
  esac
done
if [ -z "$set_dir" ]; then
  for candidate in "$top/../shared/screens" "$top/../../shared/screens"; do
    [ -f "$candidate/manifest.json" ] && set_dir="$(cd "$candidate" && pwd)" && break
  done
fi
[ -f "$set_dir/manifest.json" ] || { echo "screens.sh: no set with a manifest.json (give its folder)" >&2; exit 2; }
manifest="$set_dir/manifest.json"
export OMP_THREAD_LIMIT=1

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

echo "== the reader: lumivale read --json"
nice python3 "$set_dir/score.py" --manifest "$manifest" --details --save "$work/read.jsonl" \
  -- "$lumivale" read --json | grep -v '^running:' || true
reader_shelves="$(python3 "$set_dir/score.py" --manifest "$manifest" --from-jsonl "$work/read.jsonl" \
  | sed -n 's/^shelf accuracy *//p')"

echo
echo "== the sorter on the set's true text"
true_shelves="$(python3 "$set_dir/score.py" --manifest "$manifest" -- "$truth" "$manifest" \
  | sed -n 's/^shelf accuracy *//p')"
echo "shelves on the true text    $true_shelves"
echo "shelves on our reading      $reader_shelves"

echo
echo "== titles"
python3 "$top/bench/screens.py" titles "$manifest" "$work/read.jsonl"

echo
echo "== search after lumivale scan"
nice python3 "$top/bench/screens.py" search "$manifest" "$lumivale"

[ "$speed" = 1 ] || exit 0
command -v farm-bench >/dev/null || { echo "screens.sh: farm-bench is missing, no speed figures" >&2; exit 0; }
command -v tesseract >/dev/null || { echo "screens.sh: the tesseract command is missing" >&2; exit 2; }
echo
echo "== speed: A = lumivale read (three threads), B = plain tesseract FILE - on each picture in turn"
mapfile -t files < <(python3 -c 'import json,os,sys; d=os.path.dirname(sys.argv[1]); [print(os.path.join(d, e["file"])) for e in json.load(open(sys.argv[1]))]' "$manifest")
count="${#files[@]}"
# The baseline as a script of its own: farm-bench runs each command without a shell.
{
  echo 'for f in "$@"; do tesseract "$f" - >/dev/null 2>&1 || true; done'
} > "$work/tesseract.sh"
# Plain: as a user runs it, with the engine's own threads (the reader keeps them off).
baseline="env -u OMP_THREAD_LIMIT sh $work/tesseract.sh"
for f in "${files[@]}"; do baseline+=" $(printf '%q' "$f")"; done
farm-bench -n 3 --warmup 0 --timeout 1800 --vs "$baseline" -- "$lumivale" read --json "${files[@]}"
echo "pictures: $count (divide the cpu medians above by it for core-seconds per picture)"
