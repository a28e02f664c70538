#!/usr/bin/env bash
# Installs the build into a temporary prefix, as `cmake --install build --prefix ~/.local` does,
# and checks what a desktop finds there: the desktop entry and the AppStream metadata pass their
# validators without an error or a warning, every icon is there at its size, the D-Bus service
# starts the installed program, and the installed program, moved away from where it was
# installed and with no path of the build in it, passes the self-check and opens a window of the
# class the desktop entry names.
set -euo pipefail
lumivale="$1"
. "$(dirname "$0")/../support/temp-home.sh"
fail() { echo "FAIL: $1"; exit 1; }

# The build folder is the one above the program that holds CMakeCache.txt.
build="$(cd "$(dirname "$lumivale")" && pwd)"
while [ ! -f "$build/CMakeCache.txt" ]; do
  [ "$build" != / ] || fail "no build folder above $lumivale"
  build="$(dirname "$build")"
done
source="$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$build/CMakeCache.txt")"
prefix="$home/prefix"
cmake --install "$build" --prefix "$prefix" > "$home/install.log" || { cat "$home/install.log"; fail "the install failed"; }
share="$prefix/share"
id=app.orvane.lumivale

# Every file a desktop looks for.
for file in bin/lumivale "share/applications/$id.desktop" "share/metainfo/$id.metainfo.xml" \
    "share/dbus-1/services/$id.service" "share/gnome-shell/search-providers/$id.search-provider.ini" \
    "share/krunner/dbusplugins/$id.desktop" "share/icons/hicolor/scalable/apps/$id.svg" \
    "share/icons/hicolor/symbolic/apps/$id-symbolic.svg" "share/polkit-1/actions/$id.policy" \
    etc/pam.d/lumivale share/man/man1/lumivale.1 share/bash-completion/completions/lumivale \
    share/zsh/site-functions/_lumivale share/fish/vendor_completions.d/lumivale.fish; do
  [ -f "$prefix/$file" ] || fail "$file is not installed"
done
[ -x "$prefix/bin/lumivale" ] || fail "the program is not executable"

out="$(desktop-file-validate "$share/applications/$id.desktop" 2>&1)" || fail "the desktop entry is invalid: $out"
[ -z "$out" ] || fail "desktop-file-validate has remarks: $out"
out="$(appstreamcli validate --no-net --explain "$share/metainfo/$id.metainfo.xml" 2>&1)" ||
  fail "the metadata is invalid: $out"
! grep -Eq '^[EW]:' <<< "$out" || fail "appstreamcli has errors or warnings: $out"
out="$(appstreamcli validate-tree --no-net --explain "$prefix" 2>&1)" || fail "the installed tree is invalid: $out"
! grep -Eq '^[EW]:' <<< "$out" || fail "appstreamcli finds errors or warnings in the tree: $out"

for size in 16 24 32 48 64 128 256 512; do
  png="$share/icons/hicolor/${size}x${size}/apps/$id.png"
  [ -f "$png" ] || fail "no $size × $size icon"
  [ "$(vipsheader -f width "$png")x$(vipsheader -f height "$png")" = "${size}x$size" ] ||
    fail "the $size × $size icon is $(vipsheader -f width "$png") wide"
done
symbolic="$share/icons/hicolor/symbolic/apps/$id-symbolic.svg"
[ "$(grep -o '#[0-9a-fA-F]\{3,6\}' "$symbolic" | sort -u | wc -l)" -eq 1 ] || fail "the symbolic icon has more than one colour"

# The services name the installed program and the desktop entry by their installed names.
grep -qxF "Exec=$prefix/bin/lumivale --gapplication-service" "$share/dbus-1/services/$id.service" ||
  fail "the D-Bus service does not start the installed program: $(cat "$share/dbus-1/services/$id.service")"
