#!/usr/bin/env bash
# archive_test.sh SOURCES CASE TOOL: packs a small tree with one real program in it.
set -euo pipefail
linux=$1/packaging/linux
tool=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export HOME=$folder/home SOURCE_DATE_EPOCH=1700000000
unset DESTDIR SUDO_USER
mkdir -p "$HOME"
name=quillon-multitap-delay-1.2.3-linux-x86_64

make_tree() {
  mkdir -p "$1/bin" "$1/lib/vst/QuillonMultitapDelay" "$1/share/doc/quillon-multitap-delay"
  cp "$tool" "$1/bin"
  echo bank >"$1/lib/vst/QuillonMultitapDelay/default.fxb"
  echo changes >"$1/share/doc/quillon-multitap-delay/CHANGELOG.md"
}

# A build on a system that is newer than the archive may be has nothing to pack.
skip_if_newer() {
  "$linux/list_libraries" --at-most GLIBC_2.36 --at-most GLIBCXX_3.4.30 --at-most CXXABI_1.3.13 "$tool" >/dev/null 2>&1 || {
    printf 'Skipped\nthis system is newer than Debian 12\n'
    exit
  }
}

IsTheSameBytesTwice() {
  skip_if_newer
  make_tree "$folder/tree"
  make_tree "$folder/another/tree"
  # Other times, rights and order.
  touch -d 2001-01-01 "$folder/another/tree/bin/"*
  chmod 700 "$folder/another/tree/lib"
  chmod 600 "$folder/another/tree/lib/vst/QuillonMultitapDelay/default.fxb"
  "$linux/make_archive" "$folder/tree" 1.2.3 "$folder/first" >/dev/null
  (umask 077 && "$linux/make_archive" "$folder/another/tree" 1.2.3 "$folder/second") >/dev/null
  cmp "$folder/first/$name.tar.xz" "$folder/second/$name.tar.xz"
}

InstallsAndUninstalls() {
  skip_if_newer
  make_tree "$folder/tree"
  "$linux/make_archive" "$folder/tree" 1.2.3 "$folder" >/dev/null
  tar -C "$folder" -xf "$folder/$name.tar.xz"
  grep -q 'Multitap Delay 1.2.3' "$folder/$name/README.txt"
  (cd / && "$folder/$name/install.sh") >/dev/null
  cmp "$tool" "$HOME/.local/bin/$(basename "$tool")"
  [ -f "$HOME/.vst/QuillonMultitapDelay/default.fxb" ]
  [ ! -e "$HOME/.local/README.txt" ]
  "$folder/$name/uninstall.sh" >/dev/null
  [ -z "$(ls -A "$HOME")" ]
}

RefusesASystemThatIsTooOld() {
  skip_if_newer
  make_tree "$folder/tree"
  "$linux/make_archive" "$folder/tree" 1.2.3 "$folder" >/dev/null
  tar -C "$folder" -xf "$folder/$name.tar.xz"
  # What a program says there: its libraries are there, but not the versions of their symbols.
  printf '#!/bin/sh\necho "libc.so.6: version GLIBC_2.36 not found" >&2\nexit 1\n' >"$folder/$name/bin/quillon-render"
  if "$folder/$name/install.sh" >"$folder/said" 2>&1; then exit 1; fi
  grep -q '^quillon: .* does not run on this system: .*GLIBC_2.36 not found$' "$folder/said"
  [ "$(wc -l <"$folder/said")" = 1 ]
  [ -z "$(ls -A "$HOME")" ]
}

ListsLibrariesAndRefusesNewerOnes() {
  local list
  list=$("$linux/list_libraries" "$tool")
  grep -q '^libc.so.6 .*GLIBC_2' <<<"$list"
  grep -q '^libstdc++.so.6 .*GLIBCXX_3.4' <<<"$list"
  grep -qx 'libsndfile.so.1 .*' <<<"$list"
  "$linux/list_libraries" --at-most GLIBC_9.0 --at-most GLIBCXX_9.0 "$tool" >/dev/null
  ! "$linux/list_libraries" --at-most GLIBC_9.0 --at-most GLIBC_2.3.1 "$tool" >/dev/null 2>"$folder/said"
  grep -q 'which is newer than GLIBC_2.3.1' "$folder/said"
}

"$2"
