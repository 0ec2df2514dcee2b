#!/bin/sh
# exports_test.sh OBJDUMP MODULE NAME...: the module exports the names that hosts look for, in this order, and nothing else.
set -eu
names=$("$1" -p "$2" | sed -n '/Ordinal\/Name Pointer/,/^$/ s/^[[:space:]]*\[ *[0-9]*\].*[[:space:]]\([^[:space:]]*\)$/\1/p' | sort | tr '\n' ' ')
module=$2
shift 2
[ "$names" = "$* " ] || {
  echo "$module exports: $names"
  exit 1
}
