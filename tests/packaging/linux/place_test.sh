#!/usr/bin/env bash
# place_test.sh SOURCES CASE: installs and uninstalls a small tree in a home folder of the test's own.
set -euo pipefail
sources=$1
place=$sources/packaging/linux/place
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# A home as they come, with a space.
export HOME=$folder/the\ home
unset DESTDIR SUDO_USER XDG_CONFIG_HOME VST_PATH LV2_PATH CLAP_PATH
mkdir "$HOME"
tree=$folder/tree
vst=$HOME/.vst/QuillonMultitapDelay
state=$HOME/.local/share/quillon-multitap-delay

die() {
  printf '%s\n' "$*" "--- it said:" >&2
  cat "$folder/said" >&2 || true
  exit 1
}

write() {
  mkdir -p "${1%/*}"
  printf '%s\n' "$2" >"$1"
}

# make_tree VERSION: what a build of that version brings.
make_tree() {
  local door
  rm -rf "$tree"
  for door in vst/QuillonMultitapDelay/QuillonMultitapDelay.so clap/QuillonMultitapDelay/QuillonMultitapDelay.clap \
    lv2/QuillonMultitapDelay.lv2/QuillonMultitapDelay.so; do
    write "$tree/lib/$door" "library of version $1"
    write "$tree/lib/${door%/*}/default.fxb" "bank of version $1"
    write "$tree/lib/${door%/*}/Quillon Skin/skin.xml" "skin of version $1"
    write "$tree/lib/${door%/*}/Quillon Skin/knob.png" "the same knob"
  done
  write "$tree/bin/quillon-render" "tool of version $1"
  chmod +x "$tree/bin/quillon-render"
  write "$tree/share/applications/quillon-window.desktop" "Exec=quillon-window"
}

said() { grep -qF -- "$1" "$folder/said" || die "not said: $1"; }
content() { [ "$(cat "$1")" = "$2" ] || die "$1 is: $(cat "$1")"; }
absent() { [ ! -e "$1" ] && [ ! -L "$1" ] || die "there is $1"; }
install() { "$place" install "$tree" "$@" >"$folder/said" 2>&1 || die "could not install"; }
uninstall() { "$place" uninstall "$@" >"$folder/said" 2>&1 || die "could not uninstall"; }

# refused ARGUMENT...: with one line.
refused() {
  ! "$place" "$@" >"$folder/said" 2>&1 || die "worked: $*"
  [ "$(wc -l <"$folder/said")" = 1 ] || die "more than one line"
  grep -q '^quillon: ' "$folder/said" || die "not its own words"
}

# The rights of files mean nothing to root: from here on, $place runs as somebody else.
become_person() {
  chmod 755 "$folder"
  cp "$place" "$folder/place"
  place=$folder/place
  [ "$(id -u)" = 0 ] || return 0
  chown -R 65534 "$HOME"
  mv "$place" "$folder/place_itself"
  printf '#!/bin/sh\nexec setpriv --reuid=65534 --clear-groups "%s" "$@"\n' "$folder/place_itself" >"$place"
  chmod +x "$place"
}

# use_front_door: $place is the script `quillon` from here on, where nothing can be built.
use_front_door() {
  mkdir -p "$folder/front" "$folder/stubs"
  (cd "$sources" && cp --parents quillon packaging/linux/place "$folder/front")
  place=$folder/front/quillon
  for program in cmake apt-get sudo; do
    printf '#!/bin/sh\necho "%s was called"\nexit 1\n' $program >"$folder/stubs/$program"
    chmod +x "$folder/stubs/$program"
  done
  PATH=$folder/stubs:$PATH
}

# picture FOLDER: all that is in it, with sums.
picture() { (cd "$1" && find . -printf '%y %p %l\n' | sort && find . -type f -print0 | sort -z | xargs -0r sha256sum); }

expect_version() {
  content "$vst/QuillonMultitapDelay.so" "library of version $1"
  content "$HOME/.clap/QuillonMultitapDelay/QuillonMultitapDelay.clap" "library of version $1"
  content "$HOME/.lv2/QuillonMultitapDelay.lv2/QuillonMultitapDelay.so" "library of version $1"
  content "$vst/Quillon Skin/skin.xml" "skin of version $1"
}

expect_empty_home() { [ -z "$(ls -A "$HOME")" ] || die "left: $(find "$HOME")"; }

