#!/bin/sh
# Fetches the source archive of somebody else's library into a cache, unpacks it there and applies our patch, if we have
# one. Prints the source folder on standard output, and what it does on standard error.
#
#   fetch_source.sh vstgui | sndfile | ebur128 [CACHE_FOLDER]
#
# What is in the cache is checked on each call, file by file, and made anew where it is damaged. A folder's name holds
# the sum of archive and patch, so builds with another patch have a folder of their own.
#
# Debian carries these archives as parts of source packages of Debian 13. The script asks the mirror that
# this machine uses anyway, through apt's own tools and with private lists, so nothing of the system's set-up is
# touched and no administrator is needed. An archive is checked against its sum below; several builds share it.
set -eu

SUITE=trixie
KEYRING=/usr/share/keyrings/debian-archive-keyring.gpg
DOWNLOADER=/usr/lib/apt/apt-helper

case ${1:-} in
  vstgui)
    NAME=VSTGUI
    VERSION=4.13.3
    SOURCE_PACKAGE=vst3sdk
    PART=orig-vstgui4
    ARCHIVE_SHA256=5a7673c7b22a66086a6749a0c7ff447fcfc4a10d2c2013d58ff1320be4e8456f
    ADVICE='with a checkout of version 4.13.3 at hand, configure with -DVSTGUI_SOURCE_DIR=FOLDER'
    ;;
  sndfile)
    NAME=libsndfile
    VERSION=1.2.2
    SOURCE_PACKAGE=libsndfile
    PART=orig
    ARCHIVE_SHA256=ffe12ef8add3eaca876f04087734e6e8e029350082f3251f565fa9da55b52121
    ADVICE='with the sources of version 1.2.2 at hand, configure with -DSNDFILE_SOURCE_DIR=FOLDER'
    ;;
  ebur128)
    NAME=libebur128
    VERSION=1.2.6
    SOURCE_PACKAGE=libebur128
    PART=orig
    ARCHIVE_SHA256=baa7fc293a3d4651e244d8022ad03ab797ca3c2ad8442c43199afe8059faa613
    ADVICE='with the sources of version 1.2.6 at hand, configure with -DEBUR128_SOURCE_DIR=FOLDER'
    ;;
  *)
    echo "Usage: fetch_source.sh vstgui | sndfile | ebur128 [CACHE_FOLDER]" >&2
    exit 1
    ;;
esac

cache=${2:-${XDG_CACHE_HOME:-${HOME:?is not set, and sources are kept in its .cache}/.cache}/quillon}
archive=$cache/$1-$VERSION.tar.gz
patch=$(dirname "$0")/$1-$VERSION.patch
[ -f "$patch" ] || patch=/dev/null
sources=$cache/$1-$VERSION-$({ printf '%s' "$ARCHIVE_SHA256" && cat "$patch"; } | sha256sum | cut -c 1-12)
# In each folder of sources: the sum of every other file.
SUMS=.sums

fail() {
  printf '%s: %s\n' "$NAME" "$*" >&2
  printf '%s: %s\n' "$NAME" "$ADVICE" >&2
  exit 1
}

say() { printf '%s: %s\n' "$NAME" "$*" >&2; }

has_right_sum() { printf '%s  %s\n' "$ARCHIVE_SHA256" "$1" | sha256sum --check --status 2>/dev/null; }

# apt's own commands, with lists and caches of their own in $private.
private_apt() {
  command=$1
  shift
  "$command" -o "Dir::Etc::sourcelist=$private/sources.list" -o Dir::Etc::sourceparts=/dev/null \
    -o "Dir::State::lists=$private/lists" -o "Dir::Cache=$private/cache" "$@"
}

# The mirror of this machine that holds Debian itself (others hold security updates and the like).
own_mirror() {
  apt-get update --print-uris | sed -n "s|^'\(.*/debian/\)dists/.*|\1|p" | head -n 1
}

fetch() {
  [ -x "$DOWNLOADER" ] || fail "the archive is fetched with apt, which is not here"
  private=$(mktemp -d "$cache/fetch-XXXXXX")
  # Run as root, apt downloads as a user of its own, who has to get in.
  chmod 755 "$private"
  mkdir -p "$private/lists/partial" "$private/cache/archives/partial"
  mirror=$(own_mirror)
  [ -n "$mirror" ] || fail "apt on this machine knows no Debian mirror"
  printf 'deb-src [signed-by=%s] %s %s main\n' "$KEYRING" "$mirror" "$SUITE" >"$private/sources.list"
  private_apt apt-get -q -o APT::Update::Error-Mode=any update >"$private/log" 2>&1 || {
    tail -n 5 "$private/log" >&2
    fail "the mirror gives no list of source packages"
  }
  # Lines of: 'URI' file size checksum. Only the one file is needed.
  uri=$(private_apt apt-get source --print-uris "$SOURCE_PACKAGE" 2>/dev/null |
    sed -n "s/^'\([^']*\.$PART\.tar\.[^'.]*\)'.*/\1/p" | head -n 1)
  [ -n "$uri" ] || fail "the mirror does not list the archive"
  private_apt "$DOWNLOADER" download-file "$uri" "$private/archive" "SHA256:$ARCHIVE_SHA256" \
    >"$private/log" 2>&1 || {
    tail -n 5 "$private/log" >&2
    fail "the archive could not be fetched"
  }
  has_right_sum "$private/archive" || fail "the archive is not the expected one"
  mv -f "$private/archive" "$archive"
}

# The sources as the archive and the patch have them.
is_intact() { (cd "$sources" && sha256sum --check --status --strict "$SUMS") 2>/dev/null; }

unpack() {
  unpacked=$(mktemp -d "$cache/unpack-XXXXXX")
  tar -xf "$archive" -C "$unpacked" --strip-components=1 || fail "the archive cannot be unpacked"
  if [ "$patch" != /dev/null ]; then
    command -v patch >/dev/null || fail "the sources need a patch; install the package patch"
    # Without fuzz: a patch that is not for these very lines must not pass.
    patch -d "$unpacked" -p1 --fuzz=0 --forward --quiet <"$patch" >&2 || fail "$(basename "$patch") does not apply"
  fi
  sums=$(cd "$unpacked" && find . -type f -exec sha256sum {} +)
  printf '%s\n' "$sums" >"$unpacked/$SUMS"
  # Another build may have been faster; its folder is as good.
  mv -T "$unpacked" "$sources" 2>/dev/null || rm -rf "$unpacked"
  [ -d "$sources" ] || fail "cannot write $sources"
}

private='' unpacked=''
trap 'rm -rf "$private" "$unpacked"' EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM
mkdir -p "$cache"
if [ -d "$sources" ] && ! is_intact; then
  say "the sources in $sources are damaged; unpacking them anew"
  rm -rf "$sources"
fi
if [ ! -d "$sources" ]; then
  if [ ! -f "$archive" ]; then
    say "fetching the sources of version $VERSION"
    fetch
  elif ! has_right_sum "$archive"; then
    say "the archive $archive is damaged; fetching it anew"
    fetch
  fi
  unpack
fi
printf '%s\n' "$sources"