grep -qxF "Name=$id" "$share/dbus-1/services/$id.service" || fail "the D-Bus service has another name"
desktop_id="$(sed -n 's/^DesktopId=//p' "$share/gnome-shell/search-providers/$id.search-provider.ini")"
[ -f "$share/applications/$desktop_id" ] || fail "the search provider names '$desktop_id', which is not installed"
for key in "X-Plasma-API=DBus" "X-Plasma-DBusRunner-Service=$id" "X-Plasma-DBusRunner-Path=/app/orvane/lumivale/KRunner"; do
  grep -qxF "$key" "$share/krunner/dbusplugins/$id.desktop" || fail "the KRunner entry lacks $key"
done
version="$("$prefix/bin/lumivale" --version | cut -d' ' -f2)"
grep -q "<release version=\"$version\"" "$share/metainfo/$id.metainfo.xml" || fail "no release $version in the metadata"
grep -q "^\.TH LUMIVALE 1 .*\"Lumivale $version\"" "$share/man/man1/lumivale.1" || fail "the manual is not of version $version"

# Nothing of the build or the source is baked into the program (its debugging sections aside)
# or into the installed files.
# (A sanitizer build keeps its own paths for its reports, so only the plain build is looked at.)
strip -o "$home/stripped" "$prefix/bin/lumivale"
sanitized="$(sed -n 's/^LUMIVALE_SANITIZE:BOOL=//p' "$build/CMakeCache.txt")"
for path in "$build" "$source"; do
  [ "$sanitized" = ON ] || ! grep -qaF "$path" "$home/stripped" || fail "the program holds the path $path"
  ! grep -rlF "$path" "$share" "$prefix/etc" || fail "installed files hold the path $path"
done

# Started by the session bus for a search, as GNOME Shell starts it: the service file starts the
# installed program, which answers from the library.
"$prefix/bin/lumivale" fixtures "$home/Pictures/Screenshots" > /dev/null
"$prefix/bin/lumivale" scan > /dev/null
found="$(XDG_DATA_DIRS="$share:/usr/share" dbus-run-session -- bash -c '
  gdbus call --session --timeout 60 --dest app.orvane.lumivale --object-path /app/orvane/lumivale/SearchProvider \
    --method org.gnome.Shell.SearchProvider2.GetInitialResultSet "[\"invoice\"]"
  pkill -f -x "$1 --gapplication-service"' _ "$prefix/bin/lumivale" 2> "$home/activation.log")" ||
  { cat "$home/activation.log"; fail "the search provider could not be started by the bus"; }
grep -q "Pictures/Screenshots/.*\.png" <<< "$found" || fail "a search started by the bus found nothing: $found"

# The installed program works from wherever its prefix is moved to.
mv "$prefix" "$home/moved"
mkdir -p -m 700 "$home/run"
XDG_RUNTIME_DIR="$home/run" "$home/moved/bin/lumivale" selfcheck "$home/check" > "$home/check.log" 2>&1 ||
  { cat "$home/check.log"; fail "the self-check of the installed program failed"; }
tail -n 1 "$home/check/selftest.txt" | grep -qx "ALL PASS" || fail "the self-check did not pass"

# Its window carries the class that the desktop entry names, so that a dock shows the window
# under the entry's icon.
wmclass="$(sed -n 's/^StartupWMClass=//p' "$home/moved/share/applications/$id.desktop")"
mkdir -p "$XDG_CONFIG_HOME/Lumivale"
printf '[General]\nwelcomeDone=true\n' > "$XDG_CONFIG_HOME/Lumivale/Lumivale.ini"
classes="$(QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR="$home/run" xvfb-run -a bash -c '
  "$1" > /dev/null 2>&1 &
  app=$!
  window="$(timeout 60 xdotool search --sync --limit 1 --name "^Lumivale\$")"
  xprop -id "$window" WM_CLASS
  kill "$app"' _ "$home/moved/bin/lumivale")"
grep -qF "\"$wmclass\"" <<< "$classes" || fail "the window's class is '$classes', not $wmclass"