PutsEachFormatWhereHostsOfOnePersonLook() {
  install
  expect_version 1
  content "$vst/default.fxb" "bank of version 1"
  [ -x "$HOME/.local/bin/quillon-render" ]
  said '~/.clap/QuillonMultitapDelay'
  said 'Your PATH does not name ~/.local/bin'
  LV2_PATH=/elsewhere install
  said 'LV2_PATH is set and does not name ~/.lv2'
}

PutsAllBelowAPrefix() {
  install --prefix "$folder/all of us"
  said "CLAP_PATH names $folder/all of us/lib/clap"
  local tree_of_it=$folder/expected
  cp -r "$tree" "$tree_of_it"
  mkdir -p "$tree_of_it/share/quillon-multitap-delay"
  cp "$place" "$tree_of_it/share/quillon-multitap-delay/uninstall"
  cp "$folder/all of us/share/quillon-multitap-delay/installed" "$tree_of_it/share/quillon-multitap-delay"
  diff -r "$tree_of_it" "$folder/all of us" || die "not the tree"
  expect_empty_home
  uninstall --prefix "$folder/all of us"
  # The prefix itself may be anything, so it stays.
  [ -z "$(ls -A "$folder/all of us")" ] || die "left: $(find "$folder/all of us")"
}

IsReadableByEverybodyBelowAPrefix() {
  chmod 700 "$tree/bin/quillon-render"
  chmod 400 "$tree/lib/vst/QuillonMultitapDelay/default.fxb"
  umask 077
  install --prefix "$folder/prefix"
  local file=$folder/prefix/bin/quillon-render
  [ "$(stat -c %a "$file")" = 755 ] || die "$(ls -l "$file")"
  file=$(find "$folder/prefix" ! -type d ! -path '*/bin/*' ! -name uninstall ! -perm 644 -o -type d ! -perm 755)
  [ -z "$file" ] || die "other rights: $file"
}

LeavesNothingBehind() {
  install
  install
  uninstall
  expect_empty_home
  refused uninstall
  said 'nothing is installed'
}

RemovesItselfWithoutTheSources() {
  install
  rm -r "$tree"
  mkdir "$vst/Mine"
  "$state/uninstall" >"$folder/said" 2>&1 || die "could not"
  [ "$(find "$HOME" | wc -l)" = 4 ] || die "left: $(find "$HOME")"
  make_tree 1
  install --prefix "$folder/prefix"
  "$folder/prefix/share/quillon-multitap-delay/uninstall" >"$folder/said" 2>&1 || die "could not"
  [ -z "$(ls -A "$folder/prefix")" ] || die "left: $(find "$folder/prefix")"
}

RemovesItselfFromFoldersThatAreLinks() {
  mkdir "$folder/elsewhere" "$HOME/.local"
  ln -s "$folder/elsewhere" "$HOME/.local/share"
  install
  ! HOME=$folder "$state/uninstall" >"$folder/said" 2>&1 || die "worked"
  said 'HOME is another'
  "$state/uninstall" >"$folder/said" 2>&1 || die "could not"
  [ "$(find "$HOME" "$folder/elsewhere" | wc -l)" = 4 ] || die "left: $(find "$HOME" "$folder/elsewhere")"
  rm -r "$HOME/.local"
  ln -s "$folder/elsewhere" "$HOME/.local"
  install
  "$state/uninstall" >"$folder/said" 2>&1 || die "could not"
  [ "$(find "$HOME" "$folder/elsewhere" | wc -l)" = 3 ] || die "left: $(find "$HOME" "$folder/elsewhere")"
  # A prefix that looks like a person's own.
  install --prefix "$HOME/.local"
  "$state/uninstall" >"$folder/said" 2>&1 || die "could not"
  rm "$HOME/.local"
  install --prefix "$HOME/.local"
  "$state/uninstall" >"$folder/said" 2>&1 || die "could not"
  [ -z "$(ls -A "$HOME/.local")" ] || die "left: $(find "$HOME")"
}

