#!/bin/sh
# validate.sh SORD_VALIDATE DESCRIPTIONS BUNDLE: fails unless the validator has looked at the bundle and found no error, by
# what the format's own bundles in the folder DESCRIPTIONS say. A bundle with a fault must not get through.
set -eu
validator=$1 descriptions=$2 bundle=$3
standard=
for name in core ui units port-groups port-props presets state atom urid log options buf-size parameters schemas; do
  for file in "$descriptions/$name".lv2/*.ttl; do
    case $file in *.meta.ttl | */meta.ttl) ;; *) standard="$standard $file" ;; esac
  done
done

# shellcheck disable=SC2086 # no blanks in those
validate() { "$validator" $standard "$@" 2>&1; }

validate "$bundle"/*.ttl | tee /dev/stderr | grep -q '^Found 0 errors among'

faulty=$(mktemp --suffix=.ttl)
trap 'rm -f "$faulty"' EXIT
sed 's/lv2:symbol "mix"/lv2:symbool "mix"/' "$bundle/QuillonMultitapDelay.ttl" >"$faulty"
if validate "$bundle/manifest.ttl" "$faulty" | grep -q '^Found 0 errors'; then
  echo "The validator has overlooked a port without a symbol." >&2
  exit 1
fi
