#!/usr/bin/env bash
# Keys procedural plates by every method and prints how far the keys are from the truth, as a Markdown table.
#
#   tools/quality.sh [METHOD...]             a method is "NAME: OPTIONS OF veloxa key", besides those below
#   tools/quality.sh --update [METHOD...]    also puts the table under "Figures" in docs/quality.md
#
# A second table tells how steady unmixing is over FRAMES in flickering light, with and without the shot's model.
#
# SEEDS and SIZE choose the plates, SCREENS their colours, CLEAN=1 gives the keys the clean plates.
set -euo pipefail
cd "$(dirname "$0")/.."

veloxa=${VELOXA:-build/bin/veloxa}
seeds=${SEEDS:-1 2 3 4 5 6}
size=${SIZE:-960x540}
screens=${SCREENS:-green blue}
frames=${FRAMES:-12}
page=docs/quality.md
methods=(
    'unmix: --auto'
    'colour difference: --auto --set unmix_method=0'
)

update=
if [ "${1-}" = --update ]; then
    update=1
    shift
fi
methods+=("$@")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# score METHOD-OPTIONS: keys the plate in the folder; its SAD, those of the regions and the mixed pixels' PSNR.
score() {
    local p=$folder/plate key=$folder/key.exr clean=() options
    read -ra options <<<"$1"
    [ -z "${CLEAN-}" ] || clean=(--cp "$p/cp.exr")
    "$veloxa" key --fg "$p/fg.exr" "${clean[@]}" --bg "$p/bg.exr" --gm "$p/gm.exr" "${options[@]}" -o "$key" \
        --quiet --overwrite
    "$veloxa" score "$key" "$p/alpha_true.exr" --regions "$p/regions.exr" --exclude "$p/gm.exr" \
        --composite "$key" --composite-truth "$p/comp_true.exr" >"$folder/scores"
    awk '{ sad[$1] = NF > 2 ? $3 : "-"; dB[$1] = $7 }
        END { print sad["all"], sad["backing"], sad["core"], sad["edge"], sad["hair"], sad["motion"], sad["veil"],
                    dB["mixed"] }' "$folder/scores"
}

# Appends a line to the figures for each method: KIND|PLATE|METHOD|the scores.
measure() {
    local kind=$1 seed=$2 screen=$3 vary=() method scores
    [ "$kind" = plain ] || vary=(--vary)
    "$veloxa" plate -o "$folder/plate" --size "$size" --seed "$seed" --screen "$screen" "${vary[@]}" --overwrite
    for method in "${methods[@]}"; do
        scores=$(score "${method#*: }")
        echo "$kind|$kind $seed, $screen|${method%%: *}|$scores" >>"$folder/figures"
    done
}

for kind in plain varied; do
    for seed in $seeds; do
        for screen in $screens; do measure "$kind" "$seed" "$screen"; done
    done
done

# One row a plate and method, then the means, which leave out what a plate lacks.
awk -F '|' '
    function row(plate, method, scores,    n, i, part, line) {
        n = split(scores, part, " ")
        line = "| " plate " | " method " |"
        for (i = 1; i <= n; ++i) line = line (part[i] == "-" ? " – |" : sprintf(i < n ? " %.2f |" : " %.1f |", part[i]))
        print line
    }
    BEGIN {
        print "| plate | method | SAD | backing | core | edge | hair | motion | veil | mixed, dB |"
        print "|---|---|---:|---:|---:|---:|---:|---:|---:|---:|"
    }
    {
        row($2, $3, $4)
        key = $1 "|" $3
        if (!(key in seen)) { seen[key] = 1; keys[++groups] = key }
        columns = split($4, part, " ")
        for (i = 1; i <= columns; ++i) if (part[i] != "-") { sum[key, i] += part[i]; ++count[key, i] }
    }
    END {
        for (g = 1; g <= groups; ++g) {
            key = keys[g]
            split(key, name, "|")
            means = ""
            for (i = 1; i <= columns; ++i) means = means " " (count[key, i] ? sum[key, i] / count[key, i] : "-")
            row("**" name[1] ", mean**", name[2], means)
        }
    }' "$folder/figures" >"$folder/table"
cat "$folder/table"

# Prints a row of the table over time: NAME CAMERA, of the keys that there are.
steady_row() {
    local p=$folder/shot
    "$veloxa" score "$folder/key.%04d.exr" "$p/alpha_true.%04d.exr" --exclude "$p/gm.%04d.exr" \
        --frames "1-$frames" >"$folder/scores"
    awk -v name="$1" -v camera="$2" '$1 == "all" { sad = $3 } /dtSSD/ { dtssd = $4; deviation = $6 }
        END { printf "| %s | %s | %.3f | %.3f | %.4f |\n", camera, name, sad, 1000 * dtssd, 1000 * deviation }' \
        "$folder/scores"
}

# Prints both rows of a camera. The knobs are those that --auto finds on the first frame.
measure_steadiness() {
    local camera=$1 p=$folder/shot n fg
    "$veloxa" plate -o "$p" --size "$size" --frames "1-$frames" --flicker 0.02 --camera "$camera" --overwrite
    "$veloxa" key --fg "$p/fg.0001.exr" --gm "$p/gm.0001.exr" --auto -o "$folder/key.0001.exr" --quiet --overwrite \
        --save-script "$folder/steady.vlx"
    for n in $(seq -f %04.0f "$frames"); do
        fg=$p/fg.$n.exr
        "$veloxa" key --fg "$fg" --gm "$p/gm.$n.exr" --script "$folder/steady.vlx" -o "$folder/key.$n.exr" \
            --quiet --overwrite
    done
    steady_row 'frame by frame' "$camera"
    "$veloxa" key --fg "$p/fg.%04d.exr" --gm "$p/gm.%04d.exr" --script "$folder/steady.vlx" --frames "1-$frames" \
        -o "$folder/key.%04d.exr" --quiet --overwrite
    steady_row 'by the shot' "$camera"
}

{
    echo '| camera | keyed | SAD | dtSSD, 1/1000 | still places, 1/1000 |'
    echo '|---|---|---:|---:|---:|'
    for camera in locked moving; do measure_steadiness "$camera"; done
} >"$folder/steadiness"
cat "$folder/steadiness"

[ -n "$update" ] || exit 0
{
    sed '/^## Figures$/q' "$page"
    echo
    echo "Plates of $size, seeds $seeds, commit $(git rev-parse --short HEAD)."
    echo
    cat "$folder/table"
    echo
    echo "Over $frames frames of $size, seed 1:"
    echo
    cat "$folder/steadiness"
} >"$folder/page"
cp "$folder/page" "$page"