ReplacesAndRemovesFilesOfAnOlderVersion() {
  write "$tree/lib/vst/QuillonMultitapDelay/Old Skin/skin.xml" "an old skin"
  install
  make_tree 2
  write "$tree/lib/vst/QuillonMultitapDelay/New Skin/skin.xml" "a new skin"
  install
  expect_version 2
  content "$vst/New Skin/skin.xml" "a new skin"
  absent "$vst/Old Skin"
  content "$vst/default.fxb" "bank of version 2"
  uninstall
  expect_empty_home
}

KeepsSkinsAndMapsOfAPersonsOwn() {
  install
  write "$vst/Mine/skin.xml" "my skin"
  write "$vst/Quillon Skin/mine.png" "my picture"
  write "$vst/Pluginccmap.bin" "my controllers"
  make_tree 2
  install
  expect_version 2
  content "$vst/Mine/skin.xml" "my skin"
  content "$vst/Quillon Skin/mine.png" "my picture"
  uninstall
  content "$vst/Mine/skin.xml" "my skin"
  content "$vst/Quillon Skin/mine.png" "my picture"
  content "$vst/Pluginccmap.bin" "my controllers"
  [ "$(find "$HOME" -type f | wc -l)" = 3 ] || die "left: $(find "$HOME")"
  absent "$HOME/.clap"
  absent "$HOME/.local"
  said '~/.vst/QuillonMultitapDelay/Mine'
  said '~/.vst/QuillonMultitapDelay/Quillon Skin/mine.png'
  said '~/.vst/QuillonMultitapDelay/Pluginccmap.bin'
}

KeepsABankOfAPersonsOwnInUse() {
  install
  write "$vst/default.fxb" "my bank"
  make_tree 2
  install
  said '~/.vst/QuillonMultitapDelay/default.fxb'
  content "$vst/default.fxb" "my bank"
  content "$vst/default.fxb.new" "bank of version 2"
  content "$HOME/.clap/QuillonMultitapDelay/default.fxb" "bank of version 2"
  make_tree 3
  install
  content "$vst/default.fxb" "my bank"
  content "$vst/default.fxb.new" "bank of version 3"
  # It was moved away: the delivered one comes back.
  mv "$vst/default.fxb" "$vst/mine.fxb"
  install
  content "$vst/default.fxb" "bank of version 3"
  absent "$vst/default.fxb.new"
  write "$vst/default.fxb" "my other bank"
  install
  uninstall
  content "$vst/default.fxb" "my other bank"
  content "$vst/mine.fxb" "my bank"
  [ "$(find "$HOME" -type f | wc -l)" = 2 ] || die "left: $(find "$HOME")"
}

SetsChangedFilesOfASkinAside() {
  install
  write "$vst/Quillon Skin/skin.xml" "my change"
  make_tree 2
  install
  expect_version 2
  content "$vst/Quillon Skin/skin.xml.yours" "my change"
  said '~/.vst/QuillonMultitapDelay/Quillon Skin/skin.xml.yours'
  write "$vst/Quillon Skin/skin.xml" "my second change"
  install
  content "$vst/Quillon Skin/skin.xml.yours" "my change"
  content "$vst/Quillon Skin/skin.xml.yours-2" "my second change"
  uninstall
  [ "$(find "$HOME" -type f | wc -l)" = 2 ] || die "left: $(find "$HOME")"
}

LeavesChangedFilesBehind() {
  install
  write "$vst/Quillon Skin/skin.xml" "my change"
  write "$HOME/.local/bin/quillon-render" "my own tool"
  uninstall
  content "$vst/Quillon Skin/skin.xml" "my change"
  content "$HOME/.local/bin/quillon-render" "my own tool"
  [ "$(find "$HOME" -type f | wc -l)" = 2 ] || die "left: $(find "$HOME")"
  said '~/.vst/QuillonMultitapDelay/Quillon Skin/skin.xml'
  said '~/.local/bin/quillon-render'
  # And a later installation knows that they are not ours.
  install
  content "$vst/Quillon Skin/skin.xml.yours" "my change"
  content "$HOME/.local/bin/quillon-render.yours" "my own tool"
}

LeavesFoldersThatWereThereBefore() {
  mkdir -p "$HOME/.vst" "$HOME/.local/bin" "$HOME/.local/share/man"
  write "$HOME/.clap/Other.clap" "of somebody else"
  picture "$HOME" >"$folder/before"
  install
  # An upgrade still knows which folders were there.
  make_tree 2
  install
  uninstall
  picture "$HOME" | diff "$folder/before" - || die "not as before"
}

