#!/usr/bin/env bash
# Keys a procedural plate and leaves pictures to look at in a folder (demo/ unless another is named).
set -euo pipefail
cd "$(dirname "$0")/.."

out=${1:-demo}
veloxa=build/bin/veloxa
plates=$out/plates
mkdir -p "$out"

# Shows a command before running it.
run() {
    echo "\$ $*"
    "$@"
}

run "$veloxa" plate -o "$plates" --size 1920x1080 --seed 7 --overwrite
run "$veloxa" key --fg "$plates/fg.exr" --cp "$plates/cp.exr" --bg "$plates/bg.exr" --gm "$plates/gm.exr" \
    --auto -o "$out/composite.exr" --overwrite --stats
echo
echo "The matte against the true one, and the composite's green, where spill would show:"
run "$veloxa" compare --channel A "$out/composite.exr" "$plates/alpha_true.exr"
run "$veloxa" compare --channel G "$out/composite.exr" "$plates/comp_true.exr"

# picture FILE CHANNELS PNG: the channels as an 8-bit picture.
picture() {
    oiiotool "$1" --ch "$2" -d uint8 -o "$3"
}
picture "$out/composite.exr" R,G,B "$out/composite.png"
picture "$out/composite.exr" A "$out/matte.png"

font=/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf
panels=()
# panel FILE CHANNELS LABEL: adds a panel to the contact sheet.
panel() {
    panels+=("$1" --ch "$2" --resize:filter=box 960x540
        "--text:x=16:y=524:size=26:font=$font:color=1,1,1:shadow=2" "$3")
}
panel "$plates/fg.exr" R,G,B "plate"
panel "$plates/alpha_true.exr" A,A,A "true matte"
panel "$plates/comp_true.exr" R,G,B "true composite"
panel "$plates/bg.exr" R,G,B "background"
panel "$out/composite.exr" A,A,A "matte"
panel "$out/composite.exr" R,G,B "composite"
oiiotool "${panels[@]}" --mosaic:pad=6 3x2 --ch R,G,B -d uint8 -o "$out/contact_sheet.png"

echo
echo "Pictures to look at:"
printf '  %s\n' "$out"/{composite,matte,contact_sheet}.png
