#!/bin/sh
# Installs the plug-in and the tools for you alone, where your hosts look; with --prefix DIR, for everybody, below DIR.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
missing=$(ldd "$here"/bin/* "$here"/lib/*/*/*.so "$here"/lib/clap/*/*.clap 2>/dev/null | sed -n 's/^[[:space:]]*\(.*\) => not found$/\1/p' | sort -u)
if [ -n "$missing" ]; then
  echo "These libraries are missing on this system; libraries.txt tells where they come from:" $missing
elif ! said=$("$here"/bin/quillon-render --version 2>&1); then
  echo "quillon: what is in this archive does not run on this system: $(printf '%s\n' "$said" | head -n 1)" >&2
  exit 1
fi
exec bash "$here/installer/place" install "$here" "$@"