TakesOverWhatWasCopiedByHand() {
  mkdir -p "$vst"
  cp -r "$tree/lib/vst/QuillonMultitapDelay/." "$vst"
  make_tree 2
  install
  expect_version 2
  content "$vst/QuillonMultitapDelay.so.yours" "library of version 1"
  content "$vst/default.fxb" "bank of version 1"
}

ReplacesALibraryThatIsInUse() {
  install
  exec 5<"$vst/QuillonMultitapDelay.so"
  make_tree 2
  install
  expect_version 2
  [ "$(cat <&5)" = "library of version 1" ] || die "what a host has open has changed"
}

ChangesNothingIfACopyFails() {
  install
  make_tree 2
  write "$tree/lib/vst/QuillonMultitapDelay/New Skin/skin.xml" "a new skin"
  picture "$HOME" | grep -v installed >"$folder/before"
  # In the way of the last of them.
  mkdir "$vst/default.fxb.quillon-unfinished"
  refused install "$tree"
  said 'nothing has changed (cp: '
  rmdir "$vst/default.fxb.quillon-unfinished"
  picture "$HOME" | grep -v installed | diff "$folder/before" - || die "something has changed"
  uninstall
  expect_empty_home
  # The same for a first installation.
  mkdir -p "$vst/default.fxb.quillon-unfinished"
  picture "$HOME" >"$folder/before"
  refused install "$tree"
  picture "$HOME" | diff "$folder/before" - || die "something has changed"
}

ChangesNothingIfAFileCannotBeRead() {
  become_person
  install
  picture "$HOME" >"$folder/before"
  make_tree 2
  chmod 000 "$tree/lib/vst/QuillonMultitapDelay/QuillonMultitapDelay.so"
  refused install "$tree"
  said 'cannot read all of'
  said 'QuillonMultitapDelay.so'
  picture "$HOME" | diff "$folder/before" - || die "something has changed"
}

# make_bad_programs ACTION: stand in for cp, chmod, mv and rm. They count the calls, and one of them (`bad_call`) does ACTION.
make_bad_programs() {
  local program
  mkdir -p "$folder/bad"
  for program in cp chmod mv rm; do
    cat >"$folder/bad/$program" <<SCRIPT
#!/bin/sh
calls=\$((\$(cat "$folder/calls") + 1))
echo \$calls >"$folder/calls"
if [ \$calls -eq \$(cat "$folder/bad_call") ]; then
  $1
  exit 1
fi
exec $(command -v $program) "\$@"
SCRIPT
    chmod +x "$folder/bad/$program"
  done
}

# upgrade_with_bad_call CALL: after a first installation and changes of a person's own; its result is in `result`.
upgrade_with_bad_call() {
  rm -rf "$HOME"
  mkdir "$HOME"
  make_tree 1
  write "$tree/lib/vst/QuillonMultitapDelay/Old Skin/skin.xml" "an old skin"
  install
  write "$vst/default.fxb" "my bank"
  write "$vst/Quillon Skin/skin.xml" "my change"
  make_tree 2
  write "$tree/lib/vst/QuillonMultitapDelay/New Skin/skin.xml" "a new skin"
  echo 0 >"$folder/calls"
  echo "$1" >"$folder/bad_call"
  result=0
  (PATH=$folder/bad:$PATH exec "$place" install "$tree") >"$folder/said" 2>&1 || result=$?
}

# expect_nothing_lost CALL: by that upgrade, whether it is repeated or not.
expect_nothing_lost() {
  local file
  for file in "$vst/QuillonMultitapDelay.so" "$HOME/.clap/QuillonMultitapDelay/QuillonMultitapDelay.clap" \
    "$HOME/.lv2/QuillonMultitapDelay.lv2/QuillonMultitapDelay.so"; do
    [[ $(cat "$file") = "library of version "[12] ]] || die "half a file after $1 calls: $file"
  done
  if [ $(($1 % 2)) = 0 ]; then
    install
    expect_version 2
    absent "$vst/Old Skin"
    [ -z "$(find "$HOME" -name '*unfinished')" ] || die "unfinished: $(find "$HOME" -name '*unfinished')"
  fi
  uninstall
  [ "$(find "$HOME" -type f -exec cat {} + | sort | uniq | tr '\n' ,)" = "my bank,my change," ] ||
    die "bad call $1, left: $(find "$HOME" -type f)"
}

