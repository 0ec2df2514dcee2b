#!/bin/sh
# The cache of somebody else's sources heals itself. Works on a copy of the archive that this build was made from.
#
#   fetch_source_test.sh ARCHIVE CASE
set -eu
if [ ! -f "$1" ]; then
  printf 'Skipped\nthe archive is no longer in the cache\n'
  exit
fi
fetch=$(dirname "$0")/../../cmake/fetch_source.sh
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$1" "$folder"

# What the script says lands in $folder/said.
sources() { "$fetch" vstgui "$folder" 2>"$folder/said"; }
said() { grep -q "$1" "$folder/said" || { echo "not said: $1" && cat "$folder/said" && exit 1; }; }
is_patched() { grep -q 'other.invoke = false;' "$1/vstgui/lib/finally.h"; }

first=$(sources)
is_patched "$first"
header=$first/vstgui/vstgui.h
case $2 in
  quiet) ;;
  deleted) rm "$header" ;;
  changed) echo >>"$header" ;;
  unpatched) sed -i 's/other.invoke = false;/other.invoke (false);/' "$first/vstgui/lib/finally.h" ;;
  half_unpacked) rm -r "$first/vstgui/lib" "$first/.sums" ;;
  *) exit 1 ;;
esac
again=$(sources)
[ "$again" = "$first" ]
[ -f "$header" ]
is_patched "$again"
if [ "$2" = quiet ]; then
  [ ! -s "$folder/said" ]
else
  said 'damaged; unpacking them anew'
fi
# Whole again: the next call has nothing to say.
sources >/dev/null
[ ! -s "$folder/said" ]
