#!/bin/sh
# Runs a Windows program under wine, in a Windows of its own that is made on the first call.
#
#   run_under_wine.sh PREFIX PROGRAM [ARGUMENT...]
#
# PREFIX is the folder that holds that Windows: registry, system files, settings. Nobody's ~/.wine is touched. There is
# no display: a window of the program exists, but is on no screen. With PREFIX ending in "-screen" the program gets a
# screen and a Windows that no other program has, so programs that wait for their windows can wait side by side.
set -eu

prefix=$(realpath -m -- "$1")
template=${prefix%-screen}.template
has_screen=no
case $prefix in
  *-screen)
    has_screen=yes
    prefix=$prefix-$(basename "$2" .exe)
    ;;
esac
shift

export WINEPREFIX="$prefix"
# Silent, and without asking for parts that nobody here needs.
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d;winedbg.exe=d'
# Names of files with accents exist only where the letters of this system are said to be Unicode.
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY

# The loader itself: the wrapper around it says on every call that 32-bit programs would not run.
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=wine

# A Windows as wine makes it, never run after that, to be copied.
make_template() {
  rm -rf "$template.unfinished"
  mkdir -p "$template.unfinished"
  WINEPREFIX="$template.unfinished" "$wine" wineboot --init >"$template.log" 2>&1 9>&- || {
    cat "$template.log" >&2
    exit 1
  }
  WINEPREFIX="$template.unfinished" wineserver -w
  mv "$template.unfinished" "$template"
}

# System files are never changed in place, so copies may share them; the registry is.
make_windows() {
  rm -rf "$prefix"
  cp -al "$template" "$prefix"
  for registry in "$template"/*.reg; do
    rm "$prefix/${registry##*/}"
    cp "$registry" "$prefix"
  done
  : >"$prefix/ready"
}

# Two callers at once make one Windows.
mkdir -p "$(dirname "$prefix")"
if [ ! -f "$prefix/ready" ]; then
  exec 9>"$template.lock"
  flock 9
  [ -d "$template" ] || make_template
  [ -f "$prefix/ready" ] || make_windows
  exec 9>&-
fi

# The first program of a Windows starts its services, which keep what the program's output goes to open until the last
# program has ended. So the first is one whose output nobody waits for.
# Where it cannot be started, as beside one that is just ending, it is tried again.
wake() {
  for seconds in 0 1 2 4; do
    sleep "$seconds"
    if "$wine" cmd.exe /c exit >/dev/null 2>&1 9>&-; then
      return
    fi
  done
  echo 'wine does not start' >&2
  exit 1
}

if [ $has_screen = no ]; then
  wake
  exec "$wine" "$@"
fi

exec 9>"$prefix/lock"
flock 9
number=$(mktemp)
Xvfb -displayfd 8 -screen 0 1280x1024x24 -nolisten tcp 8>"$number" 9>&- >/dev/null 2>&1 &
screen=$!
trap 'kill "$screen" 2>/dev/null; rm -f "$number"' EXIT
while [ ! -s "$number" ]; do
  kill -0 "$screen" 2>/dev/null || {
    echo 'Xvfb does not start' >&2
    exit 1
  }
  sleep 0.05
done
DISPLAY=:$(cat "$number")
export DISPLAY
result=0
"$wine" "$@" 9>&- || result=$?
# The Windows goes before its screen does.
wineserver -k 9>&- || true
exit "$result"
