#!/usr/bin/env bash
# pages_test.sh CASE TOOL MANUAL_PAGE COMPLETION VERSION: holds what is made from a tool's help against that help.
set -euo pipefail
tool=$2
page=$3
completion=$4
version=$5
name=$(basename "$tool")

# options_of [SUBCOMMAND]: every option that the help lists at the start of a line, in order of the alphabet.
options_of() {
  "$tool" "$@" --help | sed -n 's/^ \{1,6\}\(-[^ ]*\(,  *-[^ ]*\)*\).*/\1/p' | tr ', ' '\n\n' | sed '/^$/d' | sort -u
}

subcommands() {
  "$tool" --help | sed -n '/^subcommands:$/I,$ s/^  \([a-z][a-z]*\) .*/\1/p'
}

# offered WORD...: what the completion makes of these words, the last of them unfinished.
offered() {
  bash -c '
    source "$1"
    compopt() { :; }
    shift
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    "_${1//-/_}"
    [ ${#COMPREPLY[@]} -eq 0 ] || printf "%s\n" "${COMPREPLY[@]}"' - "$completion" "$name" "$@" | sort -u
}

ManualPageHasEveryOption() {
  local option text
  # As plain text: without its escapes.
  text=$(sed 's/\\-/-/g' "$page")
  local wanted
  wanted=$(options_of; for command in $(subcommands); do options_of "$command"; done)
  [ "$(wc -w <<<"$wanted")" -ge 2 ]
  for option in $wanted; do
    grep -q -- "^\.B.*[ ,]$option\([ ,]\|\$\)" <<<"$text" || { echo "no $option" && exit 1; }
  done
  grep -qF "Quillon Multitap Delay $version" "$page"
}

CompletionOffersEveryOption() {
  local command
  diff <(options_of) <(offered -)
  for command in $(subcommands); do
    diff <(options_of "$command") <(offered "$command" -)
    offered "" | grep -qx "$command"
  done
  # Files, where the help says so.
  cd "$(dirname "$page")"
  [ "$(offered x --library "$(basename "$page")")" = "$(basename "$page")" ]
  if [ "$name" = quillon-render ]; then
    [ "$(offered --tail '')" = auto ]
    [ "$(offered --format '')" = "$(printf '24\nfloat')" ]
    [ -z "$(offered --block '')" ]
  fi
}

SaysItsVersion() { [ "$("$tool" --version)" = "$name $version" ]; }

"$1"
