#!/bin/sh
# exports_test.sh OBJDUMP MODULE: the module exports the three names that hosts look for, and nothing else.
set -eu
names=$("$1" -p "$2" | sed -n '/Ordinal\/Name Pointer/,/^$/ s/^[[:space:]]*\[ *[0-9]*\].*[[:space:]]\([^[:space:]]*\)$/\1/p' | sort | tr '\n' ' ')
[ "$names" = 'MAIN VSTPluginMain main ' ] || {
  echo "$2 exports: $names"
  exit 1
}
