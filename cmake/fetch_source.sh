#!/bin/sh
# Fetches the source archive of somebody else's library into a cache and unpacks it there. Prints the source folder.
#
#   fetch_source.sh vstgui | sndfile [CACHE_FOLDER]
#
# Debian carries these archives as parts of source packages of its next release. The script asks the mirror that
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
  *)
    echo "Usage: fetch_source.sh vstgui | sndfile [CACHE_FOLDER]" >&2
    exit 1
    ;;
esac

cache=${2:-${XDG_CACHE_HOME:-$HOME/.cache}/quillon}
archive=$cache/$1-$VERSION.tar.gz
sources=$cache/$1-$VERSION

fail() {
  printf '%s: %s\n' "$NAME" "$*" >&2
  printf '%s: %s\n' "$NAME" "$ADVICE" >&2
  exit 1
}

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
  # shellcheck disable=SC2016 # apt fills it in
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | grep '/debian/$' | head -n 1
}

fetch() {
  [ -x "$DOWNLOADER" ] || fail "the archive is fetched with apt, which is not here"
  private=$(mktemp -d "$cache/fetch-XXXXXX")
  trap 'rm -rf "$private"' EXIT
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

unpack() {
  unpacked=$(mktemp -d "$cache/unpack-XXXXXX")
  tar -xf "$archive" -C "$unpacked" --strip-components=1 || {
    rm -rf "$unpacked"
    fail "the archive cannot be unpacked"
  }
  # Another build may have been faster; its folder is as good.
  mv -T "$unpacked" "$sources" 2>/dev/null || rm -rf "$unpacked"
}

mkdir -p "$cache"
if [ ! -d "$sources" ]; then
  { [ -f "$archive" ] && has_right_sum "$archive"; } || fetch
  unpack
fi
printf '%s\n' "$sources"
