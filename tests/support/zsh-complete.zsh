# Prints the candidates that zsh's completion system offers for a command line, one a line:
#   zsh -f zsh-complete.zsh FOLDER-OF-COMPLETIONS 'lumivale tidy -'
# An interactive zsh in a pseudo-terminal loads the completions from the folder and completes the
# line; every match its completion functions add is printed.
zmodload zsh/zpty
folder=$1 line=$2
zpty shell 'zsh -f -i'
zpty -w shell "PS1= PROMPT= RPROMPT=; unsetopt zle_bracketed_paste 2>/dev/null"
zpty -w shell "fpath=(${(q)folder} \$fpath); autoload -Uz compinit; compinit -u -D"
zpty -w shell 'bindkey "^I" complete-word'
zpty -w shell 'zstyle ":completion:*" list-grouped false; zstyle ":completion:*" insert-tab false'
# A match queried into an array (-O, -A, -D) is not offered; every other one is printed.
zpty -w shell 'compadd() {
  if (( ${@[(I)-[OAD]]} )); then builtin compadd "$@"; return; fi
  local -a found; builtin compadd -A found "$@"
  print -rl -- "" "offered:"${^found} > /dev/tty
}'
# The end marker is computed, so that the echo of this very line never matches it.
zpty -w shell 'comppostfuncs=(lumivale_done); lumivale_done() { print -r -- "offers-done:$((6 * 7))" > /dev/tty; exit; }'
zpty -w -n shell "$line"$'\t'
zpty -r -m shell output '*offers-done:42*'
zpty -d shell
print -rl -- ${${(M)${(f)output//$'\r'/}:#offered:*}#offered:}
