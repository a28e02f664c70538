#!/usr/bin/env bash
# The manual page and the bash, zsh and fish completions against `lumivale --help`, so that they
# cannot drift from the program: every command of the help has its own section in the manual,
# which explains each option of its usage line, and every shell offers every command after
# "lumivale " and each option of a command after "lumivale COMMAND -"; the options for every
# command are in the manual and offered after "lumivale -".
set -euo pipefail
lumivale="$1"
here="$(cd "$(dirname "$0")" && pwd)"
data="$here/../../data"
completions="$data/completions"
failures=0
fail() { echo "FAIL: $1"; failures=$((failures + 1)); }

help="$("$lumivale" --help)"
# "  lumivale tidy [--layout shelf|month] ..." → one line per command: its name, then its options.
usages="$(sed -n 's/^  lumivale //p' <<< "$help")"
commands=($(cut -d' ' -f1 <<< "$usages"))
common=($(sed -n '/^Options for every command/,/^$/p' <<< "$help" | grep -o '^  --[a-z-]*'))
[ ${#commands[@]} -ge 16 ] || fail "the help lists only ${#commands[@]} commands"
[ ${#common[@]} -ge 3 ] || fail "the help lists only ${#common[@]} options for every command"
options_of() { sed -n "s/^$1 //p" <<< "$usages" | { grep -o -- '--[a-z-]*' || true; } | sort -u; }

# The manual as a reader sees it, one heading or paragraph start per line.
warnings="$(mktemp)"
trap 'rm -f "$warnings"' EXIT
manual="$(MANWIDTH=1000 man --warnings -l "$data/lumivale.1.in" 2> "$warnings")"
[ ! -s "$warnings" ] || fail "the manual page has formatting warnings: $(cat "$warnings")"
# The section of one command: from its heading "   lumivale NAME ..." to the next heading.
section_of() {
  awk -v name="$1" '/^   [^ ]/ { inside = ($1 == "lumivale" && $2 == name) } /^[^ ]/ { inside = 0 } inside' <<< "$manual"
}
for command in "${commands[@]}"; do
  section="$(section_of "$command")"
  [ -n "$section" ] || { fail "the manual has no section for '$command'"; continue; }
  for option in $(options_of "$command"); do
    grep -Eq -- "^ {7}$option\b" <<< "$section" || fail "the manual's section for '$command' does not explain $option"
  done
done
options_section="$(awk '/^OPTIONS/ { inside = 1; next } /^[^ ]/ { inside = 0 } inside' <<< "$manual")"
for option in "${common[@]}"; do
  grep -Eq -- "^ {7}$option\b" <<< "$options_section" || fail "the manual's OPTIONS do not explain $option"
done

# What SHELL offers for a command line whose last word is being completed, one a line.
offers() {
  local shell="$1" line="$2"
  case "$shell" in
    bash)
      local words=($line)
      [ "${line: -1}" = " " ] && words+=("")
      bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _lumivale
               printf "%s\n" "${COMPREPLY[@]}"' _ "$completions/lumivale.bash" "${words[@]}" ;;
    zsh) timeout 30 zsh -f "$here/../support/zsh-complete.zsh" "$completions" "$line" ;;
    fish) fish -c 'source $argv[1]; complete -C $argv[2]' "$completions/lumivale.fish" "$line" | cut -f1 ;;
  esac
}

# Each row: the command line, then what every shell must offer for it.
rows=("lumivale |${commands[*]}" "lumivale -|${common[*]}")
for command in "${commands[@]}"; do
  rows+=("lumivale $command -|$(options_of "$command" | tr '\n' ' ')")
done
for shell in bash zsh fish; do
  for row in "${rows[@]}"; do
    line="${row%%|*}"
    offered="$(offers "$shell" "$line")"
    for want in ${row#*|}; do
      grep -qxF -- "$want" <<< "$offered" || fail "$shell does not offer '$want' after '$line'"
    done
  done
done
[ "$failures" -eq 0 ] || exit 1