IsOldOrNewWhenKilledAtAnyPoint() {
  local call=0 result=1
  make_bad_programs "kill -KILL \$PPID"
  while [ $result -ne 0 ]; do
    call=$((call + 1))
    upgrade_with_bad_call $call
    expect_nothing_lost $call
  done
  [ $call -gt 20 ] || die "only $call calls were tried"
}

KnowsItsFilesWhateverFailed() {
  local call=0 result
  make_bad_programs "echo bad call >&2"
  while :; do
    call=$((call + 1))
    upgrade_with_bad_call $call
    [ "$(cat "$folder/calls")" -ge $call ] || break
    if [ $result -eq 0 ]; then
      expect_version 2
    else
      [ "$(grep -c '^quillon: ' "$folder/said")" = 1 ] || die "not one line of its own at call $call"
    fi
    expect_nothing_lost $call
  done
  [ $call -gt 20 ] || die "only $call calls were tried"
}

# expect_a_clean_end ARGUMENT...: at whichever call this fails, it says so in one line, and then all can be removed.
expect_a_clean_end() {
  local call=0 failures=0
  echo 1 >"$folder/calls"
  while [ "$(cat "$folder/calls")" -ge $call ]; do
    call=$((call + 1))
    [ "$1" = install ] || install
    echo 0 >"$folder/calls"
    echo $call >"$folder/bad_call"
    if ! (PATH=$folder/bad:$PATH exec "$place" "$@") >"$folder/said" 2>&1; then
      failures=$((failures + 1))
      [ "$(wc -l <"$folder/said")" = 1 ] || die "$1, call $call: not one line"
      grep -q '^quillon: ' "$folder/said" || die "$1, call $call: not its own words"
    fi
    [ ! -e "$state/installed" ] || uninstall
    [ -z "$(ls -A "$HOME")" ] || die "$1, call $call, left: $(find "$HOME")"
  done
  [ $failures -gt 10 ] || die "$1: only $failures calls mattered"
}

LeavesNothingBehindWhateverFailed() {
  make_bad_programs "echo bad call >&2"
  expect_a_clean_end install "$tree"
  expect_a_clean_end uninstall
}

RefusesToRunTwiceAtOnce() {
  local command
  mkdir "$folder/busy"
  # Stands in for sha256sum: tries the other command once while the first installation reads what it will copy.
  cat >"$folder/busy/sha256sum" <<SCRIPT
#!/bin/sh
PATH=$PATH
[ -e "$folder/second" ] || "$place" \$(cat "$folder/command") >"$folder/second" 2>&1 && echo worked >>"$folder/second"
exec sha256sum "\$@"
SCRIPT
  chmod +x "$folder/busy/sha256sum"
  for command in "install $tree" uninstall; do
    rm -f "$folder/second"
    echo "$command" >"$folder/command"
    PATH=$folder/busy:$PATH install
    cp "$folder/second" "$folder/said"
    grep -q '^quillon: another installation is under way' "$folder/said" || die "not refused: $command"
    uninstall
    expect_empty_home
  done
}

RefusesWhatCannotWork() {
  refused install
  refused install "$folder/nowhere"
  refused install "$folder"
  mkdir -p "$folder/empty/bin" "$folder/empty/lib" "$folder/empty/share"
  refused install "$folder/empty"
  said 'there is nothing to install'
  refused remove
  refused install "$tree" --frobnicate
  said '--frobnicate'
  refused install "$tree" --prefix
  refused install "$tree" --prefix=
  HOME='' refused install "$tree"
  said 'there is no HOME'
  HOME=$folder/nowhere refused install "$tree"
  write "$HOME/.clap" "a file"
  refused install "$tree"
  said '~/.clap is no folder'
  rm "$HOME/.clap"
  mkdir -p "$HOME/.vst"
  ln -s "$tree/lib/vst/QuillonMultitapDelay" "$vst"
  refused install "$tree"
  said 'is a link'
  content "$tree/lib/vst/QuillonMultitapDelay/default.fxb" "bank of version 1"
  rm "$vst"
  rmdir "$HOME/.vst"
  expect_empty_home
  become_person
  chmod 555 "$HOME"
  refused install "$tree"
  chmod 755 "$HOME"
  said 'cannot write'
  expect_empty_home
}

