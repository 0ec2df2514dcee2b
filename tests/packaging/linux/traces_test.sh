#!/bin/sh
# traces_test.sh FOLDER... -- FILE...: none of these files names one of these folders, so that everybody gets the same bytes.
set -eu
folders=$(mktemp)
trap 'rm -f "$folders"' EXIT
while [ "$1" != -- ]; do
  printf '%s\n' "$1" >>"$folders"
  shift
done
shift
[ -s "$folders" ]
for file in "$@"; do
  result=0
  grep -qF -f "$folders" "$file" || result=$?
  case $result in
    0) echo "$file names one of these: $(cat "$folders")" ;;
    1) continue ;;
  esac
  exit 1
done
