#!/usr/bin/env bash
# Draws the OpenFX bundle's icon with the program itself: half a plate, half its key. Takes the build's folder.
set -euo pipefail
cd "$(dirname "$0")/.."

veloxa=${1-build}/bin/veloxa
icon=ofx/resources/org.veloxa.Keyer.png
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$veloxa" plate -o "$work" --size 1024x1024 --seed 3
"$veloxa" key --quiet --fg "$work/fg.exr" --cp "$work/cp.exr" -o "$work/key.exr" \
    --set output_mode=premultiplied --set matte_scale=linear --set merge=add
oiiotool "$work/fg.exr" --ch R,G,B,A=1 --cut 264x528+220+180 -o "$work/left.exr"
oiiotool "$work/key.exr" --ch R,G,B,A --cut 264x528+484+180 -o "$work/right.exr"
oiiotool --nosoftwareattrib "$work/left.exr" "$work/right.exr" --mosaic 2x1 --resize 256x256 \
    --eraseattrib '.*' -d uint8 --attrib png:compressionLevel 9 -o "$icon"
