#!/bin/sh
# Removes what install.sh brought. Your own skins and banks stay.
set -eu
exec bash "$(cd "$(dirname "$0")" && pwd)/installer/place" uninstall "$@"
