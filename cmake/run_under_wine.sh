#!/bin/sh
# Runs a Windows program under wine, in a Windows of its own that is made on the first call.
#
#   run_under_wine.sh PREFIX PROGRAM [ARGUMENT...]
#
# PREFIX is the folder that holds that Windows: registry, system files, settings. Nobody's ~/.wine is touched. There is
# no display: a window of the program exists, but is on no screen. With PREFIX ending in "-screen" the program gets a
# screen of its own, which lives as long as the call.
set -eu

prefix=$1
shift

export WINEPREFIX="$prefix"
# Silent, and without asking for parts that nobody here needs.
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
unset DISPLAY WAYLAND_DISPLAY

# The loader itself: the wrapper around it says on every call that 32-bit programs would not run.
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=wine

if [ ! -f "$prefix/ready" ]; then
  mkdir -p "$prefix"
  # Two callers at once make one Windows.
  exec 9>"$prefix/lock"
  flock 9
  if [ ! -f "$prefix/ready" ]; then
    "$wine" wineboot --init >"$prefix/log" 2>&1 9>&- || {
      cat "$prefix/log" >&2
      exit 1
    }
    wineserver -w
    : >"$prefix/ready"
  fi
  flock -u 9
fi

case $prefix in
  *-screen)
    numbers=$(mktemp)
    Xvfb -displayfd 8 -screen 0 1280x1024x24 -nolisten tcp 8>"$numbers" >/dev/null 2>&1 &
    screen=$!
    trap 'kill "$screen" 2>/dev/null; rm -f "$numbers"' EXIT
    while [ ! -s "$numbers" ]; do
      kill -0 "$screen" 2>/dev/null || {
        echo 'Xvfb does not start' >&2
        exit 1
      }
      sleep 0.05
    done
    DISPLAY=:$(cat "$numbers")
    export DISPLAY
    result=0
    "$wine" "$@" || result=$?
    # The Windows goes before its screen does.
    wineserver -k || true
    exit "$result"
    ;;
  *) exec "$wine" "$@" ;;
esac
