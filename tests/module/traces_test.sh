#!/bin/sh
# traces_test.sh OBJDUMP MODULE FOLDER...: nothing in the module tells when or in which of these folders it was built, so
# that everybody gets the same bytes.
set -eu
objdump=$1
module=$2
shift 2
stamp=$("$objdump" -p "$module" | sed -n 's/^Time\/Date[[:space:]]*//p')
case $stamp in
  *1970*) ;;
  *)
    echo "$module carries the time $stamp"
    exit 1
    ;;
esac
for folder in "$@"; do
  if grep -qF "$folder" "$module"; then
    echo "$module names $folder"
    exit 1
  fi
done
