#!/bin/sh
# The effect on processors that this machine is not: each runs the tool on a recording and must give the same file, bit
# for bit, and must not stumble over an instruction that it lacks.
#
#   on_other_processors.sh QUILLON_RENDER RECORDING FOLDER
set -eu
render=$1 recording=$2 folder=$3
mkdir -p "$folder"

# play NAME COMMAND...
play() {
  name=$1
  shift
  "$@" "$render" "$recording" "$folder/$name.wav" --program "Slow Dawn" --set "Set=1" --set "LFO Dp=0.5" --tail 0 --quiet
}

play here env
# One without AVX, one with AVX2 but without AVX-512.
for processor in Conroe Haswell; do
  play "$processor" qemu-x86_64 -cpu "$processor"
  cmp "$folder/here.wav" "$folder/$processor.wav"
done
