# Sourced: hostile_folder DIR fills DIR (a folder of its own, so every picture counts) with what a
# hostile or broken disk holds, one case a line in the table below, each under a name that says
# what it is. Two real pictures, "real.png" and "line\nfeed.png", can be read.
hostile_folder() {
  local dir="$1" deep long
  mkdir -p "$dir"
  vips text "$dir/real.png" "Grand Total 1,008.00" --dpi 300
  cp "$dir/real.png" "$dir/line"$'\n'"feed.png"
  long="$(printf 'n%.0s' $(seq 251)).png"                      # 255 bytes
  deep="$dir/deep"; for _ in $(seq 50); do deep="$deep/d"; done  # folders nested 50 deep
  local cases=(
    "ln -s loop-b '$dir/loop-a.png'; ln -s loop-a.png '$dir/loop-b'"
    "ln -s . '$dir/self'; ln -s .. '$dir/parent.png'"
    "mkfifo '$dir/fifo.png'"
    "mkdir '$dir/folder.png'; cp '$dir/real.png' '$dir/folder.png/inside.png'"
    ": > '$dir/empty.png'"
    "head -c 300 '$dir/real.png' > '$dir/truncated.png'"
    "python3 -c 'import struct, sys, zlib
def chunk(kind, body): return struct.pack(\">I\", len(body)) + kind + body + struct.pack(\">I\", zlib.crc32(kind + body))
sys.stdout.buffer.write(b\"\\x89PNG\\r\\n\\x1a\\n\" + chunk(b\"IHDR\", struct.pack(\">IIBBBBB\", 30000, 30000, 8, 2, 0, 0, 0))
  + chunk(b\"IDAT\", zlib.compress(b\"\\0\" * 90001)) + chunk(b\"IEND\", b\"\"))' > '$dir/huge-declared.png'"
    "cp '$dir/real.png' '$dir/$long'"
    "cp '$dir/real.png' '$dir/caf'$'\\xe9''.png'"
    "truncate -s 79999999 '$dir/sparse.png'"
    "mkdir -p '$deep'; cp '$dir/real.png' '$deep/bottom.png'"
  )
  local make
  for make in "${cases[@]}"; do eval "$make"; done
}
