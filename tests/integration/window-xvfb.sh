#!/usr/bin/env bash
# The real program in a real X server: started with no arguments on a temporary home holding the
# sixteen drawn screenshots, it opens its window, reads them, and a query typed into the window
# with xdotool narrows the grid, as a screenshot of the window shows.
set -euo pipefail
lumivale="$1"
py=/usr/bin/python3
. "$(dirname "$0")/../support/temp-home.sh"
shots="$home/Pictures/Screenshots"
"$lumivale" fixtures "$shots" > /dev/null
mkdir -p "$XDG_CONFIG_HOME/Lumivale"
printf '[General]\nwelcomeDone=true\n' > "$XDG_CONFIG_HOME/Lumivale/Lumivale.ini"

# The rest runs inside a private X server.
if [ -z "${LUMIVALE_IN_XVFB:-}" ]; then
  export LUMIVALE_IN_XVFB=1
  exec xvfb-run -a -s "-screen 0 1600x1000x24" bash "$0" "$@"
fi
unset QT_QPA_PLATFORM
export QT_QPA_PLATFORM=xcb

"$lumivale" > "$home/window.log" 2>&1 &
app=$!
trap 'kill $app 2>/dev/null || true; rm -rf "$home"' EXIT
window="$(xdotool search --sync --limit 1 --name '^Lumivale$')"
xdotool windowsize "$window" 1400 900
xdotool windowactivate --sync "$window" 2>/dev/null || xdotool windowfocus --sync "$window"

# Reading is done when the saved library holds all sixteen, read.
for _ in $(seq 1 240); do
  if "$lumivale" list --json --place all 2>/dev/null | "$py" -c 'import json, sys
rows = [json.loads(l) for l in sys.stdin]
sys.exit(0 if len(rows) == 16 and all(r["shelf"] is not None for r in rows) else 1)'; then break; fi
  sleep 0.5
done

xdotool key --window "$window" ctrl+2   # All screenshots
sleep 1
xwd -silent -id "$window" > "$home/before.xwd"
xdotool key --window "$window" ctrl+f
xdotool type --delay 60 --window "$window" "boarding"
sleep 1.5
xwd -silent -id "$window" > "$home/after.xwd"
kill -0 $app || { cat "$home/window.log"; echo "the window closed"; exit 1; }

# The grid of sixteen became the grid of one or two: a large part of the window changed, far
# more than the typed word alone could change.
"$py" - "$home/before.xwd" "$home/after.xwd" <<'PY'
import struct, sys
def pixels(path):
    data = open(path, "rb").read()
    h = struct.unpack(">25I", data[:100])
    header, width, height, bpl, ncolors = h[0], h[4], h[5], h[12], h[19]
    start = header + ncolors * 12
    return width, height, bpl, data[start:start + bpl * height]
w, h, bpl, a = pixels(sys.argv[1])
_, _, _, b = pixels(sys.argv[2])
changed = sum(1 for y in range(0, h, 2) for x in range(0, w * 4, 8) if a[y * bpl + x:y * bpl + x + 3] != b[y * bpl + x:y * bpl + x + 3])
fraction = changed / ((h // 2) * (w // 2))
print(f"window {w}x{h}: {fraction:.1%} of the pixels changed")
assert fraction > 0.08, "the grid did not change"
PY
echo "window under X: ok"
