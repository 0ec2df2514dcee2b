#!/bin/sh
# imports_test.sh OBJDUMP FILE...: each file needs no library but those that Windows ships.
set -eu
known=$(dirname "$0")/libraries_of_windows.txt
objdump=$1
shift
for file in "$@"; do
  needed=$("$objdump" -p "$file" | sed -n 's/.*DLL Name: //p' | tr 'A-Z' 'a-z' | sort -u)
  [ -n "$needed" ] || {
    echo "$file imports nothing at all"
    exit 1
  }
  for library in $needed; do
    grep -qx "$library" "$known" || {
      echo "$file needs $library"
      exit 1
    }
  done
done
