# Sourced by the integration tests: a temporary home of their own, removed on exit, with the
# XDG folders and Lumivale's data folder inside it and no desktop session named.
home="$(mktemp -d)"
trap 'rm -rf "$home"' EXIT
export HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_DATA_HOME="$home/.local/share"
export XDG_CACHE_HOME="$home/.cache" LUMIVALE_DATA_DIR="$home/data"
unset XDG_CURRENT_DESKTOP
