#!/usr/bin/env bash
# Keys photographs before a screen with nobody at the knobs, and draws plate, matte and composite side by side for
# docs/quality.md.
#
#   tools/quality_pictures.sh PLATE...      docs/images/NAME.jpg for each, NAME being the plate's without its folder
set -euo pipefail
cd "$(dirname "$0")/.."

veloxa=${VELOXA:-build/bin/veloxa}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
[ $# -gt 0 ] || { sed -n '2,6s/^# \{0,1\}//p' "$0" >&2; exit 2; }

for plate in "$@"; do
    name=$(basename "${plate%.*}")
    size=$(oiiotool --info "$plate" | sed -E 's/.*: +([0-9]+) x +([0-9]+).*/\1x\2/')
    oiiotool --pattern constant:color=0.42,0.32,0.5 "$size" 3 -d uint8 -o "$folder/bg.png"
    "$veloxa" key --fg "$plate" --bg "$folder/bg.png" --auto -o "$folder/key.exr" --overwrite --quiet
    # Wide pictures stand in a column, high ones in a row.
    layout=3x1
    [ "${size%x*}" -le "${size#*x}" ] || layout=1x3
    across=480
    [ $layout = 3x1 ] || across=960
    oiiotool "$plate" --ch R,G,B --resize "${across}x0" "$folder/key.exr" --ch A,A,A --resize "${across}x0" \
        "$folder/key.exr" --ch R,G,B --resize "${across}x0" --mosaic:pad=6 $layout --ch R,G,B -d uint8 \
        --attrib Compression jpeg:88 -o "docs/images/$name.jpg"
    echo "docs/images/$name.jpg"
done
