#!/bin/sh
# stack_moves_test.sh OBJDUMP FILE...: no vector of more than 16 bytes is moved to or from the stack by an instruction that
# wants it aligned, which the stack of this system is not.
set -eu
objdump=$1
shift
for file in "$@"; do
  moves=$("$objdump" -d --no-show-raw-insn "$file" | grep -c 'vmov.*%[yz]mm') || true
  case $file in
    *avx*)
      [ "$moves" -gt 0 ] || {
        echo "$file moves no wide vector: there is nothing to be seen in it"
        exit 1
      }
      ;;
  esac
  if "$objdump" -d --no-show-raw-insn "$file" | grep -E 'vmov(aps|apd|dqa|dqa32|dqa64|ntps|ntdq)[[:space:]].*%[yz]mm' |
    grep -E '\((%rsp|%rbp|%r[a-z0-9]+)' ; then
    echo "$file wants its stack aligned"
    exit 1
  fi
done
