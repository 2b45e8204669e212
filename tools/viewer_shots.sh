#!/usr/bin/env bash
# Walks through the viewer as docs/viewer.md does and leaves a picture of each step as OUT/viewer-*.jpg;
# OUT/viewer.jpg is the one of the README. PLATE is the manual's plate; background and sequence are procedural.
#
#   tools/viewer_shots.sh green_glasses_hoodie_1040x702.png docs/images
set -euo pipefail
[ $# -eq 2 ] || { sed -n '2,5s/^# \{0,1\}//p' "$0" >&2; exit 2; }
plate=$(realpath "$1")
mkdir -p "$2"
out=$(realpath "$2")
cd "$(dirname "$0")/.."

cmake --preset release >&2
cmake --build --preset release --target veloxa viewer_shots >&2

# The window shows names of files, so that they must stay the same.
work=/tmp/shot
mkdir "$work"
trap 'rm -rf "$work"' EXIT
build/bin/veloxa plate -o "$work/set" --size 1920x1080 --frames 1-6 --seed 7
# A background of the plate's size and space.
size=$(oiiotool --info "$plate" | sed -E 's/.*: +([0-9]+) x +([0-9]+).*/\1x\2/')
build/bin/veloxa plate -o "$work/still" --size "$size" --seed 7
oiiotool "$work/still/bg.exr" --colorconvert linear sRGB -d uint8 -o "$work/background.png"
cp "$plate" "$work"
build/bin/viewer_shots "$work/$(basename "$plate")" "$work/background.png" \
    "$work/set/fg.0001.exr" "$work/set/bg.0001.exr" "$work"

for picture in "$work"/viewer*.png; do
    oiiotool "$picture" --ch R,G,B -d uint8 --attrib Compression jpeg:82 --nosoftwareattrib -o "$out/$(basename "$picture" .png).jpg"
done