ChangesNothingIfAnOldSkinCannotBeRemoved() {
  become_person
  write "$tree/lib/vst/QuillonMultitapDelay/Old Skin/skin.xml" "an old skin"
  install
  picture "$HOME" >"$folder/before"
  make_tree 2
  chmod 555 "$vst/Old Skin"
  refused install "$tree"
  said 'cannot write to ~/.vst/QuillonMultitapDelay/Old Skin'
  picture "$HOME" | diff "$folder/before" - || die "something has changed"
  chmod 755 "$vst/Old Skin"
}

RefusesToRemoveBelowDestdir() {
  install
  picture "$HOME" >"$folder/before"
  DESTDIR=$folder/x refused uninstall
  said 'DESTDIR'
  use_front_door
  DESTDIR=$folder/x refused uninstall
  said 'DESTDIR'
  DESTDIR=$folder/x refused uninstall --prefix "$HOME"
  said 'DESTDIR'
  picture "$HOME" | diff "$folder/before" - || die "something has changed"
}

RefusesToInstallWithSudo() {
  use_front_door
  printf '#!/bin/sh\necho 0\n' >"$folder/stubs/id"
  chmod +x "$folder/stubs/id"
  export SUDO_USER=somebody
  refused install
  said 'without sudo'
  refused install --prefix "$folder/prefix"
  said 'without sudo'
  # For everybody, what is built already can be installed so.
  place=$sources/packaging/linux/place
  refused install "$tree"
  said 'without sudo'
  install --prefix "$folder/prefix"
}

SaysThatItMayNotWriteWhereThereIsNoSudo() {
  use_front_door
  rm "$folder/stubs/sudo"
  mkdir "$folder/programs"
  ln -s /usr/bin/* "$folder/programs"
  rm -f "$folder/programs/sudo"
  mkdir "$folder/prefix"
  chmod 555 "$folder/prefix"
  if [ "$(id -u)" = 0 ]; then
    chmod 755 "$folder"
    printf '#!/bin/sh\nexec setpriv --reuid=65534 --clear-groups "%s" "$@"\n' "$place" >"$folder/place"
    chmod +x "$folder/place"
    place=$folder/place
  fi
  PATH=$folder/programs refused uninstall --prefix "$folder/prefix"
  said "cannot write to $folder/prefix"
}

TakesDestdirFromWhereItIsCalled() {
  use_front_door
  write "$folder/work/staging" "a file"
  cd "$folder/work"
  DESTDIR=staging refused install
  said "$folder/work/staging is no folder"
}

TellsTheWayOutIfAFileBecomesAFolder() {
  local there=$tree/lib/vst/QuillonMultitapDelay/there
  write "$there" "a file"
  install
  make_tree 2
  write "$there/file" "a file in a folder"
  refused install "$tree"
  said '~/.vst/QuillonMultitapDelay/there is no folder; uninstall the earlier version first'
  uninstall
  install
  make_tree 3
  write "$there" "a file"
  refused install "$tree"
  said '~/.vst/QuillonMultitapDelay/there is a folder, and a file belongs there; uninstall the earlier version first'
  uninstall
  install
  # A person's own folder is in the way of a file.
  rm "$vst/there"
  write "$vst/there/mine" "my file"
  refused install "$tree"
  said 'a file belongs there'
  uninstall
  content "$vst/there/mine" "my file"
  said '~/.vst/QuillonMultitapDelay/there'
  [ "$(find "$HOME" -type f | wc -l)" = 1 ] || die "left: $(find "$HOME")"
}

RefusesAListThatLeadsElsewhere() {
  install
  write "$folder/precious" "precious"
  printf '%s  ../precious\n' "$(sha256sum <"$folder/precious" | cut -c 1-64)" >>"$state/installed"
  refused uninstall
  said 'is damaged'
  content "$folder/precious" precious
  echo nonsense >"$state/installed"
  refused uninstall
}

NamesTheFullPathInTheDesktopEntry() {
  install
  content "$HOME/.local/share/applications/quillon-window.desktop" "Exec=\"$HOME/.local/bin/quillon-window\""
  install --prefix "$folder/prefix"
  content "$folder/prefix/share/applications/quillon-window.desktop" "Exec=quillon-window"
}

make_tree 1
"$2"
