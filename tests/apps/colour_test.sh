#!/bin/bash
# Colour spaces, as a user meets them: what is told, converted, and written into files.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"
unset OCIO

through=(--set screen_color=0,0,0 --overwrite) # the foreground passes
expect 0 "" plate -o shot --size 64x48

# The plate's space is told, and said in what is made of it.
expect 0 "shot/fg.exr: linear, as " key --fg shot/fg.exr -o plain.exr "${through[@]}" --depth float
expect 0 "" key --fg shot/fg.exr -o web.png "${through[@]}" --out-space SRGB --depth uint16
expect 0 "web.png: sRGB, as uint16, tagged sRGB" key --fg web.png -o web.exr "${through[@]}" --depth float
expect 0 "web.exr: sRGB, as float, tagged sRGB" key --fg web.exr -o again.exr "${through[@]}"
expect 1 "" compare web.exr plain.exr --channel G --max-diff 0.02

# Converted and back it is what it was; the bits are the same on any number of threads.
expect 0 "web.png: sRGB, as uint16, tagged sRGB; converted to linear" key --fg web.png -o light.exr \
    "${through[@]}" --out-space linear --depth float
expect 0 "" compare light.exr plain.exr --channel G --max-diff 0.0001
expect 0 "" key --fg web.png -o one.exr "${through[@]}" --out-space LogC3 --depth float --threads 1
expect 0 "" key --fg web.png -o two.exr "${through[@]}" --out-space LogC3 --depth float --threads 2
expect 0 "" compare one.exr two.exr --max-diff 0
expect 0 "one.exr: LogC3, as float, tagged LogC3; converted to linear" key --fg one.exr -o two.exr \
    "${through[@]}" --out-space linear --depth float
expect 0 "" compare two.exr plain.exr --channel G --max-diff 0.0001
expect 0 "" key --fg web.png -o asked.exr "${through[@]}" --in-space srgb --depth float
expect 0 "" compare asked.exr light.exr --max-diff 0
expect 0 "asked.exr: linear, as float, tagged linear" key --fg asked.exr -o again.exr "${through[@]}"

expect 0 "results, converted to ACEScg" key --fg web.png --gm shot/gm.exr -o x.exr --out-space ACEScg --dry-run
expect_lines "fg  web.png, 64x48, sRGB, as uint16, tagged sRGB; converted to linear" "gm  shot/gm.exr, 64x48"

# What an input chooses for itself counts first; what differs from the plate is told.
pick=(--pick 0,40,8,48 --overwrite --depth float)
expect 0 "" key --fg shot/bg.exr -o bg.png "${through[@]}" --out-space sRGB --depth uint16
expect 0 "bg.png: warning: is sRGB, but shot/fg.exr is linear" key --fg shot/fg.exr --bg bg.png -o a.exr "${pick[@]}"
expect 0 "" key --fg shot/fg.exr --bg shot/bg.exr -o a.exr "${pick[@]}"
expect 0 "" key --fg shot/bg.exr -o bg.exr "${through[@]}" --out-space sRGB --depth float
expect 0 "" key --fg shot/fg.exr --bg "bg.exr#space=sRGB" --in-space linear -o b.exr "${pick[@]}"
expect 0 "" compare a.exr b.exr --max-diff 0.0001

# A premultiplied result is converted as if it were not; a matte is not converted.
sets=(--set output_mode=unpremultiplied "${pick[@]}")
expect 0 "" key --fg shot/fg.exr -o straight.exr "${sets[@]}" --out-space sRGB
expect 0 "" key --fg shot/fg.exr -o cut=cut.exr -o matte=matte.exr "${pick[@]}" --out-space sRGB
expect 0 "" key --fg shot/fg.exr -o matte=plain_matte.exr "${pick[@]}"
oiiotool straight.exr --premult -o multiplied.exr
expect 0 "" compare multiplied.exr cut.exr --max-diff 0.0001
expect 0 "" compare matte.exr plain_matte.exr --max-diff 0
expect 0 "matte.exr: raw, as float, tagged raw" key --fg matte.exr -o again.exr "${through[@]}"
expect 0 "cut.exr: sRGB, as float, tagged sRGB" key --fg cut.exr -o again.exr "${through[@]}"

# The automatic set-up sees light; a knob that says otherwise is warned of.
unmix=(--set unmix_method=unmix --auto --overwrite)
expect 0 "unmix_encoding as stored: web.png is converted from sRGB to linear" key --fg web.png -o again.exr \
    "${unmix[@]}" --in-space sRGB
expect 0 "warning: unmix_encoding is sRGB" key --fg web.png -o again.exr "${unmix[@]}" --in-space sRGB \
    --set unmix_encoding=sRGB
expect 0 "" cleanplate --fg web.png -o clean.exr --pick 0,40,8,48 --out-space ACEScg
expect 0 "clean.exr: ACEScg, as half, tagged ACEScg" key --fg clean.exr -o again.exr "${through[@]}"

expect 0 "ACEScg " spaces
expect 0 '"scene_linear": "linear"' spaces --json

# What cannot be.
expect 0 "" key --fg shot/fg.exr -o plain.tif "${through[@]}"
expect_rows key -o no.exr --pick 0,40,8,48 <<'TABLE'
2|, ADX16, raw; did you mean 'ACEScg'?|--fg web.png --in-space acescgg
2|#space=nonsense|--fg web.png#space=nonsense
2|plain.tif: what space its values are in is not sure, perhaps sRGB (uint16 without a linear tag); say it with --in-space|--fg plain.tif --out-space linear
1|plain.tif: what space its values are in is not sure|--fg plain.tif --out-space linear --dry-run
TABLE
[ ! -e no.exr ] || fail "no.exr is there"
export OCIO=none.ocio
expect 1 "none.ocio: the colour configuration that \$OCIO names cannot be loaded" key --fg web.png -o no.exr \
    "${through[@]}" --in-space sRGB
expect 0 "" key --fg web.png -o again.exr "${through[@]}" # needs none
